// ovi features, get and set: what a camera can be asked and told.
#include "feature_view.h"

#include <algorithm>
#include <memory>

#include "commands.h"
#include "platform/console.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

// Modules other than the device's own are reached through its handle, the stream's through a stream that is opened for
// that.
class ModuleAccess {
 public:
  ModuleAccess(Session& session, const std::string& module) : device_(session.open()), module_(moduleFromText(module)) {
    if (module_ == ovi::Module::kDataStream)
      stream_ = std::make_unique<ovi::Stream>(device_.openStream(0));
  }
  const ovi::Device& device() const { return device_; }
  ovi::Module module() const { return module_; }

 private:
  ovi::Device device_;
  ovi::Module module_;
  std::unique_ptr<ovi::Stream> stream_;
};

bool matchesAny(const FeatureNode& node, const std::vector<std::string>& patterns) {
  return patterns.empty() || std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
           return matchesPattern(pattern, node.name);
         });
}

void showFeatures(Session& session, const std::string& module, const std::vector<std::string>& patterns, bool all) {
  const ModuleAccess access(session, module);
  std::vector<FeatureNode> shown;
  for (FeatureNode& node : featureTree(access.device(), access.module(), true)) {
    const bool visible = all || node.parameter.visibility != OVI_VISIBILITY_INVISIBLE;
    const bool category = node.parameter.featureType == OVI_FEATURE_CATEGORY;
    if (visible && (patterns.empty() || !category) && matchesAny(node, patterns))
      shown.push_back(std::move(node));
  }
  if (shown.empty() && !patterns.empty())
    throw ToolError("no feature matches " + join(patterns, " "), "ovi features");
  if (session.options().json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const FeatureNode& node : shown)
      json.push_back(featureJson(access.device(), access.module(), node));
    printData(json.dump(2));
    return;
  }
  Table table({"feature", "kind", "access", "value", "unit", "range"});
  for (const FeatureNode& node : shown) {
    const bool category = node.parameter.featureType == OVI_FEATURE_CATEGORY;
    const std::string indent(patterns.empty() ? std::size_t{2} * node.depth : 0, ' ');
    table.add({indent + node.name, category ? "" : kindText(node.parameter.featureType),
               category ? "" : accessModeText(node.parameter.accessMode), node.value,
               fromLibraryText(node.parameter.unit), rangeText(access.device(), access.module(), node.parameter)});
  }
  std::string text = table.text(standardOutputIsTerminal());
  text.pop_back();
  printData(text);
}

void getFeatures(Session& session, const std::string& module, const std::vector<std::string>& names) {
  const ModuleAccess access(session, module);
  nlohmann::ordered_json json;
  for (const std::string& name : names) {
    const std::string value = readFeature(access.device(), access.module(), name);
    if (session.options().json)
      json[name] = value;
    else
      printData(names.size() == 1 ? value : name + "=" + value);
  }
  if (session.options().json)
    printData(json.dump(2));
}

void setFeatures(Session& session, const std::string& module, const std::vector<std::string>& assignments) {
  for (const std::string& assignment : assignments)
    if (assignment.find('=') == std::string::npos || assignment.front() == '=')
      throw ToolError("\"" + assignment + "\" is no assignment", "ovi set " + assignment + "=VALUE", ExitCode::kUsage);
  const ModuleAccess access(session, module);
  nlohmann::ordered_json json;
  for (const std::string& assignment : assignments) {
    const std::size_t equals = assignment.find('=');
    const std::string name = assignment.substr(0, equals);
    const std::string value = writeFeature(access.device(), access.module(), name, assignment.substr(equals + 1));
    if (session.options().json)
      json[name] = value;
    else
      printData(name + "=" + value);
  }
  if (session.options().json)
    printData(json.dump(2));
}

}  // namespace

void addCameraOption(CLI::App& command, CommonOptions& common) {
  command.add_option("-c,--camera", common.camera, "Number, serial number, user-defined name, model or ID")
      ->type_name("CAMERA");
}

void addModuleOption(CLI::App& command, std::string& module) {
  command.add_option("-m,--module", module, "device, local, interface, system or stream")->type_name("MODULE");
}

void addFeatures(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("features", "Show features with kind, access, value and range");
  auto patterns = std::make_shared<std::vector<std::string>>();
  auto module = std::make_shared<std::string>("device");
  auto all = std::make_shared<bool>(false);
  command->add_option("PATTERN", *patterns, "Names, parts of names, or patterns with * and ?");
  addCameraOption(*command, common);
  addModuleOption(*command, *module);
  command->add_flag("--all", *all, "Invisible features too");
  command->footer("Examples:\n  ovi features\n  ovi features Exposure\n  ovi features 'Trigger*' --json");
  command->callback(
      [=, &action] { action = [=](Session& session) { showFeatures(session, *module, *patterns, *all); }; });
}

void addGet(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("get", "Print the values of features");
  auto names = std::make_shared<std::vector<std::string>>();
  auto module = std::make_shared<std::string>("device");
  command->add_option("FEATURE", *names, "Names of features")->required();
  addCameraOption(*command, common);
  addModuleOption(*command, *module);
  command->footer("Examples:\n  ovi get Width\n  ovi get Width Height PixelFormat");
  command->callback([=, &action] { action = [=](Session& session) { getFeatures(session, *module, *names); }; });
}

void addSet(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("set", "Set features, in the order that is given");
  auto assignments = std::make_shared<std::vector<std::string>>();
  auto module = std::make_shared<std::string>("device");
  command->add_option("FEATURE=VALUE", *assignments, "Assignments")->required();
  addCameraOption(*command, common);
  addModuleOption(*command, *module);
  command->footer("Examples:\n  ovi set ExposureTime=5000\n  ovi set PixelFormat=Mono8 Width=640 Height=480");
  command->callback([=, &action] { action = [=](Session& session) { setFeatures(session, *module, *assignments); }; });
}

}  // namespace tool
