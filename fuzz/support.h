// What fuzzers need beside the code that they try: files, and findings that are no crash.
#pragma once

#include <cstddef>
#include <string>

namespace fuzz {

/// Ends the process as a finding when something that must hold does not.
inline void require(bool holds) {
  if (!holds)
    __builtin_trap();
}

std::string contentOf(const std::string& path);

/// A file in a new folder for temporary files; both are gone when the process ends well.
class ScratchFile {
 public:
  /// @param name  relative to the new folder
  explicit ScratchFile(const std::string& name);
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  ~ScratchFile();

  const std::string& folder() const { return folder_; }
  const std::string& path() const { return path_; }
  void write(const void* data, std::size_t size) const;

 private:
  std::string folder_;
  std::string path_;
};

}  // namespace fuzz
