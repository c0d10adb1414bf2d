// ovi complete: what an unfinished command line may become. Asked by the completion functions of the shells, which are
// installed with the tool.
#include <algorithm>
#include <functional>
#include <map>
#include <memory>

#include "commands.h"
#include "completion/unfinished_line.h"
#include "feature_view.h"
#include "platform/console.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// Told to the shell instead of candidates: it knows files best.
constexpr const char* kFiles = ":files";
constexpr const char* kFolders = ":folders";
// Milliseconds; somebody waits with a finger on the key.
constexpr unsigned kSearchTime = 300;

using Candidates = std::vector<Candidate>;

// The features of the camera that the line means, or of the only one.
class Lookup {
 public:
  explicit Lookup(const UnfinishedLine& line) : line_(line), session_(optionsOf(line)) {}

  Candidates cameras() {
    Candidates candidates;
    for (const Camera& camera : session_.cameras())
      candidates.push_back({camera.shortName(), camera.model + (camera.userName.empty() ? "" : ", " + camera.userName) +
                                                    (camera.isVirtual ? ", virtual" : "")});
    return candidates;
  }

  Candidates features(bool categories) {
    Candidates candidates;
    const ModuleView view = open();
    for (const FeatureNode& node : featureTree(view, false))
      if (categories || node.parameter.featureType != OVI_FEATURE_CATEGORY)
        candidates.push_back({node.name, describe(node)});
    return candidates;
  }

  // "Feature=" for what can be set, then the values of those that have a list of them.
  Candidates assignments(const std::string& word) {
    Candidates candidates;
    const std::size_t equals = word.find('=');
    const ModuleView view = open();
    if (equals == std::string::npos) {
      for (const FeatureNode& node : featureTree(view, false))
        if (isWritable(node.parameter))
          candidates.push_back({node.name + "=", describe(node)});
      return candidates;
    }
    const std::string name = word.substr(0, equals);
    for (const std::string& value : values(view, name))
      candidates.push_back({name + "=" + value});
    return candidates;
  }

  Candidates cameraFiles() {
    Candidates candidates;
    for (const std::string& name : entryNames(open(), "FileSelector"))
      candidates.push_back({name});
    return candidates;
  }

 private:
  static CommonOptions optionsOf(const UnfinishedLine& line) {
    CommonOptions options;
    options.producer = line.given("--producer");
    options.camera = line.given("--camera");
    options.timeout = kSearchTime;
    return options;
  }
  static std::string describe(const FeatureNode& node) {
    return node.parameter.featureType == OVI_FEATURE_CATEGORY ? std::string("category")
                                                              : fromLibraryText(node.parameter.displayName);
  }
  static std::vector<std::string> values(const ModuleView& view, const std::string& name) {
    switch (view.feature(name).parameter().featureType) {
      case OVI_FEATURE_ENUMERATION:
        return entryNames(view, name);
      case OVI_FEATURE_BOOLEAN:
        return {"0", "1"};
      case OVI_FEATURE_COMMAND:
        return {"1"};
      default:
        return {};
    }
  }
  ModuleView open() {
    const std::string module = line_.given("--module");
    return {session_, module.empty() ? "device" : module, Use::kRead};
  }

  const UnfinishedLine& line_;
  Session session_;
};

Candidates fixed(const std::vector<std::string>& texts) {
  Candidates candidates;
  for (const std::string& text : texts)
    candidates.push_back({text});
  return candidates;
}

Candidates valuesFor(const UnfinishedLine& line) {
  using Finder = std::function<Candidates()>;
  const std::map<std::string, Finder> finders = {
      {"CAMERA", [&] { return Lookup(line).cameras(); }},
      {"FEATURE", [&] { return Lookup(line).features(false); }},
      {"PATTERN", [&] { return Lookup(line).features(true); }},
      {"FEATURE=VALUE", [&] { return Lookup(line).assignments(line.value()); }},
      {"NAME", [&] { return Lookup(line).cameraFiles(); }},
      {"MODULE", [] { return fixed(moduleNames()); }},
      {"GROUP", [] { return fixed(checkGroupNames()); }},
      {"FORMAT",
       [] {
         return fixed({"png", "raw", "none"});
       }},
      {"DIR", [] { return Candidates{{kFolders}}; }},
  };
  const std::string& kind = line.valueKind();
  if (const auto finder = finders.find(kind); finder != finders.end())
    return finder->second();
  const bool file = kind.starts_with("FILE") || kind == "PRODUCER";
  return file ? Candidates{{kFiles}} : Candidates{};
}

// Those that go on from what was typed; when there are none, those that do in other letters.
Candidates goingOn(const Candidates& candidates, const std::string& typed) {
  Candidates found;
  for (const Candidate& candidate : candidates)
    if (candidate.text[0] == ':' || candidate.text.starts_with(typed))
      found.push_back(candidate);
  if (found.empty())
    for (const Candidate& candidate : candidates)
      if (equalsIgnoringCase(candidate.text.substr(0, typed.size()), typed))
        found.push_back(candidate);
  return found;
}

void complete(const CLI::App& app, const std::string& text) {
  std::vector<std::string> words = shellWords(text);
  words.erase(words.begin());  // The program's own name.
  const UnfinishedLine line(app, words);
  Candidates candidates;
  if (line.valueKind().empty()) {
    candidates = goingOn(line.words(), words.empty() ? std::string() : words.back());
  } else {
    try {
      candidates = goingOn(valuesFor(line), line.value());
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch): no camera, no candidates.
    }
  }
  for (const Candidate& candidate : candidates)
    printData(line.valuePrefix() + candidate.text +
              (candidate.description.empty() ? "" : "\t" + candidate.description));
}

}  // namespace

void addComplete(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("complete", "Print what an unfinished command line may become");
  command->group("");  // for shells, not for people
  auto line = std::make_shared<std::string>();
  command->add_option("LINE", *line, "The line up to the cursor, as it was typed")->required();
  command->callback([=, &app, &action, &common] {
    common.withoutLibrary = true;
    action = [=, &app](Session&) { complete(app, *line); };
  });
}

}  // namespace tool
