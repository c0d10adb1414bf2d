// Discovery of devices, as applications ask for it.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviDiscoverDevices(oviDiscoveryInfo* info, std::uint64_t timeout, oviDiscoveryCallback progressCallback,
                          const char* searchPath, std::uint8_t useGivenPathsOnly);
oviErr oviGetDeviceInfo(std::uint32_t index, oviDeviceInfo* info);

}  // namespace OVI
