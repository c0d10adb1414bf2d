// One thing that an examination of the machine found out.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace tool {

enum class Level { kGood, kNote, kProblem };

struct Finding {
  Level level = Level::kGood;
  std::string text;
  std::string advice = {};            ///< what to do about it; may be empty
  nlohmann::ordered_json facts = {};  ///< what programs are told besides the text; null or an object
};

using Findings = std::vector<Finding>;

}  // namespace tool
