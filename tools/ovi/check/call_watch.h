// Knows which functions of a producer are being called at this moment, and ends the process when one does not come
// back.
#pragma once

#include <chrono>
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

/// Starts the watch. `hung` is told the function that did not come back within the limit; then the process ends. The
/// limit must be longer than any time-out that functions are given.
/// A crash leaves "crashed in FUNCTION" on standard error before it takes its course.
void watchCalls(std::chrono::milliseconds limit, std::function<void(const std::string& function)> hung);

/// Throws the exception that just left a function of a producer as ToolError, with the function's name.
[[noreturn]] void throwOnAs(const char* function);

}  // namespace tool::check
