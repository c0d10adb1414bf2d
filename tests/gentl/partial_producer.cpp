// A producer with just enough entry points to open its system module.
#define GENTL_PRODUCER
#include "gentl_interface/GenTL.h"

#ifdef _WIN32
extern "C" __declspec(dllimport) int neighbourAnswer();
#else
extern "C" int neighbourAnswer();
#endif

namespace {
int system = 0;
}

GC_ERROR GCInitLib() {
  return neighbourAnswer() == 42 ? GC_ERR_SUCCESS : GC_ERR_ERROR;
}
GC_ERROR TLOpen(TL_HANDLE* out) {
  *out = &system;
  return GC_ERR_SUCCESS;
}
