// The local device module: this host's side of an open camera.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "modules/library.h"
#include "modules/module.h"
#include "modules/remote_device.h"

namespace vcam {

class DataStream;
class Interface;

class Device final : public Module {
 public:
  Device(Interface& interface, CameraSlot& slot, DEVICE_ACCESS_FLAGS access);
  ~Device() override;

  const CameraSlot& slot() const { return slot_; }
  Camera& camera() const { return *slot_.camera; }
  Session& session() { return session_; }
  void* interfaceHandle() const;
  bool isReadOnly() const { return access_ == DEVICE_ACCESS_READONLY; }
  DEVICE_ACCESS_STATUS accessStatus() const;
  // Fails when the cable was pulled since the device was opened, even when it is back.
  void requireConnection() const;
  bool isConnected() const { return slot_.present && slot_.plugs == plugsAtOpening_; }
  void cableLost();

  Info info(DEVICE_INFO_CMD command);
  void* remotePort() const { return remote_.handle(); }
  std::uint32_t streamCount() const;
  std::string streamId(std::uint32_t index) const;
  void* openStream(const std::string& id);
  std::unique_ptr<Module> take(const DataStream& child);

  void* registerEvent(EVENT_TYPE type) override;
  // The parameters of the camera are to be locked from the first stream's start to the last one's end.
  void streamStarted();
  void streamEnded();
  // To be called after a write to the camera.
  void noticePayloadChange();

  PortIdentity identity() override;

 protected:
  ModuleFeatures& features() override { return features_; }
  void closeChildren() override;
  std::unique_ptr<Module> detach() override;

 private:
  void describe();
  void fireFeatureChange(std::string_view feature, std::string_view value);
  void describeLink();
  void closeRemotePort();

  Interface& interface_;
  CameraSlot& slot_;
  Session& session_;
  DEVICE_ACCESS_FLAGS access_;
  std::uint64_t plugsAtOpening_;
  ModuleFeatures features_;
  RemoteDevice remote_;
  std::atomic<std::size_t> selectedStream_{0};
  std::atomic<std::size_t> knownPayload_{0};
  std::atomic<std::size_t> runningStreams_{0};
  std::atomic<std::uint64_t> acknowledgeMs_{500};
  std::atomic<std::uint64_t> heartbeatMs_{3000};
  std::unique_ptr<Children<DataStream>> children_;
};

}  // namespace vcam
