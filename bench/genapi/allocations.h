// Counts what the program allocates.
#pragma once

#include <cstddef>

namespace bench {

/// Allocations since the program began.
std::size_t allocationCount();
/// Bytes that are allocated now.
std::size_t allocatedBytes();

}  // namespace bench
