// ovi grab and stream: images from a camera.
#include <memory>
#include <nlohmann/json.hpp>

#include "acquisition.h"
#include "commands.h"
#include "image_saver.h"
#include "paths.h"
#include "picture.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct StreamOptions {
  AcquisitionOptions acquisition;
  std::string folder;
  std::string format = "png";
};

std::string rateText(const Ledger& ledger) {
  const double bytesPerSecond = ledger.seconds > 0 ? static_cast<double>(ledger.bytes) / ledger.seconds : 0.0;
  return fixedText(ledger.framesPerSecond(), 1) + " frames/s, " + fixedText(bytesPerSecond / 1e6, 1) + " MB/s";
}

std::string lossText(const Ledger& ledger) {
  return std::to_string(ledger.lost) + " lost, " + std::to_string(ledger.incomplete) + " incomplete, " +
         std::to_string(ledger.underruns) + " without a free buffer";
}

nlohmann::ordered_json ledgerJson(const Ledger& ledger) {
  nlohmann::ordered_json json;
  json["frames"] = ledger.delivered;
  json["seconds"] = ledger.seconds;
  json["framesPerSecond"] = ledger.framesPerSecond();
  json["bytes"] = ledger.bytes;
  json["lost"] = ledger.lost;
  json["incomplete"] = ledger.incomplete;
  json["underruns"] = ledger.underruns;
  json["timedOut"] = ledger.timedOut;
  return json;
}

void grab(Session& session, const std::string& output) {
  const std::filesystem::path file = pathFromText(output);
  const SaveFormat format = file.extension() == ".raw" ? SaveFormat::kRaw : SaveFormat::kPng;
  const ovi::Device device = session.open();
  AcquisitionOptions options;
  options.frames = 1;
  options.buffers = 4;
  std::string description;
  const Ledger ledger = acquire(device, options, [&](const ovi::Image& image, const Ledger&) {
    saveImage(image, file, format);
    description = std::to_string(image.width()) + " x " + std::to_string(image.height()) + " " +
                  pixelFormatName(image.pixelFormat()) + ", frame " + std::to_string(image.frameID());
  });
  if (ledger.delivered == 0)
    throw ToolError(interrupted() ? "interrupted" : "no image came within 3 seconds: " + silenceReason(device), {},
                    interrupted() ? ExitCode::kInterrupted : ExitCode::kFailure);
  printNote("saved " + output + " (" + description + ")");
}

void stream(Session& session, const StreamOptions& options) {
  const SaveFormat format = saveFormatFromText(options.format);
  const std::filesystem::path folder = pathFromText(options.folder);
  if (!options.folder.empty()) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
      throw ToolError("cannot make the folder " + options.folder + ": " + error.message());
  }
  const ovi::Device device = session.open();
  ProgressLine line;
  const Ledger ledger = acquire(device, options.acquisition, [&](const ovi::Image& image, const Ledger& soFar) {
    if (!options.folder.empty()) {
      const std::filesystem::path file = folder / imageFileName(image, format);
      saveImage(image, file, format);
      if (!session.options().json)
        printData(pathText(file));
    }
    const double fraction = options.acquisition.frames == 0 ? -1.0
                                                            : static_cast<double>(soFar.delivered) /
                                                                  static_cast<double>(options.acquisition.frames);
    line.show(fraction, std::to_string(soFar.delivered) + " frames, " + rateText(soFar) + ", " +
                            std::to_string(soFar.lost) + " lost");
  });
  line.clear();
  if (session.options().json)
    printData(ledgerJson(ledger).dump(2));
  else
    printNote(std::to_string(ledger.delivered) + " frames in " + fixedText(ledger.seconds, 2) + " s, " +
              rateText(ledger) + "; " + lossText(ledger));
  if (ledger.timedOut)
    throw ToolError("no image came within " + std::to_string(options.acquisition.timeout.count()) +
                    " ms: " + silenceReason(device));
  if (interrupted())
    throw ToolError("interrupted", {}, ExitCode::kInterrupted);
}

}  // namespace

void addGrab(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("grab", "Take one image and save it");
  auto output = std::make_shared<std::string>("image.png");
  command->add_option("-o,--output", *output, "File to write: .png, or .raw for the bytes as they are")
      ->type_name("FILE");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi grab -o first.png\n  ovi grab --camera 2 -o second.raw");
  command->callback([=, &action] { action = [=](Session& session) { grab(session, *output); }; });
}

void addStream(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("stream", "Take images, count what is lost, and save them if wanted");
  auto options = std::make_shared<StreamOptions>();
  command->add_option("-n,--frames", options->acquisition.frames, "Number of images; without it until Ctrl-C");
  command->add_option("-s,--seconds", options->acquisition.seconds, "For so long at most");
  command->add_option("--save", options->folder, "Folder to save every image in")->type_name("DIR");
  command->add_option("--format", options->format, "png or raw")->type_name("FORMAT");
  command->add_option("--buffers", options->acquisition.buffers, "Buffers of the stream");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi stream --frames 100\n  ovi stream --frames 10 --save pictures --format png");
  command->callback([=, &action] { action = [=](Session& session) { stream(session, *options); }; });
}

}  // namespace tool
