// Knows which functions of a producer are being called at this moment, and ends the process when one does not come
// back.
#include "check/call_watch.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <list>
#include <mutex>
#include <string>
#include <thread>

#include "platform/crash_watch.h"
#include "tool_error.h"

namespace tool::check {

namespace {

using Clock = std::chrono::steady_clock;

struct Call {
  const char* function;
  Clock::time_point start;
};

struct Calls {
  std::mutex mutex;
  std::list<Call> running;
};

// Lives as long as the process: calls that hang may be in it to the end.
Calls& calls() {
  static Calls& instance = *new Calls;
  return instance;
}

thread_local std::list<Call>::iterator currentCall;
thread_local const char* currentFunction = nullptr;

void tellPlace() {
  std::fprintf(stderr, "crashed in %s\n", currentFunction != nullptr ? currentFunction : "a thread of its own");
}

}  // namespace

WatchedCall::WatchedCall(const char* function) {
  const std::lock_guard lock(calls().mutex);
  currentFunction = function;
  currentCall = calls().running.insert(calls().running.end(), {function, Clock::now()});
}

WatchedCall::~WatchedCall() {
  const std::lock_guard lock(calls().mutex);
  calls().running.erase(currentCall);
  currentFunction = nullptr;
}

void throwOnAs(const char* function) {
  std::string what = "of unknown type";
  try {
    throw;
  } catch (const std::exception& exception) {
    what = exception.what();
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is no more to tell.
  }
  throw ToolError(std::string(function) + " threw an exception, which no function of GenTL may: " + what);
}

void watchCalls(std::chrono::milliseconds limit, std::function<void(const std::string& function)> hung) {
  watchCrashes(tellPlace);
  std::thread([limit, hung = std::move(hung)] {
    for (;;) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      const std::lock_guard lock(calls().mutex);
      for (const Call& call : calls().running) {
        if (Clock::now() - call.start < limit)
          continue;
        hung(call.function);
        std::_Exit(EXIT_FAILURE);
      }
    }
  }).detach();
}

}  // namespace tool::check
