// What a camera tells and is told about the way of its images to the host.
#pragma once

#include <cstdint>
#include <functional>

#include "camera_core.h"

namespace vcam {

class TransportLayer {
 public:
  explicit TransportLayer(CameraCore& core) : core_(core) {}

  void declare(const std::function<std::int64_t()>& payloadSize);

  void unlockParameters() { locked_->set(0); }
  // Bytes of a stream packet.
  std::uint32_t packetSize() const { return static_cast<std::uint32_t>(packetSize_->integer()); }

 private:
  void declarePackets();

  CameraCore& core_;
  Feature* locked_ = nullptr;
  Feature* packetSize_ = nullptr;
  Feature* largestPacket_ = nullptr;  // only where a network limits it
};

}  // namespace vcam
