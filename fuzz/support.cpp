// Scratch files, which the process alone writes.
#include "support.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace fuzz {

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  require(file.good());
  return {std::istreambuf_iterator<char>(file), {}};
}

ScratchFile::ScratchFile(const std::string& name)
    : folder_((std::filesystem::temp_directory_path() / ("ovi-fuzz-" + std::to_string(::getpid()))).string()),
      path_(folder_ + "/" + name) {
  std::filesystem::create_directories(std::filesystem::path(path_).parent_path());
}

ScratchFile::~ScratchFile() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void ScratchFile::write(const void* data, std::size_t size) const {
  std::ofstream file(path_, std::ios::binary | std::ios::trunc);
  file.write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
  require(file.good());
}

}  // namespace fuzz
