// Features as the tool shows, sets and explains them.
#include "feature_view.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <set>

#include "platform/console.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

std::string numberText(double value) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), end.ptr};
}

std::vector<std::string> entryNames(const ovi::Feature& feature) {
  std::vector<std::string> names;
  for (const ovi::FeatureParameter& entry : feature.entries())
    names.push_back(fromLibraryText(entry.stringValue));
  return names;
}

bool isReadable(const ovi::FeatureParameter& parameter) {
  return parameter.accessMode == OVI_ACCESS_READ_ONLY || parameter.accessMode == OVI_ACCESS_READ_WRITE;
}

bool isWritable(const ovi::FeatureParameter& parameter) {
  return parameter.accessMode == OVI_ACCESS_WRITE_ONLY || parameter.accessMode == OVI_ACCESS_READ_WRITE;
}

bool hasTextValue(std::uint32_t featureType) {
  return featureType >= OVI_FEATURE_BOOLEAN && featureType <= OVI_FEATURE_ENUMERATION;
}

// What is known about a feature. A name that is not there gets the nearest one that is.
ovi::FeatureParameter requireParameter(const ovi::Device& device, ovi::Module module, const std::string& name) {
  try {
    return device.feature(toLibraryText(name), module).parameter();
  } catch (const ovi::Error& error) {
    if (error.result() != OVI_ERR_NOT_FOUND) {
      // The record is partly filled even when the value cannot be had; kind and access are what is needed here.
      ovi::FeatureParameter record{};
      oviGetFeatureParameter(device.handle(), toLibraryText(name).c_str(), &record, static_cast<std::uint32_t>(module));
      return record;
    }
  }
  std::vector<std::string> names;
  for (const FeatureNode& node : featureTree(device, module, false))
    names.push_back(node.name);
  const std::string nearest = nearestMatch(name, names);
  throw ToolError(
      "the camera has no feature \"" + name + "\"." + (nearest.empty() ? "" : " Did you mean " + nearest + "?"),
      nearest.empty() ? "ovi features" : "ovi features " + nearest, ExitCode::kUsage);
}

// The lock that a running acquisition puts on the camera's geometry, when it is the likely reason.
std::string lockReason(const ovi::Device& device) {
  std::int64_t locked = 0;
  if (oviGetFeatureInt(device.handle(), "TLParamsLocked", &locked, OVI_MODULE_REMOTE_DEVICE) == OVI_SUCCESS &&
      locked != 0)
    return " TLParamsLocked is " + std::to_string(locked) + ": stop the acquisition first.";
  return {};
}

[[noreturn]] void failWrite(const ovi::Device& device, ovi::Module module, const ovi::FeatureParameter& parameter,
                            const std::string& name, const std::string& value, const std::string& otherReason) {
  const std::string assignment = name + " = " + value;
  if (parameter.accessMode == OVI_ACCESS_NOT_AVAILABLE || parameter.accessMode == OVI_ACCESS_UNDEFINED)
    throw ToolError(assignment + ": the feature is not available now." + lockReason(device), "ovi features " + name);
  if (!isWritable(parameter))
    throw ToolError(assignment + ": the feature is read-only now." + lockReason(device), "ovi features " + name);
  const std::string range = rangeText(device, module, parameter);
  switch (parameter.featureType) {
    case OVI_FEATURE_ENUMERATION: {
      const std::string nearest = nearestMatch(value, entryNames(device.feature(toLibraryText(name), module)));
      throw ToolError(name + " has no entry \"" + value + "\"." +
                          (nearest.empty() ? "" : " Did you mean " + nearest + "?") + " Entries: " + range,
                      nearest.empty() ? "ovi features " + name : "ovi set " + name + "=" + nearest, ExitCode::kUsage);
    }
    case OVI_FEATURE_BOOLEAN:
      throw ToolError(assignment + " is no boolean: 0 or 1 (true, false, on, off)", "ovi set " + name + "=1",
                      ExitCode::kUsage);
    case OVI_FEATURE_INTEGER:
    case OVI_FEATURE_FLOAT:
      throw ToolError(assignment + " is out of range or no number: " + range, "ovi features " + name, ExitCode::kUsage);
    default:
      throw ToolError(assignment + ": " + otherReason, "ovi features " + name);
  }
}

