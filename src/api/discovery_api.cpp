// Producers and the discovery of devices.
#include "discovery/device_discovery.h"
#include "discovery/producer_list.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;

oviErr OVI_CALL oviGetNumberOfTLProducers(uint32_t* count) {
  return whenInitialized("OVI::oviGetNumberOfTLProducers", [&] { return OVI::oviGetNumberOfTLProducers(count); });
}

oviErr OVI_CALL oviGetTLProducerPathByIndex(char* path, uint64_t pathSize, uint32_t index) {
  return whenInitialized("OVI::oviGetTLProducerPathByIndex",
                         [&] { return OVI::oviGetTLProducerPathByIndex(path, pathSize, index); });
}

oviErr OVI_CALL oviGetTLProducerInfobyFilePath(oviTLProducerInfos* info, const char* filePath) {
  return whenInitialized("OVI::oviGetTLProducerInfobyFilePath",
                         [&] { return OVI::oviGetTLProducerInfobyFilePath(info, filePath); });
}

oviErr OVI_CALL oviDiscoverDevices(oviDiscoveryInfo* info, uint64_t timeout, oviDiscoveryCallback progressCallback,
                                   const char* searchPath, uint8_t useGivenPathsOnly) {
  return whenInitialized("OVI::oviDiscoverDevices", [&] {
    return OVI::oviDiscoverDevices(info, timeout, progressCallback, searchPath, useGivenPathsOnly);
  });
}

oviErr OVI_CALL oviGetDeviceInfo(uint32_t index, oviDeviceInfo* info) {
  return whenInitialized("OVI::oviGetDeviceInfo", [&] { return OVI::oviGetDeviceInfo(index, info); });
}
