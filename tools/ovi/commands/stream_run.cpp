// One camera's part of ovi stream: its acquisition, on a thread of its own.
#include "commands/stream_run.h"

#include <algorithm>

#include "paths.h"
#include "terminal.h"

namespace tool {

StreamRun::StreamRun(Session& session, const Camera& camera, const StreamOptions& options, std::filesystem::path folder)
    : name_(camera.shortName()),
      json_(session.options().json),
      folder_(std::move(folder)),
      format_(saveFormatFromText(options.save)),
      view_(session, "device", Use::kControl, camera.id),
      device_(view_.device()),
      acquisition_(options.acquisition) {
  acquisition_.timeout = std::chrono::milliseconds(options.imageTimeout);
  acquisition_.buffers = options.buffers != 0 ? options.buffers : usualBuffers();
  if (options.checkPattern)
    pattern_ = std::make_unique<TestPattern>(device_);
  if (options.cameraTime)
    cameraTime_ = std::make_unique<CameraTime>(device_);
  trigger_ = findTrigger(view_);
  acquisition_.patient = !trigger_.text.empty() && (acquisition_.frames == 0 || acquisition_.seconds > 0);
}

void StreamRun::start() {
  thread_ = std::thread([this] { work(); });
}

void StreamRun::join() {
  if (thread_.joinable())
    thread_.join();
}

bool StreamRun::done() const {
  const std::lock_guard lock(mutex_);
  return done_;
}

Ledger StreamRun::ledger() const {
  const std::lock_guard lock(mutex_);
  return ledger_;
}

std::string StreamRun::liveText() const {
  const std::lock_guard lock(mutex_);
  std::string text = std::to_string(ledger_.delivered) + " frames, " + rateText(ledger_) + ", " +
                     std::to_string(ledger_.lost) + " lost, " + std::to_string(ledger_.incomplete) +
                     " incomplete, latency " + latencyText(ledger_);
  if (filled_ >= 0)
    text += ", " + std::to_string(filled_) + " of " + std::to_string(acquisition_.buffers) + " buffers filled";
  if (ledger_.waiting)
    text += trigger_.text.empty() ? ", waiting for an image" : ", waiting for a trigger (" + trigger_.text + ")";
  return text;
}

// Writing files is slower than a camera: with a known number of images there is a buffer for each, as far as memory
// goes.
std::uint32_t StreamRun::usualBuffers() const {
  constexpr std::uint64_t kUsual = 16;
  constexpr std::uint64_t kMemory = std::uint64_t{1} << 30U;
  std::int64_t size = 0;
  if (folder_.empty() || acquisition_.frames == 0 || oviGetImageSize(device_.handle(), &size) != OVI_SUCCESS ||
      size <= 0)
    return kUsual;
  const std::uint64_t wanted = std::max(kUsual, acquisition_.frames + 4);
  return static_cast<std::uint32_t>(std::min(wanted, std::max(kUsual, kMemory / static_cast<std::uint64_t>(size))));
}

void StreamRun::work() {
  Ledger result;
  try {
    AcquisitionReports reports;
    reports.image = [this](const ovi::Image& image, Ledger& ledger) { take(image, ledger); };
    reports.progress = [this](const ovi::Stream& stream, const Ledger& ledger) { publish(stream, ledger); };
    if (cameraTime_)
      reports.cameraTime = [this](const ovi::Image& image) { return cameraTime_->of(image); };
    result = acquire(view_, acquisition_, reports);
  } catch (const std::exception& failure) {
    failure_ = std::current_exception();
    result = ledger();
    result.failure = failure.what();
  }
  result.trigger = trigger_.reason();
  const std::lock_guard lock(mutex_);
  ledger_ = result;
  done_ = true;
}

void StreamRun::take(const ovi::Image& image, Ledger& ledger) {
  if (pattern_ && !check_.matches(image))
    ++ledger.badPattern;
  if (folder_.empty())
    return;
  const std::filesystem::path file = folder_ / imageFileName(image, format_);
  saveImage(image, file, format_);
  if (!json_)
    printData(pathText(file));
}

void StreamRun::publish(const ovi::Stream& stream, const Ledger& ledger) {
  const auto now = std::chrono::steady_clock::now();
  const std::lock_guard lock(mutex_);
  ledger_ = ledger;
  if (now - asked_ < std::chrono::milliseconds(250))
    return;
  asked_ = now;
  if (oviGetFeatureInt(stream.handle(), "StreamOutputBufferCount", &filled_, OVI_MODULE_DATA_STREAM) != OVI_SUCCESS)
    filled_ = -1;
}

}  // namespace tool
