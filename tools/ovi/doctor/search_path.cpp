// Where producers are looked for, and which files are there.
#include "doctor/search_path.h"

#include <algorithm>
#include <map>

#include "doctor/changed_environment.h"
#include "paths.h"
#include "platform/console.h"
#include "platform/machine_settings.h"
#include "text.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

constexpr const char* kVariable = "GENICAM_GENTL64_PATH";
constexpr const char* kOtherVariable = "GENICAM_GENTL32_PATH";

bool isSame(const fs::path& a, const fs::path& b) {
  std::error_code error;
  return fs::equivalent(a, b, error) && !error;
}

// The files of a folder that the library loads, as it says itself.
std::vector<fs::path> loadedFrom(Session& session, const std::string& folder) {
  const ChangedEnvironment only(kVariable, folder);
  std::vector<fs::path> files;
  for (const std::string& file : session.producers())
    files.push_back(pathFromText(file));
  std::ranges::sort(files);
  return files;
}

// Why the library does not load what is named like a producer.
Finding unusedFinding(const fs::path& file) {
  const std::string name = pathText(file);
  std::error_code error;
  if (file.extension() != ".cti")
    return {Level::kNote, name + ": is not loaded: its extension is no \".cti\" in small letters", "rename it"};
  switch (fs::status(file, error).type()) {
    case fs::file_type::regular:
      return {Level::kNote,
              name +
                  ": is never loaded: it has the name of a reference producer, which the library passes "
                  "over",
              "if cameras are meant to come from it, give the file another name"};
    case fs::file_type::directory:
      return {Level::kNote, name + ": is a folder and not loaded; nothing below it is searched",
              std::string("if the producers in it are meant, enter it into ") + kVariable + " itself"};
    case fs::file_type::not_found:
    case fs::file_type::none:
      return {Level::kNote, name + ": leads to no file", "install the producer again"};
    case fs::file_type::unknown:
      return {Level::kProblem, name + ": cannot be looked at: " + error.message(),
              "let this user read what it leads to"};
    default:
      return {Level::kNote, name + ": is a pipe or a device and not loaded", "install the producer again"};
  }
}

// The names in a folder that look like those of producers.
std::vector<fs::path> candidatesIn(const fs::path& folder, std::error_code& error) {
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    if (equalsIgnoringCase(pathText(entry->path().extension()), ".cti"))
      files.push_back(entry->path());
  std::ranges::sort(files);
  return files;
}

// How a folder that is not there may have been meant.
std::string adviceForMissingFolder(const std::string& folder) {
  if (folder.starts_with('~') || folder.find('$') != std::string::npos || folder.find('%') != std::string::npos)
    return std::string("write the whole path into ") + kVariable + ": only shells know ~ and variables in it";
  if (folder.find(',') != std::string::npos)
    return std::string("separate the folders of ") + kVariable + " by \"" + std::string(searchPathSeparators(), 1) +
           "\"";
  if (folder.front() == ' ' || folder.back() == ' ')
    return std::string("take the blanks around it out of ") + kVariable;
  return std::string("take it out of ") + kVariable + ", or install the producer again";
}

// What keeps a folder from being searched at all; a good finding when nothing does.
Finding folderObstacle(const std::string& folder) {
  const fs::path path = pathFromText(folder);
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (folder.find('"') != std::string::npos)
    return {Level::kProblem, folder + ": there is no such folder; the quotation marks are taken as a part of its name",
            std::string("write ") + kVariable + " without quotation marks"};
  if (status.type() == fs::file_type::not_found)
    return {Level::kProblem, folder + ": there is no such folder", adviceForMissingFolder(folder)};
  if (status.type() == fs::file_type::regular)
    return {Level::kProblem, folder + ": is a file, and folders are searched",
            "name its folder instead: " + pathText(fs::absolute(path).parent_path())};
  if (!libraryCanName(folder))
    return {Level::kProblem,
            folder +
                ": the library cannot find it, because its name has letters that this system's "
                "code page lacks",
            "move the producer into a folder with a plain name, or use one producer: --producer FILE.cti"};
  return {};
}

