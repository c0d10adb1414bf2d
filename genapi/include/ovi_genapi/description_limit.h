// How long a camera description may be, for all that take one in.
#pragma once

#include <cstddef>

namespace GenApiEngine {

/// Real descriptions stay below 10 MB; this much text still loads within seconds.
inline constexpr std::size_t kMaxDescriptionBytes = std::size_t{128} << 20U;

}  // namespace GenApiEngine
