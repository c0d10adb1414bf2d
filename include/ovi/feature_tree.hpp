/// @file
/// All features of a module in C++, in the order of their tree.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "ovi/feature.hpp"
#include "ovi/ovi.h"

namespace ovi {

/// A feature and its place in the tree of a module's features.
struct TreeFeature {
  Feature feature;      ///< The feature
  std::uint32_t type;   ///< OVI_FEATURE_...
  std::uint32_t depth;  ///< 0 below "Root"
};

/// The features of a module in the order of its tree: categories, and after each what it contains. A category that is
/// in two others is opened once only.
inline std::vector<TreeFeature> featureTree(std::uint64_t handle, Module module) {
  struct Level {
    std::string parent;
    std::uint32_t next;
  };
  std::vector<TreeFeature> list;
  std::set<std::string> opened;
  std::vector<Level> levels = {{"Root", 0}};
  char name[512] = {};
  std::uint32_t type = 0;
  while (!levels.empty()) {
    Level& level = levels.back();
    if (oviIterateFeatureTree(handle, level.parent.c_str(), level.next++, name, sizeof(name), &type,
                              static_cast<std::uint32_t>(module)) != OVI_SUCCESS) {
      levels.pop_back();
      continue;
    }
    list.push_back({{handle, module, name}, type, static_cast<std::uint32_t>(levels.size() - 1)});
    if (type == OVI_FEATURE_CATEGORY && opened.insert(name).second)
      levels.push_back({name, 0});
  }
  return list;
}

}  // namespace ovi
