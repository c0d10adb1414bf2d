// Features as the tool shows, sets and explains them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "ovi/ovi.hpp"

namespace tool {

/// One feature of the tree, with what there is to know about it.
struct FeatureNode {
  std::string name;
  unsigned depth = 0;
  ovi::FeatureParameter parameter{};
  std::string value;  ///< as text; empty when it cannot be read
};

/// "integer", "float", ... for a feature type.
std::string kindText(std::uint32_t featureType);
/// "rw", "ro", "wo", "--" for an access mode.
std::string accessModeText(std::uint32_t accessMode);
std::string visibilityText(std::uint32_t visibility);
/// The limits in words, "16 .. 4096, step 16", or the entries of an enumeration.
std::string rangeText(const ovi::Device& device, ovi::Module module, const ovi::FeatureParameter& parameter);

/// Module by its name on the command line: system, interface, device, local, stream. Throws ToolError.
ovi::Module moduleFromText(const std::string& text);

/// The features below a root in tree order, each once.
std::vector<FeatureNode> featureTree(const ovi::Device& device, ovi::Module module, bool withValues);

/// A feature's value as text. Throws ToolError that says why it cannot be read.
std::string readFeature(const ovi::Device& device, ovi::Module module, const std::string& name);

/// Sets a feature from text and returns what it reads afterwards. Throws ToolError that names the legal values.
std::string writeFeature(const ovi::Device& device, ovi::Module module, const std::string& name,
                         const std::string& value);

nlohmann::ordered_json featureJson(const ovi::Device& device, ovi::Module module, const FeatureNode& node);

}  // namespace tool
