// Steps of a procedure: one line in the log for the one that fails, and its code.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "core/log.h"
#include "core/result.h"
#include "ovi/ovi.h"
#include "platform/files.h"

namespace OVI {

/** The module whose features file access is about. */
inline constexpr std::uint32_t kCamera = OVI_MODULE_REMOTE_DEVICE;

/** Logs a failed step: its text, then the code in words. */
inline void logFailure(const char* site, std::string_view text, oviErr code) {
  OVI_LOG_ERROR(site) << text << (text.ends_with(' ') ? "" : " ") << describeResult(code);
}

/** Chains steps with &&: each tells whether it went well, and the first that did not leaves its code. */
class Steps {
 public:
  explicit Steps(const char* site) : site_(site) {}

  bool operator()(std::string_view failure, oviErr code) {
    if (code != OVI_SUCCESS)
      logFailure(site_, failure, code);
    return operator()(code);
  }
  /** A step that logs for itself, or has nothing to say. */
  bool operator()(oviErr code) {
    code_ = code;
    return code == OVI_SUCCESS;
  }
  oviErr code() const { return code_; }

 private:
  const char* site_;
  oviErr code_ = OVI_SUCCESS;
};

/** The largest file that is taken into memory, in bytes. */
inline std::uint64_t largestFile() {
  constexpr std::uint64_t kLargest = std::uint64_t{1} << 36U;
  constexpr std::uint64_t kWhenUnknown = std::uint64_t{1} << 31U;
  const std::uint64_t memory = platform::mainMemory();
  return memory != 0 ? std::min(memory / 2, kLargest) : kWhenUnknown;
}

}  // namespace OVI
