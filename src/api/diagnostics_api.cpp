// The crash handler.
#include "diagnostics/mini_dumper.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::always;

int32_t OVI_CALL oviRegisterDebugExceptionHandler(void) {
  return always("OVI::oviRegisterDebugExceptionHandler", [&] { return OVI::oviRegisterDebugExceptionHandler(); });
}
