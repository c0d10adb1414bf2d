// Folders, URLs and whole files of the system.
#include <windows.h>
// After windows.h, which they need.
#include <shlobj.h>
#include <shlwapi.h>

#include <array>
#include <fstream>
#include <utility>

#include "platform/platform.h"
#include "windows/text.h"

namespace OVI::platform {

std::string urlToPath(const std::string& url) {
  std::array<char, MAX_PATH> path{};
  auto size = static_cast<DWORD>(path.size());
  // What follows a question mark is no part of the name, and no file name can hold one.
  const std::string location = url.substr(0, url.find('?'));
  if (FAILED(PathCreateFromUrlA(location.c_str(), path.data(), &size, 0)))
    return {};
  const std::string result(path.data());
  const bool onOtherMachine = result.starts_with("\\\\");
  return onOtherMachine ? std::string() : result;
}

std::optional<std::string> publicDocuments() {
  std::array<char, MAX_PATH> path{};
  if (FAILED(SHGetFolderPathA(nullptr, CSIDL_COMMON_DOCUMENTS, nullptr, SHGFP_TYPE_CURRENT, path.data())))
    return std::nullopt;
  return path.data();
}

std::string tempDirectory() {
  std::array<wchar_t, MAX_PATH> path{};
  const DWORD length = GetTempPathW(static_cast<DWORD>(path.size()), path.data());
  return narrowTo(std::wstring(path.data(), length < path.size() ? length : 0), CP_UTF8);
}

std::optional<std::string> readFile(const std::string& path, std::uint64_t limit) {
  std::ifstream file(path, std::ios::binary);
  std::string content;
  std::array<char, 4096> block{};
  while (file.read(block.data(), block.size()) || file.gcount() > 0) {
    content.append(block.data(), static_cast<std::size_t>(file.gcount()));
    if (content.size() > limit)
      return std::nullopt;
  }
  return file.eof() ? std::optional(std::move(content)) : std::nullopt;
}

}  // namespace OVI::platform
