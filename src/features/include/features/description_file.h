// A description file of the caller's choice for a remote device.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** Replaces the remote device's description by the file; a failure keeps the one in use. */
oviErr oviSetRemoteDeviceXMLFile(std::uint64_t deviceHandle, const char* path);

}  // namespace OVI
