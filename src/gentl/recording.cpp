// The recording functions, for devices of producers that have them.
#include "gentl/recording.h"

#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "core/global_state.h"
#include "core/log.h"
#include "gentl/device.h"
#include "gentl/module_lookup.h"
#include "gentl/tl_nimbo.h"

namespace OVI {

namespace {

/** The extension of a device's producer, and a module that keeps the producer loaded meanwhile. */
struct Extension {
  std::shared_ptr<GenTLCpp::BaseModule> module;
  GenTLCpp::TLNimbo functions;
};

/** The extension's entry points, which may all be missing; nothing for a handle that is no device's. */
std::optional<Extension> findExtension(std::uint64_t deviceHandle) {
  std::shared_ptr<GenTLCpp::Device> device;
  if (lookupModule(deviceHandle, device) != OVI_SUCCESS) {
    return std::nullopt;
  }
  HandleRegistry& registry = HandleRegistry::instance();
  for (const ModuleKind kind : {ModuleKind::System, ModuleKind::Interface, ModuleKind::Device}) {
    std::vector<HandleRegistry::Handle> handles;
    static_cast<void>(registry.listRelated(deviceHandle, kind, handles));
    for (const HandleRegistry::Handle handle : handles) {
      if (HandleRegistry::Module module = registry.find(handle)) {
        GenTLCpp::TLNimbo functions(module->getLibraryHandle());
        return Extension{std::move(module), functions};
      }
    }
  }
  return std::nullopt;
}

/** The frame of the functions with a status: a producer's failure is counted down from the first custom code. */
template<class Result, class... Parameters, class... Args>
std::int32_t callExtension(const char* site, std::uint64_t deviceHandle,
                           Result (GenTLCpp::TLNimbo::*function)(Parameters...) const, Args... args) {
  if (!isInitialized()) {
    return OVI_ERR_NOT_INITIALIZED;
  }
  const std::optional<Extension> extension = findExtension(deviceHandle);
  if (!extension) {
    OVI_LOG_WARNING(site) << "Nimbo recording feature is not available!";
    return OVI_ERR_SYSTEM_NOT_AVAILABLE;
  }
  const std::int32_t status = (extension->functions.*function)(args...);
  constexpr std::uint32_t kFirstCustomCode = 0xF1000000;
  return status == 0 ? OVI_SUCCESS : static_cast<std::int32_t>(kFirstCustomCode - static_cast<std::uint32_t>(status));
}

}  // namespace

std::int32_t oviNimboStartRecording(std::uint64_t deviceHandle) {
  return callExtension("OVI::oviNimboStartRecording", deviceHandle, &GenTLCpp::TLNimbo::startRecording);
}

std::int32_t oviNimboStopRecording(std::uint64_t deviceHandle) {
  return callExtension("OVI::oviNimboStopRecording", deviceHandle, &GenTLCpp::TLNimbo::stopRecording);
}

std::int32_t oviNimboOpenRecordings(std::uint64_t deviceHandle, void* argument) {
  return callExtension("OVI::oviNimboOpenRecordings", deviceHandle, &GenTLCpp::TLNimbo::openRecordings, argument);
}

std::int32_t oviNimboCloseRecordings(std::uint64_t deviceHandle) {
  return callExtension("OVI::oviNimboCloseRecordings", deviceHandle, &GenTLCpp::TLNimbo::closeRecordings);
}

std::int32_t oviNimboClearAllRecordings(std::uint64_t deviceHandle) {
  return callExtension("OVI::oviNimboClearAllRecordings", deviceHandle, &GenTLCpp::TLNimbo::clearAllRecordings);
}

std::int32_t oviNimboGetRecordingData(std::uint64_t deviceHandle, std::uint32_t index, void* data) {
  return callExtension("OVI::oviNimboGetRecordingData", deviceHandle, &GenTLCpp::TLNimbo::getRecordingData, index,
                       data);
}

std::int32_t oviNimboSelectRecording(std::uint64_t deviceHandle, std::uint32_t index) {
  return callExtension("OVI::oviNimboSelectRecording", deviceHandle, &GenTLCpp::TLNimbo::selectRecording, index);
}

std::uint64_t oviNimboReadRecording(std::uint64_t deviceHandle, void* argument) {
  if (!isInitialized()) {
    return 0;
  }
  const std::optional<Extension> extension = findExtension(deviceHandle);
  return extension ? extension->functions.readRecording(argument) : 0;
}

std::int32_t oviNimboFreeRecordImage(std::uint64_t deviceHandle, void* image) {
  return callExtension("OVI::oviNimboFreeRecordImage", deviceHandle, &GenTLCpp::TLNimbo::freeRecordImage, image);
}

bool oviNimboIsRecordingAvailable(std::uint64_t deviceHandle) {
  if (!isInitialized()) {
    return false;
  }
  try {
    const std::optional<Extension> extension = findExtension(deviceHandle);
    return extension && extension->functions.isRecordingAvailable();
  } catch (const std::exception& error) {
    OVI_LOG_WARNING("OVI::oviNimboIsRecordingAvailable") << error.what();
    return false;
  }
}

std::int32_t oviNimboGetRecordsInfo(std::uint64_t deviceHandle, void* info) {
  return callExtension("OVI::oviNimboGetRecordsInfo", deviceHandle, &GenTLCpp::TLNimbo::getRecordsInfo, info);
}

std::int32_t oviNimboSetFrameRate(std::uint64_t deviceHandle, std::uint32_t frameRate) {
  return callExtension("OVI::oviNimboSetFrameRate", deviceHandle, &GenTLCpp::TLNimbo::setFrameRate, frameRate);
}

std::int32_t oviNimboSetRGBConversionEnabled(std::uint64_t deviceHandle, bool enabled) {
  return callExtension("OVI::oviNimboSetRGBConversionEnabled", deviceHandle,
                       &GenTLCpp::TLNimbo::setRGBConversionEnabled, enabled);
}

}  // namespace OVI
