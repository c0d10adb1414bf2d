// Free-running frames are begun by the thread that waits for them; triggered ones by whatever triggers.
#include "acquisition.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vcam {
namespace {

// Frames that wait for a stream thread at most; later triggers are missed.
constexpr std::size_t kMaxPending = 256;

Clock::duration secondsPart(double hertz) {
  return std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1 / hertz));
}

struct SourceName {
  const char* name;
  Signal signal;
};
// The values of TriggerSource; the first is the command.
constexpr std::array<SourceName, 6> kSources{{{"Software", Signal::Off},
                                              {"Line0", Signal::Line0},
                                              {"Timer0End", Signal::Timer0End},
                                              {"Timer1End", Signal::Timer1End},
                                              {"Counter0End", Signal::Counter0End},
                                              {"Counter1End", Signal::Counter1End}}};

enum Overlap : std::uint8_t { kOverlapOff, kOverlapReadOut, kOverlapPreviousFrame };
enum Mode : std::uint8_t { kSingleFrame, kMultiFrame, kContinuous };

}  // namespace

Acquisition::Acquisition(CameraCore& core, Hooks hooks) : core_(core), hooks_(std::move(hooks)) {
  for (std::size_t i = 0; i < core.model.streams; ++i) {
    streams_.push_back(std::make_unique<Stream>());
  }
}

