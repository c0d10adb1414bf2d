// Images from one camera for a command: stream, start, what came and what was lost, stop.
#include "acquisition.h"

#include <algorithm>

#include "session.h"
#include "tool_error.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

class Running {
 public:
  explicit Running(const ovi::Device& device) : device_(device) { device_.start(); }
  ~Running() { oviStopAcquisition(device_.handle()); }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  const ovi::Device& device_;
};

// Counts an image and the frame IDs between it and the one before.
class Counter {
 public:
  void count(const ovi::Image& image, Ledger& ledger) {
    ++ledger.delivered;
    ledger.bytes += image.size();
    if (known_ && image.frameID() > last_ + 1)
      ledger.lost += image.frameID() - last_ - 1;
    last_ = image.frameID();
    known_ = true;
  }

 private:
  bool known_ = false;
  std::uint64_t last_ = 0;
};

}  // namespace

Ledger acquire(const ovi::Device& device, const AcquisitionOptions& options,
               const std::function<void(const ovi::Image&, const Ledger&)>& take) {
  Ledger ledger;
  Counter counter;
  const ovi::Stream stream = device.openStream(options.buffers);
  const Running running(device);
  const auto start = Clock::now();
  auto lastImage = start;
  const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
  while (!interrupted() && (options.frames == 0 || ledger.delivered < options.frames) &&
         (options.seconds <= 0 || elapsed() < options.seconds)) {
    std::error_code error;
    // Short waits, so that Ctrl-C is noticed soon.
    const auto wait = std::min(options.timeout, std::chrono::milliseconds(200));
    const std::unique_ptr<ovi::Image> image = stream.tryNext(wait, error);
    ledger.seconds = elapsed();
    if (image) {
      lastImage = Clock::now();
      counter.count(*image, ledger);
      take(*image, ledger);
    } else if (error.value() == OVI_ERR_INVALID_BUFFER) {
      lastImage = Clock::now();
      ++ledger.incomplete;
    } else if (error.value() == OVI_ERR_TIMEOUT) {
      if (Clock::now() - lastImage >= options.timeout) {
        ledger.timedOut = true;
        break;
      }
    } else {
      throw ToolError("waiting for an image failed: " + error.message(), "ovi --verbose stream");
    }
  }
  ledger.seconds = elapsed();
  ledger.underruns = stream.statistics().underruns;
  return ledger;
}

std::string silenceReason(const ovi::Device& device) {
  char mode[512] = {};
  char source[512] = {};
  if (oviGetFeature(device.handle(), "TriggerMode", mode) == OVI_SUCCESS && std::string(mode) == "On") {
    oviGetFeature(device.handle(), "TriggerSource", source);
    return "the camera waits for a trigger (TriggerMode = On, TriggerSource = " + std::string(source) +
           "); ovi set TriggerMode=Off lets it run freely";
  }
  return "is the camera connected and sending? ovi features Acquisition shows how it is set";
}

}  // namespace tool
