// Which of the libraries that a producer needs are not there.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct MissingLibrary {
  std::string name;
  std::string neededBy;  ///< file name of who needs it
  std::string problem;   ///< the system's words
};

/// Looks for all libraries that the file needs, and for those that they need. Loads some of them: called in a process
/// that is there for the purpose.
std::vector<MissingLibrary> missingLibraries(const std::filesystem::path& file);

}  // namespace tool
