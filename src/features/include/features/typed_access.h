// Features by name and type: the functions behind the exported typed getters and setters.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviGetFeatureInt(std::uint64_t handle, const char* name, std::int64_t* value, std::uint32_t selector);
oviErr oviGetFeatureFloat(std::uint64_t handle, const char* name, double* value, std::uint32_t selector);
oviErr oviGetFeatureBool(std::uint64_t handle, const char* name, bool* value, std::uint32_t selector);

/** `*size` is in and out: 0 (or a null buffer) asks for the size that the text needs, its terminator included. */
oviErr oviGetFeatureString(std::uint64_t handle, const char* name, char* buffer, std::size_t* size,
                           std::uint32_t selector);

oviErr oviSetFeatureInt(std::uint64_t handle, const char* name, std::int64_t value, std::uint32_t selector);
oviErr oviSetFeatureFloat(std::uint64_t handle, const char* name, double value, std::uint32_t selector);
oviErr oviSetFeatureBool(std::uint64_t handle, const char* name, bool value, std::uint32_t selector);
oviErr oviSetFeatureString(std::uint64_t handle, const char* name, const char* value, std::uint32_t selector);
oviErr oviSetFeatureEnum(std::uint64_t handle, const char* name, const char* entryName, std::uint32_t selector);

/** Starts the command and does not wait for it. */
oviErr oviExecuteCommand(std::uint64_t handle, const char* name, std::uint32_t selector);
oviErr oviIsCommandActive(std::uint64_t handle, const char* name, bool* active, std::uint32_t selector);

/** `*length` is in and out: 0 (or a null buffer) asks for the register's length. */
oviErr oviGetFeatureReg(std::uint64_t handle, const char* name, std::uint8_t* buffer, std::int64_t* length,
                        std::uint32_t selector);
oviErr oviSetFeatureReg(std::uint64_t handle, const char* name, const std::uint8_t* buffer, std::int64_t length,
                        std::uint32_t selector);

}  // namespace OVI
