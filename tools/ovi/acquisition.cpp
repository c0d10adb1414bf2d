// Images from one camera for a command: stream, start, what came and what was lost, stop.
#include "acquisition.h"

#include <algorithm>
#include <array>

#include "feature_view.h"
#include "session.h"
#include "tool_error.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

// Stops the camera on every way out.
class Running {
 public:
  explicit Running(const ovi::Device& device) : device_(device) { device_.start(); }
  ~Running() { oviStopAcquisition(device_.handle()); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  const ovi::Device& device_;
};

double seconds(Clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

// Counts an image, and the frame IDs between it and the one before.
class Counter {
 public:
  explicit Counter(Ledger& ledger) : ledger_(ledger) {}

  void count(const ovi::Image& image) {
    const Clock::time_point now = Clock::now();
    ++ledger_.delivered;
    ledger_.bytes += image.size();
    if (known_ && image.frameID() > lastID_ + 1)
      ledger_.missing += image.frameID() - lastID_ - 1;
    if (known_)
      ledger_.longestGap = std::max(ledger_.longestGap, seconds(now - last_));
    const double latency = seconds(now.time_since_epoch() - image.timestamp());
    latencies_ += std::max(0.0, latency);
    ledger_.latency = latencies_ / static_cast<double>(ledger_.delivered);
    lastID_ = image.frameID();
    known_ = true;
    last_ = now;
  }

 private:
  Ledger& ledger_;
  bool known_ = false;
  std::uint64_t lastID_ = 0;
  Clock::time_point last_;
  double latencies_ = 0;
};

bool isEnough(const AcquisitionOptions& options, const Ledger& ledger) {
  return interrupted() || (options.frames != 0 && ledger.delivered >= options.frames) ||
         (options.seconds > 0 && ledger.seconds >= options.seconds);
}

}  // namespace

Ledger acquire(const ovi::Device& device, const AcquisitionOptions& options, const AcquisitionReports& reports) {
  constexpr std::chrono::milliseconds kLongestWait{200};  // so that Ctrl-C is noticed soon
  constexpr std::chrono::milliseconds kSilence{500};
  Ledger ledger;
  Counter counter(ledger);
  const ovi::Stream stream = device.openStream(options.buffers);
  const Running running(device);
  const Clock::time_point start = Clock::now();
  Clock::time_point lastSign = start;
  while (!isEnough(options, ledger)) {
    std::error_code error;
    const std::unique_ptr<ovi::Image> image = stream.tryNext(std::min(options.timeout, kLongestWait), error);
    const Clock::time_point now = Clock::now();
    ledger.seconds = seconds(now - start);
    if (image) {
      counter.count(*image);
      if (reports.image)
        reports.image(*image, ledger);
    } else if (error.value() == OVI_ERR_INVALID_BUFFER) {
      ++ledger.incomplete;
    } else if (error.value() != OVI_ERR_TIMEOUT) {
      throw ToolError("waiting for an image failed: " + error.message(), "the same command with --verbose");
    } else {
      ledger.waiting = now - lastSign >= kSilence;
      if (now - lastSign >= options.timeout && !options.patient) {
        ledger.timedOut = true;
        break;
      }
    }
    if (error.value() != OVI_ERR_TIMEOUT) {
      // Saving an image takes time in which none can come.
      lastSign = Clock::now();
      ledger.waiting = false;
    }
    if (reports.progress)
      reports.progress(stream, ledger);
  }
  ledger.seconds = seconds(Clock::now() - start);
  const std::uint64_t underruns = stream.statistics().underruns;
  ledger.underruns = underruns == ~std::uint64_t{0} ? 0 : underruns;
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
