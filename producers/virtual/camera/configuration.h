// What the user may choose about the cameras; the defaults need no choice at all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>

namespace vcam {

// What is to be different about one camera; empty texts change nothing.
struct CameraChoice {
  std::string vendor;
  std::string userDefinedName;
  bool plugged = true;
  // The camera's address does not fit to the interface that it hangs on.
  bool foreignSubnet = false;
};

struct Configuration {
  // By serial number.
  std::map<std::string, CameraChoice, std::less<>> choices;

  // The technology that the cameras claim to speak; a name of GenTL.
  std::string tlType = "Custom";

  // The largest stream packet that the way from the cameras carries, in bytes. When it is not 0 the cameras have the
  // command FindMaxPacketSize, which finds it out.
  std::uint32_t networkPacketSize = 0;

  // Folder whose PNG images the test pattern "ImageFolder" shows; empty when there is none.
  std::filesystem::path imageFolder;

  // Folder in which user sets and files of the cameras survive the process, one folder per serial number; created when
  // something is first stored. Empty keeps them in memory for the life of the producer.
  std::filesystem::path storageFolder;

  // ID of the first frame after each start of acquisition: technologies differ in it.
  std::uint64_t firstFrameId = 0;

  // Frames come as fast as buffers do, and only the frame ID is written into each (feature SpeedMode, which an
  // application can also switch by itself).
  bool speedMode = false;

  // Milliseconds that a firmware file takes to apply after it was written and closed.
  std::uint32_t firmwareApplyMs = 600;

  // Receives one line for each thing that went wrong without being any caller's error (a picture that cannot be read, a
  // store that cannot be written). May be empty. Called from any thread.
  std::function<void(const std::string&)> report;
};

}  // namespace vcam
