// Features as the tool shows them.
#include "feature_view.h"

#include <array>
#include <charconv>
#include <functional>
#include <limits>
#include <set>

#include "platform/console.h"
#include "text.h"

namespace tool {

namespace {

bool hasTextValue(std::uint32_t featureType) {
  return featureType >= OVI_FEATURE_BOOLEAN && featureType <= OVI_FEATURE_ENUMERATION;
}

bool isAvailable(const ovi::FeatureParameter& parameter) {
  return isReadable(parameter) || isWritable(parameter);
}

nlohmann::ordered_json valueJson(const FeatureNode& node) {
  switch (node.parameter.featureType) {
    case OVI_FEATURE_INTEGER:
      return node.parameter.intValue;
    case OVI_FEATURE_BOOLEAN:
      return node.parameter.intValue != 0;
    case OVI_FEATURE_FLOAT:
      return node.parameter.floatValue;
    default:
      return node.value;
  }
}

}  // namespace

std::string kindText(std::uint32_t featureType) {
  static constexpr std::array<const char*, 10> kKinds = {"unknown", "boolean",     "integer",    "float",
                                                         "string",  "enumeration", "enum entry", "category",
                                                         "command", "register"};
  return featureType < kKinds.size() ? kKinds.at(featureType) : kKinds.at(0);
}

std::string accessModeText(std::uint32_t accessMode) {
  static constexpr std::array<const char*, 5> kModes = {"--", "--", "ro", "rw", "wo"};
  return accessMode < kModes.size() ? kModes.at(accessMode) : "--";
}

std::string visibilityText(std::uint32_t visibility) {
  static constexpr std::array<const char*, 6> kLevels = {"beginner", "beginner", "expert", "guru", "guru", "invisible"};
  return visibility < kLevels.size() ? kLevels.at(visibility) : kLevels.at(0);
}

bool isReadable(const ovi::FeatureParameter& parameter) {
  return parameter.accessMode == OVI_ACCESS_READ_ONLY || parameter.accessMode == OVI_ACCESS_READ_WRITE;
}

bool isWritable(const ovi::FeatureParameter& parameter) {
  return parameter.accessMode == OVI_ACCESS_WRITE_ONLY || parameter.accessMode == OVI_ACCESS_READ_WRITE;
}

bool hasLimits(const ovi::FeatureParameter& parameter) {
  switch (parameter.featureType) {
    case OVI_FEATURE_INTEGER:
      return parameter.intInc != 0;
    case OVI_FEATURE_FLOAT:
      return parameter.floatMin != 0 || parameter.floatMax != 0;
    case OVI_FEATURE_STRING:
      return parameter.maxStringLength != 0;
    case OVI_FEATURE_REGISTER:
      return parameter.registerLength != 0;
    default:
      return true;
  }
}

std::string numberText(double value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

std::vector<std::string> entryNames(const ModuleView& view, const std::string& name) {
  std::vector<std::string> names;
  for (const ovi::FeatureParameter& entry : view.feature(name).entries())
    names.push_back(fromLibraryText(entry.stringValue));
  return names;
}

std::string rangeText(const ModuleView& view, const ovi::FeatureParameter& parameter) {
  if (!isAvailable(parameter) || !hasLimits(parameter))
    return {};
  switch (parameter.featureType) {
    case OVI_FEATURE_INTEGER:
      if (parameter.intMin == std::numeric_limits<std::int64_t>::min() &&
          parameter.intMax == std::numeric_limits<std::int64_t>::max())
        return {};
      return std::to_string(parameter.intMin) + " .. " + std::to_string(parameter.intMax) +
             (parameter.intInc > 1 ? ", step " + std::to_string(parameter.intInc) : "");
    case OVI_FEATURE_FLOAT:
      if (parameter.floatMin == std::numeric_limits<double>::lowest() &&
          parameter.floatMax == std::numeric_limits<double>::max())
        return {};
      return numberText(parameter.floatMin) + " .. " + numberText(parameter.floatMax) +
             (parameter.floatInc > 0 ? ", step " + numberText(parameter.floatInc) : "");
    case OVI_FEATURE_ENUMERATION:
      return join(entryNames(view, fromLibraryText(parameter.name)), ", ");
    case OVI_FEATURE_STRING:
      return "up to " + std::to_string(parameter.maxStringLength) + " characters";
    case OVI_FEATURE_REGISTER:
      return std::to_string(parameter.registerLength) + " bytes";
    default:
      return {};
  }
}

std::vector<FeatureNode> featureTree(const ModuleView& view, bool withValues) {
  std::vector<FeatureNode> nodes;
  std::set<std::string> seen;
  const std::function<void(const std::string&, unsigned)> walk = [&](const std::string& parent, unsigned depth) {
    for (const std::string& name : view.feature(parent).children()) {
      FeatureNode node;
      node.name = fromLibraryText(name);
      node.depth = depth;
      node.category = parent;
      oviGetFeatureParameter(view.handle(), name.c_str(), &node.parameter, view.selector());
      if (node.parameter.featureType == OVI_FEATURE_ENUM_ENTRY || !seen.insert(name).second)
        continue;
      if (withValues && isReadable(node.parameter) && hasTextValue(node.parameter.featureType)) {
        std::array<char, 512> text{};
        if (oviGetFeatureOnModule(view.handle(), name.c_str(), text.data(), view.selector()) == OVI_SUCCESS)
          node.value = fromLibraryText(text.data());
      }
      const bool category = node.parameter.featureType == OVI_FEATURE_CATEGORY;
      nodes.push_back(std::move(node));
      if (category)
        walk(name, depth + 1);
    }
  };
  if (view.has("Root"))
    walk("Root", 0);
  return nodes;
}

nlohmann::ordered_json featureJson(const ModuleView& view, const FeatureNode& node) {
  const ovi::FeatureParameter& p = node.parameter;
  nlohmann::ordered_json json;
  json["name"] = node.name;
  json["depth"] = node.depth;
  json["category"] = node.category;
  json["kind"] = kindText(p.featureType);
  json["access"] = accessModeText(p.accessMode);
  json["visibility"] = visibilityText(p.visibility);
  json["displayName"] = fromLibraryText(p.displayName);
  if (p.toolTip[0] != 0)
    json["toolTip"] = fromLibraryText(p.toolTip);
  if (p.unit[0] != 0)
    json["unit"] = fromLibraryText(p.unit);
  if (isReadable(p) && hasTextValue(p.featureType))
    json["value"] = valueJson(node);
  if (!isAvailable(p) || !hasLimits(p))
    return json;
  if (p.featureType == OVI_FEATURE_INTEGER)
    json["range"] = {{"min", p.intMin}, {"max", p.intMax}, {"step", p.intInc}};
  if (p.featureType == OVI_FEATURE_FLOAT)
    json["range"] = {{"min", p.floatMin}, {"max", p.floatMax}, {"step", p.floatInc}};
  if (p.featureType == OVI_FEATURE_REGISTER)
    json["register"] = {{"address", p.registerAddress}, {"length", p.registerLength}};
  if (p.featureType == OVI_FEATURE_ENUMERATION)
    json["entries"] = entryNames(view, node.name);
  return json;
}

}  // namespace tool
