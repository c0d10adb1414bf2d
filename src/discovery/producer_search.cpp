// Where GenTL producers are looked for: the environment's folders, the application's, and the files in them.
#include "discovery/producer_search.h"

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/filesystem.hpp>
#include <utility>

#include "Base/GCException.h"
#include "Base/GCUtilities.h"
#include "core/log.h"
#include "platform/platform.h"

namespace OVI {

namespace {

constexpr const char* kLocationsSite = "OVI::TLDiscovery::getTLLocations";
constexpr const char* kFilesSite = "OVI::TLDiscovery::findCTIFiles";
constexpr const char* kEnvironmentText = "$(GENICAM_GENTL64_PATH)";

std::vector<std::string> environmentPaths() {
  GenICam::gcstring value(kEnvironmentText);
  try {
    GenICam::ReplaceEnvironmentVariables(value);
  } catch (const GenICam::GenericException& exception) {
    OVI_LOG_ERROR(kLocationsSite) << "Error adjusting search path for TL. Maybe the environment " << kEnvironmentText
                                  << " is not set: " << exception.GetDescription();
    return {};
  }
  return splitSearchPath(value.c_str());
}

}  // namespace

std::vector<std::string> splitSearchPath(std::string_view searchPath) {
  std::vector<std::string> paths;
  boost::algorithm::split(paths, searchPath, boost::algorithm::is_any_of(platform::searchPathSeparators()));
  std::erase(paths, std::string());
  return paths;
}

bool isExcludedProducer(std::string_view fileName) noexcept {
  return fileName == "TLProxy.cti" || fileName == "TLSimu.cti";
}

void findCTIFiles(const std::string& directory, std::vector<std::string>& outFiles) {
  namespace fs = boost::filesystem;
  boost::system::error_code error;
  if (!fs::is_directory(directory, error)) {
    OVI_LOG_DEBUG(kFilesSite) << "Path is not a directory: " << directory;
    return;
  }
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::string file = entry->path().string();
    boost::system::error_code entryError;  // An entry that vanishes meanwhile is no producer.
    // Taken from the text: to compare paths ends the process when there is no memory for it.
    if (file.ends_with(".cti") && fs::is_regular_file(entry->status(entryError)) &&
        !isExcludedProducer(entry->path().filename().string()))
      outFiles.push_back(std::move(file));
  }
  if (error)
    OVI_LOG_WARNING(kFilesSite) << "Could not read all of the folder " << directory << ": " << error.message();
}

std::vector<std::string> findProducers(const std::vector<std::string>& givenPaths, bool givenPathsOnly) {
  std::vector<std::string> directories;
  if (!givenPathsOnly)
    directories = environmentPaths();
  directories.insert(directories.end(), givenPaths.begin(), givenPaths.end());

  if (Log::admits(Severity::Debug)) {
    LogRecord record(Severity::Debug, kLocationsSite, __LINE__);
    record << "Using search paths: ";
    for (const std::string& directory : directories)
      record << "\t" << directory;
  }

  std::vector<std::string> files;
  for (const std::string& directory : directories) {
    std::vector<std::string> found;
    findCTIFiles(directory, found);
    for (std::string& file : found)
      if (std::ranges::find(files, file) == files.end())
        files.push_back(std::move(file));
  }
  return files;
}

}  // namespace OVI
