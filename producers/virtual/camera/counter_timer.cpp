// Declaration and run of counters and timers.
#include "counter_timer.h"

#include <algorithm>

namespace vcam {
namespace {

constexpr const char* kCounterCategory = "CounterAndTimerControl";

void addSignals(Feature& feature) {
  for (const SignalName& entry : kSignals) {
    feature.entry(entry.name, static_cast<std::int64_t>(entry.signal));
  }
}

bool isFrameSignal(std::int64_t value) {
  return value == static_cast<std::int64_t>(Signal::FrameStart) ||
         value == static_cast<std::int64_t>(Signal::ExposureEnd);
}

Signal nth(Signal first, std::size_t index) {
  return static_cast<Signal>(static_cast<std::size_t>(first) + index);
}

}  // namespace

void CounterTimer::declare() {
  core_.map.category(kCounterCategory, "Counters and timers");
  declareCounters();
  declareTimers();
}

std::size_t CounterTimer::selected(const char* selector) const {
  return static_cast<std::size_t>(core_.map.find(selector)->integer());
}

void CounterTimer::declareCounters() {
  FeatureMap& map = core_.map;
  const std::vector<std::string> bySelector{"CounterSelector"};
  map.enumeration("CounterSelector", kCounterCategory, "The counter to look at")
      .entry("Counter0", 0)
      .entry("Counter1", 1)
      .visibility("Expert");
  counterSource_ = &map.enumeration("CounterEventSource", kCounterCategory, "What is counted")
                        .selectedBy(bySelector)
                        .stored()
                        .visibility("Expert");
  counterReset_ = &map.enumeration("CounterResetSource", kCounterCategory, "What sets the counter back")
                       .selectedBy(bySelector)
                       .stored()
                       .visibility("Expert");
  addSignals(*counterSource_);
  addSignals(*counterReset_);
  counterDuration_ = &map.integer("CounterDuration", kCounterCategory, "Count at which the counter ends; 0 for never")
                          .min("0")
                          .max("4294967295")
                          .selectedBy(bySelector)
                          .stored()
                          .visibility("Expert");
  counterValue_ = &map.integer("CounterValue", kCounterCategory, "Present count")
                       .min("0")
                       .max("4294967295")
                       .uncached()
                       .selectedBy(bySelector)
                       .visibility("Expert");
  map.enumeration("CounterStatus", kCounterCategory, "What the counter does")
      .entry("CounterIdle", 0)
      .entry("CounterActive", 1)
      .entry("CounterCompleted", 2)
      .readOnly()
      .uncached()
      .selectedBy(bySelector)
      .visibility("Expert")
      .computed([this](std::size_t slot) { return counterDone_[slot]         ? 2
                                                  : counterSource_->on(slot) ? 1
                                                                             : 0; });
  map.command("CounterReset", kCounterCategory, "Sets the counter back")
      .sharedBy(bySelector)
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        resetCounter(selected("CounterSelector"));
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
}

void CounterTimer::declareTimers() {
  FeatureMap& map = core_.map;
  const std::vector<std::string> bySelector{"TimerSelector"};
  map.enumeration("TimerSelector", kCounterCategory, "The timer to look at")
      .entry("Timer0", 0)
      .entry("Timer1", 1)
      .visibility("Expert");
  timerSource_ = &map.enumeration("TimerTriggerSource", kCounterCategory, "What starts the timer")
                      .selectedBy(bySelector)
                      .stored()
                      .visibility("Expert")
                      .onWrite([this](std::size_t slot) {
                        resetTimer(slot);
                        return kOk;
                      });
  addSignals(*timerSource_);
  timerDuration_ = &map.floating("TimerDuration", kCounterCategory, "Time that the timer runs")
                        .unit("us")
                        .min("100")
                        .max("60000000")
                        .value(1000.0)
                        .selectedBy(bySelector)
                        .stored()
                        .visibility("Expert");
  timerDelay_ = &map.floating("TimerDelay", kCounterCategory, "Time from its trigger to its start")
                     .unit("us")
                     .min("0")
                     .max("60000000")
                     .selectedBy(bySelector)
                     .stored()
                     .visibility("Expert");
  map.floating("TimerValue", kCounterCategory, "Time since the start of the timer")
      .unit("us")
      .readOnly()
      .uncached()
      .selectedBy(bySelector)
      .visibility("Expert")
      .computedFloat([this](std::size_t slot) {
        const Timer& timer = timers_[slot];
        if (timer.state != TimerState::Active) {
          return timer.state == TimerState::Completed ? timerDuration_->floating(slot) : 0.0;
        }
        const double elapsed = std::chrono::duration<double, std::micro>(Clock::now() - timer.start).count();
        return std::clamp(elapsed, 0.0, timerDuration_->floating(slot));
      });
  map.enumeration("TimerStatus", kCounterCategory, "What the timer does")
      .entry("TimerIdle", 0)
      .entry("TimerTriggerWait", 1)
      .entry("TimerActive", 2)
      .entry("TimerCompleted", 3)
      .readOnly()
      .uncached()
      .selectedBy(bySelector)
      .visibility("Expert")
      .computed([this](std::size_t slot) { return static_cast<std::int64_t>(timers_[slot].state); });
  map.command("TimerReset", kCounterCategory, "Stops the timer and starts it anew, without waiting for its trigger")
      .sharedBy(bySelector)
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        startTimer(selected("TimerSelector"));
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
}

bool CounterTimer::watchesFrames() const {
  for (std::size_t i = 0; i < kCount; ++i) {
    if (isFrameSignal(counterSource_->integer(i)) || isFrameSignal(counterReset_->integer(i)) ||
        isFrameSignal(timerSource_->integer(i))) {
      return true;
    }
  }
  return false;
}

void CounterTimer::signal(Signal signal) {
  const auto value = static_cast<std::int64_t>(signal);
  for (std::size_t i = 0; i < kCount && signal != Signal::Off; ++i) {
    if (counterReset_->integer(i) == value) {
      resetCounter(i);
    }
    if (counterSource_->integer(i) == value) {
      count(i);
    }
    if (timerSource_->integer(i) == value && timers_[i].state != TimerState::Active) {
      startTimer(i);
    }
  }
}

void CounterTimer::count(std::size_t index) {
  if (counterDone_[index]) {
    return;
  }
  counterValue_->set((counterValue_->integer(index) + 1) & 0xFFFFFFFF, index);
  if (counterDuration_->integer(index) > 0 && counterValue_->integer(index) >= counterDuration_->integer(index)) {
    counterDone_[index] = true;
    signal_(nth(Signal::Counter0End, index));
  }
}

void CounterTimer::resetCounter(std::size_t index) {
  counterValue_->set(0, index);
  counterDone_[index] = false;
}

void CounterTimer::resetTimer(std::size_t index) {
  ++timers_[index].generation;
  timers_[index].state = timerSource_->on(index) ? TimerState::TriggerWait : TimerState::Idle;
}

void CounterTimer::startTimer(std::size_t index) {
  Timer& timer = timers_[index];
  timer.state = TimerState::Active;
  timer.start = Clock::now() + microseconds(timerDelay_->floating(index));
  core_.schedule(timer.start + microseconds(timerDuration_->floating(index)),
                 [this, index, generation = ++timer.generation] {
                   if (timers_[index].generation == generation) {
                     timers_[index].state = TimerState::Completed;
                     signal_(nth(Signal::Timer0End, index));
                   }
                 });
}

}  // namespace vcam
