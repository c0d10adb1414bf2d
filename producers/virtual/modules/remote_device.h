// The port of the camera itself.
#pragma once

#include "modules/port.h"

namespace vcam {

class Device;

class RemoteDevice final : public Port {
 public:
  explicit RemoteDevice(Device& device) : Port(kRemoteDevice), device_(device) {}

  PortIdentity identity() override;
  const DescriptionInfo& description() override;
  void read(std::uint64_t address, void* data, std::size_t size) override;
  void write(std::uint64_t address, const void* data, std::size_t size, std::size_t& moved) override;

 private:
  Device& device_;
};

}  // namespace vcam
