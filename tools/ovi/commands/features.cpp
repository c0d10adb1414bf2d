// ovi features: what a camera, its producer's modules or its stream can be asked and told.
#include <algorithm>
#include <memory>

#include "commands.h"
#include "feature_view.h"
#include "platform/console.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct FeaturesOptions {
  std::vector<std::string> patterns;
  std::string module = "device";
  bool all = false;
};

bool isCategory(const FeatureNode& node) {
  return node.parameter.featureType == OVI_FEATURE_CATEGORY;
}

// A pattern that is just a category's name means all that is in it.
bool matchesAny(const FeatureNode& node, const std::vector<std::string>& patterns) {
  return patterns.empty() || std::ranges::any_of(patterns, [&](const std::string& pattern) {
           return matchesPattern(pattern, node.name) || equalsIgnoringCase(pattern, node.category);
         });
}

[[noreturn]] void failNoMatch(const ModuleView& view, const std::vector<FeatureNode>& tree,
                              const std::vector<std::string>& patterns) {
  // A pattern is often the beginning of a name, so it is held against beginnings of the same length too.
  const std::string& pattern = patterns.front();
  std::vector<std::string> names;
  std::vector<std::string> beginnings;
  for (const FeatureNode& node : tree) {
    names.push_back(node.name);
    beginnings.push_back(node.name.substr(0, pattern.size()));
  }
  std::string nearest = nearestMatch(pattern, names);
  if (const std::string beginning = nearestMatch(pattern, beginnings); nearest.empty() && !beginning.empty())
    nearest = names.at(static_cast<std::size_t>(std::ranges::find(beginnings, beginning) - beginnings.begin()));
  throw ToolError(view.noun() + " has no feature that matches " + join(patterns, " ") + "." +
                      (nearest.empty() ? "" : " Did you mean " + nearest + "?"),
                  view.command(nearest.empty() ? "features" : "features " + nearest), ExitCode::kUsage);
}

void showFeatures(Session& session, const FeaturesOptions& options) {
  const ModuleView view(session, options.module, Use::kRead);
  const std::vector<FeatureNode> tree = featureTree(view, true);
  std::vector<const FeatureNode*> shown;
  for (const FeatureNode& node : tree) {
    const bool visible = options.all || node.parameter.visibility != OVI_VISIBILITY_INVISIBLE;
    if (visible && (options.patterns.empty() || !isCategory(node)) && matchesAny(node, options.patterns))
      shown.push_back(&node);
  }
  if (shown.empty() && !options.patterns.empty())
    failNoMatch(view, tree, options.patterns);
  if (session.options().json) {
    nlohmann::ordered_json json = nlohmann::ordered_json::array();
    for (const FeatureNode* node : shown)
      json.push_back(featureJson(view, *node));
    printJson(json);
    return;
  }
  Table table({"feature", "kind", "access", "value", "unit", "range"});
  for (const FeatureNode* node : shown) {
    const std::string indent(options.patterns.empty() ? std::size_t{2} * node->depth : 0, ' ');
    table.add({indent + node->name, isCategory(*node) ? "" : kindText(node->parameter.featureType),
               isCategory(*node) ? "" : accessModeText(node->parameter.accessMode), node->value,
               fromLibraryText(node->parameter.unit), rangeText(view, node->parameter)});
  }
  printTable(table);
}

}  // namespace

void addFeatures(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("features", "Show features with kind, access, value and range");
  auto options = std::make_shared<FeaturesOptions>();
  command->add_option("PATTERN", options->patterns, "Names, parts of names, categories, or patterns with * and ?");
  addCameraOption(*command, common);
  addModuleOption(*command, options->module);
  command->add_flag("--all", options->all, "Invisible features too");
  command->footer(
      "Examples:\n  ovi features\n  ovi features Exposure\n  ovi features 'Trigger*' --json\n  ovi features --module "
      "stream");
  command->callback([=, &action] { action = [=](Session& session) { showFeatures(session, *options); }; });
}

}  // namespace tool
