// ovi stream: images from one camera or several, counted, checked and saved.
#include <algorithm>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <thread>

#include "acquisition.h"
#include "camera_time.h"
#include "commands.h"
#include "image_saver.h"
#include "module_view.h"
#include "paths.h"
#include "pattern_check.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

constexpr const char* kUsualFolder = "pictures";

struct StreamOptions {
  AcquisitionOptions acquisition;
  std::vector<std::string> cameras;
  std::string save = "none";
  std::string folder;
  std::uint32_t buffers = 0;
  unsigned imageTimeout = 3000;
  bool all = false;
  bool checkPattern = false;
  bool cameraTime = false;
};

// One camera's acquisition, on a thread of its own.
class Run {
 public:
  /// @param folder  for the images; empty when they are not saved
  Run(Session& session, const Camera& camera, const StreamOptions& options, std::filesystem::path folder)
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
  ~Run() { join(); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void start() {
    thread_ = std::thread([this] { work(); });
  }
  void join() {
    if (thread_.joinable())
      thread_.join();
  }
  bool done() const {
    const std::lock_guard lock(mutex_);
    return done_;
  }
  Ledger ledger() const {
    const std::lock_guard lock(mutex_);
    return ledger_;
  }
  std::exception_ptr failure() const { return failure_; }
  const std::string& name() const { return name_; }
  const Trigger& trigger() const { return trigger_; }

  // The camera's part of the live line.
  std::string liveText() const {
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

 private:
  // Writing files is slower than a camera: with a known number of images there is a buffer for each, as far as memory
  // goes.
  std::uint32_t usualBuffers() const {
    constexpr std::uint64_t kUsual = 16;
    constexpr std::uint64_t kMemory = std::uint64_t{1} << 30U;
    std::int64_t size = 0;
    if (folder_.empty() || acquisition_.frames == 0 || oviGetImageSize(device_.handle(), &size) != OVI_SUCCESS ||
        size <= 0)
      return kUsual;
    const std::uint64_t wanted = std::max(kUsual, acquisition_.frames + 4);
    return static_cast<std::uint32_t>(std::min(wanted, std::max(kUsual, kMemory / static_cast<std::uint64_t>(size))));
  }

  void work() {
    Ledger result;
    try {
      AcquisitionReports reports;
      reports.image = [this](const ovi::Image& image, Ledger& ledger) { take(image, ledger); };
      reports.progress = [this](const ovi::Stream& stream, const Ledger& ledger) { publish(stream, ledger); };
      if (cameraTime_)
        reports.cameraTime = [this](const ovi::Image& image) { return cameraTime_->of(image); };
      result = acquire(device_, acquisition_, reports);
    } catch (...) {
      failure_ = std::current_exception();
      result = ledger();
    }
    const std::lock_guard lock(mutex_);
    ledger_ = result;
    done_ = true;
  }

  void take(const ovi::Image& image, Ledger& ledger) {
    if (pattern_ && !check_.matches(image))
      ++ledger.badPattern;
    if (folder_.empty())
      return;
    const std::filesystem::path file = folder_ / imageFileName(image, format_);
    saveImage(image, file, format_);
    if (!json_)
      printData(pathText(file));
  }

  void publish(const ovi::Stream& stream, const Ledger& ledger) {
    const auto now = std::chrono::steady_clock::now();
    const std::lock_guard lock(mutex_);
    ledger_ = ledger;
    if (now - asked_ < std::chrono::milliseconds(250))
      return;
    asked_ = now;
    if (oviGetFeatureInt(stream.handle(), "StreamOutputBufferCount", &filled_, OVI_MODULE_DATA_STREAM) != OVI_SUCCESS)
      filled_ = -1;
  }

  std::string name_;
  bool json_;
  std::filesystem::path folder_;
  SaveFormat format_;
  ModuleView view_;
  const ovi::Device& device_;
  AcquisitionOptions acquisition_;
  std::unique_ptr<TestPattern> pattern_;
  std::unique_ptr<CameraTime> cameraTime_;
  PatternCheck check_;
  Trigger trigger_;
  std::exception_ptr failure_;
  mutable std::mutex mutex_;
  Ledger ledger_;
  std::int64_t filled_ = -1;
  std::chrono::steady_clock::time_point asked_;
  bool done_ = false;
  std::thread thread_;
};

std::vector<const Camera*> chosenCameras(Session& session, const StreamOptions& options) {
  std::vector<const Camera*> chosen;
  if (options.all) {
    for (const Camera& camera : session.cameras())
      chosen.push_back(&camera);
    if (!chosen.empty())
      return chosen;
  }
  if (options.cameras.empty())
    chosen.push_back(&session.pick(session.options().camera));
  for (const std::string& name : options.cameras) {
    const Camera& camera = session.pick(name);
    if (std::ranges::find(chosen, &camera) != chosen.end())
      throw ToolError("camera " + camera.shortName() + " is named twice", session.command("list", {}),
                      ExitCode::kUsage);
    chosen.push_back(&camera);
  }
  return chosen;
}

std::filesystem::path makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    throw ToolError("cannot make the folder " + pathText(folder) + ": " + error.message());
  return folder;
}

void showProgress(ProgressLine& line, const std::vector<std::unique_ptr<Run>>& runs, std::uint64_t frames) {
  double fraction = frames == 0 ? -1.0 : 1.0;
  std::string text;
  for (const auto& run : runs) {
    if (frames != 0)
      fraction = std::min(fraction, static_cast<double>(run->ledger().delivered) / static_cast<double>(frames));
    text += (text.empty() ? "" : " | ") + (runs.size() == 1 ? "" : run->name() + ": ") + run->liveText();
  }
  line.show(fraction, text);
}

void summarise(const Session& session, const StreamOptions& options, const std::vector<std::unique_ptr<Run>>& runs) {
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const auto& run : runs) {
    const Ledger ledger = run->ledger();
    nlohmann::ordered_json json{{"camera", run->name()}};
    json.update(ledgerJson(ledger));
    all.push_back(std::move(json));
    if (session.options().json)
      continue;
    printNote((runs.size() == 1 ? "" : run->name() + ": ") + std::to_string(ledger.delivered) +
              (ledger.delivered == 1 ? " frame in " : " frames in ") + fixedText(ledger.seconds, 2) + " s, " +
              rateText(ledger) + (ledger.delivered == 0 ? "" : ", latency " + latencyText(ledger)) + "; " +
              lossText(ledger));
    if (options.cameraTime && !ledger.ofCamera && ledger.delivered > 0)
      printNote("the images carried no time stamp of the camera");
    printNote((runs.size() == 1 ? "" : run->name() + ": ") + verdictText(ledger) +
              (interrupted() && ledger.delivered == 0 ? run->trigger().reason() : ""));
  }
  if (session.options().json)
    printJson(runs.size() == 1 ? all.front() : all);
}

