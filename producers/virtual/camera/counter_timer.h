// Counters that count what happens, and timers that run from it.
#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "camera_core.h"
#include "signal.h"

namespace vcam {

class CounterTimer {
 public:
  CounterTimer(CameraCore& core, std::function<void(Signal)> signal) : core_(core), signal_(std::move(signal)) {}

  void declare();
  // Whether a counter or timer needs to know of single frames.
  bool watchesFrames() const;
  void signal(Signal signal);

 private:
  static constexpr std::size_t kCount = 2;
  enum class TimerState : std::uint8_t { Idle, TriggerWait, Active, Completed };
  struct Timer {
    TimerState state = TimerState::Idle;
    Clock::time_point start;
    std::uint64_t generation = 0;
  };

  void declareCounters();
  void declareTimers();
  void count(std::size_t index);
  void resetCounter(std::size_t index);
  void resetTimer(std::size_t index);
  void startTimer(std::size_t index);
  std::size_t selected(const char* selector) const;

  CameraCore& core_;
  std::function<void(Signal)> signal_;
  Feature* counterSource_ = nullptr;
  Feature* counterReset_ = nullptr;
  Feature* counterDuration_ = nullptr;
  Feature* counterValue_ = nullptr;
  Feature* timerSource_ = nullptr;
  Feature* timerDuration_ = nullptr;
  Feature* timerDelay_ = nullptr;
  std::array<bool, kCount> counterDone_{};
  std::array<Timer, kCount> timers_{};
};

}  // namespace vcam
