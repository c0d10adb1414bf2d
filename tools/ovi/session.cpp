// One run of the tool against the library: its start, the search for cameras, and the opening of the one that is meant.
#include "session.h"

#include <algorithm>
#include <utility>

#include "paths.h"
#include "platform/console.h"
#include "printable.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

constexpr std::size_t kMaxMessages = 200;

// Folders in which the virtual camera may be: beside the tool, or where it is installed.
std::vector<std::filesystem::path> virtualCameraFolders() {
  const std::filesystem::path own = programFolder();
  return {own, (own / OVI_PRODUCER_DIR).lexically_normal()};
}

bool sameFolder(const std::filesystem::path& a, const std::filesystem::path& b) {
  std::error_code error;
  return std::filesystem::equivalent(a, b, error) && !error;
}

// Whether the library would load other producers with this one.
bool hasNeighbours(const std::filesystem::path& file) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(file.parent_path(), error), end; !error && entry != end;
       entry.increment(error))
    if (entry->path().extension() == file.extension() && entry->path().filename() != file.filename())
      return true;
  return false;
}

}  // namespace

bool libraryCanName(const std::string& folder) {
  return fromLibraryText(toLibraryText(folder)) == folder &&
         folder.find_first_of(searchPathSeparators()) == std::string::npos;
}

Session::Session(const CommonOptions& options) : options_(options) {
  if (options.withoutLibrary)
    return;
  const auto level = options.verbose ? ovi::LogLevel::kDebug : ovi::LogLevel::kWarning;
  library_ = std::make_unique<ovi::Library>(level, [this](ovi::LogLevel l, std::string_view m) { remember(l, m); });
}

void Session::remember(ovi::LogLevel level, std::string_view message) {
  if (level != ovi::LogLevel::kError && level != ovi::LogLevel::kWarning)
    return;
  const std::lock_guard lock(messageMutex_);
  messages_.push_back(printable(fromLibraryText(message)));
  if (messages_.size() > kMaxMessages)
    messages_.pop_front();
}

bool Session::hasMessage(std::string_view beginning) {
  const std::lock_guard lock(messageMutex_);
  return std::ranges::any_of(messages_, [&](const std::string& message) { return message.starts_with(beginning); });
}

std::vector<std::string> Session::takeMessages() {
  const std::lock_guard lock(messageMutex_);
  std::vector<std::string> taken(messages_.begin(), messages_.end());
  messages_.clear();
  for (std::string& message : taken)
    message = withOwnPath(std::move(message));
  return taken;
}

std::string Session::searchPath() const {
  if (!options_.producer.empty()) {
    const std::filesystem::path file = std::filesystem::absolute(pathFromText(options_.producer));
    std::error_code error;
    if (!std::filesystem::exists(file, error))
      throw ToolError(error ? "the producer " + pathText(file) + " cannot be looked at: " + error.message()
                            : "there is no producer " + pathText(file),
                      error ? "let this user read its folder" : "give the path of a .cti file", ExitCode::kUsage);
    if (const std::filesystem::path only = soleProducer(); !only.empty() && only.extension() != ".cti")
      throw ToolError("the library loads no file named " + pathText(only.filename()) +
                          ": the name of a producer ends with .cti, in small letters",
                      "give the path of a .cti file", ExitCode::kUsage);
    return pathText(std::filesystem::is_directory(file, error) ? file : file.parent_path());
  }
  // The environment's folders are searched anyway; the virtual camera joins them unless it is there already.
  const std::vector<std::string> known = split(environmentVariable("GENICAM_GENTL64_PATH"), searchPathSeparators());
  for (const std::filesystem::path& folder : virtualCameraFolders()) {
    std::error_code error;
    if (!std::filesystem::exists(folder / kVirtualProducer, error))
      continue;
    const bool listed =
        std::ranges::any_of(known, [&](const std::string& k) { return sameFolder(pathFromText(k), folder); });
    return listed ? std::string() : pathText(folder);
  }
  return {};
}

