// A wait for a stream's event on a thread of its own.
#pragma once

#include <atomic>
#include <thread>

#include "check/producer_functions.h"

namespace tool::check {

/// Waits from its construction on, for 5 s at most.
class Waiter {
 public:
  Waiter(const ProducerFunctions& gentl, EVENT_HANDLE event);
  ~Waiter();
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  bool done() const { return done_; }
  /// What the wait returned, as soon as it did. To be called once.
  GC_ERROR code();

 private:
  std::atomic<bool> done_{false};
  std::atomic<GC_ERROR> code_{GC_ERR_ERROR};
  std::thread thread_;
};

/// Gives other threads the time to begin, or to end, a wait.
void settle();

}  // namespace tool::check
