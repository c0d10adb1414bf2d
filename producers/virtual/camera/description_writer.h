// Writes the GenICam description of a camera from its declared features.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "feature_map.h"

namespace vcam {

struct DescriptionHeader {
  std::string vendor;
  std::string model;
  std::string toolTip;
  std::string portName;
};

// The text of the description, schema 1.1.
std::string writeDescription(const FeatureMap& map, const DescriptionHeader& header);

// A zip archive with the text as its only file. Throws std::runtime_error when it cannot be made.
std::vector<std::byte> zipDescription(const std::string& text, const std::string& fileName);

}  // namespace vcam
