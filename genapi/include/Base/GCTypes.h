/// Integer and floating types, their limits, and the macros that mark declarations.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Base/GCNamespace.h"

#define GC_INT64_MAX INT64_MAX
#define GC_INT64_MIN INT64_MIN
#define GC_UINT64_MAX UINT64_MAX
#define GC_INT32_MAX INT32_MAX
#define GC_INT32_MIN INT32_MIN
#define GC_UINT32_MAX UINT32_MAX
#define GC_INT8_MAX INT8_MAX
#define GC_INT8_MIN INT8_MIN
#define GC_UINT8_MAX UINT8_MAX

// The engine is linked statically: no declaration needs a mark. A build that wraps it in a shared library of its own
// may define these beforehand.
#ifndef GCBASE_API
#define GCBASE_API
#endif
#ifndef GCBASE_RTTI_CLASS_API
#define GCBASE_RTTI_CLASS_API
#endif

#define GENICAM_DEPRECATED(f) [[deprecated]] f
#define GENICAM_UNUSED(x) static_cast<void>(x)
#define GC_COUNTOF(a) (sizeof(a) / sizeof((a)[0]))

using std::int16_t;
using std::int32_t;
using std::int64_t;
using std::int8_t;
using std::uint16_t;
using std::uint32_t;
using std::uint64_t;
using std::uint8_t;

typedef float float32_t;
typedef double float64_t;

namespace GENICAM_NAMESPACE {

struct Version_t {
  uint16_t Major;
  uint16_t Minor;
  uint16_t SubMinor;
};

}  // namespace GENICAM_NAMESPACE

using GENICAM_NAMESPACE::Version_t;
