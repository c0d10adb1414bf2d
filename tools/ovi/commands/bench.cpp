// ovi bench: how fast this machine takes images from this camera, and what of it the library costs.
#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <thread>

#include "acquisition.h"
#include "commands.h"
#include "commands/image_source.h"
#include "module_view.h"
#include "platform/child_process.h"
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
  std::string producer;  // set in the process that does without the library
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

Measurement measure(ImageSource& source, const BenchOptions& options) {
  using Got = ImageSource::Got;
  Measurement result;
  const Clock::time_point start = Clock::now();
  const std::clock_t processorStart = std::clock();
  ProgressLine line;
  while (!interrupted()) {
    const Clock::time_point before = Clock::now();
    Got got = source.take(std::chrono::milliseconds(0));
    const Clock::time_point after = Clock::now();
    if (got == Got::kImage)
      result.take.add(after - before);
    else if (got == Got::kNothing)
      got = source.take(std::chrono::milliseconds(200));
    result.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (result.seconds >= options.seconds)
      break;
    result.incomplete += got == Got::kIncomplete ? 1U : 0U;
    line.show(result.seconds / options.seconds, std::to_string(result.images) + " images");
    if (got != Got::kImage)
      continue;
    ++result.images;
    result.bytes += source.size();
    for (std::size_t i = 0; options.touch && i < source.size(); ++i)
      result.sum += source.data()[i];
    const Clock::time_point releasing = Clock::now();
    source.giveBack();
    result.release.add(Clock::now() - releasing);
    // A program that keeps up never finds an image ready; a break now and then lets two queue, so that taking them
    // can be timed.
    if (result.images % kImagesBetweenBreaks == 0)
      std::this_thread::sleep_for(std::min(
          kLongestBreak, 2.5 * result.seconds / static_cast<double>(result.images) * std::chrono::duration<double>(1)));
  }
  result.processorSeconds = static_cast<double>(std::clock() - processorStart) / CLOCKS_PER_SEC;
  return result;
}

/// What the same calls of the producer cost without the library, in microseconds.
struct ProducerTimes {
  double take = 0;
  double release = 0;
};

// In a process of its own, which may load the producer once more and need not trust it.
void measureProducer(const CommonOptions& common, const BenchOptions& options) {
  const std::unique_ptr<ImageSource> source =
      openProducerSource(options.producer, common.camera, common.assignments, options.buffers);
  Measurement m = measure(*source, options);
  if (m.take.empty())
    throw ToolError("no image was ever ready when asked for");
  printJson({{"take", m.take.quantile(0.5)}, {"release", m.release.quantile(0.5)}});
}

std::optional<ProducerTimes> timesOfProducer(Session& session, const BenchOptions& options) {
  constexpr std::chrono::seconds kToOpen{20};
  ProgressLine line;
  line.show(-1.0, "the producer without the library", true);
  const auto time =
      std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(options.seconds));
  const Camera& camera = session.pick(session.options().camera);
  std::vector<std::string> words = {"bench",
                                    "--of-producer",
                                    camera.producerPath,
                                    "--camera",
                                    camera.id,
                                    "--seconds",
                                    std::to_string(options.seconds),
                                    "--buffers",
                                    std::to_string(options.buffers)};
  if (options.touch)
    words.emplace_back("--touch");
  // The settings of virtual cameras end with the process that made them.
  for (const std::string& assignment : session.options().assignments)
    words.insert(words.end(), {"--set", assignment});
  const ChildResult child = runChild(ownProgram(), words, time + kToOpen);
  line.clear();
  const nlohmann::ordered_json json = nlohmann::ordered_json::parse(child.output, nullptr, false);
  if (child.exitCode != 0 || !json.is_object()) {
    if (!child.stopped)
      printNote("the producer alone could not be measured: " + child.messages.substr(0, child.messages.find('\n')));
    return std::nullopt;
  }
  return ProducerTimes{json.value("take", 0.0), json.value("release", 0.0)};
}

/// "; the producer alone 0.60 us", when that is known.
std::string producerText(const std::optional<ProducerTimes>& times, double ProducerTimes::*time) {
  return times ? "; the producer alone " + fixedText((*times).*time, 2) + " us" : std::string();
}

