// Free-running frames are begun by the thread that waits for them; triggered ones by whatever triggers.
#include "acquisition.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "acquisition_values.h"

namespace vcam {
namespace {

// Frames that wait for a stream thread at most; later triggers are missed.
constexpr std::size_t kMaxPending = 256;

Clock::duration secondsPart(double hertz) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / hertz));
}

}  // namespace

Acquisition::Acquisition(CameraCore& core, Hooks hooks) : core_(core), hooks_(std::move(hooks)) {
  for (std::size_t i = 0; i < core.model.streams; ++i) {
    streams_.push_back(std::make_unique<Stream>());
  }
}

double Acquisition::maxRate() const {
  const double readoutSeconds = std::chrono::duration<double>(readout()).count();
  return 1 / std::max(readoutSeconds, hooks_.exposure() * 1e-6);
}

Clock::duration Acquisition::readout() const {
  const double share = static_cast<double>(hooks_.lines()) / core_.model.sensorHeight;
  return std::chrono::duration_cast<Clock::duration>(secondsPart(core_.model.maxFrameRate) * std::max(share, 0.01));
}

Clock::duration Acquisition::period() const {
  return secondsPart(rateEnable_->on() ? std::min(rate_->settingFloat(), maxRate()) : maxRate());
}

std::uint64_t Acquisition::frameLimit() const {
  switch (mode_->setting()) {
    case kSingleFrame:
      return 1;
    case kMultiFrame:
      return static_cast<std::uint64_t>(frameCount_->integer());
    default:
      return std::numeric_limits<std::uint64_t>::max();
  }
}

void Acquisition::wakeAll() {
  for (const auto& stream : streams_) {
    stream->changed.notify_all();
  }
}

void Acquisition::start() {
  if (running_) {
    return;
  }
  running_ = true;
  acquisitionTriggered_ = !triggerOn(TriggerKind::AcquisitionStart);
  const auto now = Clock::now();
  exposureEnd_ = readoutEnd_ = lastStart_ = now;
  triggersMissed_->set(0);
  for (const auto& stream : streams_) {
    stream->count = 0;
    stream->burstLeft = 0;
    stream->next = now;
    stream->pending.clear();
  }
  hooks_.signal(Signal::AcquisitionStart, 0);
  wakeAll();
}

void Acquisition::stop() {
  if (!running_) {
    return;
  }
  running_ = false;
  for (const auto& stream : streams_) {
    stream->pending.clear();
  }
  hooks_.signal(Signal::AcquisitionEnd, 0);
  wakeAll();
}

void Acquisition::startStream(std::size_t index) {
  Stream& stream = *streams_[index];
  stream.started = true;
  stream.pending.clear();
  stream.next = Clock::now();
  stream.changed.notify_all();
}

void Acquisition::stopStream(std::size_t index) {
  Stream& stream = *streams_[index];
  stream.started = false;
  stream.pending.clear();
  stream.changed.notify_all();
}

bool Acquisition::mayRun(const Stream& stream) const {
  return running_ && acquisitionTriggered_ && stream.count < frameLimit() &&
         (speedMode_->on() ||
          (!triggerOn(TriggerKind::FrameStart) && (!triggerOn(TriggerKind::FrameBurstStart) || stream.burstLeft > 0)));
}

void Acquisition::begin(std::size_t index, Clock::time_point start) {
  Stream& stream = *streams_[index];
  const auto exposure = microseconds(hooks_.exposure());
  stream.pending.push_back({hooks_.plan(index), core_.config.firstFrameId + stream.count, lineStatus(), start,
                            start + exposure + readout()});
  ++stream.count;
  exposureEnd_ = start + exposure;
  readoutEnd_ = exposureEnd_ + readout();
  lastStart_ = start;
}

// What happens with the frame at its own times, for whoever counts, times or listens. Streams carry the same frames, so
// the caller announces each once.
void Acquisition::announce(const Exposure& exposure) {
  if (!hooks_.watched()) {
    return;
  }
  const std::uint64_t id = exposure.frameId;
  core_.schedule(exposure.start, [this, id] { hooks_.signal(Signal::FrameStart, id); });
  core_.schedule(exposure.due - readout(), [this, id] { hooks_.signal(Signal::ExposureEnd, id); });
}

void Acquisition::finishIfComplete() {
  const std::uint64_t limit = frameLimit();
  const bool complete = std::ranges::all_of(streams_, [&](const auto& stream) {
    return !stream->started || (stream->count >= limit && stream->pending.empty());
  });
  if (complete && limit != std::numeric_limits<std::uint64_t>::max()) {
    stop();
  }
}

void Acquisition::fillPlan(FramePlan& plan, std::size_t index, const FramePlan& from, std::uint64_t frameId,
                           Clock::time_point start, std::uint32_t lines) const {
  if (plan.planId != from.planId) {
    plan = from;
  }
  plan.stream = index;
  plan.frameId = frameId;
  plan.timestampNs = core_.ticks(start);
  plan.lineStatus = lines;
}

void Acquisition::deliverFast(std::size_t index, FramePlan& plan) {
  Stream& stream = *streams_[index];
  if (stream.speedGeneration != core_.generation) {
    stream.speedPlan = hooks_.plan(index);
    stream.speedGeneration = core_.generation;
  }
  fillPlan(plan, index, *stream.speedPlan, core_.config.firstFrameId + stream.count, Clock::now(), lineStatus());
  ++stream.count;
  if (mode_->setting() != kContinuous) {
    finishIfComplete();
  }
}

