// ovi scan: images through the library's blocking scan, with its own check of the test pattern.
#include <atomic>
#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>

#include "acquisition.h"
#include "camera_start.h"
#include "commands.h"
#include "module_view.h"
#include "pattern_check.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct ScanOptions {
  std::int32_t images = 0;
  std::int32_t minutes = 0;
  bool checkPattern = false;
};

// The library's scan callback has no context: there is one scan in this process, and this is it.
struct Scan {
  std::uint64_t device = 0;
  std::int32_t wanted = 0;
  std::uint64_t images = 0;
  std::uint64_t bad = 0;
  std::uint64_t bytes = 0;
  std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
  ProgressLine line;

  double seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(); }
  std::string text() const {
    const double elapsed = seconds();
    return std::to_string(images) + " images, " +
           fixedText(elapsed > 0 ? static_cast<double>(images) / elapsed : 0.0, 1) + " frames/s, " +
           fixedText(elapsed > 0 ? static_cast<double>(bytes) / elapsed / 1e6 : 0.0, 1) + " MB/s, " +
           std::to_string(bad) + " bad";
  }
};

Scan* currentScan = nullptr;

void OVI_CALL onImage(std::uint8_t* /*data*/, oviImageInfo* info, std::uint8_t ok) {
  Scan& scan = *currentScan;
  ++scan.images;
  scan.bad += ok == 0 ? 1U : 0U;
  scan.bytes += std::uint64_t{info->linePitch} * info->height;
  scan.line.show(scan.wanted > 0 ? static_cast<double>(scan.images) / scan.wanted : -1.0, scan.text());
  if (interrupted())
    oviScanImgStop(scan.device);
}

void scan(Session& session, const ScanOptions& options) {
  if (options.images < 0 || options.minutes < 0 || (options.images > 0) == (options.minutes > 0))
    throw ToolError("a scan needs either a number of images or of minutes", session.command("scan --images 100"),
                    ExitCode::kUsage);
  const ModuleView view(session, "device", Use::kControl);
  const ovi::Device& device = view.device();
  std::unique_ptr<TestPattern> pattern;
  if (options.checkPattern)
    pattern = std::make_unique<TestPattern>(device);
  Scan scan;
  scan.device = device.handle();
  scan.wanted = options.images;
  currentScan = &scan;
  const std::uint32_t mode =
      (options.images > 0 ? OVI_SCAN_IMAGES : OVI_SCAN_MINUTES) | (options.checkPattern ? OVI_SCAN_CHECK_PATTERN : 0);
  session.takeMessages();
  const oviErr code = oviScanImg(device.handle(), onImage, options.images, mode, options.minutes);
  const double seconds = scan.seconds();
  scan.line.clear();
  currentScan = nullptr;
  if (session.options().json) {
    nlohmann::ordered_json json;
    json["images"] = scan.images;
    json["bad"] = scan.bad;
    json["bytes"] = scan.bytes;
    json["seconds"] = seconds;
    json["result"] = code == OVI_SUCCESS ? "Success" : ovi::makeErrorCode(code).message();
    printJson(json);
  } else {
    printNote(scan.text() + " in " + fixedText(seconds, 2) + " s");
  }
  if (interrupted() && scan.images == 0)
    if (const Trigger trigger = findTrigger(view); !trigger.text.empty())
      printNote("no image came" + trigger.reason());
  throwIfInterrupted();
  if (code != OVI_SUCCESS) {
    if (startWasRefused(session))
      throw ToolError("the scan ended early: the producer refused to start the stream",
                      session.checkCommand("--only stops", view.camera()));
    const std::vector<std::string> messages = session.takeMessages();
    if (const Trigger trigger = findTrigger(view); code == OVI_ERR_TIMEOUT && !trigger.text.empty())
      throw ToolError("the scan ended early: no image came" + trigger.reason(), session.command(trigger.next()));
    throw ToolError("the scan ended early: " + ovi::makeErrorCode(code).message() +
                        (messages.empty() ? std::string() : " (" + messages.back() + ")"),
                    session.command("stream --frames 100"));
  }
  if (scan.bad > 0)
    throw ToolError(std::to_string(scan.bad) +
                        " images did not show the test pattern; a scan has one buffer, so images that come faster than "
                        "they are checked are missed and break the pattern",
                    session.command("scan --set AcquisitionFrameRate=5 --images 10 --check-pattern"));
}

}  // namespace

void addScan(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("scan", "Take images through the library's blocking scan");
  auto options = std::make_shared<ScanOptions>();
  addNumberOption(*command, "-n,--images", options->images, "N", "So many images");
  addNumberOption(*command, "--minutes", options->minutes, "MINUTES", "For so long");
  command->add_flag("--check-pattern", options->checkPattern, "Have the camera show its test pattern, and check it");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi scan --images 100\n  ovi scan --minutes 10 --check-pattern");
  command->callback([=, &action] { action = [=](Session& session) { scan(session, *options); }; });
}

}  // namespace tool
