// The producers that are loaded, the interfaces that are open, and the devices of the latest discovery.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gentl/tl_interface.h"
#include "gentl/transport_layer.h"
#include "ovi/ovi.h"

namespace OVI {

/** What is passed as the time for updates where the devices of the latest discovery will do; milliseconds. */
inline constexpr std::uint64_t kCachedListTimeout = 5000;

/** What an application asks a discovery for. */
struct DiscoveryRequest {
  std::uint64_t timeout = 0;  // Milliseconds, for each update of a list.
  oviDiscoveryCallback progressCallback = nullptr;
  std::optional<std::vector<std::string>> searchPaths;  // None: those of the discovery before.
  bool givenPathsOnly = false;
};

/**
 * One per process. Any thread may call any operation; discoveries run one after the other.
 *
 * The progress callback runs on the discovering thread under the locks of the discovery: a discovery from inside it is
 * answered with Busy (-123).
 */
class TLDiscovery {
 public:
  using TransportLayerPtr = std::shared_ptr<GenTLCpp::TransportLayer>;
  using InterfacePtr = std::shared_ptr<GenTLCpp::TLInterface>;

  static TLDiscovery& instance();

  /** The producer files on the search path, whether they load or not. */
  std::vector<std::string> getTLLocations() const;

  /** Loads and opens every producer that is not loaded yet. One that fails is logged and passed over.
   * @return Success, or NotInitialized at the end of the process
   */
  oviErr discoverTransportLayers();

  /** Fills the record from a producer, which is loaded for the question only unless it is loaded anyway. */
  oviErr getTransportLayerInfoByFilePath(const std::string& filePath, oviTLProducerInfos& outInfo);

  /** The cached devices, or after a new enumeration of everything. @param timeout  milliseconds, for each list update
   */
  oviErr getDeviceList(bool update, std::vector<oviDeviceInfo>& outDevices, std::uint64_t timeout);

  /** The devices after a new enumeration as asked for. Of several at once, each has its own folders and callback. */
  oviErr discoverDevices(const DiscoveryRequest& request, std::vector<oviDeviceInfo>& outDevices);

  /** Keeps others from using the producers' lists, while the lock that is returned lives. */
  std::unique_lock<std::recursive_mutex> lockProducers() const { return std::unique_lock(producerMutex_); }

  /** The loaded producer with this TL_INFO_ID, or nothing. */
  TransportLayerPtr findTransportLayer(std::string_view id);

  /** An interface that the library keeps open, by producer and ID, or nothing. One that was closed is dropped. */
  InterfacePtr keptInterface(const GenTLCpp::TransportLayer& transportLayer, const std::string& id);
  void keepInterface(const GenTLCpp::TransportLayer& transportLayer, const std::string& id, const InterfacePtr& opened);
  /** Closes an interface that does not answer any more, so that the next use opens it afresh. One that a device uses,
   * open or just opening, stays: what fails for the list need not fail for the device. */
  void dropInterface(const GenTLCpp::TransportLayer& transportLayer, const std::string& id);

  /** Closes all producers and forgets interfaces and devices. */
  void closeAll();

  /** As closeAll at the end of the process: nothing is unloaded, because other threads may still be running in it. */
  void closeAtExit() noexcept;

 private:
  using InterfaceKey = std::pair<const GenTLCpp::TransportLayer*, std::string>;

  TLDiscovery() = default;

  oviErr updateDeviceList(std::vector<oviDeviceInfo>& outDevices, std::uint64_t timeout);
  void enumerate(std::uint64_t timeout);
  void enumerateProducer(const TransportLayerPtr& transportLayer, std::size_t index, std::size_t count,
                         std::uint64_t timeout);
  void enumerateInterface(const TransportLayerPtr& transportLayer, const std::string& name, const std::string& id,
                          std::uint64_t timeout, const std::function<void(double fraction)>& report);
  InterfacePtr openForDiscovery(const TransportLayerPtr& transportLayer, const std::string& name,
                                const std::string& id);
  void reportProgress(unsigned phase, double fraction);
  TransportLayerPtr loadAndOpen(const std::string& path);
  TransportLayerPtr loadedProducer(const std::string& path) const;
  TransportLayerPtr loadedFile(const std::string& path) const;
  std::vector<TransportLayerPtr> producers() const;

  mutable std::mutex optionMutex_;
  std::vector<std::string> searchPaths_;
  bool givenPathsOnly_ = false;
  oviDiscoveryCallback progressCallback_ = nullptr;

  mutable std::recursive_mutex producerMutex_;
  std::vector<TransportLayerPtr> producers_;

  mutable std::mutex deviceMutex_;
  std::vector<oviDeviceInfo> devices_;

  std::mutex interfaceMutex_;
  std::map<InterfaceKey, InterfacePtr> interfaces_;
};

}  // namespace OVI
