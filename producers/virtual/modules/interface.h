// An interface module: the cameras that hang on it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "modules/library.h"
#include "modules/list_update.h"
#include "modules/module.h"

namespace vcam {

class Device;
class System;

class Interface final : public Module {
 public:
  Interface(System& system, const InterfaceEntry& entry);
  ~Interface() override;

  const InterfaceEntry& entry() const { return entry_; }
  System& system() { return system_; }
  void* systemHandle() const;
  Session& session() { return session_; }

  bool updateList(std::uint64_t timeoutMs);
  std::uint32_t deviceCount();
  std::string deviceId(std::uint32_t index);
  Info deviceInfo(const std::string& id, DEVICE_INFO_CMD command);
  void* openDevice(const std::string& id, DEVICE_ACCESS_FLAGS access);
  std::unique_ptr<Module> take(const Device& child);
  void cableChanged(const CameraSlot& slot, bool present);

  // The same answers for open devices and closed ones.
  static Info deviceInfo(const CameraSlot& slot, DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command);

  PortIdentity identity() override;

 protected:
  ModuleFeatures& features() override { return features_; }
  void endCalls() override { update_.end(); }
  void closeChildren() override;
  std::unique_ptr<Module> detach() override;

 private:
  void describe();
  // The camera by its ID or by its user-defined name.
  CameraSlot& find(const std::string& id);
  DEVICE_ACCESS_STATUS statusOf(const CameraSlot& slot);
  // The camera that DeviceSelector points at.
  CameraSlot& selectedCamera();

  System& system_;
  Session& session_;
  const InterfaceEntry& entry_;
  std::size_t index_;
  ModuleFeatures features_;
  ListUpdate update_;
  std::mutex listMutex_;
  std::vector<CameraSlot*> list_;
  std::size_t selected_ = 0;
  std::atomic<std::uint64_t> updateTimeoutMs_{kUpdateTimeoutMs};  // of the command, not of IFUpdateDeviceList
  std::atomic<bool> ignoreSubnet_{false};
  std::unique_ptr<Children<Device>> children_;
};

}  // namespace vcam
