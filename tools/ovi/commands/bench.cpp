// ovi bench: how fast this machine takes images from this camera, and what of it the library costs.
#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "acquisition.h"
#include "commands.h"
#include "module_view.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kImagesBetweenBreaks = 8;
constexpr std::chrono::duration<double> kLongestBreak{0.25};

struct BenchOptions {
  double seconds = 5;
  std::uint32_t buffers = 16;
  bool touch = false;
};

// The times of one kind of call.
class Times {
 public:
  void add(Clock::duration time) { nanoseconds_.push_back(static_cast<double>(time.count())); }
  bool empty() const { return nanoseconds_.empty(); }
  // In microseconds; 0.5 is the median.
  double quantile(double share) {
    if (nanoseconds_.empty())
      return 0.0;
    const auto at = static_cast<std::ptrdiff_t>(share * static_cast<double>(nanoseconds_.size() - 1));
    std::nth_element(nanoseconds_.begin(), nanoseconds_.begin() + at, nanoseconds_.end());
    return nanoseconds_[static_cast<std::size_t>(at)] / 1000.0;
  }

 private:
  std::vector<double> nanoseconds_;
};

struct Measurement {
  std::uint64_t images = 0;
  std::uint64_t bytes = 0;
  std::uint64_t incomplete = 0;
  std::uint64_t sum = 0;  // of the pixels, so that reading them is not left out
  double seconds = 0;
  double processorSeconds = 0;
  Times take;     // waits that found an image ready: the library and the producer, without the camera
  Times release;  // giving the buffer back
};

Measurement measure(const ovi::Device& device, const BenchOptions& options) {
  Measurement result;
  const ovi::Stream stream = device.openStream(options.buffers);
  device.start();
  const Clock::time_point start = Clock::now();
  const std::clock_t processorStart = std::clock();
  ProgressLine line;
  try {
    while (!interrupted()) {
      std::error_code error;
      const Clock::time_point before = Clock::now();
      std::unique_ptr<ovi::Image> image = stream.tryNext(std::chrono::milliseconds(0), error);
      const Clock::time_point after = Clock::now();
      if (image)
        result.take.add(after - before);
      else if (error.value() == OVI_ERR_TIMEOUT)
        image = stream.tryNext(std::chrono::milliseconds(200), error);
      result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
      if (result.seconds >= options.seconds)
        break;
      if (error.value() == OVI_ERR_INVALID_BUFFER)
        ++result.incomplete;
      else if (error && error.value() != OVI_ERR_TIMEOUT)
        throw ToolError("waiting for an image failed: " + error.message(), "ovi stream --frames 100");
      line.show(result.seconds / options.seconds, std::to_string(result.images) + " images");
      if (!image)
        continue;
      ++result.images;
      result.bytes += image->size();
      for (std::size_t i = 0; options.touch && i < image->size(); ++i)
        result.sum += image->data()[i];
      const Clock::time_point releasing = Clock::now();
      image->release();
      result.release.add(Clock::now() - releasing);
      // A program that keeps up never finds an image ready; a break now and then lets two queue, so that taking them
      // can be timed.
      if (result.images % kImagesBetweenBreaks == 0)
        std::this_thread::sleep_for(std::min(kLongestBreak, 2.5 * result.seconds / static_cast<double>(result.images) *
                                                                std::chrono::duration<double>(1)));
    }
  } catch (...) {
    oviStopAcquisition(device.handle());
    throw;
  }
  result.processorSeconds = static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC;
  oviStopAcquisition(device.handle());
  return result;
}

void bench(Session& session, const BenchOptions& options) {
  if (options.seconds <= 0 || options.buffers == 0)
    throw ToolError("seconds and buffers must be more than 0", session.command("bench --seconds 5"), ExitCode::kUsage);
  const ModuleView view(session, "device", Use::kControl);
  const ovi::Device& device = view.device();
  Measurement m = measure(device, options);
  if (m.images == 0) {
    throwIfInterrupted();
    const Trigger trigger = findTrigger(view);
    throw ToolError("no image came" + trigger.reason(), session.command(trigger.next()));
  }
  const double rate = static_cast<double>(m.images) / m.seconds;
  const double ours = m.take.quantile(0.5) + m.release.quantile(0.5);
  if (session.options().json) {
    nlohmann::ordered_json json;
    json["images"] = m.images;
    json["seconds"] = m.seconds;
    json["framesPerSecond"] = rate;
    json["bytesPerSecond"] = static_cast<double>(m.bytes) / m.seconds;
    json["incomplete"] = m.incomplete;
    json["takeMicroseconds"] = {{"median", m.take.quantile(0.5)}, {"p99", m.take.quantile(0.99)}};
    json["releaseMicroseconds"] = {{"median", m.release.quantile(0.5)}, {"p99", m.release.quantile(0.99)}};
    json["processorMicrosecondsPerImage"] = m.processorSeconds * 1e6 / static_cast<double>(m.images);
    json["shareOfFramePeriod"] = ours * rate / 1e6;
    printJson(json);
  } else {
    printData("images:           " + std::to_string(m.images) + " in " + fixedText(m.seconds, 2) + " s, " +
              fixedText(rate, 1) + " frames/s, " + fixedText(static_cast<double>(m.bytes) / m.seconds / 1e6, 1) +
              " MB/s" + (m.incomplete == 0 ? "" : ", " + std::to_string(m.incomplete) + " incomplete"));
    printData("taking one:       " +
              (m.take.empty() ? std::string("never measured: no image was ever ready when asked for")
                              : fixedText(m.take.quantile(0.5), 2) + " us, 99 % under " +
                                    fixedText(m.take.quantile(0.99), 2) + " us, library and producer together"));
    printData("giving it back:   " + fixedText(m.release.quantile(0.5), 2) + " us, 99 % under " +
              fixedText(m.release.quantile(0.99), 2) + " us");
    printData("share of a frame: " + fixedText(ours * rate / 1e4, 3) + " % of the time between two images");
    printData("processor time:   " + fixedText(m.processorSeconds * 1e6 / static_cast<double>(m.images), 1) +
              " us an image in this process, the producer's threads included");
  }
  throwIfInterrupted();
}

}  // namespace

void addBench(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("bench", "Measure how fast this machine takes images from this camera");
  auto options = std::make_shared<BenchOptions>();
  addNumberOption(*command, "-s,--seconds", options->seconds, "SECONDS", "How long; 5 when not given");
  addNumberOption(*command, "--buffers", options->buffers, "N", "Buffers of the stream");
  command->add_flag("--touch", options->touch, "Read every byte of every image");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi bench\n  ovi bench --seconds 10 --touch --json");
  command->callback([=, &action] { action = [=](Session& session) { bench(session, *options); }; });
}

}  // namespace tool