FrameWait Acquisition::waitForFrame(CameraLock& guard, std::size_t index, Clock::time_point until, FramePlan& plan) {
  Stream& stream = *streams_[index];
  for (;;) {
    if (!stream.started) {
      return FrameWait::Stopped;
    }
    const bool idle = stream.pending.empty() && mayRun(stream);
    if (idle && speedMode_->setting() != 0) {
      deliverFast(index, plan);
      return FrameWait::Frame;
    }
    const auto now = Clock::now();
    if (idle) {
      // A consumer that was late gets the next frame at once, but not all that it let pass.
      begin(index, std::max(stream.next, now - period()));
      stream.next = stream.pending.front().start + period();
      stream.burstLeft -= stream.burstLeft > 0 ? 1 : 0;
      const bool first = std::none_of(streams_.begin(), streams_.begin() + static_cast<std::ptrdiff_t>(index),
                                      [](const auto& other) { return other->started; });
      if (first) {
        announce(stream.pending.front());
      }
    }
    if (!stream.pending.empty() && stream.pending.front().due <= now) {
      const Exposure exposure = std::move(stream.pending.front());
      stream.pending.pop_front();
      fillPlan(plan, index, *exposure.plan, exposure.frameId, exposure.start, exposure.lineStatus);
      finishIfComplete();
      return FrameWait::Frame;
    }
    if (now >= until) {
      return FrameWait::Timeout;
    }
    if (guard.hasEvents()) {
      guard.release();
      guard.acquire();
      continue;
    }
    const auto wake = stream.pending.empty() ? until : std::min(until, stream.pending.front().due);
    if (wake == Clock::time_point::max()) {
      stream.changed.wait(guard.lock());
    } else {
      stream.changed.wait_until(guard.lock(), wake);
    }
  }
}

void Acquisition::source(Signal signal) {
  for (std::size_t kind = 0; kind < triggerMode_->slots(); ++kind) {
    if (triggerMode_->on(kind) &&
        kTriggerSources[static_cast<std::size_t>(triggerSource_->integer(kind))].signal == signal) {
      trigger(static_cast<TriggerKind>(kind));
    }
  }
}

void Acquisition::trigger(TriggerKind kind) {
  if (!running_ || !triggerOn(kind)) {
    if (kind == TriggerKind::FrameStart) {
      missed();
    }
    return;
  }
  if (kind == TriggerKind::FrameStart) {
    triggerFrame();
    return;
  }
  const auto delayed = Clock::now() + microseconds(triggerDelay_->floating(static_cast<std::size_t>(kind)));
  for (const auto& stream : streams_) {
    stream->next = std::max(stream->next, delayed);
    if (kind == TriggerKind::FrameBurstStart) {
      stream->burstLeft = static_cast<std::uint64_t>(burstCount_->integer());
    }
  }
  if (kind == TriggerKind::AcquisitionStart) {
    acquisitionTriggered_ = true;
  }
  wakeAll();
}

void Acquisition::triggerFrame() {
  const auto now = Clock::now();
  const std::int64_t overlap = triggerOverlap_->integer(static_cast<std::size_t>(TriggerKind::FrameStart));
  const bool busy = (overlap == kOverlapOff && now < readoutEnd_) ||
                    (overlap == kOverlapReadOut && now < exposureEnd_) ||
                    (overlap == kOverlapPreviousFrame && now < lastStart_);
  const std::uint64_t limit = frameLimit();
  const bool room = std::ranges::all_of(streams_, [&](const auto& stream) {
    return !stream->started || (stream->count < limit && stream->pending.size() < kMaxPending);
  });
  if (busy || !room || !acquisitionTriggered_) {
    missed();
    return;
  }
  const auto delayed = now + microseconds(triggerDelay_->floating(static_cast<std::size_t>(TriggerKind::FrameStart)));
  const auto start = overlap == kOverlapPreviousFrame ? std::max(delayed, exposureEnd_) : delayed;
  bool announced = false;
  for (std::size_t index = 0; index < streams_.size(); ++index) {
    if (streams_[index]->started) {
      begin(index, start);
      if (!announced) {
        announce(streams_[index]->pending.back());
        announced = true;
      }
    }
  }
  wakeAll();
}

void Acquisition::missed() {
  triggersMissed_->set(triggersMissed_->integer() + 1);
  hooks_.signal(Signal::FrameTriggerMissed, 0);
}

void Acquisition::lineEdge() {
  lineHigh_ = !lineHigh_;
  if (lineHigh_) {
    hooks_.signal(Signal::Line0, 0);
  }
  for (std::size_t kind = 0; kind < triggerMode_->slots(); ++kind) {
    const std::int64_t edge = triggerActivation_->integer(kind);
    const bool fits = edge == 2 || (edge == 0) == lineHigh_;
    if (fits && triggerMode_->on(kind) &&
        kTriggerSources[static_cast<std::size_t>(triggerSource_->integer(kind))].signal == Signal::Line0) {
      trigger(static_cast<TriggerKind>(kind));
    }
  }
  core_.schedule(Clock::now() + secondsPart(2 * lineFrequency_->floating()), [this, generation = lineGeneration_] {
    if (generation == lineGeneration_) {
      lineEdge();
    }
  });
}

}  // namespace vcam
