// Addresses with a meaning of their own in the data of a chunk or an event.
#pragma once

#include <cstdint>
#include <limits>

namespace GenApiEngine {

/// Eight bytes in the machine's order: where the data lies in memory, and how long it is. Negative addresses count from
/// the end of the data.
inline constexpr std::int64_t kDataAddressRegister = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int64_t kDataLengthRegister = kDataAddressRegister - 15;

}  // namespace GenApiEngine
