// Features as the tool shows them.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "module_view.h"

namespace tool {

/// One feature of the tree, with what there is to know about it.
struct FeatureNode {
  std::string name;
  unsigned depth = 0;
  std::string category;  ///< the one that it is in
  ovi::FeatureParameter parameter{};
  std::string value;  ///< as text; empty when it cannot be read
};

/// "integer", "float", ... for a feature type.
std::string kindText(std::uint32_t featureType);
/// "rw", "ro", "wo", "--" for an access mode.
std::string accessModeText(std::uint32_t accessMode);
std::string visibilityText(std::uint32_t visibility);

bool isReadable(const ovi::FeatureParameter& parameter);
bool isWritable(const ovi::FeatureParameter& parameter);
/// Whether the record holds the feature's limits. They are zero when it is write-only or its value could not be read.
bool hasLimits(const ovi::FeatureParameter& parameter);

/// The shortest text that reads back as the same number.
std::string numberText(double value);

/// The names of the entries that an enumeration has now.
std::vector<std::string> entryNames(const ModuleView& view, const std::string& name);

/// The limits in words, "16 .. 4096, step 16", or the entries of an enumeration; empty when there are none now.
std::string rangeText(const ModuleView& view, const ovi::FeatureParameter& parameter);

/// The features below the root in tree order, each once.
std::vector<FeatureNode> featureTree(const ModuleView& view, bool withValues);

nlohmann::ordered_json featureJson(const ModuleView& view, const FeatureNode& node);

}  // namespace tool