nlohmann::ordered_json benchJson(Measurement& m, const std::optional<ProducerTimes>& producer) {
  const double rate = static_cast<double>(m.images) / m.seconds;
  const double both = m.take.quantile(0.5) + m.release.quantile(0.5);
  nlohmann::ordered_json json;
  json["images"] = m.images;
  json["seconds"] = m.seconds;
  json["framesPerSecond"] = rate;
  json["bytesPerSecond"] = static_cast<double>(m.bytes) / m.seconds;
  json["incomplete"] = m.incomplete;
  json["takeMicroseconds"] = {{"median", m.take.quantile(0.5)}, {"p99", m.take.quantile(0.99)}};
  json["releaseMicroseconds"] = {{"median", m.release.quantile(0.5)}, {"p99", m.release.quantile(0.99)}};
  if (producer) {
    json["producerTakeMicroseconds"] = producer->take;
    json["producerReleaseMicroseconds"] = producer->release;
    json["libraryMicroseconds"] = both - producer->take - producer->release;
  }
  json["processorMicrosecondsPerImage"] = m.processorSeconds * 1e6 / static_cast<double>(m.images);
  json["shareOfFramePeriod"] = both * rate / 1e6;
  return json;
}

void printMeasurement(Measurement& m, const std::optional<ProducerTimes>& producer) {
  const double rate = static_cast<double>(m.images) / m.seconds;
  const double both = m.take.quantile(0.5) + m.release.quantile(0.5);
  printData("images:           " + std::to_string(m.images) + " in " + fixedText(m.seconds, 2) + " s, " +
            fixedText(rate, 1) + " frames/s, " + fixedText(static_cast<double>(m.bytes) / m.seconds / 1e6, 1) +
            " MB/s" + (m.incomplete == 0 ? "" : ", " + std::to_string(m.incomplete) + " incomplete"));
  printData("taking one:       " +
            (m.take.empty()
                 ? std::string("never measured: no image was ever ready when asked for")
                 : fixedText(m.take.quantile(0.5), 2) + " us, 99 % under " + fixedText(m.take.quantile(0.99), 2) +
                       " us, library and producer together" + producerText(producer, &ProducerTimes::take)));
  printData("giving it back:   " + fixedText(m.release.quantile(0.5), 2) + " us, 99 % under " +
            fixedText(m.release.quantile(0.99), 2) + " us" + producerText(producer, &ProducerTimes::release));
  if (producer && !m.take.empty())
    printData("of it ours:       " + fixedText(both - producer->take - producer->release, 2) + " us an image");
  printData("share of a frame: " + fixedText(both * rate / 1e4, 3) + " % of the time between two images");
  printData("processor time:   " + fixedText(m.processorSeconds * 1e6 / static_cast<double>(m.images), 1) +
            " us an image in this process, the producer's threads included");
}

void bench(Session& session, const BenchOptions& options) {
  if (options.seconds <= 0 || options.buffers == 0)
    throw ToolError("seconds and buffers must be more than 0", session.command("bench --seconds 5"), ExitCode::kUsage);
  if (!options.producer.empty())
    return measureProducer(session.options(), options);
  Measurement m;
  {
    const ModuleView view(session, "device", Use::kControl);
    m = measure(*openSource(view, options.buffers), options);
    if (m.images == 0) {
      throwIfInterrupted();
      const Trigger trigger = findTrigger(view);
      throw ToolError("no image came" + trigger.reason(), session.command(trigger.next()));
    }
  }
  throwIfInterrupted();
  const std::optional<ProducerTimes> producer = timesOfProducer(session, options);
  if (session.options().json)
    printJson(benchJson(m, producer));
  else
    printMeasurement(m, producer);
  throwIfInterrupted();
}

}  // namespace

void addBench(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("bench", "Measure how fast this machine takes images from this camera");
  auto options = std::make_shared<BenchOptions>();
  addNumberOption(*command, "-s,--seconds", options->seconds, "SECONDS",
                  "How long with the library, and then without it; 5 when not given");
  addNumberOption(*command, "--buffers", options->buffers, "N", "Buffers of the stream; 16 when not given");
  command->add_flag("--touch", options->touch, "Read every byte of every image");
  command->add_option("--of-producer", options->producer)->group("");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi bench\n  ovi bench --seconds 10 --touch --json");
  command->callback([=, &action, &common] {
    common.withoutLibrary = !options->producer.empty();
    action = [=](Session& session) { bench(session, *options); };
  });
}

}  // namespace tool
