// A device that an interface lists, not opened yet.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

class Device;
class TLInterface;

class DeviceInfo {
 public:
  DeviceInfo(std::shared_ptr<TLInterface> parent, std::string id);
  DeviceInfo(const DeviceInfo&) = delete;
  DeviceInfo& operator=(const DeviceInfo&) = delete;
  ~DeviceInfo();

  const std::shared_ptr<TLInterface>& getParent() const noexcept { return parent_; }
  const std::string& getID() const noexcept { return id_; }

  /** @throws GenTLException */
  std::string getInfoString(DEVICE_INFO_CMD cmd) const;
  /** A DEVICE_ACCESS_STATUS. @throws GenTLException */
  std::int32_t getAccessStatus() const;
  /** @throws GenTLException */
  std::shared_ptr<Device> open(DEVICE_ACCESS_FLAGS accessFlags);

 private:
  std::shared_ptr<TLInterface> parent_;
  std::string id_;
};

}  // namespace GenTLCpp
