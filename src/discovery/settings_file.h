// A small settings file of "key = value" lines that keeps what it does not know.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OVI {

/** Read whole, changed in memory, written through a temporary file. Keys are compared in lower case. */
class SettingsFile {
 public:
  /** A file that cannot be read is an empty one. */
  explicit SettingsFile(std::string path);

  /** The value without the blanks around it; of several lines with the key the first counts. */
  std::optional<std::string> value(std::string_view key) const;

  /** Replaces the key's first line, or appends one. */
  void set(std::string_view key, std::string_view value);

  /** Writes the file, and its folder when that is missing. @return empty; or what went wrong */
  std::string write() const;

 private:
  std::string path_;
  std::vector<std::string> lines_;
};

}  // namespace OVI
