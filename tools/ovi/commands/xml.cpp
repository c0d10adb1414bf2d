// ovi xml: a camera description tried without a camera.
#include <memory>
#include <nlohmann/json.hpp>
#include <set>

#include "commands.h"
#include "description/description.h"
#include "description/node_report.h"
#include "description/test_port.h"
#include "paths.h"
#include "platform/console.h"
#include "printable.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

using nlohmann::ordered_json;

struct XmlOptions {
  std::string file;
  std::optional<std::uint64_t> seed;
  bool fail = false;
  bool time = false;
  bool check = false;
};

std::unique_ptr<GenApi::IPort> portFor(const XmlOptions& options) {
  if (options.fail)
    return makeFailingPort();
  return options.seed ? makeRandomPort(*options.seed) : makeZeroPort();
}

std::string milliseconds(std::int64_t nanoseconds) {
  return fixedText(static_cast<double>(nanoseconds) / 1e6, 3) + " ms";
}

ordered_json timeJson(const Description& description) {
  const GenApiEngine::NodeMapDiagnostics d = description.diagnostics();
  return {{"nodes", d.nodes},
          {"fileBytes", description.fileBytes()},
          {"textBytes", d.textBytes},
          {"modelBytes", d.modelBytes},
          {"mapBytes", d.mapBytes},
          {"readNanoseconds", description.readTime().count()},
          {"prepareNanoseconds", d.prepareTime},
          {"parseNanoseconds", d.parseTime},
          {"buildNanoseconds", d.buildTime},
          {"linkNanoseconds", d.linkTime},
          {"mapNanoseconds", d.mapTime},
          {"loadNanoseconds", description.loadTime().count()}};
}

void printTime(const Description& description) {
  const GenApiEngine::NodeMapDiagnostics d = description.diagnostics();
  printData(std::to_string(d.nodes) + " nodes, " + std::to_string(d.textBytes) + " bytes of text" +
            (description.zipped() ? " (" + std::to_string(description.fileBytes()) + " zipped)" : ""));
  const std::vector<std::pair<const char*, std::string>> lines = {
      {"read the file", milliseconds(description.readTime().count())},
      {"load", milliseconds(description.loadTime().count())},
      {"  prepare text", milliseconds(d.prepareTime)},
      {"  parse", milliseconds(d.parseTime)},
      {"  build nodes", milliseconds(d.buildTime)},
      {"  link nodes", milliseconds(d.linkTime)},
      {"  map", milliseconds(d.mapTime)},
      {"memory, shared", bytesText(d.modelBytes)},
      {"memory, this map", bytesText(d.mapBytes)}};
  for (const auto& [label, value] : lines) {
    std::string line = label;
    line.resize(20, ' ');
    printData(line + value);
  }
}

struct Warning {
  std::uint32_t line = 0;  // 0: the engine tells none
  std::string text;
  std::string meaning;
};

// The name of the node that an exception's text mentions.
std::string quotedNode(const std::string& text) {
  static constexpr std::string_view kBefore = "thrown in node '";
  const std::size_t at = text.find(kBefore);
  if (at == std::string::npos)
    return {};
  const std::size_t start = at + kBefore.size();
  return text.substr(start, text.find('\'', start) - start);
}

std::vector<Warning> warningsOf(const Description& description) {
  std::vector<Warning> warnings;
  const GenApiEngine::NodeMapDiagnostics diagnostics = description.diagnostics();
  for (const GenApiEngine::DescriptionWarning& warning : diagnostics.warnings)
    warnings.push_back({warning.line, warning.text, meaningOf(warning.text)});
  for (const GenApiEngine::DescriptionRemark& remark : GenApiEngine::reviewOf(description.nodeMap()))
    warnings.push_back({remark.node.empty() ? 0 : description.lineOf(remark.node),
                        (remark.node.empty() ? "" : "'" + remark.node + "': ") + remark.text,
                        "the schema has it otherwise; other programs may refuse the whole description"});
  GenICam::gcstring_vector errors;
  if (!description.nodeMap().ParseSwissKnifes(&errors))
    for (const GenICam::gcstring& error : errors)
      warnings.push_back({description.lineOf(quotedNode(error.c_str())), exceptionText(error.c_str()),
                          "the formula cannot be evaluated: the node fails whenever it is asked"});
  if (diagnostics.warningsSuppressed > 0)
    warnings.push_back({0, std::to_string(diagnostics.warningsSuppressed) + " more warnings were not kept", ""});
  return warnings;
}

