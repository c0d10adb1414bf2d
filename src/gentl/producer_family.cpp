// Producers that need special treatment, told by their file name.
#include "gentl/producer_family.h"

#include <memory>

#include "core/global_state.h"
#include "core/log.h"
#include "core/result.h"
#include "gentl/device.h"
#include "gentl/module_lookup.h"

namespace OVI {

namespace {

std::string_view fileNameOf(std::string_view path) noexcept {
  const std::size_t separator = path.find_last_of("/\\");
  return separator != std::string_view::npos ? path.substr(separator + 1) : path;
}

/** The frame of the three questions about an opened device. */
oviErr askDevice(const char* site, bool (*isOfFamily)(const GenTLCpp::TransportLayer&), std::uint64_t deviceHandle,
                 bool* out) {
  if (!isInitialized()) {
    return OVI_ERR_NOT_INITIALIZED;
  }
  if (out == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  *out = false;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr result = lookupModule(deviceHandle, device); result != OVI_SUCCESS) {
    return result;
  }
  try {
    *out = isOfFamily(*device->getParent()->getParent());
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_ERROR(site) << "Error getting device TL type. Error: " << error.what();
    return mapGenTLError(error.code());
  }
  return OVI_SUCCESS;
}

}  // namespace

bool isS2iProducer(std::string_view path) noexcept {
  return fileNameOf(path) == "gevtls2i.cti";
}

bool isKitharaProducer(std::string_view path) noexcept {
  return fileNameOf(path).find("lsgentlgevkithara") != std::string_view::npos;
}

bool isNimboProducer(std::string_view path) noexcept {
  return fileNameOf(path).find("nimbo_producer.cti") != std::string_view::npos;
}

bool isS2iTL(const GenTLCpp::TransportLayer& transportLayer) {
  return isS2iProducer(transportLayer.getProducer()->getPathName());
}

bool isKitharaTL(const GenTLCpp::TransportLayer& transportLayer) {
  return isKitharaProducer(transportLayer.getProducer()->getPathName());
}

bool isNimboTL(const GenTLCpp::TransportLayer& transportLayer) {
  return isNimboProducer(transportLayer.getProducer()->getPathName());
}

oviErr oviIsUsingS2iTL(std::uint64_t deviceHandle, bool* out) {
  return askDevice("OVI::isS2iTL", &isS2iTL, deviceHandle, out);
}

oviErr oviIsUsingKitharaTL(std::uint64_t deviceHandle, bool* out) {
  return askDevice("OVI::oviIsUsingKitharaTL", &isKitharaTL, deviceHandle, out);
}

oviErr oviIsUsingNimboTL(std::uint64_t deviceHandle, bool* out) {
  return askDevice("OVI::oviIsUsingNimboTL", &isNimboTL, deviceHandle, out);
}

}  // namespace OVI
