// Start of the library and its process-wide options.
#include "core/lifecycle.h"

#include "core/global_state.h"
#include "core/log.h"
#include "core/log_setup.h"

namespace OVI {

oviErr oviInit(std::uint32_t logLevel, oviLogCallback callback, void* userData) {
  if (isInitialized()) {
    return OVI_SUCCESS;
  }
  setUpLogging(kLogToConsole | kLogToDebugOutput, severityFromLevel(logLevel), "");
  if (callback != nullptr) {
    attachCallback(callback, userData);
  }
  OVI_LOG_DEBUG("OVI::oviInit") << "=== Kestrova GenTL consumer library initialization ===";
  OVI_LOG_DEBUG("OVI::oviInit") << "Version: " << kLibraryVersion.major << "." << kLibraryVersion.minor << "."
                                << kLibraryVersion.patch << " Rev: " << kLibraryVersion.build;
  setInitialized(true);
  return OVI_SUCCESS;
}

oviErr oviGetLibraryVersion(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* patch, std::uint32_t* build) {
  const auto write = [](std::uint32_t* to, std::uint32_t value) {
    if (to != nullptr) {
      *to = value;
    }
  };
  write(major, kLibraryVersion.major);
  write(minor, kLibraryVersion.minor);
  write(patch, kLibraryVersion.patch);
  write(build, kLibraryVersion.build);
  return OVI_SUCCESS;
}

oviErr oviSetIgnoreSubnetEnabled(std::uint8_t enabled) {
  GlobalState::instance().setIgnoreSubnetEnabled(enabled != 0);
  return OVI_SUCCESS;
}

oviErr oviSetFeatureCachingDisabled(std::uint8_t disabled) {
  GlobalState::instance().setFeatureCachingDisabled(disabled != 0);
  return OVI_SUCCESS;
}

oviErr oviIsFeatureCachingDisabled(std::uint8_t* disabled) {
  *disabled = GlobalState::instance().featureCachingDisabled() ? 1 : 0;
  return OVI_SUCCESS;
}

}  // namespace OVI
