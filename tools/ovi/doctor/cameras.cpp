// The cameras that producers tell, those that the library lists, and why some are missing; the images of one of them.
#include "doctor/cameras.h"

#include <algorithm>
#include <optional>
#include <ranges>

#include "doctor/changed_environment.h"
#include "paths.h"
#include "platform/child_process.h"
#include "platform/console.h"
#include "text.h"

namespace tool {

namespace {

using nlohmann::ordered_json;

constexpr std::chrono::seconds kListTime{120};
constexpr std::chrono::seconds kTrialTime{60};

// What is the matter with a child that did not give an answer; empty when it did.
std::string childFailure(const ChildResult& child) {
  if (!child.started)
    return "could not be tried: no process could be started: " + child.refusal;
  if (child.crashed)
    return "crashes: " + child.crash;
  if (child.timedOut)
    return "hangs: no answer in time";
  return {};
}

constexpr const char* kSearchPath = "GENICAM_GENTL64_PATH";

// The search path without the folders of harmful producers.
std::string safeSearchPath(const std::vector<std::filesystem::path>& harmful) {
  std::vector<std::string> safe;
  for (const std::string& folder : split(environmentVariable(kSearchPath), searchPathSeparators()))
    if (std::ranges::none_of(harmful, [&](const std::filesystem::path& file) {
          std::error_code error;
          return std::filesystem::equivalent(file.parent_path(), pathFromText(folder), error);
        }))
      safe.push_back(folder);
  return join(safe, std::string_view(searchPathSeparators(), 1));
}

// What the library says about the cameras that producers tell.
class LibraryView {
 public:
  LibraryView(ordered_json list, const std::string& log, const ProducerExamination& producers)
      : list_(std::move(list)),
        log_(log),
        producers_(producers) {}

  /// Whether the library was asked about this camera's producer.
  bool wasAsked(const SeenCamera& camera) const {
    return list_.is_array() && std::ranges::none_of(producers_.harmful, [&](const auto& file) {
             return file.parent_path() == camera.producer.parent_path();
           });
  }
  /// Its entry in the library's list, or null.
  const ordered_json* entry(const SeenCamera& camera) const {
    for (const ordered_json& item : list_)
      if (item.value("id", "") == camera.id && mayBeOf(item.value("producerPath", ""), camera.producer))
        return &item;
    return nullptr;
  }
  /// Whether the library saw it at all, and decided about it.
  bool saw(const SeenCamera& camera) const {
    return log_.find("New acquisition device: [" + camera.id + "]") != std::string::npos;
  }

 private:
  // A producer may tell no path, or another than that of its file.
  bool mayBeOf(const std::string& told, const std::filesystem::path& producer) const {
    const std::filesystem::path name = pathFromText(told).filename();
    return name == producer.filename() || std::ranges::none_of(producers_.cameras, [&](const SeenCamera& other) {
             return other.producer.filename() == name;
           });
  }

