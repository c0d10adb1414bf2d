// A search that takes its time and may be longer than the caller wants to wait.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string_view>

#include "modules/failure.h"
#include "modules/hostility.h"
#include "modules/module_features.h"

namespace vcam {

class ListUpdate {
 public:
  // Lets the time of the search pass. Fails with a time-out when that is longer than the caller waits, with an abort
  // when the module is closed meanwhile.
  void search(std::uint64_t durationMs, std::uint64_t timeoutMs) {
    if (Hostility::armed()) {
      durationMs = std::max(durationMs, Hostility::instance().updateDelayMs());
    }
    if (durationMs == 0) {
      return;
    }
    std::unique_lock lock(mutex_);
    const auto wait = std::chrono::milliseconds(std::min(durationMs, timeoutMs));
    if (ended_.wait_until(lock, std::chrono::steady_clock::now() + wait, [this] { return ending_; })) {
      fail(GC_ERR_ABORT, "the module was closed during the search");
    }
    if (timeoutMs < durationMs) {
      fail(GC_ERR_TIMEOUT, "the search takes longer than ", timeoutMs, " ms; the list stays as it was");
    }
  }

  void end() {
    const std::lock_guard lock(mutex_);
    ending_ = true;
    ended_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable ended_;
  bool ending_ = false;
};

// How long the search by a module's own command may take, as a feature of the module.
constexpr std::uint64_t kUpdateTimeoutMs = 60000;
inline void describeUpdateTimeout(ModuleFeatures& features, std::string_view name, std::atomic<std::uint64_t>& value) {
  features.integer(
      {name, "How long the search may take", "Expert", "ms"}, [&value] { return value.load(); },
      [&value](std::uint64_t wanted) {
        if (wanted > kUpdateTimeoutMs) {
          fail(GC_ERR_INVALID_VALUE, "a search never takes ", wanted, " ms");
        }
        value = wanted;
      },
      {0, [] { return kUpdateTimeoutMs; }});
}

}  // namespace vcam
