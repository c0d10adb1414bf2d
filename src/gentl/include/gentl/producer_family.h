// Producers that need special treatment, told by their file name.
#pragma once

#include <cstdint>
#include <string_view>

#include "ovi/ovi.h"

namespace GenTLCpp {
class TransportLayer;
}

namespace OVI {

/** The same three rules on a producer's path, for those that are not loaded yet. */
bool isS2iProducer(std::string_view path) noexcept;
bool isKitharaProducer(std::string_view path) noexcept;
bool isNimboProducer(std::string_view path) noexcept;

/** On an opened system module, by the path that its producer reports. @throws GenTLCpp::GenTLException */
bool isS2iTL(const GenTLCpp::TransportLayer& transportLayer);
bool isKitharaTL(const GenTLCpp::TransportLayer& transportLayer);
bool isNimboTL(const GenTLCpp::TransportLayer& transportLayer);

oviErr oviIsUsingS2iTL(std::uint64_t deviceHandle, bool* out);
oviErr oviIsUsingKitharaTL(std::uint64_t deviceHandle, bool* out);
oviErr oviIsUsingNimboTL(std::uint64_t deviceHandle, bool* out);

}  // namespace OVI
