// Images from one camera for a command: stream, start, what came and what was lost, stop.
#include "acquisition.h"

#include <algorithm>
#include <array>
#include <utility>

#include "camera_start.h"
#include "feature_view.h"
#include "session.h"
#include "tool_error.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

// Stops the camera on every way out.
class Running {
 public:
  Running(const ModuleView& view, const ovi::Stream& stream) : device_(view.device()) { startCamera(view, stream); }
  ~Running() { stop(); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

  oviErr stop() { return std::exchange(stopped_, true) ? OVI_SUCCESS : oviStopAcquisition(device_.handle()); }

 private:
  const ovi::Device& device_;
  bool stopped_ = false;
};

// Fewer bytes than its size needs, as of a frame whose transfer broke off. A producer that tells no bytes at all, and
// formats of a maker's own, of which nobody knows how much they need, are taken for whole.
bool isPartial(const ovi::Image& image) {
  constexpr std::uint32_t kOfMaker = 0x80000000;
  return image.size() != 0 && (image.pixelFormat() & kOfMaker) == 0 &&
         image.size() < std::uint64_t{image.linePitch()} * image.height();
}

double seconds(Clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

// Counts an image, and the frame IDs between it and the one before.
class Counter {
 public:
  explicit Counter(Ledger& ledger) : ledger_(ledger) {}

  void count(const ovi::Image& image, const AcquisitionReports& reports) {
    const Clock::time_point now = Clock::now();
    ++ledger_.delivered;
    ledger_.bytes += image.size();
    if (known_)
      ledger_.longestGap = std::max(ledger_.longestGap, seconds(now - last_));
    countLatency(now, image, reports);
    countFrame(image.frameID());
    last_ = now;
  }

  void countIncomplete() {
    ++ledger_.incomplete;
    ++incompleteSince_;
  }

 private:
  // IDs that are left out belong to images that were incomplete, or lost. An ID from a little before is that of an
  // image which was overtaken; from long before, the camera began to count again.
  void countFrame(std::uint64_t id) {
    constexpr std::int64_t kOvertaking = 64;
    const auto step = known_ ? static_cast<std::int64_t>(id - lastID_) : 1;
    if (step < 0 && step > -kOvertaking) {
      ++ledger_.late;
      ledger_.lost -= ledger_.lost > 0 ? 1U : 0U;
      return;
    }
    const auto leftOut = static_cast<std::uint64_t>(std::max<std::int64_t>(step - 1, 0));
    ledger_.lost += leftOut - std::min(leftOut, incompleteSince_);
    incompleteSince_ = 0;
    lastID_ = id;
    known_ = true;
  }

  // The mean is of one kind of time stamp: of the camera's as soon as an image has one.
  void countLatency(Clock::time_point now, const ovi::Image& image, const AcquisitionReports& reports) {
    const std::optional<Clock::time_point> taken = reports.cameraTime ? reports.cameraTime(image) : std::nullopt;
    if (!taken && ledger_.ofCamera)
      return;
    if (taken && !ledger_.ofCamera) {
      ledger_.ofCamera = true;
      latencies_ = 0;
      measured_ = 0;
    }
    const Clock::duration latency = taken ? now - *taken : now.time_since_epoch() - image.timestamp();
    latencies_ += std::max(0.0, seconds(latency));
    ledger_.latency = latencies_ / static_cast<double>(++measured_);
  }

  Ledger& ledger_;
  bool known_ = false;
  std::uint64_t lastID_ = 0;
  std::uint64_t incompleteSince_ = 0;  // the image with that ID
  Clock::time_point last_;
  double latencies_ = 0;
  std::uint64_t measured_ = 0;
};

void giveBack(ovi::Image& image, Ledger& ledger) {
  if (const std::error_code refused = image.release(); refused && ledger.notReleased++ == 0)
    ledger.releaseError = refused.message();
}

bool isEnough(const AcquisitionOptions& options, const Ledger& ledger) {
  return interrupted() || (options.frames != 0 && ledger.delivered >= options.frames) ||
         (options.seconds > 0 && ledger.seconds >= options.seconds);
}

}  // namespace

Ledger acquire(const ModuleView& view, const AcquisitionOptions& options, const AcquisitionReports& reports) {
  constexpr std::chrono::milliseconds kLongestWait{200};  // so that Ctrl-C is noticed soon
  constexpr std::chrono::milliseconds kSilence{500};
  Ledger ledger;
  Counter counter(ledger);
  const ovi::Stream stream = openStream(view, options.buffers);
  Running running(view, stream);
  const Clock::time_point start = Clock::now();
  Clock::time_point lastSign = start;
  Clock::time_point lastWhole = start;
  while (!isEnough(options, ledger)) {
    std::error_code error;
    const std::unique_ptr<ovi::Image> image = stream.tryNext(std::min(options.timeout, kLongestWait), error);
    const Clock::time_point now = Clock::now();
    ledger.seconds = seconds(now - start);
    const bool isIncomplete = image ? isPartial(*image) : error.value() == OVI_ERR_INVALID_BUFFER;
    if (isIncomplete) {
      counter.countIncomplete();
    } else if (image) {
      counter.count(*image, reports);
      if (reports.image)
        reports.image(*image, ledger);
    } else if (error.value() != OVI_ERR_TIMEOUT) {
      throw ToolError("waiting for an image failed: " + error.message(), "the same command with --verbose");
    } else {
      ledger.waiting = now - lastSign >= kSilence;
      if (now - lastSign >= options.timeout && !options.patient) {
        ledger.timedOut = true;
        break;
      }
    }
    if (image && !isIncomplete)
      lastWhole = Clock::now();
    // Somebody who wants a number of images shall not wait for ever for the first whole one.
    if (options.frames != 0 && ledger.incomplete > 0 && Clock::now() - lastWhole >= options.timeout &&
        !options.patient) {
      ledger.timedOut = true;
      break;
    }
    if (error.value() != OVI_ERR_TIMEOUT) {
      // Saving an image takes time in which none can come.
      lastSign = Clock::now();
      ledger.waiting = false;
    }
    if (image)
      giveBack(*image, ledger);
    if (reports.progress)
      reports.progress(stream, ledger);
  }
  ledger.seconds = seconds(Clock::now() - start);
  ledger.silence = seconds(Clock::now() - lastSign);
  oviAcquistionStatistics counters{};  // Of a camera that is gone they may not be told.
  if (oviGetAcquisitionStatistics(stream.handle(), &counters) == OVI_SUCCESS && counters.underruns != ~std::uint64_t{0})
    ledger.underruns = counters.underruns;
  if (const oviErr stopped = running.stop(); stopped != OVI_SUCCESS)
    ledger.stopError = ovi::makeErrorCode(stopped).message();
  return ledger;
}

Trigger findTrigger(const ModuleView& view) {
  const auto valueOf = [&](const char* name) {
    std::array<char, 512> text{};
    return oviGetFeature(view.device().handle(), name, text.data()) == OVI_SUCCESS ? std::string(text.data())
                                                                                   : std::string();
  };
  const auto select = [&](const std::string& trigger) {
    return oviSetFeatureEnum(view.device().handle(), "TriggerSelector", trigger.c_str(), OVI_MODULE_REMOTE_DEVICE) ==
           OVI_SUCCESS;
  };
  const auto text = [&] { return "TriggerMode = On, TriggerSource = " + valueOf("TriggerSource"); };
  if (valueOf("TriggerMode") == "On")
    return {text(), "set TriggerMode=Off"};
  const std::string selected = valueOf("TriggerSelector");
  if (selected.empty())
    return {};
  Trigger found;
  for (const std::string& other : entryNames(view, "TriggerSelector"))
    if (found.text.empty() && other != selected && select(other) && valueOf("TriggerMode") == "On")
      found = {"TriggerSelector = " + other + ", " + text(), "set TriggerSelector=" + other + " TriggerMode=Off"};
  select(selected);
  return found;
}

}  // namespace tool
