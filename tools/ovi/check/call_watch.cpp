// Knows which functions of a producer are being called at this moment, and ends the process when one does not come
// back.
#include "check/call_watch.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <list>
#include <mutex>
#include <thread>

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

void onCrash(int signal) {
  if (currentFunction != nullptr)
    std::fprintf(stderr, "crashed in %s\n", currentFunction);
  std::fflush(stderr);
  std::signal(signal, SIG_DFL);
  std::raise(signal);
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

void watchCalls(std::chrono::milliseconds limit, std::function<void(const std::string& function)> hung) {
  for (const int signal : {SIGSEGV, SIGABRT, SIGFPE, SIGILL})
    std::signal(signal, onCrash);
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
