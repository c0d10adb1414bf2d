// ovi get and set: the values of features.
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "feature_text.h"
#include "printable.h"
#include "terminal.h"
#include "tool_error.h"

namespace tool {

namespace {

struct ValueOptions {
  std::vector<std::string> words;
  std::string module = "device";
};

void getFeatures(Session& session, const ValueOptions& options) {
  for (const std::string& word : options.words)
    if (word.find('=') != std::string::npos)
      throw ToolError("\"" + word + "\" sets a feature, and get only reads", session.command("set " + word),
                      ExitCode::kUsage);
  const ModuleView view(session, options.module, Use::kRead);
  nlohmann::ordered_json json;
  for (const std::string& name : options.words) {
    const std::string value = readFeature(view, name);
    if (session.options().json)
      json[name] = value;
    else
      printData((options.words.size() == 1 ? "" : name + "=") + printable(value));
  }
  if (session.options().json)
    printJson(json);
}

void setFeatures(Session& session, const ValueOptions& options) {
  for (const std::string& assignment : options.words)
    if (assignment.find('=') == std::string::npos || assignment.front() == '=')
      throw ToolError("\"" + assignment + "\" is no assignment FEATURE=VALUE",
                      session.command("set " + (assignment.find('=') == std::string::npos ? assignment + "=VALUE"
                                                                                          : "FEATURE" + assignment)),
                      ExitCode::kUsage);
  const ModuleView view(session, options.module, Use::kControl);
  nlohmann::ordered_json json;
  for (const std::string& assignment : options.words) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    const std::string value = writeFeature(view, name, assignment.substr(equals + 1));
    if (session.options().json)
      json[name] = value;
    else
      printData(name + "=" + printable(value));
  }
  if (session.options().json)
    printJson(json);
}

}  // namespace

void addGet(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("get", "Print the values of features");
  auto options = std::make_shared<ValueOptions>();
  command->add_option("FEATURE", options->words, "Names of features")->required();
  addCameraOption(*command, common);
  addModuleOption(*command, options->module);
  command->footer("Examples:\n  ovi get Width\n  ovi get Width Height PixelFormat");
  command->callback([=, &action] { action = [=](Session& session) { getFeatures(session, *options); }; });
}

void addSet(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("set", "Set features, in the order that is given");
  auto options = std::make_shared<ValueOptions>();
  command->add_option("FEATURE=VALUE", options->words, "Assignments")->required();
  addCameraOption(*command, common);
  addModuleOption(*command, options->module);
  command->footer(
      "Examples:\n  ovi set ExposureTime=5000\n  ovi set PixelFormat=Mono8 Width=640 Height=480\n"
      "  ovi set TriggerSoftware=1");
  command->callback([=, &action] { action = [=](Session& session) { setFeatures(session, *options); }; });
}

}  // namespace tool