std::filesystem::path Session::soleProducer() const {
  const std::filesystem::path wanted = pathFromText(options_.producer);
  std::error_code error;
  return wanted.empty() || std::filesystem::is_directory(wanted, error) ? std::filesystem::path()
                                                                        : std::filesystem::absolute(wanted);
}

// The folder as the library can take it: one with a single producer when only that is meant, or when the library could
// not be told the name of the folder.
std::string Session::libraryPath(const std::string& folder) {
  std::filesystem::path only = soleProducer();
  if (only.empty() && !folder.empty() && options_.producer.empty() && !libraryCanName(folder))
    only = pathFromText(folder) / kVirtualProducer;
  if (!only.empty() && (!libraryCanName(folder) || hasNeighbours(only))) {
    sole_ = std::make_unique<SoleProducer>(only);
    soleHome_ = pathText(only.parent_path());
    takeMessages();
  }
  const std::string path = sole_ ? pathText(sole_->folder()) : folder;
  if (!libraryCanName(path))
    throw ToolError("the library cannot be told of the folder " + path +
                        ": its name has letters that this system's code page lacks, or separates folders",
                    "rename the folder, or name one producer in it: --producer FILE.cti");
  return path;
}

// What the library says about the folder of a single producer is meant about the producer's own.
std::string Session::withOwnPath(std::string text) const {
  if (!sole_)
    return text;
  const std::string folder = pathText(sole_->folder());
  for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos; at += soleHome_.size())
    text.replace(at, folder.size(), soleHome_);
  return text;
}

const std::vector<Camera>& Session::cameras() {
  if (cameras_)
    return *cameras_;
  const std::string path = toLibraryText(libraryPath(searchPath()));
  ProgressLine line;
  const auto show = [&](const oviDiscoveryInfo& info) {
    line.show(info.progress / 100.0, "searching, " + std::to_string(info.deviceCount) + " found");
  };
  const std::vector<ovi::DeviceInfo> found =
      library_->discover(std::chrono::milliseconds(options_.timeout), show, path, !options_.producer.empty());
  line.clear();
  cameras_.emplace();
  for (const ovi::DeviceInfo& info : found) {
    cameras_->push_back(describeCamera(info, cameras_->size() + 1));
    cameras_->back().producerPath = withOwnPath(cameras_->back().producerPath);
  }
  return *cameras_;
}

const Camera& Session::pick(const std::string& name) {
  const std::vector<Camera>& all = cameras();
  if (all.empty())
    throw ToolError("no camera was found\n" + explainNoCameras(), command("doctor", {}));
  if (name.empty())
    return pickUnnamed();
  const std::vector<const Camera*> matches = camerasNamed(all, name);
  // One camera that several producers lead to is the first for the library, too.
  const auto isFirst = [&](const Camera* camera) { return camera->id == matches.front()->id; };
  if (!matches.empty() && std::ranges::all_of(matches, isFirst))
    return *matches.front();
  if (matches.size() > 1)
    throw ToolError("\"" + name + "\" means several cameras:" + cameraLines(matches),
                    "name one by its serial number: --camera " + matches.front()->shortName(), ExitCode::kUsage);
  std::vector<const Camera*> present;
  for (const Camera& camera : all)
    present.push_back(&camera);
  const std::string nearest = nearestCameraName(all, name);
  throw ToolError("there is no camera \"" + name + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?") +
                      " There are:" + cameraLines(present),
                  command("list", {}), ExitCode::kUsage);
}

// The only one. Virtual cameras step back when there is a real one, and of several the first is as good as any: nobody
// looks for a certain one.
const Camera& Session::pickUnnamed() {
  std::vector<const Camera*> real;
  for (const Camera& camera : cameras())
    if (!camera.isVirtual)
      real.push_back(&camera);
  if (real.size() > 1)
    throw ToolError(
        "there are several cameras, and none was named:" + cameraLines(real),
        "name one by number, serial number, user-defined name, model or ID: --camera " + real.front()->shortName(),
        ExitCode::kUsage);
  if (real.size() == 1)
    return *real.front();
  const Camera& first = cameras().front();
  if (cameras().size() > 1 && !std::exchange(chosen_, true))
    printNote("using the virtual camera " + first.shortName() + "; --camera names another");
  return first;
}

