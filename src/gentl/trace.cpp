// Trace lines go to standard error.
#include "gentl/trace.h"

#include <cstdio>

namespace GenTLCpp {

void detail::writeTrace(const std::string& line) noexcept {
  constexpr int kMaxLength = 1023;
  std::fprintf(stderr, "%.*s\n", kMaxLength, line.c_str());
}

}  // namespace GenTLCpp
