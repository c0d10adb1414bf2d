// Where producers are looked for, and which files are there.
#pragma once

#include <filesystem>
#include <vector>

#include "doctor/finding.h"
#include "session.h"

namespace tool {

struct SearchPathExamination {
  Findings findings;
  std::vector<std::filesystem::path> producers;  ///< the files that the library loads, in its order
};

SearchPathExamination examineSearchPath(Session& session);

}  // namespace tool