ovi::Device Session::open(const std::string& name, Use use) {
  const Camera& camera = pick(name.empty() ? options_.camera : name);
  takeMessages();
  const auto openWith = [&](ovi::Access access) {
    return ovi::Device(toLibraryText(camera.id), access, std::chrono::milliseconds(options_.timeout));
  };
  const auto held = [](const ovi::Error& error) {
    return error.result() == OVI_ERR_NO_ACCESS || error.result() == OVI_ERR_RESOURCE_IN_USE;
  };
  try {
    if (use == Use::kControl)
      return openWith(ovi::Access::kExclusive);
    try {
      return openWith(ovi::Access::kControl);
    } catch (const ovi::Error& error) {
      if (!held(error))
        throw;
      return openWith(ovi::Access::kReadOnly);
    }
  } catch (const ovi::Error& error) {
    const std::vector<std::string> messages = takeMessages();
    const std::string reason = messages.empty() ? error.code().message() : messages.back();
    throw ToolError("cannot open camera " + camera.shortName() + " (" + camera.model + "): " + reason,
                    camera.accessStatus == 4 || held(error)
                        ? "another program holds it: close that program, then " + command("info", camera.shortName())
                        : command("list"));
  }
}

std::string Session::command(const std::string& words) const {
  return command(words, options_.camera);
}

std::string Session::command(const std::string& words, const std::string& camera) const {
  return "ovi " + words + (options_.producer.empty() ? "" : " --producer " + shellWord(options_.producer)) +
         (camera.empty() ? "" : " --camera " + shellWord(camera));
}

std::vector<std::string> Session::producers() {
  std::vector<std::string> paths = library_->producers();
  for (std::string& path : paths)
    path = withOwnPath(fromLibraryText(path));
  return paths;
}

std::string Session::producerFile(const Camera& camera) {
  std::error_code error;
  const std::filesystem::path told = pathFromText(camera.producerPath);
  if (std::filesystem::is_regular_file(pathFromText(options_.producer), error))
    return options_.producer;
  if (std::filesystem::is_regular_file(told, error))
    return camera.producerPath;
  const std::vector<std::string> all = producers();
  const auto same = std::ranges::find_if(
      all, [&](const std::string& file) { return pathFromText(file).filename() == told.filename(); });
  if (same != all.end())
    return *same;
  return all.size() == 1 ? all.front() : camera.producerPath;
}

std::filesystem::path Session::loadedProducer(const Camera& camera) {
  const std::filesystem::path file = pathFromText(producerFile(camera));
  return sole_ ? sole_->folder() / file.filename() : file;
}

std::string Session::checkCommand(const std::string& words, const Camera& camera) {
  return "ovi check " + shellWord(producerFile(camera)) + " " + words + " --camera " + shellWord(camera.shortName());
}

std::vector<std::string> Session::folders() const {
  std::vector<std::string> folders;
  if (options_.producer.empty())
    folders = split(environmentVariable("GENICAM_GENTL64_PATH"), searchPathSeparators());
  if (const std::string own = searchPath(); !own.empty())
    folders.push_back(own);
  return folders;
}

std::string Session::explainNoCameras() {
  const std::filesystem::path only = soleProducer();
  const std::vector<std::string> searched = folders();
  std::string text = "  searched: ";
  if (!only.empty())
    text += "this producer alone: " + pathText(only);
  else
    text += searched.empty() ? "no folder at all; GENICAM_GENTL64_PATH is not set" : join(searched, ", ");
  const std::vector<std::string> files = producers();
  text += "\n  producers: ";
  if (!files.empty())
    text += join(files, ", ");
  else
    text += only.empty() ? "none (no *.cti file in these folders)" : "none (the library loads no file of this name)";
  for (const std::string& message : takeMessages())
    if (!message.starts_with("timeout discovery"))
      text += "\n  " + message;
  return text;
}

}  // namespace tool
