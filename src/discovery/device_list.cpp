// The enumeration of devices: every producer, every interface, every device, with progress.
#include <algorithm>

#include "Base/GCException.h"
#include "GenApi/GenApi.h"
#include "core/global_state.h"
#include "core/log.h"
#include "device_record.h"
#include "discovery/tl_discovery.h"
#include "gentl/feature_list.h"
#include "gentl/guard.h"
#include "gentl/interface_info.h"
#include "gentl/producer_family.h"
#include "progress.h"

namespace OVI {

namespace {

constexpr const char* kListSite = "OVI::TLDiscovery::getDeviceList";
constexpr std::uint32_t kMaxReported = 16;

// The discovery that is under way on this thread, if any: its progress callback must not start another.
thread_local bool discovering = false;

class DiscoveryMark {
 public:
  DiscoveryMark() { discovering = true; }
  ~DiscoveryMark() { discovering = false; }
  DiscoveryMark(const DiscoveryMark&) = delete;
  DiscoveryMark& operator=(const DiscoveryMark&) = delete;
};

bool refusedWhileDiscovering() {
  if (discovering)
    OVI_LOG_ERROR(kListSite) << "A progress callback must not call back into discovery.";
  return discovering;
}

void logStart(bool update, std::uint64_t timeout) {
  OVI_LOG_DEBUG(kListSite) << "=== Starting device discovery ===";
  OVI_LOG_VERBOSE(kListSite) << "Discovery parameters: update: " << update << "; timeout: " << timeout;
}

std::string nameOf(const GenTLCpp::TransportLayer& transportLayer) {
  std::string name;
  guarded(kListSite, Severity::Debug, "A producer does not tell its name: ", [&] {
    name = transportLayer.getProducer()->getName();
    return OVI_SUCCESS;
  });
  return name;
}

// Tells an interface of the S2i producer whether to list cameras of other subnets.
void applyIgnoreSubnet(GenTLCpp::TLInterface& tlInterface, const std::string& interfaceID) {
  bool isServed = false;
  guarded("OVI::isS2iTL", Severity::Error, "Error getting device TL type. Error: ", [&] {
    isServed = isS2iTL(*tlInterface.getParent());
    return OVI_SUCCESS;
  });
  if (!isServed)
    return;
  guarded(
      kListSite, Severity::Error,
      [&](LogRecord& record) { record << "Failed to set IgnoreSubnet of interface " << interfaceID << ". Error: "; },
      [&] {
        const std::shared_ptr<GenTLCpp::FeatureList> features = tlInterface.getFeatureList();
        if (features == nullptr)
          return OVI_SUCCESS;
        if (auto* node = dynamic_cast<GenApi::IBoolean*>(features->getNode("IgnoreSubnet")))
          node->SetValue(GlobalState::instance().ignoreSubnetEnabled(), true);
        return OVI_SUCCESS;
      });
}

/** How far an enumeration is: `index` of `count` parts are done, and `fraction` of the next one. */
double progressOf(std::size_t index, double fraction, std::size_t count) {
  return (static_cast<double>(index) + fraction) / static_cast<double>(count);
}

}  // namespace

oviErr TLDiscovery::getDeviceList(bool update, std::vector<oviDeviceInfo>& outDevices, std::uint64_t timeout) {
  if (refusedWhileDiscovering()) {
    return OVI_ERR_BUSY;
  }
  const std::lock_guard lock(deviceMutex_);
  logStart(update, timeout);
  if (update) {
    return updateDeviceList(outDevices, timeout);
  }
  outDevices = devices_;
  return OVI_SUCCESS;
}

oviErr TLDiscovery::discoverDevices(const DiscoveryRequest& request, std::vector<oviDeviceInfo>& outDevices) {
  if (refusedWhileDiscovering()) {
    return OVI_ERR_BUSY;
  }
  const std::lock_guard lock(deviceMutex_);
  {
    const std::lock_guard optionLock(optionMutex_);
    if (request.searchPaths) {
      searchPaths_ = *request.searchPaths;
      givenPathsOnly_ = request.givenPathsOnly;
    }
    progressCallback_ = request.progressCallback;
  }
  logStart(true, request.timeout);
  return updateDeviceList(outDevices, request.timeout);
}

oviErr TLDiscovery::updateDeviceList(std::vector<oviDeviceInfo>& outDevices, std::uint64_t timeout) {
  const DiscoveryMark mark;
  devices_.clear();
  discoverTransportLayers();
  enumerate(timeout);
  outDevices = devices_;
  return OVI_SUCCESS;
}

void TLDiscovery::enumerate(std::uint64_t timeout) {
  const std::lock_guard lock(producerMutex_);
  for (std::size_t i = 0; i < producers_.size(); ++i)
    enumerateProducer(producers_[i], i, producers_.size(), timeout);
  reportProgress(kPhaseEnd, 1.0);
}

void TLDiscovery::enumerateProducer(const TransportLayerPtr& transportLayer, std::size_t index, std::size_t count,
                                    std::uint64_t timeout) {
  const std::string name = nameOf(*transportLayer);
  OVI_LOG_DEBUG(kListSite) << "Discovery on TL [" << name << "]...";
  OVI_LOG_DEBUG(kListSite) << "Updating interface list. TL [" << name << "]...";
  std::vector<std::string> ids;
  const oviErr code = guarded(
      kListSite, Severity::Error,
      [&](LogRecord& record) { record << "Error updating interface list in TL [" << name << "]. Error: "; },
      [&] {
        transportLayer->updateInterfaceList(timeout);
        OVI_LOG_DEBUG(kListSite) << "Success: Interface list update! TL [" << name << "]";
        ids = transportLayer->getInterfaceIDs();
        return OVI_SUCCESS;
      });
  if (code != OVI_SUCCESS)
    return;
  OVI_LOG_DEBUG(kListSite) << "Number of interfaces for TL [" << name << "]: " << ids.size();

  // Some producers do not list an interface that is open already.
  {
    const std::lock_guard lock(interfaceMutex_);
    for (const auto& [key, opened] : interfaces_)
      if (key.first == transportLayer.get() && std::ranges::find(ids, key.second) == ids.end())
        ids.push_back(key.second);
  }
  for (std::size_t j = 0; j < ids.size(); ++j) {
    enumerateInterface(transportLayer, name, ids[j], timeout, [&](double fraction) {
      reportProgress(kPhaseDevices, progressOf(index, progressOf(j, fraction, ids.size()), count));
    });
  }
}

TLDiscovery::InterfacePtr TLDiscovery::openForDiscovery(const TransportLayerPtr& transportLayer,
                                                        const std::string& name, const std::string& id) {
  OVI_LOG_DEBUG(kListSite) << ">>> New interface on TL [" << name << "]: " << id;
  if (InterfacePtr kept = keptInterface(*transportLayer, id))
    return kept;
  OVI_LOG_DEBUG(kListSite) << "Open interface on TL [" << name << "]: with id: " << id;
  InterfacePtr opened;
  guarded(
      kListSite, Severity::Error,
      [&](LogRecord& record) {
        record << "Failed to open interface with ID: " << id << " on TL [" << name << "]. Message: ";
      },
      [&] {
        opened = GenTLCpp::InterfaceInfo(transportLayer, id, "", "").open();
        return OVI_SUCCESS;
      });
  if (opened != nullptr) {
    OVI_LOG_DEBUG(kListSite) << "Success: Interface open! TL [" << name << "]";
    keepInterface(*transportLayer, id, opened);
  }
  return opened;
}

void TLDiscovery::enumerateInterface(const TransportLayerPtr& transportLayer, const std::string& name,
                                     const std::string& id, std::uint64_t timeout,
                                     const std::function<void(double fraction)>& report) {
  const InterfacePtr tlInterface = openForDiscovery(transportLayer, name, id);
  if (tlInterface == nullptr)
    return;
  applyIgnoreSubnet(*tlInterface, id);

  OVI_LOG_DEBUG(kListSite) << "Updating device list in TL [" << name << "]: IF id: " << id;
  std::vector<std::string> devices;
  bool updated = false;
  const oviErr code = guarded(
      kListSite, Severity::Error,
      [&](LogRecord& record) {
        record << "Error updating device list in TL [" << name << "]: IF id: " << id << ". Error: ";
      },
      [&] {
        tlInterface->updateDeviceList(timeout);
        updated = true;
        OVI_LOG_DEBUG(kListSite) << "Success updating device list. TL [" << name << "]";
        devices = tlInterface->getDeviceIDs();
        return OVI_SUCCESS;
      });
  if (!updated)
    dropInterface(*transportLayer, id);
  if (code != OVI_SUCCESS)
    return;
  OVI_LOG_DEBUG(kListSite) << "Number of acquisition devices: " << devices.size() << ". TL [" << name << "]";

  for (std::size_t k = 0; k < devices.size(); ++k) {
    OVI_LOG_DEBUG(kListSite) << "\t\t>>> New acquisition device: [" << devices[k] << "] on TL [" << name
                             << "] / IF id: " << id;
    oviDeviceInfo record;
    fillDeviceRecord(record, *tlInterface, id, devices[k]);
    report(progressOf(k, 0, devices.size()));
    if (isSupportedDevice(record))
      devices_.push_back(record);
    else
      OVI_LOG_DEBUG(kListSite)
          << "Found a device that is currently not supported by this consumer! Device will be ignored..";
  }
}

void TLDiscovery::reportProgress(unsigned phase, double fraction) {
  oviDiscoveryCallback callback = nullptr;
  {
    const std::lock_guard lock(optionMutex_);
    callback = progressCallback_;
  }
  if (callback == nullptr)
    return;
  const auto info = std::make_unique<oviDiscoveryInfo>();
  info->progress = progressValue(phase, fraction);
  info->running = phase == kPhaseEnd ? 0 : 1;
  info->deviceCount = static_cast<std::uint32_t>(std::min<std::size_t>(devices_.size(), kMaxReported));
  std::copy_n(devices_.begin(), info->deviceCount, std::begin(info->devices));
  callback(info.get());
}

}  // namespace OVI
