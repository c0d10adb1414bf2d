// The process's environment variables.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace vcam {

// The value of a variable in UTF-8; nothing when it is not set or empty.
std::optional<std::string> environmentVariable(const char* name);

// The path that a UTF-8 text names.
inline std::filesystem::path pathFrom(const std::string& text) {
  return {std::u8string(text.begin(), text.end())};
}

}  // namespace vcam