ordered_json warningsJson(const std::vector<Warning>& warnings) {
  ordered_json list = ordered_json::array();
  for (const Warning& warning : warnings) {
    ordered_json item{{"line", warning.line == 0 ? ordered_json() : ordered_json(warning.line)},
                      {"text", warning.text}};
    if (!warning.meaning.empty())
      item["meaning"] = warning.meaning;
    list.push_back(std::move(item));
  }
  return list;
}

void printWarnings(const std::string& file, const std::vector<Warning>& warnings) {
  for (const Warning& warning : warnings) {
    printData(file + ":" + (warning.line == 0 ? "" : std::to_string(warning.line) + ":") +
              " warning: " + printable(warning.text));
    if (!warning.meaning.empty())
      printData("    " + warning.meaning);
  }
}

std::string shortText(const ordered_json& value) {
  constexpr std::size_t kLongest = 60;
  std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  if (text.size() > kLongest)
    text.replace(kLongest, std::string::npos, "...");
  for (char& c : text)
    if (static_cast<unsigned char>(c) < 0x20)
      c = ' ';
  return text;
}

std::string rangeOf(const ordered_json& node) {
  if (node.contains("entries")) {
    std::vector<std::string> names;
    for (const auto& entry : node["entries"])
      names.push_back(entry.value("name", "?") + "=" + shortText(entry.value("value", ordered_json())));
    return join(names, ", ");
  }
  std::string text;
  if (node.contains("min") || node.contains("max"))
    text = shortText(node.value("min", ordered_json("?"))) + " .. " + shortText(node.value("max", ordered_json("?")));
  if (node.contains("inc") && node["inc"] != 1)
    text += ", step " + shortText(node["inc"]);
  if (node.contains("maxLength"))
    text = "up to " + shortText(node["maxLength"]) + " characters";
  if (node.value("kind", "") == "Register" && node.contains("length"))
    text = shortText(node["length"]) + " bytes";
  return text;
}

std::string valueOf(const ordered_json& node) {
  if (node.contains("text"))
    return shortText(node["text"]);
  if (node.contains("value"))
    return shortText(node["value"]);
  if (node.contains("errors") && node["errors"].contains("value"))
    return "! " + shortText(node["errors"]["value"]);
  return {};
}

// The tree from the category Root down, then what is outside it.
class TreeTable {
 public:
  explicit TreeTable(GenApi::INodeMap& map) {
    GenApi::NodeList_t nodes;
    map.GetNodes(nodes);
    add(map.GetNode("Root"), 0);
    for (GenApi::INode* node : nodes)
      if (node->GetPrincipalInterfaceType() != GenApi::intfIEnumEntry && !seen_.contains(node))
        add(node, 0);
  }
  const Table& table() const { return table_; }

 private:
  void add(GenApi::INode* node, std::size_t depth) {
    if (node == nullptr || !seen_.insert(node).second)
      return;
    const ordered_json answers = nodeJson(*node);
    table_.add({std::string(2 * depth, ' ') + answers.value("name", ""), answers.value("kind", ""),
                answers.value("access", "??"), valueOf(answers), answers.value("unit", ""), rangeOf(answers)});
    auto* const category = dynamic_cast<GenApi::ICategory*>(node);
    if (category == nullptr)
      return;
    GenApi::FeatureList_t features;
    category->GetFeatures(features);
    for (GenApi::IValue* feature : features)
      add(dynamic_cast<GenApi::INode*>(feature), depth + 1);
  }

