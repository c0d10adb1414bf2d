// Paths between the file system and the tool's UTF-8 texts.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

inline std::string pathText(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

inline std::filesystem::path pathFromText(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

}  // namespace tool
