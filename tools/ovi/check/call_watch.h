// Knows which functions of a producer are being called at this moment, and ends the process when one does not come
// back.
#pragma once

#include <functional>
#include <string>

namespace tool::check {

/// Marks a call from its construction to its end.
class WatchedCall {
 public:
  explicit WatchedCall(const char* function);
  ~WatchedCall();
  WatchedCall(const WatchedCall&) = delete;
  WatchedCall& operator=(const WatchedCall&) = delete;
};

/// Starts the watch. `hung` is told the function that did not come back in time; then the process ends.
/// A crash leaves "crashed in FUNCTION" on standard error before it takes its course.
void watchCalls(std::function<void(const std::string& function)> hung);

}  // namespace tool::check
