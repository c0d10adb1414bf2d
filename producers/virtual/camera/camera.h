// A camera as the GenTL side sees it: an identity, a register space with a description in it, and a source of frames.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "configuration.h"
#include "frame_plan.h"
#include "gentl_interface/GenTL.h"

namespace vcam {

using Clock = std::chrono::steady_clock;

inline Clock::duration microseconds(double us) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double, std::micro>(us));
}

// What a device list tells about a camera before it is opened.
struct Identity {
  std::string id;  // unique over all cameras of the producer
  std::string vendor;
  std::string model;
  std::string version;
  std::string family;
  std::string serialNumber;
  std::string displayName;
  std::string manufacturerInfo;
  std::string tlType;  // a technology name of GenTL, such as "U3V" or "Custom"
};

// Where the description lies and what it is.
struct DescriptionInfo {
  std::string url;  // "Local:name.xml;address;length" with both numbers hexadecimal
  std::string fileName;
  std::uint64_t address = 0;
  std::size_t size = 0;
  std::uint32_t schemaMajor = 1;
  std::uint32_t schemaMinor = 1;
  std::uint32_t fileMajor = 1;
  std::uint32_t fileMinor = 0;
  std::uint32_t fileSubMinor = 0;
  std::string sha1;  // not filled: no consumer needs it for a local description
};

enum class FrameWait {
  Frame,    // the plan is filled
  Timeout,  // the time is over
  Stopped,  // stopStream() was called
};

// An event of the camera. Data begin at address 0 of the event port that the description declares for the ID; numbers
// in them have the camera's byte order.
using CameraEventSink = std::function<void(std::uint64_t eventId, std::span<const std::byte> data)>;

// All methods may be called from any thread at any time, but one stream has one thread in waitForFrame() at a time.
class Camera {
 public:
  Camera() = default;
  virtual ~Camera() = default;
  Camera(const Camera&) = delete;
  Camera& operator=(const Camera&) = delete;

  virtual const Identity& identity() const = 0;
  // May change through the feature DeviceUserID.
  virtual std::string userDefinedName() const = 0;
  // Ticks of the camera's time stamps in a second.
  virtual std::uint64_t timestampFrequency() const = 0;

  virtual bool isBigEndian() const = 0;
  // The name of the port node in the description.
  virtual const std::string& portName() const = 0;
  virtual const DescriptionInfo& description() const = 0;

  // Moves all bytes or fails. GC_ERR_INVALID_ADDRESS outside the map, GC_ERR_ACCESS_DENIED where the register cannot be
  // read, written or is locked now, GC_ERR_INVALID_VALUE for a value that the camera refuses. A write that fails in a
  // later register has changed those before it; `moved` gets the bytes that were taken.
  virtual GC_ERROR read(std::uint64_t address, void* data, std::size_t size) = 0;
  virtual GC_ERROR write(std::uint64_t address, const void* data, std::size_t size, std::size_t* moved) = 0;
  GC_ERROR write(std::uint64_t address, const void* data, std::size_t size) {
    return write(address, data, size, nullptr);
  }

  // Called for each event whose notification is on, from the thread on which it occurred, with no lock of the camera
  // held. An empty function takes the sink away; after return the old one is not called any more.
  virtual void setEventSink(CameraEventSink sink) = 0;

  // After each execution a command reads as not yet done for this many polls; 0, the beginning, is as fast as it is.
  virtual void setBusyPolls(std::uint32_t polls) = 0;

  virtual std::size_t streamCount() const = 0;
  // Bytes of the largest payload with the present settings.
  virtual std::size_t payloadSize(std::size_t stream) const = 0;

  // Opens the way for frames of a stream: from now on waitForFrame() delivers them while the camera acquires. Frame IDs
  // count from the start of the camera's acquisition, not from this call.
  virtual void startStream(std::size_t stream) = 0;
  // Ends a waitForFrame() under way at once, and every later one until the next start.
  virtual void stopStream(std::size_t stream) = 0;

  // Blocks until the next frame of a stream is complete, by frame rate or trigger, and describes it. A frame that
  // nobody fetches in time is delivered late rather than lost: losing frames for want of buffers is the caller's part.
  virtual FrameWait waitForFrame(std::size_t stream, Clock::time_point until, FramePlan& plan) = 0;
  // Draws a planned frame into a buffer and returns the bytes filled. A buffer that is smaller than the payload gets as
  // many bytes as it holds. May run on several threads at once.
  virtual std::size_t render(const FramePlan& plan, std::span<std::byte> buffer) = 0;

  // The control channel is gone: acquisition stops and TLParamsLocked falls back to 0; settings stay.
  virtual void disconnect() = 0;
};

// The cameras of one producer, always the same and in the same order. They outlive neither the configuration's report
// function nor the module that created them.
std::vector<std::unique_ptr<Camera>> makeDefaultCameras(const Configuration& configuration);

}  // namespace vcam