  ordered_json list_;
  const std::string& log_;
  const ProducerExamination& producers_;
};

std::string nameOfCamera(const SeenCamera& camera) {
  std::string name = camera.model.empty() ? "camera " + camera.id : camera.model;
  if (!camera.serial.empty())
    name += ", " + camera.serial;
  if (!camera.userName.empty())
    name += ", \"" + camera.userName + "\"";
  return name + ", on " + camera.interface;
}

ordered_json cameraFacts(const SeenCamera& camera, const char* state) {
  return {{"producer", pathText(camera.producer)},
          {"interface", camera.interface},
          {"id", camera.id},
          {"vendor", camera.vendor},
          {"model", camera.model},
          {"serial", camera.serial},
          {"userName", camera.userName},
          {"state", state}};
}

// A camera that the library lists, or would list: is it free?
Finding accessFinding(const SeenCamera& camera, bool isVirtual) {
  const std::string name = nameOfCamera(camera) + ": ";
  const std::string mark = isVirtual ? ", virtual" : "";
  switch (camera.access) {
    case 2:
      return {Level::kNote, name + "another program controls it; it can only be looked at" + mark,
              "close the other program", cameraFacts(camera, "held")};
    case 3:
      return {Level::kNote, name + "it cannot be opened" + mark,
              "a network camera may be in another subnet than this machine: give it, or the adapter, a fitting address",
              cameraFacts(camera, "unreachable")};
    case 4:
      return {Level::kNote, name + "another program holds it" + mark, "close the other program",
              cameraFacts(camera, "held")};
    default:
      return {Level::kGood,
              name + (camera.access == 1 ? "available" : "its producer does not tell who holds it") + mark, "",
              cameraFacts(camera, camera.access == 1 ? "available" : "unknown")};
  }
}

Finding cameraFinding(const SeenCamera& camera, const LibraryView& library) {
  const std::string name = nameOfCamera(camera) + ": ";
  if (!library.wasAsked(camera))
    return {Level::kNote,
            name + "its producer tells of it; the library was not asked, because of the trouble with other producers",
            "", cameraFacts(camera, "not asked")};
  if (const ordered_json* const item = library.entry(camera))
    return accessFinding(camera, item->value("virtual", false));
  if (!library.saw(camera))
    return {Level::kNote, name + "its producer tells of it, but the library's search did not find it",
            "ovi list --verbose shows the search step by step", cameraFacts(camera, "not found")};
  if (camera.model.empty())
    return {Level::kNote, name + "is left out: it tells no model, and only cameras with a model are served",
            "open it with its maker's viewer, and ask the maker for newer firmware or a newer producer",
            cameraFacts(camera, "no model")};
  return {Level::kNote,
          name + "is left out: " +
              (camera.vendor.empty() ? "it tells no maker"
                                     : "its maker \"" + camera.vendor + "\" is not served by this library"),
          "use its maker's own library, or a producer that tells a maker that is served",
          cameraFacts(camera, "maker not served")};
}

void addTwins(const std::vector<SeenCamera>& cameras, Findings& findings) {
  for (auto camera = cameras.begin(); camera != cameras.end(); ++camera) {
    const auto twin = std::find_if(cameras.begin(), camera, [&](const SeenCamera& other) {
      return !camera->serial.empty() && other.serial == camera->serial && other.vendor == camera->vendor;
    });
    if (twin != camera)
      findings.push_back({Level::kNote,
                          nameOfCamera(*camera) + ": is there through " + pathText(twin->producer.filename()) + " on " +
                              twin->interface + " too",
                          "only one of them can have it at a time: name the one you mean by its ID"});
  }
}

std::vector<std::string> withProducer(const Session& session, std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), {"--json", "--timeout", std::to_string(session.options().timeout)});
  if (!session.options().producer.empty())
    arguments.insert(arguments.end(), {"--producer", session.options().producer});
  return arguments;
}

// Whether the library would load one of them, with the search path as it is now.
bool loadsAny(const Session& session, const std::vector<std::filesystem::path>& files) {
  const std::vector<std::string> folders = session.folders();
  return std::ranges::any_of(folders, [&](const std::string& folder) {
    return std::ranges::any_of(files, [&](const std::filesystem::path& file) {
      std::error_code error;
      return std::filesystem::equivalent(file.parent_path(), pathFromText(folder), error);
    });
  });
}

struct LastWords {
  std::string reason;
  std::string advice;
};

// Why one of this program's commands failed, and what it proposed. The library may have written traces around that.
LastWords lastWords(const std::string& messages) {
  const std::vector<std::string> lines = split(messages, "\r\n");
  const auto starts = [](std::string_view with) {
    return [with](const std::string& line) { return line.starts_with(with); };
  };
  const auto backwards = lines | std::views::reverse;
  const auto last = std::ranges::find_if(backwards, starts("ovi: "));
  if (last == backwards.end()) {
    const auto line = std::ranges::find_if_not(backwards, starts("try: "));
    return {line == backwards.end() ? "no reason is given" : *line, {}};
  }
  LastWords words{last->substr(5), {}};
  const auto advice = std::ranges::find_if(std::ranges::subrange(last.base(), lines.end()), starts("try: "));
  if (const auto log = std::ranges::find_if(std::ranges::subrange(last.base(), advice), starts("  log: "));
      log != advice)
    words.reason += " (" + log->substr(7) + ")";
  if (advice != lines.end())
    words.advice = advice->substr(5);
  return words;
}

