// Trace lines about the life of modules, off except while a description is fetched.
#pragma once

#include <atomic>
#include <sstream>
#include <string>

namespace GenTLCpp {

namespace detail {
inline std::atomic<bool> traceEnabled{false};
void writeTrace(const std::string& line) noexcept;
}  // namespace detail

inline void setTraceEnabled(bool enabled) noexcept {
  detail::traceEnabled.store(enabled, std::memory_order_relaxed);
}

/** Writes one line to standard error, cut to 1023 characters; nothing while tracing is off. */
template<class... Parts>
void traceLine(const Parts&... parts) {
  if (detail::traceEnabled.load(std::memory_order_relaxed)) {
    std::ostringstream line;
    (line << ... << parts);
    detail::writeTrace(line.str());
  }
}

}  // namespace GenTLCpp
