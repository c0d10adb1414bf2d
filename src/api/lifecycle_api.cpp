// Start and end of the library, its options, results and texts.
#include "core/lifecycle.h"
#include "core/result.h"
#include "discovery/closing.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::always;

oviErr OVI_CALL oviInit(uint32_t logLevel, oviLogCallback callback, void* userData) {
  return always("OVI::oviInit", [&] { return OVI::oviInit(logLevel, callback, userData); });
}

oviErr OVI_CALL oviClose(void) {
  return always("OVI::oviClose", [&] { return OVI::oviClose(); });
}

oviErr OVI_CALL oviGetLibraryVersion(uint32_t* major, uint32_t* minor, uint32_t* patch, uint32_t* build) {
  return always("OVI::oviGetLibraryVersion", [&] { return OVI::oviGetLibraryVersion(major, minor, patch, build); });
}

oviErr OVI_CALL oviSetIgnoreSubnetEnabled(uint8_t enabled) {
  return always("OVI::oviSetIgnoreSubnetEnabled", [&] { return OVI::oviSetIgnoreSubnetEnabled(enabled); });
}

oviErr OVI_CALL oviSetFeatureCachingDisabled(uint8_t disabled) {
  return always("OVI::oviSetFeatureCachingDisabled", [&] { return OVI::oviSetFeatureCachingDisabled(disabled); });
}

oviErr OVI_CALL oviIsFeatureCachingDisabled(uint8_t* disabled) {
  return always("OVI::oviIsFeatureCachingDisabled", [&] { return OVI::oviIsFeatureCachingDisabled(disabled); });
}

oviErr OVI_CALL oviGetErrorDescription(int32_t code, char* text, uint64_t size) {
  return always("OVI::oviGetErrorDescription", [&] { return OVI::oviGetErrorDescription(code, text, size); });
}

int32_t OVI_CALL get_error_string(int32_t code, char* text) {
  return always("OVI::get_error_string", [&] { return OVI::get_error_string(code, text); });
}

int32_t OVI_CALL oviGetStructSize(const char* name, uint32_t* size) {
  return always("OVI::oviGetStructSize", [&] { return OVI::oviGetStructSize(name, size); });
}

int32_t OVI_CALL get_struct_size(const char* name) {
  return always("OVI::get_struct_size", [&] { return OVI::get_struct_size(name); });
}

oviErr OVI_CALL oviGetKitharaErrDescription(int32_t code, char* text, uint64_t size) {
  return always("OVI::oviGetKitharaErrDescription", [&] { return OVI::oviGetKitharaErrDescription(code, text, size); });
}

oviErr OVI_CALL oviGetEuresysErrDescription(int32_t code, char* text, uint64_t size) {
  return always("OVI::oviGetEuresysErrDescription", [&] { return OVI::oviGetEuresysErrDescription(code, text, size); });
}
