// What a description may hold although the schema forbids it: taken without a word while loading, told when asked.
#pragma once

#include <string>
#include <vector>

#include "model/model.h"

namespace GenApiEngine {

struct ModelRemark {
  NodeIndex node = kNoNode;  ///< kNoNode when it concerns the whole description
  std::string text;
};

/// Looks for elements in the wrong order, missing ones, words and numbers that are none of the schema's, and bits that
/// contradict the byte order. At most kMaxWarnings remarks.
std::vector<ModelRemark> review(const Model& model);

}  // namespace GenApiEngine
