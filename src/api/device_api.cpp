// Opening and closing devices, and which producer serves them.
#include "discovery/device_access.h"
#include "features/description_file.h"
#include "frame.h"
#include "gentl/producer_family.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;

oviErr OVI_CALL oviOpenDevice(const char* deviceId, uint64_t* handle, uint64_t timeout, uint32_t accessFlags) {
  return whenInitialized("OVI::oviOpenDevice",
                         [&] { return OVI::oviOpenDevice(deviceId, handle, timeout, accessFlags); });
}

oviErr OVI_CALL oviCloseDevice(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviCloseDevice", [&] { return OVI::oviCloseDevice(deviceHandle); });
}

oviErr OVI_CALL oviIsUsingS2iTL(uint64_t deviceHandle, bool* out) {
  return whenInitialized("OVI::oviIsUsingS2iTL", [&] { return OVI::oviIsUsingS2iTL(deviceHandle, out); });
}

oviErr OVI_CALL oviIsUsingKitharaTL(uint64_t deviceHandle, bool* out) {
  return whenInitialized("OVI::oviIsUsingKitharaTL", [&] { return OVI::oviIsUsingKitharaTL(deviceHandle, out); });
}

oviErr OVI_CALL oviIsUsingNimboTL(uint64_t deviceHandle, bool* out) {
  return whenInitialized("OVI::oviIsUsingNimboTL", [&] { return OVI::oviIsUsingNimboTL(deviceHandle, out); });
}

oviErr OVI_CALL oviSetRemoteDeviceXMLFile(uint64_t deviceHandle, const char* path) {
  return whenInitialized("OVI::oviSetRemoteDeviceXMLFile",
                         [&] { return OVI::oviSetRemoteDeviceXMLFile(deviceHandle, path); });
}
