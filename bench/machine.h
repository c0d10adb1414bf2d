// What two threads achieve on this machine that have nothing to do with each other: the most that anything scales here.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

namespace bench {

/** The best of all its rounds, which take a millisecond each; one is best run beside each round of the measurement. */
class MachineScaling {
 public:
  explicit MachineScaling(unsigned threads) : threads_(threads) {}

  void round() {
    one_ = std::min(one_, secondsOf(1));
    many_ = std::min(many_, secondsOf(threads_));
  }
  double factor() const { return threads_ * one_ / many_; }

 private:
  static double secondsOf(unsigned threads) {
    constexpr int kSteps = 1000000;
    std::vector<std::thread> running;
    const auto begin = std::chrono::steady_clock::now();
    for (unsigned i = 0; i < threads; ++i) {
      running.emplace_back([] {
        volatile std::uint64_t value = 1;
        for (int step = 0; step < kSteps; ++step)
          value = value * 6364136223846793005U + 1;
      });
    }
    for (std::thread& thread : running)
      thread.join();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  }

  unsigned threads_;
  double one_ = std::numeric_limits<double>::max();
  double many_ = one_;
};

}  // namespace bench
