// Opening and closing of devices.
#include "discovery/device_access.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/handle_registry.h"
#include "core/log.h"
#include "device_adjustments.h"
#include "discovery/tl_discovery.h"
#include "gentl/device.h"
#include "gentl/device_info.h"
#include "gentl/guard.h"
#include "gentl/interface_info.h"
#include "gentl/module_lookup.h"

namespace OVI {

namespace {

constexpr const char* kOpenSite = "OVI::oviOpenDevice";
constexpr const char* kCloseSite = "OVI::oviCloseDevice";

// One opening on its way from the record to the device: each step needs what the one before it found.
class Opening {
 public:
  Opening(const oviDeviceInfo& record, TLDiscovery::TransportLayerPtr transportLayer, std::uint64_t timeout)
      : deviceID_(record.deviceID),
        interfaceID_(record.interfaceID),
        transportLayer_(std::move(transportLayer)),
        timeout_(timeout) {
    guarded(kOpenSite, Severity::Debug, "A producer does not tell its name: ", [&] {
      producerName_ = transportLayer_->getProducer()->getName();
      return OVI_SUCCESS;
    });
  }

  oviErr run(std::uint32_t accessFlags, std::uint64_t& handle) {
    oviErr code = find();
    if (code == OVI_SUCCESS)
      code = openDevice(accessFlags);
    return code == OVI_SUCCESS
               ? HandleRegistry::instance().registerOpenedDevice(transportLayer_, interface_, device_, handle)
               : code;
  }

 private:
  // Nobody else may update the lists or open the interface meanwhile. Devices themselves open beside each other.
  oviErr find() {
    const auto lock = TLDiscovery::instance().lockProducers();
    oviErr code = updateInterfaces();
    if (code == OVI_SUCCESS)
      code = findInterface();
    if (code == OVI_SUCCESS)
      code = updateDevices();
    if (code == OVI_SUCCESS)
      code = findDevice();
    if (code == OVI_SUCCESS)
      opening_.emplace(interface_);
    return code;
  }

  template<class Prefix, class Work>
  static oviErr step(const Prefix& prefix, Work&& work) {
    return guarded(kOpenSite, Severity::Error, prefix, std::forward<Work>(work));
  }

  /** A step whose log line says nothing about the cause; that follows as a line for those who look closer. */
  template<class Message, class Work>
  static oviErr silentStep(const Message& message, Work&& work) {
    return caught(std::forward<Work>(work), [&](const char* text) {
      OVI_LOG_ERROR(kOpenSite) << message();
      OVI_LOG_DEBUG(kOpenSite) << "The cause is: " << text;
    });
  }

  oviErr updateInterfaces() {
    return step(
        [&](LogRecord& record) { record << "Error updating interface list in TL [" << producerName_ << "]. Error: "; },
        [&] {
          transportLayer_->updateInterfaceList(timeout_);
          return OVI_SUCCESS;
        });
  }

  // An interface that the library keeps open cannot be opened again; it counts as not in the list.
  oviErr findInterface() {
    bool listed = false;
    const oviErr code = silentStep(
        [&] {
          return "Failed to get interface with ID: " + interfaceID_ + " for device " + deviceID_ +
                 ". Perhaps the interface was disconnected?";
        },
        [&] {
          const std::vector<std::string> ids = transportLayer_->getInterfaceIDs();
          listed = std::ranges::find(ids, interfaceID_) != ids.end();
          return OVI_SUCCESS;
        });
    if (code != OVI_SUCCESS)
      return code;
    interface_ = TLDiscovery::instance().keptInterface(*transportLayer_, interfaceID_);
    if (listed && interface_ == nullptr)
      return openInterface();

    OVI_LOG_INFO(kOpenSite)
        << "Interface not found in TL, maybe it is till open. Search in list of stored interfaces..";
    if (interface_ == nullptr) {
      OVI_LOG_ERROR(kOpenSite) << "Could not open interface for device: " << deviceID_
                               << ". Perhaps the interface was disconnected?";
      return OVI_ERR_NOT_FOUND;
    }
    OVI_LOG_INFO(kOpenSite) << "Interface was found!";
    return OVI_SUCCESS;
  }

  oviErr openInterface() {
    return step(
        [&](LogRecord& record) {
          record << "Failed to open interface with ID: " << interfaceID_ << " for device " << deviceID_
                 << ". Message: ";
        },
        [&] {
          interface_ = GenTLCpp::InterfaceInfo(transportLayer_, interfaceID_, "", "").open();
          TLDiscovery::instance().keepInterface(*transportLayer_, interfaceID_, interface_);
          return OVI_SUCCESS;
        });
  }

