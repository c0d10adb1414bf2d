// Where producers are looked for, and which files are there.
#include "doctor/search_path.h"

#include <algorithm>
#include <map>

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

// The producers of a folder, and those that only look like it.
void examineFolder(const std::string& folder, SearchPathExamination& result) {
  std::error_code error;
  const fs::path path = pathFromText(folder);
  const fs::file_status status = fs::status(path, error);
  if (folder.find('"') != std::string::npos)
    return result.findings.push_back(
        {Level::kProblem, folder + ": there is no such folder; the quotation marks are taken as a part of its name",
         std::string("write ") + kVariable + " without quotation marks"});
  if (status.type() == fs::file_type::not_found)
    return result.findings.push_back({Level::kProblem, folder + ": there is no such folder",
                                      std::string("take it out of ") + kVariable + ", or install the producer again"});
  if (status.type() == fs::file_type::regular)
    return result.findings.push_back({Level::kProblem, folder + ": is a file, and folders are searched",
                                      "name its folder instead: " + pathText(fs::absolute(path).parent_path())});
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
    const std::string extension = pathText(entry->path().extension());
    std::error_code ignored;
    if (extension != ".cti" && equalsIgnoringCase(extension, ".cti"))
      result.findings.push_back(
          {Level::kNote,
           pathText(entry->path()) + ": is not searched for: its extension is no \".cti\" in small letters",
           "rename it"});
    else if (extension == ".cti" && !entry->is_regular_file(ignored))
      result.findings.push_back(
          {Level::kNote,
           pathText(entry->path()) + (entry->is_directory(ignored) ? ": is a folder, no producer"
                                      : entry->exists(ignored)     ? ": is a pipe or a device, no producer"
                                                                   : ": leads to no file"),
           "install the producer again"});
    else if (extension == ".cti")
      files.push_back(entry->path());
  }
  if (error)
    return result.findings.push_back({Level::kProblem, folder + ": cannot be read: " + error.message(),
                                      "let this user read it, or install the producer again"});
  std::ranges::sort(files);
  if (files.empty())
    result.findings.push_back(
        {Level::kNote, folder + ": no producer in it (*.cti); folders below it are not searched"});
  else
    result.findings.push_back({Level::kGood, folder + ": " + std::to_string(files.size()) + " producer file" +
                                                 (files.size() == 1 ? "" : "s")});
  if (path.is_relative())
    result.findings.push_back({Level::kNote, folder + ": means another folder wherever a program is started",
                               "name it from the root: " + pathText(fs::absolute(path))});
  for (fs::path& file : files)
    result.producers.push_back(std::move(file));
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

// Reference producers are on the path, but the library does not load them.
void dropUnused(Session& session, SearchPathExamination& result) {
  const std::vector<std::string> folders = split(environmentVariable(kVariable), searchPathSeparators());
  const std::vector<std::string> used = session.producers();
  const auto isIn = [](const std::vector<std::string>& names, const fs::path& path) {
    return std::ranges::any_of(names, [&](const std::string& name) { return isSame(pathFromText(name), path); });
  };
  std::erase_if(result.producers, [&](const fs::path& file) {
    const bool unused = isIn(folders, file.parent_path()) && !isIn(used, file);
    if (unused)
      result.findings.push_back({Level::kNote, pathText(file) + ": is never loaded: it is a reference producer"});
    return unused;
  });
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

}  // namespace

SearchPathExamination examineSearchPath(Session& session) {
  SearchPathExamination result;
  const std::string& wanted = session.options().producer;
  const std::vector<std::string> folders = session.folders();
  if (wanted.empty() && environmentVariable(kVariable).empty()) {
    std::string advice = "install the camera maker's producer, or name one with --producer FILE.cti";
    for (const std::string& folder : installedFolders())
      if (std::ranges::none_of(
              folders, [&](const std::string& known) { return isSame(pathFromText(known), pathFromText(folder)); })) {
        advice = "there are producers in " + folder + ": put this folder into " + kVariable +
                 ", where their installer should have entered it; log in again after an installation";
        break;
      }
    result.findings.push_back(
        {Level::kNote, std::string(kVariable) + " is not set: producers of camera makers are not found", advice});
    if (!environmentVariable(kOtherVariable).empty())
      result.findings.push_back({Level::kNote,
                                 std::string(kOtherVariable) + " is set, which is for 32-bit programs only",
                                 "install the maker's 64-bit producer"});
  }
  for (auto folder = folders.begin(); folder != folders.end(); ++folder) {
    const bool again = std::any_of(folders.begin(), folder, [&](const std::string& known) {
      return isSame(pathFromText(known), pathFromText(*folder));
    });
    if (again)
      result.findings.push_back({Level::kNote, *folder + ": is on the search path twice"});
    else
      examineFolder(*folder, result);
  }
  std::error_code error;
  if (!wanted.empty() && !fs::is_directory(pathFromText(wanted), error))
    std::erase_if(result.producers,
                  [&](const fs::path& file) { return file.filename() != pathFromText(wanted).filename(); });
  else if (wanted.empty())
    dropUnused(session, result);
  examineTwins(result);
  return result;
}

}  // namespace tool