// The producers of a folder, and those that only look like it.
void examineFolder(Session& session, const std::string& folder, SearchPathExamination& result) {
  if (Finding obstacle = folderObstacle(folder); obstacle.level != Level::kGood)
    return result.findings.push_back(std::move(obstacle));
  const fs::path path = pathFromText(folder);
  std::error_code error;
  const std::vector<fs::path> candidates = candidatesIn(path, error);
  if (error)
    return result.findings.push_back({Level::kProblem, folder + ": cannot be read: " + error.message(),
                                      "let this user read it, or install the producer again"});
  const std::vector<fs::path> loaded = loadedFrom(session, folder);
  if (loaded.empty())
    result.findings.push_back({Level::kNote, folder + ": no producer in it (*.cti); folders below it are not searched",
                               session.options().producer.empty()
                                   ? std::string("take it out of ") + kVariable + ", or install the producer again"
                                   : "name a producer, or the folder that holds it: --producer FILE.cti"});
  else
    result.findings.push_back({Level::kGood, folder + ": " + std::to_string(loaded.size()) + " producer file" +
                                                 (loaded.size() == 1 ? "" : "s")});
  for (const fs::path& candidate : candidates)
    if (std::ranges::none_of(loaded, [&](const fs::path& file) { return file.filename() == candidate.filename(); }))
      result.findings.push_back(unusedFinding(candidate));
  if (path.is_relative())
    result.findings.push_back({Level::kNote, folder + ": means another folder wherever a program is started",
                               "name it from the root: " + pathText(fs::absolute(path))});
  result.producers.insert(result.producers.end(), loaded.begin(), loaded.end());
}

// The one producer that was named.
void examineFile(Session& session, const fs::path& file, SearchPathExamination& result) {
  const std::vector<fs::path> loaded = loadedFrom(session, pathText(file.parent_path()));
  const bool isLoaded =
      std::ranges::any_of(loaded, [&](const fs::path& other) { return other.filename() == file.filename(); });
  if (!isLoaded && libraryCanName(pathText(file.parent_path())))
    return result.findings.push_back(unusedFinding(file));
  result.findings.push_back({Level::kGood, pathText(file) + ": is used alone, as --producer says"});
  result.producers.push_back(file);
}

// Files of the same name in two folders are mostly two versions of one producer.
void examineTwins(SearchPathExamination& result) {
  std::map<std::string, fs::path> first;
  for (const fs::path& file : result.producers) {
    const auto [known, isNew] = first.emplace(pathText(file.filename()), file);
    if (!isNew)
      result.findings.push_back({Level::kNote,
                                 pathText(file) + ": has the name of " + pathText(known->second) +
                                     ": both are loaded, and cameras may be there twice",
                                 std::string("leave one of their folders in ") + kVariable});
  }
}

// Producers that are installed but not on the path.
std::vector<std::string> installedFolders() {
  constexpr int kDeepest = 5;
  constexpr std::size_t kMostVisited = 50'000;
  std::vector<std::string> found;
  std::size_t entries = 0;
  for (const std::string& root : usualProducerFolders()) {
    std::error_code error;
    fs::recursive_directory_iterator entry(pathFromText(root), fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator() && ++entries < kMostVisited; entry.increment(error)) {
      if (entry.depth() >= kDeepest)
        entry.disable_recursion_pending();
      if (entry->path().extension() != ".cti")
        continue;
      const std::string folder = pathText(entry->path().parent_path());
      if (std::ranges::find(found, folder) == found.end())
        found.push_back(folder);
    }
  }
  return found;
}

void examineMissingVariable(const std::vector<std::string>& folders, Findings& findings) {
  std::string advice = "install the camera maker's producer, or name one with --producer FILE.cti";
  for (const std::string& folder : installedFolders())
    // Ours below the one that is searched already are for who asks for them by name.
    if (std::ranges::none_of(folders, [&](const std::string& known) {
          const fs::path found = pathFromText(folder);
          return isSame(pathFromText(known), found) || isSame(pathFromText(known), found.parent_path());
        })) {
      advice = "there are producers in " + folder + ": put this folder into " + kVariable +
               ", where their installer should have entered it; log in again after an installation";
      break;
    }
  findings.push_back(
      {Level::kNote, std::string(kVariable) + " is not set: producers of camera makers are not found", advice});
  if (!environmentVariable(kOtherVariable).empty())
    findings.push_back({Level::kNote, std::string(kOtherVariable) + " is set, which is for 32-bit programs only",
                        "install the maker's 64-bit producer"});
}

}  // namespace

SearchPathExamination examineSearchPath(Session& session) {
  SearchPathExamination result;
  const std::vector<std::string> folders = session.folders();
  if (const fs::path file = session.soleProducer(); !file.empty()) {
    examineFile(session, file, result);
    return result;
  }
  if (session.options().producer.empty() && environmentVariable(kVariable).empty())
    examineMissingVariable(folders, result.findings);
  for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
    const bool again = std::any_of(folders.begin(), folder, [&](const std::string& known) {
      return isSame(pathFromText(known), pathFromText(*folder));
    });
    if (again)
      result.findings.push_back({Level::kNote, *folder + ": is on the search path twice", "name it once"});
    else
      examineFolder(session, *folder, result);
  }
  examineTwins(result);
  return result;
}

}  // namespace tool