  std::set<GenApi::INode*> seen_;
  Table table_{{"node", "kind", "access", "value", "unit", "range"}};
};

ordered_json deviceJson(GenApi::INodeMap& map) {
  ordered_json json;
  auto* const info = dynamic_cast<GenApi::IDeviceInfo*>(&map);
  if (info == nullptr)
    return json;
  const auto version = [](const GenICam::Version_t& v) {
    return std::to_string(v.Major) + "." + std::to_string(v.Minor) + "." + std::to_string(v.SubMinor);
  };
  json["vendor"] = info->GetVendorName().c_str();
  json["model"] = info->GetModelName().c_str();
  json["standardNameSpace"] = info->GetStandardNameSpace().c_str();
  GenICam::Version_t schema{};
  GenICam::Version_t device{};
  info->GetSchemaVersion(schema);
  info->GetDeviceVersion(device);
  json["schemaVersion"] = version(schema);
  json["deviceVersion"] = version(device);
  json["productGuid"] = info->GetProductGuid().c_str();
  json["versionGuid"] = info->GetVersionGuid().c_str();
  return json;
}

ordered_json reportJson(const Description& description, const XmlOptions& options) {
  ordered_json json{{"file", options.file}};
  json.update(deviceJson(description.nodeMap()));
  json["port"] = options.fail ? "fail" : options.seed ? "random " + std::to_string(*options.seed) : "zeros";
  if (options.time)
    json["time"] = timeJson(description);
  json["warnings"] = warningsJson(warningsOf(description));
  GenApi::NodeList_t nodes;
  description.nodeMap().GetNodes(nodes);
  ordered_json list = ordered_json::array();
  for (GenApi::INode* node : nodes)
    list.push_back(nodeJson(*node));
  json["nodes"] = std::move(list);
  return json;
}

void showDescription(Session& session, const XmlOptions& options) {
  const Description description(pathFromText(options.file), portFor(options));
  try {
    const std::vector<Warning> warnings = options.check ? warningsOf(description) : std::vector<Warning>();
    if (session.options().json) {
      printJson(reportJson(description, options), 1);
    } else if (options.time || options.check) {
      if (options.time)
        printTime(description);
      printWarnings(options.file, warnings);
    } else {
      printTable(TreeTable(description.nodeMap()).table());
      if (const std::size_t count = warningsOf(description).size(); count > 0)
        printNote(std::to_string(count) + (count == 1 ? " warning" : " warnings") + "; ovi xml --check shows them");
    }
    if (!warnings.empty())
      throw ToolError(options.file + " has " + std::to_string(warnings.size()) +
                      (warnings.size() == 1 ? " fault that was forgiven" : " faults that were forgiven"));
    if (options.check && !session.options().json)
      printNote("no fault was found");
  } catch (const GenICam::GenericException& error) {
    throw ToolError(options.file + ": " + exceptionText(error.what()));
  }
}

}  // namespace

void addXml(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("xml", "Try a camera description without a camera");
  auto options = std::make_shared<XmlOptions>();
  command->add_option("FILE", options->file, "The description, .xml or .zip")->required();
  CLI::Option* random =
      command->add_option("--random", options->seed, "Registers hold random bytes instead of zeros")->type_name("SEED");
  command->add_flag("--fail", options->fail, "Every register access fails")->excludes(random);
  command->add_flag("--time", options->time, "How long loading takes, and of what");
  command->add_flag("--check", options->check, "Every fault that was forgiven, with its line and what it means");
  command->footer(
      "Examples:\n  ovi xml camera.xml\n  ovi xml camera.zip --random 1 --json\n  ovi xml camera.xml --time\n"
      "  ovi xml camera.xml --check");
  command->callback([=, &action, &common] {
    common.withoutLibrary = true;
    action = [=](Session& session) { showDescription(session, *options); };
  });
}

}  // namespace tool
