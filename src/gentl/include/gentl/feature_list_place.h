// Where a module keeps a feature list once it is made.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "core/hold.h"

namespace GenTLCpp {

class FeatureList;

/** Made on first use, and once however many ask; found without a lock from then on. Any thread. */
class FeatureListPlace {
 public:
  /** The list, null when none is made yet. It lives as long as the hold. */
  FeatureList* find(OVI::Hold& hold) const noexcept { return hold.of(current_); }

  /** The list, made now if there is none.
   * @param make  std::shared_ptr<FeatureList>(), which may be empty; then the next call tries again */
  template<class Make>
  std::shared_ptr<FeatureList> get(Make&& make) {
    const std::lock_guard lock(mutex_);
    if (list_ == nullptr) {
      list_ = make();
      current_.store(list_.get(), std::memory_order_release);
    }
    return list_;
  }

  /** Puts another list, or none, in the place. The old one is to be retired: somebody may hold it. */
  std::shared_ptr<FeatureList> exchange(std::shared_ptr<FeatureList> list) noexcept {
    const std::lock_guard lock(mutex_);
    list_.swap(list);
    current_.store(list_.get(), std::memory_order_seq_cst);
    return list;
  }

 private:
  std::mutex mutex_;  // Held while a list is made.
  std::shared_ptr<FeatureList> list_;
  std::atomic<FeatureList*> current_{nullptr};
};

}  // namespace GenTLCpp
