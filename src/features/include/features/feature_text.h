// Any feature as text, whatever its type.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** `text` has room for 512 bytes; every failure leaves it empty. */
oviErr oviGetFeatureOnModule(std::uint64_t handle, const char* name, char* text, std::uint32_t selector);
oviErr oviSetFeatureOnModule(std::uint64_t handle, const char* name, const char* text, std::uint32_t selector);

/** The same on the remote device. */
oviErr oviGetFeature(std::uint64_t handle, const char* name, char* text);
oviErr oviSetFeature(std::uint64_t handle, const char* name, const char* text);

}  // namespace OVI
