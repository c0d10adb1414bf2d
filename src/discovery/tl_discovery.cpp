// The producers that are loaded, and the interfaces that are open.
#include "discovery/tl_discovery.h"

#include <algorithm>
#include <boost/filesystem.hpp>

#include "core/bounded_copy.h"
#include "core/global_state.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "discovery/environment.h"
#include "discovery/producer_search.h"
#include "exit_handler.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "gentl/producer_family.h"
#include "progress.h"

namespace OVI {

namespace {

constexpr const char* kProducersSite = "OVI::TLDiscovery::discoverTransportLayers";
constexpr const char* kInfoSite = "OVI::TLDiscovery::getTransportLayerInfoByFilePath";

const char* environmentReason(oviErr code) {
  switch (code) {
    case OVI_ERR_NO_KITHARA_PROCESSORS:
      return "as Dedicated Kithara Producers are not allocated.";
    case OVI_ERR_HYPERVISOR_NOT_DISABLED:
      return "as Hyper-V is not disabled.";
    default:
      return "because of an unknown error";
  }
}

/** Whether a device is open on the interface, or opens at this moment. */
bool isUsed(const GenTLCpp::TLInterface& tlInterface) {
  if (tlInterface.isOpening())
    return true;
  const std::vector<HandleRegistry::Module> devices = HandleRegistry::instance().modulesOfKind(ModuleKind::Device);
  return std::ranges::any_of(devices, [&](const HandleRegistry::Module& device) {
    return device->isOpen() && parentOf(*device).get() == &tlInterface;
  });
}

}  // namespace

TLDiscovery& TLDiscovery::instance() {
  static TLDiscovery& discovery = *new TLDiscovery;  // Threads that outlive main may still be in it.
  return discovery;
}

std::vector<std::string> TLDiscovery::getTLLocations() const {
  std::vector<std::string> given;
  bool only = false;
  {
    const std::lock_guard lock(optionMutex_);
    given = searchPaths_;
    only = givenPathsOnly_;
  }
  return findProducers(given, only);
}

oviErr TLDiscovery::discoverTransportLayers() {
  OVI_LOG_VERBOSE(kProducersSite) << "Starting TL discovery...";
  reportProgress(kPhaseStart, 0.0);
  const std::vector<std::string> files = getTLLocations();
  const std::lock_guard lock(producerMutex_);
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;  // The process has ended meanwhile: nobody would close what is loaded now.
  const std::size_t loadedBefore = producers_.size();
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string& path = files[i];
    if (loadedProducer(path) != nullptr)
      continue;
    if (isKitharaProducer(path) && isKitharaEnvironmentSet() != OVI_SUCCESS)
      continue;
    OVI_LOG_INFO(kProducersSite) << "Loading TL from " << path << "... ";
    reportProgress(kPhaseProducers, static_cast<double>(i) / static_cast<double>(files.size()));
    try {
      producers_.push_back(loadAndOpen(path));
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): logged where it happened; the others go on.
    }
  }
  if (producers_.size() > loadedBefore)
    closeProducersAtExit();
  reportProgress(kPhaseProducers, 1.0);

  if (Log::admits(Severity::Verbose)) {
    LogRecord record(Severity::Verbose, kProducersSite, __LINE__);
    record << "TL discovery finished. Found " << producers_.size() << " transport layers: ";
    for (const TransportLayerPtr& transportLayer : producers_) {
      std::string name;
      guarded(kProducersSite, Severity::Debug, "A producer does not tell its display name: ", [&] {
        name = transportLayer->getProducer()->getDisplayName();
        return OVI_SUCCESS;
      });
      record << "\t" << name;
    }
  }
  return OVI_SUCCESS;
}

// Loads, initialises and opens; what fails is logged and passed on.
TLDiscovery::TransportLayerPtr TLDiscovery::loadAndOpen(const std::string& path) {
  std::shared_ptr<GenTLCpp::GenTLProducer> producer;
  try {
    producer = GenTLCpp::GenTLProducer::create(path);
  } catch (const std::exception& exception) {
    OVI_LOG_ERROR(kProducersSite) << "Failed to load and initialize producer from " << path
                                  << ". Error: " << exception.what();
    throw;
  }
  OVI_LOG_DEBUG(kProducersSite) << "Success! Loading of TL: " << path;
  try {
    TransportLayerPtr transportLayer = producer->openTransportLayer();
    OVI_LOG_DEBUG(kProducersSite) << "Success! Opening TL: " << path;
    return transportLayer;
  } catch (const std::exception& exception) {
    OVI_LOG_ERROR(kProducersSite) << "Error opening transport layer for producer from location" << path
                                  << ". Error: " << exception.what();
    producer->close();
    throw;
  }
}

TLDiscovery::TransportLayerPtr TLDiscovery::loadedProducer(const std::string& path) const {
  const auto found = std::ranges::find_if(
      producers_, [&](const TransportLayerPtr& candidate) { return candidate->getProducer()->filePath() == path; });
  return found == producers_.end() ? nullptr : *found;
}

// Also under another path: a producer can be initialised once, and closing it would end the one that is in use.
TLDiscovery::TransportLayerPtr TLDiscovery::loadedFile(const std::string& path) const {
  if (TransportLayerPtr exact = loadedProducer(path))
    return exact;
  const auto found = std::ranges::find_if(producers_, [&](const TransportLayerPtr& candidate) {
    boost::system::error_code error;
    return boost::filesystem::equivalent(candidate->getProducer()->filePath(), path, error) && !error;
  });
  return found == producers_.end() ? nullptr : *found;
}

std::vector<TLDiscovery::TransportLayerPtr> TLDiscovery::producers() const {
  const std::lock_guard lock(producerMutex_);
  return producers_;
}

