// A folder of this process's own below the one for temporary files.
#include "temporary_folder.h"

#include <random>
#include <string>

#include "paths.h"
#include "tool_error.h"

namespace tool {

namespace {

std::filesystem::path makeFolder() {
  constexpr int kAttempts = 16;
  std::error_code error;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(error);
  std::random_device random;
  for (int attempt = 0; !error && attempt < kAttempts; ++attempt) {
    std::filesystem::path folder = parent / ("ovi-" + std::to_string(random()));
    if (std::filesystem::create_directory(folder, error))  // Not one that somebody else has made.
      return folder;
  }
  throw ToolError("the folder for temporary files" + (parent.empty() ? std::string() : " " + pathText(parent)) +
                      " cannot be used: " + (error ? error.message() : "all names are taken"),
                  "make it writable, or name another one in the variable TMPDIR (on Windows TEMP)");
}

}  // namespace

TemporaryFolder::TemporaryFolder() : path_(makeFolder()) {}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace tool
