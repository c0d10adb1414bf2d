// The producer's settings file: sections, keys and values, a line each.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace vcam {

struct IniEntry {
  std::string section;  // as written between the brackets, trimmed; empty before the first section
  std::string key;
  std::string value;
  std::size_t line = 0;
};

// Reads a UTF-8 file of lines "[section]", "key = value", "# comment" and "; comment". A line that is none of these is
// reported by its number and left out. False when the file cannot be read.
bool readIniFile(const std::filesystem::path& file, std::vector<IniEntry>& entries,
                 const std::function<void(std::size_t line, const std::string& text)>& report);

}  // namespace vcam
