// What surrounds a program: its environment variables, and folders that the library and producers write to.
#include "doctor/surroundings.h"

#include <filesystem>

#include "paths.h"
#include "platform/binary_format.h"
#include "platform/console.h"
#include "temporary_folder.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

void examineTemporaryFolder(Findings& findings) {
  try {
    const TemporaryFolder trial;
  } catch (const ToolError& error) {
    findings.push_back(
        {Level::kNote, std::string(error.what()) + "; reports about crashes are written there", error.hint()});
  }
}

// Folders that the loader is told to search, and that are not there. In the PATH of Windows there are always some.
void examineLibraryPath(Findings& findings) {
  const std::string variable = kLibraryPath;
  if (variable == "PATH")
    return;
  std::error_code error;
  for (const std::string& folder : split(environmentVariable(kLibraryPath), searchPathSeparators()))
    if (!std::filesystem::is_directory(pathFromText(folder), error))
      findings.push_back({Level::kNote, variable + ": " + folder + " is no folder",
                          "correct it: producers do not find the libraries that they need there"});
}

}  // namespace

Findings examineSurroundings() {
  Findings findings;
  examineTemporaryFolder(findings);
  examineLibraryPath(findings);
  return findings;
}

}  // namespace tool
