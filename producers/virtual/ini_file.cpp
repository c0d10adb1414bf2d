// Splits the lines of a settings file.
#include "ini_file.h"

#include <fstream>
#include <string_view>

namespace vcam {

namespace {

std::string trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) {
    return {};
  }
  return std::string(text.substr(first, text.find_last_not_of(kBlank) - first + 1));
}

}  // namespace

bool readIniFile(const std::filesystem::path& file, std::vector<IniEntry>& entries,
                 const std::function<void(std::size_t line, const std::string& text)>& report) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  std::ifstream input(file, std::ios::binary);
  if (!input) {
    return false;
  }
  std::string section;
  std::string line;
  for (std::size_t number = 1; std::getline(input, line); ++number) {
    if (number == 1 && line.starts_with(kByteOrderMark)) {
      line.erase(0, kByteOrderMark.size());
    }
    const std::string text = trimmed(line);
    const std::size_t equals = text.find('=');
    if (text.empty() || text.front() == '#' || text.front() == ';') {
      continue;
    }
    if (text.front() == '[' && text.back() == ']') {
      section = trimmed(std::string_view(text).substr(1, text.size() - 2));
    } else if (equals != std::string::npos && equals != 0) {
      entries.push_back({section, trimmed(std::string_view(text).substr(0, equals)),
                         trimmed(std::string_view(text).substr(equals + 1)), number});
    } else {
      report(number, "\"" + text + "\" is neither a section nor a key with a value; it is ignored");
    }
  }
  return true;
}

}  // namespace vcam