bool outOfRange(const ovi::FeatureParameter& parameter, const std::string& value) {
  if (parameter.featureType == OVI_FEATURE_INTEGER && !parameter.isFeature)
    return false;
  double number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size())
    return false;
  if (parameter.featureType == OVI_FEATURE_INTEGER)
    return number < static_cast<double>(parameter.intMin) || number > static_cast<double>(parameter.intMax);
  return parameter.featureType == OVI_FEATURE_FLOAT && (number < parameter.floatMin || number > parameter.floatMax);
}

oviErr setFromText(const ovi::Device& device, ovi::Module module, const ovi::FeatureParameter& parameter,
                   const std::string& name, const std::string& value) {
  const auto selector = static_cast<std::uint32_t>(module);
  if (parameter.featureType == OVI_FEATURE_BOOLEAN) {
    for (const char* yes : {"1", "true", "on", "yes"})
      if (equalsIgnoringCase(value, yes))
        return oviSetFeatureBool(device.handle(), name.c_str(), true, selector);
    for (const char* no : {"0", "false", "off", "no"})
      if (equalsIgnoringCase(value, no))
        return oviSetFeatureBool(device.handle(), name.c_str(), false, selector);
    return OVI_ERR_INVALID_PARAMETER;
  }
  if (parameter.featureType == OVI_FEATURE_FLOAT) {
    double number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
      return OVI_ERR_INVALID_PARAMETER;
    return oviSetFeatureFloat(device.handle(), name.c_str(), number, selector);
  }
  if (parameter.featureType == OVI_FEATURE_REGISTER)
    return OVI_ERR_INVALID_PARAMETER;
  return oviSetFeatureOnModule(device.handle(), name.c_str(), value.c_str(), selector);
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

std::string rangeText(const ovi::Device& device, ovi::Module module, const ovi::FeatureParameter& parameter) {
  switch (parameter.featureType) {
    case OVI_FEATURE_INTEGER:
      return std::to_string(parameter.intMin) + " .. " + std::to_string(parameter.intMax) +
             (parameter.intInc > 1 ? ", step " + std::to_string(parameter.intInc) : "");
    case OVI_FEATURE_FLOAT:
      return numberText(parameter.floatMin) + " .. " + numberText(parameter.floatMax) +
             (parameter.floatInc > 0 ? ", step " + numberText(parameter.floatInc) : "");
    case OVI_FEATURE_ENUMERATION:
      return join(entryNames(device.feature(parameter.name, module)), ", ");
    case OVI_FEATURE_STRING:
      return "up to " + std::to_string(parameter.maxStringLength) + " characters";
    case OVI_FEATURE_REGISTER:
      return std::to_string(parameter.registerLength) + " bytes";
    default:
      return {};
  }
}

ovi::Module moduleFromText(const std::string& text) {
  struct Name {
    const char* text;
    ovi::Module module;
  };
  static constexpr std::array kNames = {Name{"device", ovi::Module::kRemoteDevice},
                                        Name{"local", ovi::Module::kLocalDevice},
                                        Name{"interface", ovi::Module::kInterface},
                                        Name{"system", ovi::Module::kSystem}, Name{"stream", ovi::Module::kDataStream}};
  for (const Name& name : kNames)
    if (equalsIgnoringCase(text, name.text))
      return name.module;
  throw ToolError("there is no module \"" + text + "\"", "one of device, local, interface, system, stream",
                  ExitCode::kUsage);
}

std::vector<FeatureNode> featureTree(const ovi::Device& device, ovi::Module module, bool withValues) {
  std::vector<FeatureNode> nodes;
  std::set<std::string> seen;
  const std::function<void(const std::string&, unsigned)> walk = [&](const std::string& parent, unsigned depth) {
    for (const std::string& name : device.feature(parent, module).children()) {
      FeatureNode node;
      node.name = name;
      node.depth = depth;
      oviGetFeatureParameter(device.handle(), name.c_str(), &node.parameter, static_cast<std::uint32_t>(module));
      if (node.parameter.featureType == OVI_FEATURE_ENUM_ENTRY || !seen.insert(name).second)
        continue;
      if (withValues && isReadable(node.parameter) && hasTextValue(node.parameter.featureType)) {
        std::array<char, 512> text{};
        if (oviGetFeatureOnModule(device.handle(), name.c_str(), text.data(), static_cast<std::uint32_t>(module)) ==
            OVI_SUCCESS)
          node.value = fromLibraryText(text.data());
      }
      const bool category = node.parameter.featureType == OVI_FEATURE_CATEGORY;
      nodes.push_back(std::move(node));
      if (category)
        walk(name, depth + 1);
    }
  };
  walk("Root", 0);
  return nodes;
}

std::string readFeature(const ovi::Device& device, ovi::Module module, const std::string& name) {
  const ovi::FeatureParameter parameter = requireParameter(device, module, name);
  if (parameter.featureType == OVI_FEATURE_CATEGORY)
    throw ToolError(name + " is a category and has no value", "ovi features " + name, ExitCode::kUsage);
  if (!isReadable(parameter) && parameter.featureType != OVI_FEATURE_COMMAND)
    throw ToolError(name + " cannot be read: it is " +
                        (parameter.accessMode == OVI_ACCESS_WRITE_ONLY ? "write-only" : "not available now") + ".",
                    "ovi features " + name);
  if (parameter.featureType == OVI_FEATURE_REGISTER) {
    std::string text;
    for (const std::uint8_t byte : device.feature(toLibraryText(name), module).asRegister()) {
      static constexpr const char* kDigits = "0123456789abcdef";
      text += kDigits[byte >> 4U];
      text += kDigits[byte & 0xFU];
    }
    return text;
  }
  try {
    const ovi::Feature feature = device.feature(toLibraryText(name), module);
    return fromLibraryText(parameter.featureType == OVI_FEATURE_STRING ? feature.asString() : feature.text());
  } catch (const ovi::Error& error) {
    throw ToolError(name + " cannot be read: " + error.code().message(), "ovi --verbose get " + name);
  }
}

std::string writeFeature(const ovi::Device& device, ovi::Module module, const std::string& name,
                         const std::string& value) {
  const ovi::FeatureParameter parameter = requireParameter(device, module, name);
  const std::string narrow = toLibraryText(name);
  const std::string given = toLibraryText(value);
  if (!isWritable(parameter) || outOfRange(parameter, value))
    failWrite(device, module, parameter, name, value, "");
  const oviErr code = setFromText(device, module, parameter, narrow, given);
  if (code != OVI_SUCCESS)
    failWrite(device, module, parameter, name, value, ovi::makeErrorCode(code).message());
  return parameter.featureType == OVI_FEATURE_COMMAND || parameter.accessMode == OVI_ACCESS_WRITE_ONLY
             ? value
             : readFeature(device, module, name);
}

nlohmann::ordered_json featureJson(const ovi::Device& device, ovi::Module module, const FeatureNode& node) {
  const ovi::FeatureParameter& p = node.parameter;
  nlohmann::ordered_json json;
  json["name"] = node.name;
  json["depth"] = node.depth;
  json["kind"] = kindText(p.featureType);
  json["access"] = accessModeText(p.accessMode);
  json["visibility"] = visibilityText(p.visibility);
  json["displayName"] = fromLibraryText(p.displayName);
  if (p.toolTip[0] != 0)
    json["toolTip"] = fromLibraryText(p.toolTip);
  if (p.unit[0] != 0)
    json["unit"] = fromLibraryText(p.unit);
  if (isReadable(p) && hasTextValue(p.featureType)) {
    switch (p.featureType) {
      case OVI_FEATURE_INTEGER:
        json["value"] = p.intValue;
        break;
      case OVI_FEATURE_BOOLEAN:
        json["value"] = p.intValue != 0;
        break;
      case OVI_FEATURE_FLOAT:
        json["value"] = p.floatValue;
        break;
      default:
        json["value"] = node.value;
    }
  }
  if (p.featureType == OVI_FEATURE_INTEGER)
    json["range"] = {{"min", p.intMin}, {"max", p.intMax}, {"step", p.intInc}};
  if (p.featureType == OVI_FEATURE_FLOAT)
    json["range"] = {{"min", p.floatMin}, {"max", p.floatMax}, {"step", p.floatInc}};
  if (p.featureType == OVI_FEATURE_ENUMERATION)
    json["entries"] = entryNames(device.feature(p.name, module));
  return json;
}

}  // namespace tool
