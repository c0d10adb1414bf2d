// Which of the libraries that a producer needs are not there.
#include "doctor/missing_libraries.h"

#include <algorithm>
#include <deque>
#include <set>

#include "doctor/binary_file.h"
#include "paths.h"
#include "platform/dynamic_library.h"

namespace tool {

namespace {

constexpr std::size_t kMostFiles = 256;

// The library that the system's words are about: "libx.so.1: cannot open shared object file: ...".
std::string subjectOf(const std::string& problem, const std::string& name) {
  const std::size_t colon = problem.find(": cannot open shared object file");
  return colon == std::string::npos ? name : problem.substr(0, colon);
}

}  // namespace

std::vector<MissingLibrary> missingLibraries(const std::filesystem::path& file) {
  std::vector<MissingLibrary> missing;
  std::set<std::string> seen;
  std::deque<std::filesystem::path> files{file};
  for (std::size_t count = 0; !files.empty() && count < kMostFiles; ++count) {
    const std::filesystem::path current = files.front();
    files.pop_front();
    const BinaryFile binary = inspectBinary(current);
    std::vector<std::filesystem::path> folders{current.parent_path(), file.parent_path()};
    for (const std::string& folder : binary.folders)
      folders.push_back(pathFromText(folder));
    for (const std::string& name : binary.needs) {
      if (name.empty() || !seen.insert(name).second)
        continue;
      const LibraryLookup lookup = lookUpLibrary(name, folders);
      if (!lookup.found) {
        const std::string subject = subjectOf(lookup.problem, name);
        missing.push_back({subject, subject == name ? pathText(current.filename()) : name, lookup.problem});
      } else if (!lookup.file.empty()) {
        files.push_back(lookup.file);
      }
    }
  }
  return missing;
}

}  // namespace tool
