// An interface of a producer: its devices.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "gentl/device_info.h"
#include "gentl/open_module.h"
#include "gentl/transport_layer.h"

namespace GenTLCpp {

struct IFFunctions {
  explicit IFFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PIFClose> IFClose{library, "IFClose"};
  Export<PIFGetInfo> IFGetInfo{library, "IFGetInfo"};
  Export<PIFGetNumDevices> IFGetNumDevices{library, "IFGetNumDevices"};
  Export<PIFGetDeviceID> IFGetDeviceID{library, "IFGetDeviceID"};
  Export<PIFUpdateDeviceList> IFUpdateDeviceList{library, "IFUpdateDeviceList"};
  Export<PIFGetDeviceInfo> IFGetDeviceInfo{library, "IFGetDeviceInfo"};
  Export<PIFOpenDevice> IFOpenDevice{library, "IFOpenDevice"};
  Export<PIFGetParentTL> IFGetParentTL{library, "IFGetParentTL"};
};

/** Made by InterfaceInfo::open. All operations throw GenTLException when the producer fails. */
class TLInterface final : public OpenModule<TransportLayer, IFFunctions, &IFFunctions::IFClose> {
 public:
  static constexpr int kModuleType = kInterfaceModule;

  TLInterface(const std::shared_ptr<TransportLayer>& transportLayer, LibraryHandle library, IF_HANDLE handle);
  ~TLInterface() override;

  int moduleType() const override { return kModuleType; }

  std::string getInfoString(INTERFACE_INFO_CMD cmd) const;
  std::vector<std::string> getDeviceIDs() const;
  /** The devices that are listed, in the producer's order. */
  std::vector<std::shared_ptr<DeviceInfo>> getDeviceInfos();
  /** The device with exactly this ID, or nothing. */
  std::shared_ptr<DeviceInfo> findDeviceInfo(const std::string& id);
  std::string getDeviceInfoString(const std::string& id, DEVICE_INFO_CMD cmd) const;
  std::int32_t getDeviceAccessStatus(const std::string& id) const;
  /** @param timeout  milliseconds
   * @return whether the list changed */
  bool updateDeviceList(std::uint64_t timeout) const;
  DEV_HANDLE openDeviceHandle(const std::string& id, DEVICE_ACCESS_FLAGS accessFlags) const;

  /** While one lives, a device of the interface is about to open, so that nobody else may close the interface. */
  class OpeningMark {
   public:
    explicit OpeningMark(std::shared_ptr<TLInterface> tlInterface) : interface_(std::move(tlInterface)) {
      interface_->openings_.fetch_add(1);
    }
    ~OpeningMark() { interface_->openings_.fetch_sub(1); }
    OpeningMark(const OpeningMark&) = delete;
    OpeningMark& operator=(const OpeningMark&) = delete;

   private:
    std::shared_ptr<TLInterface> interface_;
  };
  bool isOpening() const noexcept { return openings_.load() != 0; }

 private:
  std::atomic<int> openings_{0};
};

}  // namespace GenTLCpp
