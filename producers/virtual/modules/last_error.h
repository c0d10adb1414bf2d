// The latest failure of each thread, as GCGetLastError tells it.
#pragma once

#include <gentl_interface/GenTL.h>

#include <string_view>

namespace vcam {

struct LastError {
  GC_ERROR code;
  std::string_view text;  // valid until the next failure of this thread
};

// Remembers a failure and hands its code back. `where` is the function's name. Never throws, never allocates.
GC_ERROR rememberError(GC_ERROR code, std::string_view where, std::string_view what) noexcept;

LastError lastError() noexcept;

}  // namespace vcam
