// Opening and closing of devices.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviOpenDevice(const char* deviceId, std::uint64_t* handle, std::uint64_t timeout, std::uint32_t accessFlags);
oviErr oviCloseDevice(std::uint64_t deviceHandle);

}  // namespace OVI
