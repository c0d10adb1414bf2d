// A camera that was found, its names, and which one a name means.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ovi/ovi.hpp"

namespace tool {

/// One camera that was found, in the tool's own text encoding.
struct Camera {
  std::size_t number = 0;  ///< from 1, as the list shows it
  std::string id;
  std::string displayName;
  std::string model;
  std::string vendor;
  std::string serial;
  std::string userName;
  std::string version;
  std::string tlType;
  std::string interfaceName;
  std::string interfaceId;
  std::string producerName;
  std::string producerPath;
  std::uint32_t accessStatus = 0;
  bool isVirtual = false;

  /// The shortest name that means just this camera.
  std::string shortName() const;
};

/// "available", "in use by another program", ... for a GenTL access status.
std::string accessText(std::uint32_t accessStatus);

/// What the library tells of a camera, in the tool's own text encoding.
Camera describeCamera(const ovi::DeviceInfo& info, std::size_t number);

/// A line for each of them, with what tells them apart.
std::string cameraLines(const std::vector<const Camera*>& cameras);

/// The cameras that the text means: number, serial number, user-defined name, model, ID or display name.
std::vector<const Camera*> camerasNamed(const std::vector<Camera>& all, const std::string& name);

/// The name of a camera that is most like the text; empty when none is like it.
std::string nearestCameraName(const std::vector<Camera>& all, const std::string& name);

/// The file name of the virtual cameras' producer.
constexpr const char* kVirtualProducer = "VirtualCamera.cti";

}  // namespace tool
