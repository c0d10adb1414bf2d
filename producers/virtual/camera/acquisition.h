// The acquisition engine: when frames begin, when they are complete, and which triggers are missed.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "camera_core.h"
#include "frame_plan.h"
#include "signal.h"

namespace vcam {

enum class TriggerKind : std::uint8_t { FrameStart, AcquisitionStart, FrameBurstStart };

class Acquisition {
 public:
  struct Hooks {
    // The plan of a frame that begins now: everything but IDs and times.
    std::function<std::shared_ptr<const FramePlan>(std::size_t stream)> plan;
    // Lines that the sensor reads out, for the time it takes.
    std::function<std::uint32_t()> lines;
    std::function<double()> exposure;  // us
    // Whether anything listens to what happens with single frames.
    std::function<bool()> watched;
    std::function<void(Signal, std::uint64_t frameId)> signal;
  };

  Acquisition(CameraCore& core, Hooks hooks);

  void declare();

  bool running() const { return running_; }
  void stop();
  void startStream(std::size_t index);
  void stopStream(std::size_t index);
  FrameWait waitForFrame(CameraLock& guard, std::size_t index, Clock::time_point until, FramePlan& plan);
  // A signal of a counter, timer or line that may be a trigger source.
  void source(Signal signal);
  bool lineHigh() const { return lineHigh_; }
  const char* category() const { return "AcquisitionControl"; }

 private:
  struct Exposure {
    std::shared_ptr<const FramePlan> plan;
    std::uint64_t frameId = 0;
    std::uint32_t lineStatus = 0;
    Clock::time_point start;
    Clock::time_point due;
  };
  struct Stream {
    bool started = false;
    std::condition_variable changed;
    std::uint64_t count = 0;  // frames begun since the start of the acquisition
    std::uint64_t burstLeft = 0;
    Clock::time_point next;  // earliest start of the next free-running frame
    std::deque<Exposure> pending;
    std::shared_ptr<const FramePlan> speedPlan;  // what speed mode delivers, as of a generation of the settings
    std::uint64_t speedGeneration = 0;
  };

  void declareTriggers();
  void declareLine();
  double maxRate() const;
  Clock::duration readout() const;
  Clock::duration period() const;
  bool triggerOn(TriggerKind kind) const { return triggerMode_->on(static_cast<std::size_t>(kind)); }
  void start();
  void finishIfComplete();
  void deliverFast(std::size_t index, FramePlan& plan);
  void fillPlan(FramePlan& plan, std::size_t index, const FramePlan& from, std::uint64_t frameId,
                Clock::time_point start, std::uint32_t lines) const;
  std::uint32_t lineStatus() const { return (lineHigh_ ? 1U : 0U) | (running_ ? 2U : 0U); }
  bool mayRun(const Stream& stream) const;
  std::uint64_t frameLimit() const;
  void begin(std::size_t index, Clock::time_point start);
  void announce(const Exposure& exposure);
  void trigger(TriggerKind kind);
  void triggerFrame();
  void missed();
  void lineEdge();
  void wakeAll();

  CameraCore& core_;
  Hooks hooks_;
  std::vector<std::unique_ptr<Stream>> streams_;
  bool running_ = false;
  bool acquisitionTriggered_ = false;
  Clock::time_point exposureEnd_;
  Clock::time_point readoutEnd_;
  Clock::time_point lastStart_;
  bool lineHigh_ = false;
  std::uint64_t lineGeneration_ = 0;

  Feature* mode_ = nullptr;
  Feature* frameCount_ = nullptr;
  Feature* burstCount_ = nullptr;
  Feature* rate_ = nullptr;
  Feature* rateEnable_ = nullptr;
  Feature* speedMode_ = nullptr;
  Feature* triggerMode_ = nullptr;
  Feature* triggerSource_ = nullptr;
  Feature* triggerActivation_ = nullptr;
  Feature* triggerOverlap_ = nullptr;
  Feature* triggerDelay_ = nullptr;
  Feature* triggersMissed_ = nullptr;
  Feature* lineFrequency_ = nullptr;
};

}  // namespace vcam
