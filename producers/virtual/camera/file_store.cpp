// Contents are read from disk when first asked for and written through.
#include "file_store.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <system_error>

namespace vcam {

std::optional<FileContent> FileStore::read(const std::string& name) {
  const auto known = contents_.find(name);
  if (known != contents_.end()) {
    return known->second;
  }
  std::optional<FileContent> content;
  if (!folder_.empty()) {
    if (std::ifstream file(pathOf(name), std::ios::binary); file) {
      content = toContent({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
    }
  }
  return contents_[name] = std::move(content);
}

void FileStore::write(const std::string& name, FileContent content) {
  if (!folder_.empty()) {
    std::error_code error;
    std::filesystem::create_directories(folder_, error);
    // A new file replaces the old one in one step, so that a crash leaves one of both.
    const std::filesystem::path path = pathOf(name);
    std::filesystem::path fresh = path;
    fresh += ".new";
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
    const bool written = file.flush().good();
    file.close();
    if (written) {
      std::filesystem::rename(fresh, path, error);
    } else {
      std::filesystem::remove(fresh, error);
    }
    if (!written || error) {
      tell("The camera file " + path.string() + " cannot be written; it is kept in memory" +
           (written ? ": " + error.message() : std::string()));
    }
  }
  contents_[name] = std::move(content);
}

void FileStore::remove(const std::string& name) {
  if (!folder_.empty()) {
    std::error_code error;
    std::filesystem::remove(pathOf(name), error);
    if (error) {
      tell("The camera file " + pathOf(name).string() + " cannot be removed: " + error.message());
    }
  }
  contents_[name].reset();
}

void FileStore::tell(const std::string& text) const {
  if (report_) {
    report_(text);
  }
}

FileContent toContent(const std::string& text) {
  FileContent content(text.size());
  std::ranges::transform(text, content.begin(), [](char c) { return static_cast<std::byte>(c); });
  return content;
}

std::string toText(const FileContent& content) {
  std::string text(content.size(), '\0');
  std::ranges::transform(content, text.begin(), [](std::byte b) { return static_cast<char>(b); });
  return text;
}

}  // namespace vcam
