// Names what every thread is doing when the process crashes, and ends it when something takes too long.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace proof {

class Watchdog {
 public:
  static constexpr std::size_t kTasks = 16;

  /** Watches from now on: a task that takes longer than `limit` is a hang. A stopped process is not: its watch stops
   * too. */
  static void start(std::chrono::seconds limit) {
    for (const int number : {SIGSEGV, SIGABRT, SIGFPE, SIGILL})
      std::signal(number, dieBySignal);
    std::thread([limit] { watch(limit); }).detach();
  }

  /** What the thread of that number does now; null for nothing. The text must live until the next call. */
  static void doing(std::size_t thread, const char* what) noexcept {
    tasks().at(thread).seconds = 0;
    tasks().at(thread).what = what;
  }

 private:
  struct Task {
    std::atomic<const char*> what{nullptr};
    std::atomic<std::int64_t> seconds{0};
  };

  static std::array<Task, kTasks>& tasks() {
    static std::array<Task, kTasks> all;
    return all;
  }

  static void tell(const char* how) {
    for (const Task& task : tasks())
      if (const char* const what = task.what)
        std::fprintf(stderr, "%s in %s\n", how, what);
  }

  static void dieBySignal(int number) {
    tell("CRASH");
    std::signal(number, SIG_DFL);
    std::raise(number);
  }

  static void watch(std::chrono::seconds limit) {
    for (;;) {
      std::this_thread::sleep_for(std::chrono::seconds(1));
      for (Task& task : tasks()) {
        if (task.what != nullptr && ++task.seconds > limit.count()) {
          tell("HANG");
          std::abort();
        }
      }
    }
  }
};

}  // namespace proof
