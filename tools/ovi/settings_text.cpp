// Settings files: one assignment a line.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "settings.h"
#include "tool_error.h"

namespace tool {

namespace {

std::string trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// Values that a line could not carry as they are go between quotation marks, with backslashes as in JSON.
std::string quotedValue(const std::string& value) {
  const bool plain = !value.empty() && value == trimmed(value) && value.front() != '"' &&
                     std::ranges::all_of(value, [](char c) { return static_cast<unsigned char>(c) >= 0x20; });
  return plain ? value : nlohmann::json(value).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string unquotedValue(const std::string& text) {
  if (text.empty() || text.front() != '"')
    return text;
  const nlohmann::json json = nlohmann::json::parse(text, nullptr, false);
  return json.is_string() ? json.get<std::string>() : text;
}

std::vector<std::pair<std::string, std::string>> parseSelectors(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> selectors;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, ',');) {
    const std::size_t equals = part.find('=');
    if (equals == std::string::npos)
      return {};
    selectors.emplace_back(trimmed(part.substr(0, equals)), trimmed(part.substr(equals + 1)));
  }
  return selectors;
}

}  // namespace

std::string Setting::name() const {
  std::string text;
  for (const auto& [selector, position] : selectors)
    text += (text.empty() ? "" : ", ") + selector + "=" + position;
  return feature + (text.empty() ? "" : " [" + text + "]");
}

std::string settingLine(const Setting& setting) {
  return setting.name() + " = " + quotedValue(setting.value);
}

std::vector<Setting> parseSettings(const std::string& text, const std::string& path) {
  std::vector<Setting> settings;
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // Some editors begin a file with it.
  std::istringstream lines(text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text);
  std::size_t number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    line = trimmed(line);
    if (line.empty() || line.front() == '#')
      continue;
    Setting setting;
    const std::size_t open = line.find('[');
    const std::size_t close = line.find(']');
    const bool selected = open != std::string::npos && open < line.find('=');
    const std::size_t equals = selected ? line.find('=', std::min(close, line.size())) : line.find('=');
    if (equals != std::string::npos) {
      setting.feature = trimmed(line.substr(0, selected ? open : equals));
      setting.value = unquotedValue(trimmed(line.substr(equals + 1)));
      if (selected)
        setting.selectors = parseSelectors(line.substr(open + 1, close - open - 1));
    }
    if (setting.feature.empty() || (selected && setting.selectors.empty()))
      throw ToolError(path + ", line " + std::to_string(number) + ": \"" + line + "\" is no setting",
                      "a line is \"Feature = value\" or \"Feature [Selector=value] = value\"", ExitCode::kUsage);
    settings.push_back(std::move(setting));
  }
  return settings;
}

}  // namespace tool