void failForRuns(const Session& session, const StreamOptions& options, const std::vector<std::unique_ptr<Run>>& runs) {
  for (const auto& run : runs)
    if (run->failure())
      std::rethrow_exception(run->failure());
  for (const auto& run : runs) {
    const Ledger ledger = run->ledger();
    if (!ledger.stopError.empty())
      throw ToolError(run->name() + ": the camera could not be stopped: " + ledger.stopError,
                      session.command("list", {}));
    const bool none = ledger.delivered == 0 && ledger.incomplete == 0;
    if (ledger.timedOut || (none && !interrupted()))
      throw ToolError(run->name() + ": no " + (ledger.delivered == 0 ? "" : "further ") +
                          (ledger.incomplete == 0 ? "" : "whole ") + "image came " +
                          (ledger.timedOut ? "within " + std::to_string(options.imageTimeout) + " ms"
                                           : "in " + fixedText(ledger.seconds, 1) + " s") +
                          run->trigger().reason(),
                      session.command(run->trigger().next(), run->name()));
    if (ledger.delivered == 0 && !interrupted())
      throw ToolError(run->name() + ": no image arrived whole", session.command("doctor", {}));
  }
  throwIfInterrupted();
  for (const auto& run : runs)
    if (run->ledger().badPattern > 0)
      throw ToolError(run->name() + ": " + std::to_string(run->ledger().badPattern) +
                      " images did not show the test pattern");
}

void stream(Session& session, const StreamOptions& options) {
  const bool saves = saveFormatFromText(options.save) != SaveFormat::kNone;
  if (!saves && !options.folder.empty())
    throw ToolError("--to names a folder, but no image is saved", "--save png or --save raw with it", ExitCode::kUsage);
  const std::vector<const Camera*> cameras = chosenCameras(session, options);
  std::vector<std::unique_ptr<Run>> runs;
  for (const Camera* camera : cameras) {
    std::filesystem::path folder;
    if (saves) {
      const std::filesystem::path base = pathFromText(options.folder.empty() ? kUsualFolder : options.folder);
      folder = makeFolder(cameras.size() == 1 ? base : base / pathFromText(camera->shortName()));
    }
    runs.push_back(std::make_unique<Run>(session, *camera, options, folder));
  }
  for (const auto& run : runs)
    run->start();
  {
    ProgressLine line;
    const auto isDone = [](const auto& run) { return run->done(); };
    while (!std::ranges::all_of(runs, isDone)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      showProgress(line, runs, options.acquisition.frames);
    }
  }
  for (const auto& run : runs)
    run->join();
  summarise(session, options, runs);
  failForRuns(session, options, runs);
}

}  // namespace

void addStream(CLI::App& app, CommonOptions& /*common*/, Action& action) {
  CLI::App* command = app.add_subcommand("stream", "Take images, count what is lost, and save them if wanted");
  auto options = std::make_shared<StreamOptions>();
  addNumberOption(*command, "-n,--frames", options->acquisition.frames, "N",
                  "Number of images; without it until Ctrl-C");
  addNumberOption(*command, "-s,--seconds", options->acquisition.seconds, "SECONDS", "For so long at most");
  command->add_option("--save", options->save, "Save every image: png, raw or none; none when not given")
      ->type_name("FORMAT");
  command->add_option("--to", options->folder, "Folder to save them in; pictures when not given")->type_name("DIR");
  addNumberOption(*command, "--buffers", options->buffers, "N",
                  "Buffers of the stream; 16 when not given, more for saving");
  addNumberOption(*command, "--image-timeout", options->imageTimeout, "MS",
                  "Milliseconds without an image that end it");
  command->add_flag("--check-pattern", options->checkPattern, "Have the camera show its test pattern, and check it");
  command->add_flag("--camera-time", options->cameraTime,
                    "Have the camera send its time stamps, and count the latency from them");
  command
      ->add_option("-c,--camera", options->cameras,
                   "Number, serial number, user-defined name, model or ID; may be "
                   "given several times")
      ->type_name("CAMERA")
      ->allow_extra_args(false);
  command->add_flag("--all", options->all, "All cameras at once");
  command->footer(
      "Examples:\n  ovi stream --frames 100\n  ovi stream --frames 10 --save png --to pictures\n"
      "  ovi stream --seconds 60 --check-pattern --json\n  ovi stream --camera 1 --camera 2 --seconds 10\n"
      "  ovi stream --frames 10 --set PixelFormat=Mono12p --save png");
  command->callback([=, &action] { action = [=](Session& session) { stream(session, *options); }; });
}

}  // namespace tool
