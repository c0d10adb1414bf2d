// Keeps the results of a program apart from what the library writes to the standard output.
#pragma once

#include <cstdio>

namespace proof {

/** Where the results go: the standard output, or the standard error where that cannot be opened a second time. */
inline std::FILE* results = stderr;

/** From now on the library's log goes nowhere. */
inline bool separateOutputs() {
  if (std::FILE* const again = std::fopen("/dev/stdout", "a"))
    results = again;
  return std::freopen(NULL_DEVICE, "w", stdout) != nullptr;
}

}  // namespace proof
