// Raw memory and registers of the remote device, and the byte order of a module.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** Reads the remote device's memory; on a big-endian port the bytes arrive in reverse order. */
oviErr oviReadMemory(std::uint64_t handle, std::uint64_t address, std::uint8_t* buffer, std::uint64_t length);
oviErr oviWriteMemory(std::uint64_t handle, std::uint64_t address, const std::uint8_t* buffer, std::uint64_t length);

/** A 32-bit register by address text; `direct` 0 goes through the device's indirect register pair. */
oviErr oviGetRegisterValue(std::uint64_t handle, const char* address, char* value, std::uint32_t direct);
oviErr oviSetRegisterValue(std::uint64_t handle, const char* address, const char* value, std::uint32_t direct);

/** Selector 3 asks the remote port of a device; every other selector the own port of the module behind the handle. */
oviErr oviIsModuleLittleEndian(std::uint64_t handle, std::int32_t selector, bool* littleEndian);

}  // namespace OVI
