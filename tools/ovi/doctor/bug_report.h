// What the maker of a camera or of the library needs to see, as one ZIP archive.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct ReportPart {
  std::string name;  ///< of the file in the archive
  std::string text;
};

/// Writes the parts into an archive; the user's home folder becomes "~" in all of them. Throws ToolError with the path
/// and the reason.
void writeReport(const std::filesystem::path& file, std::vector<ReportPart> parts);

/// Versions, machine, and the environment variables that producers and the library read.
std::string machineText();

}  // namespace tool
