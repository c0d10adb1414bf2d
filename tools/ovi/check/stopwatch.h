// How long a call of a producer took.
#pragma once

#include <chrono>
#include <cstdint>

namespace tool::check {

class Stopwatch {
 public:
  std::int64_t milliseconds() const {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace tool::check
