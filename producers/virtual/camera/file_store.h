// The non-volatile memory of a camera: named contents, on disk when a folder is configured.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vcam {

using FileContent = std::vector<std::byte>;

class FileStore {
 public:
  // An empty folder keeps everything in memory.
  FileStore(std::filesystem::path folder, std::function<void(const std::string&)> report)
      : folder_(std::move(folder)),
        report_(std::move(report)) {}

  // Nothing when it was never written or was removed.
  std::optional<FileContent> read(const std::string& name);
  void write(const std::string& name, FileContent content);
  void remove(const std::string& name);

 private:
  std::filesystem::path pathOf(const std::string& name) const { return folder_ / (name + ".bin"); }
  void tell(const std::string& text) const;

  std::filesystem::path folder_;
  std::function<void(const std::string&)> report_;
  std::map<std::string, std::optional<FileContent>> contents_;
};

FileContent toContent(const std::string& text);
std::string toText(const FileContent& content);

}  // namespace vcam
