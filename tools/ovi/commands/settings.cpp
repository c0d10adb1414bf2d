// ovi save, load and diff: a camera's settings as a readable text file.
#include <cerrno>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "camera_description.h"
#include "commands.h"
#include "paths.h"
#include "picture.h"
#include "printable.h"
#include "settings.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct SettingsOptions {
  std::string path;
  std::string other;
};

std::vector<Setting> settingsOf(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(pathFromText(path), error))
    throw ToolError(path + " is a folder", "give a file that ovi save has written", ExitCode::kUsage);
  errno = 0;
  std::ifstream stream(pathFromText(path), std::ios::binary);
  if (!stream)
    throw ToolError("cannot read " + path + ": " + systemReason(), "ovi save " + path, ExitCode::kUsage);
  std::ostringstream text;
  text << stream.rdbuf();
  return parseSettings(text.str(), path);
}

nlohmann::ordered_json settingJson(const Setting& setting, const char* value) {
  nlohmann::ordered_json json;
  json["feature"] = setting.feature;
  for (const auto& [selector, position] : setting.selectors)
    json["selectors"][selector] = position;
  json[value] = setting.value;
  return json;
}

nlohmann::ordered_json problemJson(const SettingProblem& problem, const char* wanted, const char* found) {
  nlohmann::ordered_json json = settingJson(problem.setting, wanted);
  json[found] = problem.reason;
  return json;
}

// A camera opened with its description, which is read while nobody holds the camera.
class DescribedView {
 public:
  DescribedView(Session& session, Use use, const std::string& camera = {})
      : facts_(factsOf(session, session.pick(camera.empty() ? session.options().camera : camera))),
        view_(session, "device", use, camera) {
    view_.setFacts(facts_);
  }

  operator const ModuleView&() const { return view_; }
  const Camera& camera() const { return view_.camera(); }
  /// Why there is no description; empty when there is one.
  const std::string& problem() const { return problem_; }

 private:
  std::shared_ptr<const FeatureFacts> factsOf(Session& session, const Camera& camera) {
    try {
      return describedFeatures(session, camera, ovi::Module::kRemoteDevice);
    } catch (const ToolError& error) {
      problem_ = error.what();
      return nullptr;
    }
  }

  std::string problem_;
  std::shared_ptr<const FeatureFacts> facts_;
  ModuleView view_;
};

std::vector<Setting> settingsOf(const DescribedView& view, std::vector<std::string>& notes) {
  if (!view.problem().empty())
    notes.push_back("the camera's description could not be read (" + view.problem() +
                    "): everything that can be read and written is here");
  return readSettings(view, notes);
}

// What is not among the settings, and why.
void tell(const std::vector<std::string>& notes) {
  for (const std::string& note : notes)
    printNote("note: " + note);
}

void save(Session& session, const SettingsOptions& options) {
  const DescribedView view(session, Use::kControl);
  std::vector<std::string> notes;
  const std::vector<Setting> settings = settingsOf(view, notes);
  tell(notes);
  const bool toOutput = options.path.empty() || options.path == "-";
  if (toOutput && session.options().json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const Setting& setting : settings)
      json.push_back(settingJson(setting, "value"));
    printJson(json);
    return;
  }
  const Camera& camera = view.camera();
  std::string text = "# Settings of " + camera.vendor + " " + camera.model + ", serial number " + camera.serial +
                     ", saved by ovi " + ovi::Library::version() + "\n" +
                     "# Feature = value, or Feature [Selector=value] = value; ovi load brings them into a camera.\n";
  for (const std::string& note : notes)
    text += "# " + printable(note) + "\n";
  for (const Setting& setting : settings)
    text += settingLine(setting) + "\n";
  if (toOutput) {
    text.pop_back();
    printFile(text);
    return;
  }
  writeRaw({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, pathFromText(options.path));
  if (session.options().json)
    printJson(nlohmann::ordered_json{{"file", options.path}, {"settings", settings.size()}});
  else
    printNote("saved " + std::to_string(settings.size()) + " settings in " + options.path);
}

void load(Session& session, const SettingsOptions& options) {
  const std::vector<Setting> settings = settingsOf(options.path);
  const DescribedView view(session, Use::kControl);
  const std::vector<SettingProblem> problems = writeSettings(view, settings);
  if (session.options().json) {
    nlohmann::ordered_json json{{"settings", settings.size()}, {"failed", nlohmann::ordered_json::array()}};
    for (const SettingProblem& problem : problems)
      json["failed"].push_back(problemJson(problem, "value", "reason"));
    printJson(json);
  }
  std::string text;
  for (const SettingProblem& problem : problems)
    text += "\n  " + settingLine(problem.setting) + "\n    " + problem.reason;
  if (!problems.empty())
    throw ToolError(std::to_string(problems.size()) + " of " + std::to_string(settings.size()) +
                        " settings could not be set:" + text,
                    session.command("diff " + options.path));
  printNote("loaded " + std::to_string(settings.size()) + " settings, all read back as they were set");
}

// What the camera holds beside what it should hold: a file's settings, or those of another camera.
void diff(Session& session, const SettingsOptions& options) {
  if (options.path.empty() == options.other.empty())
    throw ToolError("compare with either a file or another camera", session.command("diff settings.txt"),
                    ExitCode::kUsage);
  std::vector<Setting> settings;
  std::vector<std::string> notes;
  if (options.other.empty())
    settings = settingsOf(options.path);
  else
    settings = settingsOf(DescribedView(session, Use::kRead, options.other), notes);
  tell(notes);
  const DescribedView view(session, Use::kControl);
  const std::vector<SettingProblem> differences = compareSettings(view, settings);
  const std::string reference = options.other.empty() ? options.path : options.other;
  if (session.options().json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const SettingProblem& difference : differences)
      json.push_back(problemJson(difference, "reference", "camera"));
    printJson(json);
  } else if (!differences.empty()) {
    Table table({"feature", "camera", reference});
    for (const SettingProblem& difference : differences)
      table.add({difference.setting.name(), difference.reason, difference.setting.value});
    printTable(table);
  }
  if (!differences.empty())
    throw ToolError(std::to_string(differences.size()) + " of " + std::to_string(settings.size()) + " settings differ",
                    options.other.empty() ? session.command("load " + options.path) : std::string());
  printNote("all " + std::to_string(settings.size()) + " settings are the same");
}

}  // namespace

void addSave(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("save", "Save a camera's settings as a text file");
  auto options = std::make_shared<SettingsOptions>();
  command->add_option("FILE", options->path, "The file to write; standard output when not given");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi save\n  ovi save settings.txt --camera 2");
  command->callback([=, &action] { action = [=](Session& session) { save(session, *options); }; });
}

void addLoad(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("load", "Bring the settings of a text file into a camera");
  auto options = std::make_shared<SettingsOptions>();
  command->add_option("FILE", options->path, "The file to read")->required();
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi load settings.txt\n  ovi load settings.txt --camera 2 --json");
  command->callback([=, &action] { action = [=](Session& session) { load(session, *options); }; });
}

void addDiff(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("diff", "Compare a camera's settings with a file's or another camera's");
  auto options = std::make_shared<SettingsOptions>();
  command->add_option("FILE", options->path, "The file to compare with");
  command->add_option("--with", options->other, "The camera to compare with")->type_name("CAMERA");
  addCameraOption(*command, common);
  command->footer("Examples:\n  ovi diff settings.txt\n  ovi diff --camera 1 --with 2");
  command->callback([=, &action] { action = [=](Session& session) { diff(session, *options); }; });
}

}  // namespace tool
