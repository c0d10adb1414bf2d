/// printf length modifier of 64-bit integers.
#pragma once

#include "Base/GCTypes.h"

#if defined(__LP64__) && defined(__linux__)
#define FMT_I64 "l"
#else
#define FMT_I64 "ll"
#endif
