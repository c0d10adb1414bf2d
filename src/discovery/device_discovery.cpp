// Discovery of devices, as applications ask for it.
#include "discovery/device_discovery.h"

#include <algorithm>
#include <iterator>

#include "core/log.h"
#include "discovery/producer_search.h"
#include "discovery/tl_discovery.h"

namespace OVI {

oviErr oviDiscoverDevices(oviDiscoveryInfo* info, std::uint64_t timeout, oviDiscoveryCallback progressCallback,
                          const char* searchPath, std::uint8_t useGivenPathsOnly) {
  if (info == nullptr) {
    OVI_LOG_WARNING("OVI::oviDiscoverDevices") << " discovery invalid parameter";
    return OVI_ERR_INVALID_PARAMETER;
  }
  *info = {};
  DiscoveryRequest request{timeout, progressCallback, std::nullopt, useGivenPathsOnly != 0};
  if (searchPath != nullptr)
    request.searchPaths = splitSearchPath(searchPath);
  OVI_LOG_WARNING("OVI::oviDiscoverDevices") << "timeout discovery " << timeout;
  std::vector<oviDeviceInfo> devices;
  const oviErr code = TLDiscovery::instance().discoverDevices(request, devices);
  info->deviceCount = static_cast<std::uint32_t>(std::min(devices.size(), std::size(info->devices)));
  std::copy_n(devices.begin(), info->deviceCount, std::begin(info->devices));
  return code;
}

oviErr oviGetDeviceInfo(std::uint32_t index, oviDeviceInfo* info) {
  if (info == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  std::vector<oviDeviceInfo> devices;
  if (TLDiscovery::instance().getDeviceList(false, devices, kCachedListTimeout) != OVI_SUCCESS ||
      index >= devices.size())
    return OVI_ERR_NOT_FOUND;
  *info = devices[index];
  return OVI_SUCCESS;
}

}  // namespace OVI
