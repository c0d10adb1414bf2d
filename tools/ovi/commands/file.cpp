// ovi file: the files inside a camera.
#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "feature_view.h"
#include "paths.h"
#include "platform/console.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct FileOptions {
  std::string name;
  std::string path;
  std::string readBack;
  unsigned silence = 5000;
  bool yes = false;
};

constexpr std::uint32_t kCamera = OVI_MODULE_REMOTE_DEVICE;

std::vector<std::string> fileNames(const ModuleView& view) {
  if (!view.has("FileSelector"))
    throw ToolError("the camera has no files: it has no feature \"FileSelector\"", view.command("features File"));
  return entryNames(view, "FileSelector");
}

std::string knownFile(const ModuleView& view, const std::string& name) {
  const std::vector<std::string> names = fileNames(view);
  for (const std::string& known : names)
    if (equalsIgnoringCase(known, name))
      return known;
  const std::string nearest = nearestMatch(name, names);
  throw ToolError("the camera has no file \"" + name + "\"." +
                      (nearest.empty() ? "" : " Did you mean " + nearest + "?") + " Files: " + join(names, ", "),
                  view.command("file list"), ExitCode::kUsage);
}

// The progress of one transfer as a line with rate and remaining time; Ctrl-C stops the transfer.
class TransferLine {
 public:
  explicit TransferLine(std::string what) : what_(std::move(what)) {}

  bool operator()(const oviFileTransferProgress& progress) {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start_;
    if (progress.status != kFailed)  // How far it came, then.
      done_ = progress.bytesDone;
    seconds_ = elapsed.count();
    std::string text = what_ + " " + bytesText(progress.bytesDone);
    double fraction = -1.0;
    if (progress.totalBytes > 0) {
      fraction = static_cast<double>(progress.bytesDone) / static_cast<double>(progress.totalBytes);
      text += " of " + bytesText(progress.totalBytes);
    }
    if (progress.status == kRunning && progress.bytesDone > 0) {
      text += ", " + rate();
      if (fraction > 0.0)
        text += ", " + fixedText(seconds_ / fraction - seconds_, 0) + " s left";
    } else if (progress.status == kWaiting) {
      text += ", waiting for the camera";
    }
    line_.show(fraction, text, progress.status != kRunning);
    return !interrupted();
  }
  void clear() { line_.clear(); }
  std::uint64_t bytes() const { return done_; }
  double seconds() const { return seconds_; }
  std::string rate() const {
    return bytesText(static_cast<std::uint64_t>(seconds_ > 0 ? static_cast<double>(done_) / seconds_ : 0.0)) + "/s";
  }

 private:
  static constexpr std::uint32_t kRunning = 1;
  static constexpr std::uint32_t kWaiting = 2;
  static constexpr std::uint32_t kFailed = 4;

  std::string what_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::uint64_t done_ = 0;
  double seconds_ = 0;
  ProgressLine line_;
};

template<class Transfer>
void run(const ModuleView& view, TransferLine& line, const std::string& what, Transfer&& transfer) {
  view.session().takeMessages();
  try {
    transfer([&line](const oviFileTransferProgress& progress) { return line(progress); });
    line.clear();
  } catch (const ovi::Error& error) {
    line.clear();
    if (interrupted())
      throw ToolError("interrupted: " + what + " was stopped after " + bytesText(line.bytes()), {},
                      ExitCode::kInterrupted);
    const std::vector<std::string> messages = view.session().takeMessages();
    std::string reason = error.code().message();
    for (const std::string& message : messages)
      reason += "\n  " + message;
    throw ToolError(what + " failed: " + reason, view.command("file list"));
  }
}

void report(const ModuleView& view, const TransferLine& line, const std::string& what, const std::string& name,
            const std::string& path) {
  if (view.session().options().json) {
    nlohmann::ordered_json json;
    json["cameraFile"] = name;
    json["file"] = path;
    json["bytes"] = line.bytes();
    json["seconds"] = line.seconds();
    printJson(json);
  } else {
    printNote(what + ": " + std::to_string(line.bytes()) + " bytes in " + fixedText(line.seconds(), 2) + " s, " +
              line.rate());
  }
}

// A transfer that ends early leaves the camera's file open.
void closeOpenFile(const ModuleView& view) {
  oviSetFeatureEnum(view.handle(), "FileOperationSelector", "Close", kCamera);
  oviExecuteCommand(view.handle(), "FileOperationExecute", kCamera);
}

void readFile(const ModuleView& view, const FileOptions& options, const std::string& name, const std::string& path) {
  TransferLine line("reading " + name);
  try {
    run(view, line, "reading " + name + " into " + path, [&](const ovi::TransferFunction& progress) {
      view.device().upload(toLibraryText(path), toLibraryText(name), std::chrono::milliseconds(options.silence),
                           progress);
    });
  } catch (const ToolError&) {
    closeOpenFile(view);
    throw;
  }
  report(view, line, "read " + name + " into " + path, name, path);
}