  oviErr updateDevices() {
    const oviErr code = step(
        [&](LogRecord& record) {
          record << "Error updating device list in TL [" << producerName_ << "]: IF id: " << interfaceID_
                 << ". Error: ";
        },
        [&] {
          interface_->updateDeviceList(timeout_);
          return OVI_SUCCESS;
        });
    if (code != OVI_SUCCESS)
      TLDiscovery::instance().dropInterface(*transportLayer_, interfaceID_);
    return code;
  }

  oviErr findDevice() {
    const auto message = [&] { return "Could not get device info. Interface: " + interfaceID_; };
    return silentStep(message, [&] {
      info_ = interface_->findDeviceInfo(deviceID_);
      if (info_ != nullptr)
        return OVI_SUCCESS;
      OVI_LOG_ERROR(kOpenSite) << message();
      return OVI_ERR_NOT_FOUND;
    });
  }

  oviErr openDevice(std::uint32_t accessFlags) {
    return step(
        [&](LogRecord& record) {
          record << "Failed to open device with ID: [" << deviceID_ << "] in TL [" << producerName_
                 << "]: IF id: " << interfaceID_ << ". Error: ";
        },
        [&] {
          device_ = info_->open(static_cast<DEVICE_ACCESS_FLAGS>(accessFlags));
          return OVI_SUCCESS;
        });
  }

  std::string deviceID_;
  std::string interfaceID_;
  TLDiscovery::TransportLayerPtr transportLayer_;
  std::uint64_t timeout_;
  std::string producerName_;
  TLDiscovery::InterfacePtr interface_;
  std::optional<GenTLCpp::TLInterface::OpeningMark> opening_;
  std::shared_ptr<GenTLCpp::DeviceInfo> info_;
  std::shared_ptr<GenTLCpp::Device> device_;
};

// The record of the latest discovery with exactly this ID.
oviErr findRecord(std::string_view deviceId, oviDeviceInfo& record) {
  if (deviceId.empty())
    return OVI_ERR_INVALID_PARAMETER;
  std::vector<oviDeviceInfo> devices;
  const oviErr code = TLDiscovery::instance().getDeviceList(false, devices, kCachedListTimeout);
  if (code != OVI_SUCCESS)
    return code;
  for (const oviDeviceInfo& device : devices) {
    if (deviceId == device.deviceID) {
      record = device;
      return OVI_SUCCESS;
    }
  }
  OVI_LOG_ERROR(kOpenSite) << "The latest discovery lists no device with ID: [" << deviceId << "]";
  return OVI_ERR_NOT_FOUND;
}

// A device lists its streams, and these list their buffers and events: all of them go with it.
void forgetDevice(std::uint64_t deviceHandle) {
  HandleRegistry& registry = HandleRegistry::instance();
  std::vector<HandleRegistry::Handle> streams;
  static_cast<void>(registry.listRelated(deviceHandle, ModuleKind::DataStream, streams));
  for (const HandleRegistry::Handle stream : streams)
    registry.remove(stream);
  registry.remove(deviceHandle);
}

}  // namespace

oviErr oviOpenDevice(const char* deviceId, std::uint64_t* handle, std::uint64_t timeout, std::uint32_t accessFlags) {
  if (deviceId == nullptr || handle == nullptr || *deviceId == 0)
    return OVI_ERR_INVALID_PARAMETER;
  const auto record = std::make_unique<oviDeviceInfo>();
  if (const oviErr code = findRecord(deviceId, *record); code != OVI_SUCCESS)
    return code;
  const TLDiscovery::TransportLayerPtr transportLayer = TLDiscovery::instance().findTransportLayer(record->tlID);
  if (transportLayer == nullptr) {
    OVI_LOG_ERROR(kOpenSite) << "No producer with ID: [" << record->tlID << "] is loaded for device: " << deviceId;
    return OVI_ERR_NOT_FOUND;
  }
  beforeDeviceOpen(*record, *transportLayer);
  std::uint64_t opened = 0;
  const oviErr code = Opening(*record, transportLayer, timeout).run(accessFlags, opened);
  if (code != OVI_SUCCESS)
    return code;
  *handle = opened;
  afterDeviceOpen(opened);
  return OVI_SUCCESS;
}

oviErr oviCloseDevice(std::uint64_t deviceHandle) {
  OVI_LOG_INFO(kCloseSite) << "Closing device. Handle-Nr: " << deviceHandle;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr code = lookupModule(deviceHandle, device); code != OVI_SUCCESS) {
    OVI_LOG_ERROR(kCloseSite) << "Device not found!";
    return code;
  }
  const oviErr code = guarded(kCloseSite, Severity::Error, "Failed to close device! Error: ", [&] {
    endDeviceWaits(deviceHandle);
    GenTLCpp::checkGenTLError(device->close());
    return OVI_SUCCESS;
  });
  forgetDevice(deviceHandle);
  return code;
}

}  // namespace OVI