void Acquisition::declare() {
  FeatureMap& map = core_.map;
  map.category(category(), "How and when images are taken");
  mode_ = &map.enumeration("AcquisitionMode", category(), "How many frames an acquisition takes")
               .entry("SingleFrame", kSingleFrame, "One")
               .entry("MultiFrame", kMultiFrame, "AcquisitionFrameCount")
               .entry("Continuous", kContinuous, "Until it is stopped")
               .value(int{kContinuous})
               .lockedWhileStreaming()
               .stored();
  map.command("AcquisitionStart", category(), "Starts the acquisition")
      .onWrite([this](std::size_t) {
        start();
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  for (const char* const name : {"AcquisitionStop", "AcquisitionAbort"}) {
    map.command(name, category(), "Ends the acquisition")
        .onWrite([this](std::size_t) {
          stop();
          return kOk;
        })
        .computed([](std::size_t) { return 0; });
  }
  frameCount_ = &map.integer("AcquisitionFrameCount", category(), "Frames of a multi-frame acquisition")
                     .min("1")
                     .max("65535")
                     .value(10)
                     .lockedWhileStreaming()
                     .stored()
                     .visibility("Expert")
                     .availableIf("AcquisitionMode = 1");
  burstCount_ = &map.integer("AcquisitionBurstFrameCount", category(), "Frames that a burst trigger starts")
                     .min("1")
                     .max("1024")
                     .value(1)
                     .lockedWhileStreaming()
                     .stored()
                     .visibility("Expert");
  rateEnable_ = &map.boolean("AcquisitionFrameRateEnable", category(),
                             "Lets AcquisitionFrameRate pace the frames; otherwise they come as fast as the sensor can")
                     .value(1)
                     .stored()
                     .visibility("Expert");
  map.floating("AcquisitionFrameRateMax", category(), "Largest rate with the present height and exposure")
      .unit("Hz")
      .readOnly()
      .visibility("Guru")
      .vendorSpecific()
      .dependsOn({"Height", "ExposureTime"})
      .computedFloat([this](std::size_t) { return maxRate(); });
  rate_ = &map.floating("AcquisitionFrameRate", category(), "Frames per second")
               .unit("Hz")
               .min("0.1")
               .max("AcquisitionFrameRateMax")
               .value(core_.model.defaultFrameRate)
               .stored()
               .notation("Fixed", 2)
               .availableIf("AcquisitionFrameRateEnable")
               .dependsOn({"Height", "ExposureTime"});
  rate_->computedFloat([this](std::size_t) { return std::min(rate_->settingFloat(), maxRate()); });
  map.floating("AcquisitionResultingFrameRate", category(), "The rate that the present settings give")
      .unit("Hz")
      .readOnly()
      .notation("Fixed", 2)
      .dependsOn({"AcquisitionFrameRate", "AcquisitionFrameRateEnable", "ExposureTime", "Height"})
      .computedFloat([this](std::size_t) { return 1 / std::chrono::duration<double>(period()).count(); });
  map.boolean("AcquisitionActive", category(), "Whether the camera acquires now")
      .readOnly()
      .uncached()
      .vendorSpecific()
      .visibility("Expert")
      .computed([this](std::size_t) { return running_ ? 1 : 0; });
  speedMode_ = &map.boolean("SpeedMode", category(),
                            "Delivers as fast as buffers come back, with nothing but the frame ID written into them")
                    .describe(
                        "For measurements. Each frame holds its frame ID as 64-bit little-endian number in its first "
                        "8 bytes; the rest of the buffer stays as it was. Exposure, frame rate, triggers and chunks "
                        "have no effect.")
                    .vendorSpecific()
                    .visibility("Guru")
                    .lockedWhileStreaming()
                    .value(core_.config.speedMode ? 1 : 0);
  declareTriggers();
  declareLine();
}

void Acquisition::declareTriggers() {
  FeatureMap& map = core_.map;
  const char* const triggers = "TriggerControl";
  map.category(triggers, "What starts a frame, a burst or an acquisition", category());
  map.enumeration("TriggerSelector", triggers, "The trigger to look at")
      .entry("FrameStart", 0, "Starts one frame")
      .entry("AcquisitionStart", 1, "Lets the frames of an acquisition begin")
      .entry("FrameBurstStart", 2, "Starts AcquisitionBurstFrameCount frames");
  triggerMode_ = &map.enumeration("TriggerMode", triggers, "Whether the trigger is waited for")
                      .entry("Off", 0)
                      .entry("On", 1)
                      .selectedBy({"TriggerSelector"})
                      .lockedWhileStreaming()
                      .stored();
  map.command("TriggerSoftware", triggers, "Gives the selected trigger")
      .sharedBy({"TriggerSelector"})
      .onWrite([this](std::size_t) {
        const auto kind = static_cast<std::size_t>(core_.map.find("TriggerSelector")->integer());
        if (triggerSource_->integer(kind) != 0) {
          return GC_ERROR{GC_ERR_ACCESS_DENIED};
        }
        trigger(static_cast<TriggerKind>(kind));
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  triggerSource_ = &map.enumeration("TriggerSource", triggers, "Where the trigger comes from")
                        .selectedBy({"TriggerSelector"})
                        .stored();
  for (std::size_t i = 0; i < kSources.size(); ++i) {
    triggerSource_->entry(kSources[i].name, static_cast<std::int64_t>(i));
  }
  triggerActivation_ = &map.enumeration("TriggerActivation", triggers, "The edge of a line that triggers")
                            .entry("RisingEdge", 0)
                            .entry("FallingEdge", 1)
                            .entry("AnyEdge", 2)
                            .selectedBy({"TriggerSelector"})
                            .stored()
                            .visibility("Expert");
  triggerOverlap_ = &map.enumeration("TriggerOverlap", triggers, "When the next frame trigger is accepted")
                         .entry("Off", kOverlapOff, "When the frame before has been read out")
                         .entry("ReadOut", kOverlapReadOut, "When the exposure before has ended")
                         .entry("PreviousFrame", kOverlapPreviousFrame,
                                "At any time; one trigger is kept until the "
                                "exposure before has ended")
                         .selectedBy({"TriggerSelector"})
                         .stored()
                         .visibility("Expert");
  triggerDelay_ = &map.floating("TriggerDelay", triggers, "Time between a trigger and what it starts")
                       .unit("us")
                       .min("0")
                       .max("1000000")
                       .selectedBy({"TriggerSelector"})
                       .stored()
                       .visibility("Expert");
  triggersMissed_ = &map.integer("TriggersMissed", triggers, "Frame triggers since the start that came too early")
                         .length(8)
                         .readOnly()
                         .uncached()
                         .vendorSpecific()
                         .visibility("Expert");
}

void Acquisition::declareLine() {
  FeatureMap& map = core_.map;
  const char* const lines = "DigitalIOControl";
  map.category(lines, "Lines of the camera");
  map.enumeration("LineSelector", lines, "The line to look at")
      .entry("Line0", 0, "Trigger input")
      .entry("Line1", 1, "High while the camera acquires")
      .visibility("Expert");
  map.enumeration("LineMode", lines, "Direction of the line")
      .entry("Input", 0)
      .entry("Output", 1)
      .readOnly()
      .selectedBy({"LineSelector"})
      .valueOf([](std::size_t slot) { return static_cast<std::int64_t>(slot); })
      .visibility("Expert");
  map.boolean("LineStatus", lines, "Level of the line")
      .readOnly()
      .uncached()
      .selectedBy({"LineSelector"})
      .visibility("Expert")
      .computed([this](std::size_t slot) { return (slot == 0 ? lineHigh_ : running_) ? 1 : 0; });
  map.integer("LineStatusAll", lines, "Levels of all lines, a bit each")
      .readOnly()
      .uncached()
      .representation("HexNumber")
      .visibility("Expert")
      .computed([this](std::size_t) { return lineStatus(); });
  lineFrequency_ = &map.floating("LineSignalFrequency", lines,
                                 "Rate of the square wave that the virtual wiring puts on "
                                 "Line0; 0 leaves it low")
                        .unit("Hz")
                        .min("0")
                        .max("5000")
                        .vendorSpecific()
                        .visibility("Expert");
  lineFrequency_->onWrite([this](std::size_t) {
    ++lineGeneration_;
    lineHigh_ = false;
    if (lineFrequency_->floating() > 0) {
      core_.schedule(Clock::now(), [this, generation = lineGeneration_] {
        if (generation == lineGeneration_) {
          lineEdge();
        }
      });
    }
    return kOk;
  });
}

void Acquisition::declareTransport(const std::function<std::int64_t()>& payloadSize) {
  FeatureMap& map = core_.map;
  const char* const transport = "TransportLayerControl";
  map.category(transport, "Between the camera and the host");
  map.integer("PayloadSize", transport, "Bytes of a frame as it is transferred")
      .unit("B")
      .length(8)
      .readOnly()
      .visibility("Expert")
      .dependsOn(core_.model.components ? std::vector<std::string>{"Width", "Height", "PixelFormat", "ChunkModeActive",
                                                                   "ChunkEnable", "SpeedMode", "ComponentEnable"}
                                        : std::vector<std::string>{"Width", "Height", "PixelFormat", "ChunkModeActive",
                                                                   "ChunkEnable", "SpeedMode"})
      .computed([payloadSize](std::size_t) { return payloadSize(); });
  locked_ =
      &map.integer("TLParamsLocked", transport, "Not 0 while the consumer streams; what sizes buffers is locked then")
           .min("0")
           .max("1")
           .visibility("Invisible");
  declarePackets();
  map.integer("DeviceTapGeometryCode", transport, "Order in which the sensor is read")
      .readOnly()
      .visibility("Guru")
      .representation("HexNumber")
      .vendorSpecific();
}

void Acquisition::declarePackets() {
  FeatureMap& map = core_.map;
  const char* const transport = "TransportLayerControl";
  const std::uint32_t network = core_.config.networkPacketSize;
  packetSize_ = &map.integer("GevSCPSPacketSize", transport, "Bytes of a stream packet")
                     .unit("B")
                     .min("576")
                     .max(network == 0 ? "9000" : "GevSCPSPacketSizeMax")
                     .inc("4")
                     .value(1500)
                     .stored()
                     .lockedWhileStreaming()
                     .visibility("Expert");
  if (network == 0) {
    return;
  }
  packetSize_->uncached();
  largestPacket_ = &map.integer("GevSCPSPacketSizeMax", transport, "Largest packet that is known to arrive")
                        .unit("B")
                        .value(9000)
                        .readOnly()
                        .uncached()
                        .vendorSpecific()
                        .visibility("Guru");
  map.command("FindMaxPacketSize", transport, "Tries how large packets may be and uses the largest that arrive")
      .vendorSpecific()
      .visibility("Expert")
      .lockedWhileStreaming()
      .onWrite([this, network](std::size_t) {
        const std::int64_t found = std::min<std::int64_t>(network, 9000) / 4 * 4;
        largestPacket_->set(found);
        packetSize_->set(found);
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
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
    if (triggerMode_->on(kind) && kSources[static_cast<std::size_t>(triggerSource_->integer(kind))].signal == signal) {
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
        kSources[static_cast<std::size_t>(triggerSource_->integer(kind))].signal == Signal::Line0) {
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
