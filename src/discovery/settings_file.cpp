// A small settings file of "key = value" lines that keeps what it does not know.
#include "settings_file.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <boost/filesystem.hpp>
#include <cstdint>

#include "platform/files.h"

namespace OVI {

namespace {

constexpr std::uint64_t kMaxSize = 1024 * 1024;  // More is not ours.

std::string trimmed(std::string_view text) {
  return boost::algorithm::trim_copy_if(std::string(text),
                                        [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
}

// The key of a line in lower case; empty for a line without one.
std::string keyOf(const std::string& line) {
  const std::size_t equals = line.find('=');
  return equals == std::string::npos ? std::string() : boost::algorithm::to_lower_copy(trimmed(line.substr(0, equals)));
}

}  // namespace

SettingsFile::SettingsFile(std::string path) : path_(std::move(path)) {
  std::vector<std::uint8_t> content;
  if (!platform::readWholeFile(path_, kMaxSize, content).empty())
    return;
  std::string line;
  for (const std::uint8_t byte : content) {
    if (byte == '\n') {
      lines_.push_back(std::move(line));
      line.clear();
    } else {
      line += static_cast<char>(byte);
    }
  }
  if (!line.empty())
    lines_.push_back(std::move(line));
}

std::optional<std::string> SettingsFile::value(std::string_view key) const {
  const std::string wanted = boost::algorithm::to_lower_copy(std::string(key));
  for (const std::string& line : lines_)
    if (keyOf(line) == wanted)
      return trimmed(std::string_view(line).substr(line.find('=') + 1));
  return std::nullopt;
}

void SettingsFile::set(std::string_view key, std::string_view value) {
  const std::string wanted = boost::algorithm::to_lower_copy(std::string(key));
  std::string line = std::string(key) + " = " + std::string(value);
  for (std::string& existing : lines_) {
    if (keyOf(existing) == wanted) {
      existing = std::move(line);
      return;
    }
  }
  lines_.push_back(std::move(line));
}

std::string SettingsFile::write() const {
  boost::system::error_code ignored;  // A folder that cannot be made shows when the file cannot be written.
  boost::filesystem::create_directories(boost::filesystem::path(path_).parent_path(), ignored);
  std::string content;
  for (const std::string& line : lines_)
    content += line + "\n";
  return platform::writeWholeFile(path_, content.data(), content.size());
}

}  // namespace OVI
