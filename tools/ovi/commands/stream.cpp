// ovi stream: images from one camera or several, counted, checked and saved.
#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>

#include "commands.h"
#include "commands/stream_run.h"
#include "paths.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

constexpr const char* kUsualFolder = "pictures";

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

// The folder for one of several cameras, in whatever letters it is named.
std::string folderName(const Camera& camera) {
  std::string name = camera.shortName();
  std::ranges::replace_if(
      name, [](char c) { return std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos; }, '_');
  return name == "." || name == ".." ? "_" : name;
}

std::filesystem::path makeFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error)
    throw ToolError("cannot make the folder " + pathText(folder) + ": " + error.message());
  return folder;
}

void showProgress(ProgressLine& line, const std::vector<std::unique_ptr<StreamRun>>& runs, std::uint64_t frames) {
  double fraction = frames == 0 ? -1.0 : 1.0;
  std::string text;
  for (const auto& run : runs) {
    if (frames != 0)
      fraction = std::min(fraction, static_cast<double>(run->ledger().delivered) / static_cast<double>(frames));
    text += (text.empty() ? "" : " | ") + (runs.size() == 1 ? "" : run->name() + ": ") + run->liveText();
  }
  line.show(fraction, text);
}

void summarise(const Session& session, const StreamOptions& options,
               const std::vector<std::unique_ptr<StreamRun>>& runs) {
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
    printNote((runs.size() == 1 ? "" : run->name() + ": ") + verdictText(ledger));
  }
  if (session.options().json)
    printJson(runs.size() == 1 ? all.front() : all);
}

void failForRuns(const Session& session, const StreamOptions& options,
                 const std::vector<std::unique_ptr<StreamRun>>& runs) {
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
  std::vector<std::unique_ptr<StreamRun>> runs;
  for (const Camera* camera : cameras) {
    std::filesystem::path folder;
    if (saves) {
      const std::filesystem::path base = pathFromText(options.folder.empty() ? kUsualFolder : options.folder);
      folder = makeFolder(cameras.size() == 1 ? base : base / pathFromText(folderName(*camera)));
    }
    runs.push_back(std::make_unique<StreamRun>(session, *camera, options, folder));
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
                  "Milliseconds without an image that end it; 3000 when not given");
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
