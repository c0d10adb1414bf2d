// Result codes: the conversion of GenTL codes, and the texts and record sizes that applications ask for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "ovi/ovi.h"

namespace OVI {

/** The result code for a GenTL status; a status that has none is returned unchanged. */
std::int32_t mapGenTLError(std::int32_t genTLCode) noexcept;

/** "Code: [-108] - Error description: Timeout" */
std::string describeResult(oviErr code);

/** The short name of a code, or the fallback text for codes without one. */
std::string_view resultName(oviErr code) noexcept;

oviErr oviGetErrorDescription(std::int32_t code, char* text, std::uint64_t size);
/** @param text  room for 300 bytes */
std::int32_t get_error_string(std::int32_t code, char* text);
std::int32_t oviGetStructSize(const char* name, std::uint32_t* size);
std::int32_t get_struct_size(const char* name);
oviErr oviGetKitharaErrDescription(std::int32_t code, char* text, std::uint64_t size);
oviErr oviGetEuresysErrDescription(std::int32_t code, char* text, std::uint64_t size);

}  // namespace OVI