// The library's list; null when it gave none, and then the result says why.
ordered_json askLibrary(const Session& session, CameraExamination& result) {
  const ChildResult child = runChild(ownProgram(), withProducer(session, {"list", "--verbose"}), kListTime);
  throwIfInterrupted();
  result.log = child.messages;
  ordered_json list = ordered_json::parse(child.output, nullptr, false);
  if (const std::string failure = childFailure(child); !failure.empty())
    result.findings.push_back({Level::kProblem, "the library's search for cameras " + failure,
                               "each producer alone may be well, but not all of them in one program: take their "
                               "folders out of the search path, one by one"});
  else if (!list.is_array())
    result.findings.push_back(
        {Level::kProblem, "the library's search for cameras failed: " + lastWords(child.messages).reason});
  return list.is_array() ? list : ordered_json();
}

}  // namespace

CameraExamination examineCameras(const Session& session, const ProducerExamination& producers) {
  CameraExamination result;
  const ChangedEnvironment safe(kSearchPath, safeSearchPath(producers.harmful));
  ordered_json list;
  if (loadsAny(session, producers.harmful))
    result.findings.push_back({Level::kNote, "the library's own list was not asked for: it would load what is broken"});
  else
    list = askLibrary(session, result);
  const LibraryView library(std::move(list), result.log, producers);
  for (const SeenCamera& camera : producers.cameras)
    result.findings.push_back(cameraFinding(camera, library));
  addTwins(producers.cameras, result.findings);
  const bool trouble =
      std::ranges::any_of(producers.producers, [](const Finding& finding) { return finding.level == Level::kProblem; });
  if (producers.cameras.empty() && trouble)
    result.findings.push_back({Level::kProblem, "no producer tells of any", "what is said about the producers above"});
  else if (producers.cameras.empty())
    result.findings.push_back(
        {Level::kProblem, "no producer tells of any",
         "is it powered and connected? A network camera needs an address in the subnet of its adapter and a firewall "
         "that lets it answer; a USB camera a USB 3 socket and the maker's driver or udev rules"});
  return result;
}

Findings examineImages(const Session& session, const std::string& camera) {
  std::vector<std::string> arguments = withProducer(session, {"stream", "--camera", camera, "--seconds", "3"});
  for (const std::string& assignment : session.options().assignments)
    arguments.insert(arguments.end(), {"--set", assignment});
  const ChildResult child = runChild(ownProgram(), arguments, kTrialTime);
  throwIfInterrupted();
  if (const std::string failure = childFailure(child); !failure.empty())
    return {{Level::kProblem, "taking images from camera " + camera + " " + failure,
             "ovi check tells what its producer does wrong"}};
  const ordered_json ledger = ordered_json::parse(child.output, nullptr, false);
  if (!ledger.is_object() || child.exitCode != 0) {
    LastWords words = lastWords(child.messages);
    return {{Level::kProblem, "camera " + camera + ": " + words.reason, std::move(words.advice),
             ledger.is_object() ? ledger : ordered_json()}};
  }
  const auto none = [&](const char* count) { return ledger.value(count, 0) == 0; };
  const bool whole = none("lost") && none("incomplete") && none("notReleased");
  const std::string text = "camera " + camera + ": " + std::to_string(ledger.value("frames", 0)) + " images in " +
                           fixedText(ledger.value("seconds", 0.0), 1) + " s: " + ledger.value("verdict", "");
  return {
      {whole ? Level::kGood : Level::kProblem, text,
       whole ? ""
             : "see what this report says about the machine; ovi stream --camera " + camera + " shows the losses live",
       ledger}};
}

}  // namespace tool
