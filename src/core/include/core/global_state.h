// Switches of the process: the initialised flag, and the two options that applications set.
#pragma once

#include <atomic>
#include <mutex>

namespace OVI {

namespace detail {
inline std::atomic<bool> initialized{false};
}

/** Whether oviInit was called and oviClose was not. */
inline bool isInitialized() noexcept {
  return detail::initialized.load(std::memory_order_acquire);
}

/** For oviInit and oviClose alone. */
inline void setInitialized(bool initialized) noexcept {
  detail::initialized.exchange(initialized);
}

/** The options; they outlive oviClose. Any thread. */
class GlobalState {
 public:
  static GlobalState& instance();

  bool featureCachingDisabled() const noexcept { return featureCachingDisabled_.load(std::memory_order_relaxed); }
  void setFeatureCachingDisabled(bool disabled) noexcept { featureCachingDisabled_.store(disabled); }

  bool ignoreSubnetEnabled() const noexcept { return ignoreSubnetEnabled_.load(std::memory_order_relaxed); }
  /** Logs the new state under its lock, so that the log's order is the order of the settings. */
  void setIgnoreSubnetEnabled(bool enabled);

 private:
  GlobalState() = default;

  std::mutex mutex_;
  std::atomic<bool> featureCachingDisabled_{false};  // Atomic: every read of a feature asks it.
  std::atomic<bool> ignoreSubnetEnabled_{false};
};

}  // namespace OVI
