// One thing that an examination of the machine found out.
#pragma once

#include <string>
#include <vector>

namespace tool {

enum class Level { kGood, kNote, kProblem };

struct Finding {
  Level level = Level::kGood;
  std::string text;
  std::string advice;  ///< what to do about it; may be empty
};

using Findings = std::vector<Finding>;

}  // namespace tool
