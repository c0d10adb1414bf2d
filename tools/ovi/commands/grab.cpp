// ovi grab: one image from a camera.
#include <memory>
#include <nlohmann/json.hpp>

#include "acquisition.h"
#include "commands.h"
#include "image_saver.h"
#include "module_view.h"
#include "paths.h"
#include "picture.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

void grab(Session& session, const std::string& output) {
  const std::filesystem::path file = pathFromText(output);
  const std::string extension = pathText(file.extension());
  if (!equalsIgnoringCase(extension, ".png") && !equalsIgnoringCase(extension, ".raw"))
    throw ToolError("\"" + output + "\" does not say in which format: its name ends neither with .png nor with .raw",
                    session.command("grab -o first.png"), ExitCode::kUsage);
  const SaveFormat format = equalsIgnoringCase(extension, ".raw") ? SaveFormat::kRaw : SaveFormat::kPng;
  const ModuleView view(session, "device", Use::kControl);
  AcquisitionOptions options;
  options.frames = 1;
  options.buffers = 4;
  nlohmann::ordered_json json;
  std::string description;
  AcquisitionReports reports;
  reports.image = [&](const ovi::Image& image, Ledger&) {
    saveImage(image, file, format);
    description = std::to_string(image.width()) + " x " + std::to_string(image.height()) + " " +
                  pixelFormatName(image.pixelFormat()) + ", frame " + std::to_string(image.frameID());
    json = {{"file", output},
            {"width", image.width()},
            {"height", image.height()},
            {"pixelFormat", pixelFormatName(image.pixelFormat())},
            {"frameID", image.frameID()}};
  };
  const Ledger ledger = acquire(view, options, reports);
  if (ledger.delivered == 0) {
    throwIfInterrupted();
    const Trigger trigger = findTrigger(view);
    throw ToolError("no image came within 3 seconds" + trigger.reason(), session.command(trigger.next()));
  }
  if (session.options().json)
    printJson(json);
  else
    printNote("saved " + output + " (" + description + ")");
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

}  // namespace tool