oviErr TLDiscovery::getTransportLayerInfoByFilePath(const std::string& filePath, oviTLProducerInfos& outInfo) {
  outInfo = {};
  boundedCopy(outInfo.filePath, sizeof(outInfo.filePath), filePath);
  const std::lock_guard lock(producerMutex_);
  if (isKitharaProducer(filePath)) {
    if (const oviErr code = isKitharaEnvironmentSet(); code != OVI_SUCCESS) {
      OVI_LOG_ERROR(kInfoSite) << "Cannot load and initialize kithara producer - " << environmentReason(code) << ","
                               << "Error Code: " << code;
      return code;
    }
  }
  TransportLayerPtr transportLayer = loadedFile(filePath);
  const bool loadedForThis = transportLayer == nullptr;
  if (loadedForThis) {
    const oviErr code = guarded(
        kInfoSite, Severity::Error,
        [&](LogRecord& record) { record << "Failed to load transport layer TL [" << filePath << "]. Error: "; },
        [&] {
          transportLayer = loadAndOpen(filePath);
          return OVI_SUCCESS;
        });
    if (code != OVI_SUCCESS)
      return code;
  }

  const GenTLCpp::GenTLProducer& producer = *transportLayer->getProducer();
  const auto fill = [&](char* field, std::size_t size, std::string (GenTLCpp::GenTLProducer::*ask)() const) {
    guarded(
        kInfoSite, Severity::Error,
        [&](LogRecord& record) {
          record << "Failed to get Transport layer info for  " << filePath << "to display the producer info. Error: ";
        },
        [&] {
          boundedCopy(field, size, (producer.*ask)());
          return OVI_SUCCESS;
        });
  };
  fill(outInfo.name, sizeof(outInfo.name), &GenTLCpp::GenTLProducer::getName);
  fill(outInfo.displayName, sizeof(outInfo.displayName), &GenTLCpp::GenTLProducer::getDisplayName);
  fill(outInfo.pathName, sizeof(outInfo.pathName), &GenTLCpp::GenTLProducer::getPathName);
  if (loadedForThis) {
    transportLayer->close();
    transportLayer->getProducer()->close();
  }
  return OVI_SUCCESS;
}

TLDiscovery::TransportLayerPtr TLDiscovery::findTransportLayer(std::string_view id) {
  for (const TransportLayerPtr& transportLayer : producers()) {
    std::string own;  // Empty, as in the records, when the producer does not tell it.
    guarded("OVI::oviOpenDevice", Severity::Debug, "A producer does not tell its ID: ", [&] {
      own = transportLayer->getProducer()->getID();
      return OVI_SUCCESS;
    });
    if (own == id)
      return transportLayer;
  }
  return nullptr;
}

TLDiscovery::InterfacePtr TLDiscovery::keptInterface(const GenTLCpp::TransportLayer& transportLayer,
                                                     const std::string& id) {
  InterfacePtr dropped;  // Destroyed after the lock is released: that calls the producer.
  const std::lock_guard lock(interfaceMutex_);
  const auto found = interfaces_.find({&transportLayer, id});
  if (found == interfaces_.end())
    return nullptr;
  if (found->second->isOpen())
    return found->second;
  dropped = std::move(found->second);
  interfaces_.erase(found);
  return nullptr;
}

void TLDiscovery::keepInterface(const GenTLCpp::TransportLayer& transportLayer, const std::string& id,
                                const InterfacePtr& opened) {
  InterfacePtr dropped = opened;
  const std::lock_guard lock(interfaceMutex_);
  std::swap(interfaces_[{&transportLayer, id}], dropped);
}

void TLDiscovery::dropInterface(const GenTLCpp::TransportLayer& transportLayer, const std::string& id) {
  InterfacePtr dropped;
  {
    const std::lock_guard lock(interfaceMutex_);
    const auto found = interfaces_.find({&transportLayer, id});
    if (found == interfaces_.end() || isUsed(*found->second))
      return;
    dropped = std::move(found->second);
    interfaces_.erase(found);
  }
  shutInterfaceWaits(*dropped);
  dropped->close();
}

void TLDiscovery::closeAll() {
  std::map<InterfaceKey, InterfacePtr> interfaces;
  std::vector<TransportLayerPtr> producers;
  {
    const std::lock_guard lock(producerMutex_);
    {
      const std::lock_guard interfaceLock(interfaceMutex_);
      interfaces.swap(interfaces_);
    }
    // Interfaces go before their producer, so that it can close them.
    interfaces.clear();
    for (const TransportLayerPtr& transportLayer : producers_) {
      transportLayer->getProducer()->close();
      transportLayer->close();
    }
    producers.swap(producers_);
  }
  producers.clear();
  const std::lock_guard lock(deviceMutex_);
  devices_.clear();
}

void TLDiscovery::closeAtExit() noexcept {
  try {
    const std::lock_guard lock(producerMutex_);
    // These references are never given up: unloading a library under threads that run in it would crash the process.
    static auto* const keptLoaded = new std::vector<TransportLayerPtr>();
    keptLoaded->insert(keptLoaded->end(), producers_.begin(), producers_.end());
    {
      std::map<InterfaceKey, InterfacePtr> interfaces;
      const std::lock_guard interfaceLock(interfaceMutex_);
      interfaces.swap(interfaces_);
    }
    for (const TransportLayerPtr& transportLayer : producers_) {
      transportLayer->close();
      transportLayer->getProducer()->close();
    }
    producers_.clear();
  } catch (...) {  // NOLINT(bugprone-empty-catch): the process ends in any case.
  }
}

}  // namespace OVI
