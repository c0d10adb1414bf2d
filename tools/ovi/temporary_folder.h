// A folder of this process's own below the one for temporary files.
#pragma once

#include <filesystem>

namespace tool {

/// Made empty, and removed with what is in it then.
class TemporaryFolder {
 public:
  /// Throws ToolError when there can be none.
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tool
