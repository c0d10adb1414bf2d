// The producer files on the machine, as applications ask for them.
#include "discovery/producer_list.h"

#include "core/bounded_copy.h"
#include "discovery/tl_discovery.h"

namespace OVI {

oviErr oviGetNumberOfTLProducers(std::uint32_t* count) {
  if (count == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  *count = static_cast<std::uint32_t>(TLDiscovery::instance().getTLLocations().size());
  return OVI_SUCCESS;
}

oviErr oviGetTLProducerPathByIndex(char* path, std::uint64_t pathSize, std::uint32_t index) {
  const std::vector<std::string> files = TLDiscovery::instance().getTLLocations();
  if (path == nullptr || index >= files.size())
    return OVI_ERR_INVALID_PARAMETER;
  boundedCopy(path, pathSize, files[index]);
  return OVI_SUCCESS;
}

oviErr oviGetTLProducerInfobyFilePath(oviTLProducerInfos* info, const char* filePath) {
  if (info == nullptr || filePath == nullptr)
    return OVI_ERR_INVALID_PARAMETER;
  return TLDiscovery::instance().getTransportLayerInfoByFilePath(filePath, *info);
}

}  // namespace OVI