void listFiles(Session& session) {
  const ModuleView view(session, "device", Use::kControl);
  const std::vector<std::string> names = fileNames(view);
  char before[512] = {};
  oviGetFeature(view.handle(), "FileSelector", before);
  Table table({"file", "bytes", "can be opened for"});
  nlohmann::ordered_json json = nlohmann::ordered_json::array();
  for (const std::string& name : names) {
    std::int64_t size = -1;
    std::vector<std::string> modes;
    if (oviSetFeatureEnum(view.handle(), "FileSelector", toLibraryText(name).c_str(), kCamera) == OVI_SUCCESS) {
      if (oviGetFeatureInt(view.handle(), "FileSize", &size, kCamera) != OVI_SUCCESS)
        size = -1;
      if (view.has("FileOpenMode"))
        modes = entryNames(view, "FileOpenMode");
    }
    table.add({name, size < 0 ? "?" : std::to_string(size), join(modes, ", ")});
    nlohmann::ordered_json item;
    item["name"] = name;
    if (size >= 0)
      item["bytes"] = size;
    item["openModes"] = modes;
    json.push_back(std::move(item));
  }
  oviSetFeatureEnum(view.handle(), "FileSelector", before, kCamera);
  if (session.options().json)
    printJson(json);
  else
    printTable(table);
}

void get(Session& session, const FileOptions& options) {
  const ModuleView view(session, "device", Use::kControl);
  readFile(view, options, knownFile(view, options.name), options.path);
}

// Which of the camera's files this one is for, told from its first bytes.
std::string typeOf(const ModuleView& view, const std::string& path) {
  char type[512] = {};
  oviGetUpdateFileType(view.device().handle(), toLibraryText(path).c_str(), type, sizeof(type));
  if (type[0] == 0)
    throw ToolError(path + " does not say which of the camera's files it is for. Files: " + join(fileNames(view), ", "),
                    view.command("file put " + path + " --as NAME"), ExitCode::kUsage);
  return fromLibraryText(type);
}

bool isFirmware(const std::string& name) {
  for (const char* word : {"firmware", "application", "bitstream", "boot", "package", "fpga", "update"})
    if (matchesPattern(word, name))
      return true;
  return false;
}

// Closed with a checksum that is not theirs, the part of the data that was written is dropped.
void dropOpenFile(const ModuleView& view, const std::string& path) {
  std::ifstream stream(pathFromText(path), std::ios::binary);
  std::uint32_t sum = 0;
  std::uint32_t shift = 0;
  for (std::istreambuf_iterator<char> byte(stream), end; byte != end; ++byte, shift = (shift + 8) % 32)
    sum += static_cast<std::uint32_t>(static_cast<unsigned char>(*byte)) << shift;
  oviSetFeatureInt(view.handle(), "FileChecksum", sum + 1, kCamera);
  closeOpenFile(view);
}

void put(Session& session, const FileOptions& options) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(pathFromText(options.path), error))
    throw ToolError("there is no file " + options.path, "give the path of the file to send", ExitCode::kUsage);
  const ModuleView view(session, "device", Use::kControl);
  const std::string name = knownFile(view, options.name.empty() ? typeOf(view, options.path) : options.name);
  if (isFirmware(name) && !options.yes)
    throw ToolError("writing " + name + " changes the camera's firmware, and a wrong or broken file may disable it",
                    view.command("file put " + options.path + " --as " + name + " --yes"), ExitCode::kUsage);
  TransferLine line("writing " + name);
  try {
    run(view, line, "writing " + options.path + " to " + name, [&](const ovi::TransferFunction& progress) {
      view.device().download(toLibraryText(options.path), toLibraryText(name),
                             std::chrono::milliseconds(options.silence), progress);
    });
  } catch (const ToolError&) {
    dropOpenFile(view, options.path);
    throw;
  }
  report(view, line, "wrote " + options.path + " to " + name, name, options.path);
  if (!options.readBack.empty())
    readFile(view, options, name, options.readBack);
}

}  // namespace

void addFile(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("file", "List, read and write the files inside a camera");
  command->require_subcommand(1);
  command->footer(
      "Examples:\n  ovi file list\n  ovi file get UserSet1 settings.bin\n  ovi file put settings.bin --as UserSet1\n"
      "  ovi file put firmware.bin --yes");
  auto options = std::make_shared<FileOptions>();

  CLI::App* listCommand = command->add_subcommand("list", "Show the camera's files");
  addCameraOption(*listCommand, common);
  listCommand->footer("Examples:\n  ovi file list\n  ovi file list --json");
  listCommand->callback([&action] { action = listFiles; });

  CLI::App* getCommand = command->add_subcommand("get", "Read a file of the camera");
  getCommand->add_option("NAME", options->name, "The camera's file")->required();
  getCommand->add_option("FILE", options->path, "The file to write")->required();
  addNumberOption(*getCommand, "--silence", options->silence, "MS",
                  "Milliseconds that the camera may be silent; 5000 when not given");
  addCameraOption(*getCommand, common);
  getCommand->footer("Examples:\n  ovi file get UserSet1 settings.bin");
  getCommand->callback([=, &action] { action = [=](Session& session) { get(session, *options); }; });

  CLI::App* putCommand = command->add_subcommand("put", "Write a file of the camera");
  putCommand->add_option("FILE", options->path, "The file to read")->required();
  putCommand->add_option("--as", options->name, "The camera's file; found from the file's first bytes when not given")
      ->type_name("NAME");
  putCommand->add_option("--read-back", options->readBack, "Afterwards read it again into this file")
      ->type_name("FILE");
  putCommand->add_flag("--yes", options->yes, "Write firmware, which may disable a camera");
  addNumberOption(*putCommand, "--silence", options->silence, "MS",
                  "Milliseconds that the camera may be silent; 5000 when not given");
  addCameraOption(*putCommand, common);
  putCommand->footer("Examples:\n  ovi file put settings.bin --as UserSet1\n  ovi file put firmware.bin --yes");
  putCommand->callback([=, &action] { action = [=](Session& session) { put(session, *options); }; });
}

}  // namespace tool
