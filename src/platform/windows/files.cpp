// Host files opened, read and replaced, on Windows.
#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <system_error>
#include <utility>

#include "host_file.h"
#include "platform/platform.h"

namespace OVI::platform {
namespace {

HANDLE createBeside(const std::string& path, std::string& name) {
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    name = nameBeside(path, processId(), attempt);
    const HANDLE handle =
        ::CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle != INVALID_HANDLE_VALUE || ::GetLastError() != ERROR_FILE_EXISTS)
      return handle;
  }
  return INVALID_HANDLE_VALUE;
}

}  // namespace

std::uint64_t mainMemory() noexcept {
  MEMORYSTATUSEX status{};
  status.dwLength = sizeof status;
  return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullTotalPhys : 0;
}

std::string fileErrorText() {
  return std::system_category().message(static_cast<int>(::GetLastError()));
}

HostFile::Native HostFile::openForReading(const std::string& path) {
  return ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool HostFile::isOpen() const {
  return native_ != INVALID_HANDLE_VALUE;
}

bool HostFile::close() {
  const HANDLE closed = std::exchange(native_, INVALID_HANDLE_VALUE);
  return closed == INVALID_HANDLE_VALUE || ::CloseHandle(closed) != 0;
}

std::uint64_t HostFile::size() const {
  LARGE_INTEGER size{};
  return ::GetFileSizeEx(native_, &size) != 0 && size.QuadPart > 0 ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::optional<std::size_t> HostFile::read(void* to, std::size_t count) const {
  DWORD got = 0;
  if (::ReadFile(native_, to, static_cast<DWORD>(std::min(count, kFilePiece)), &got, nullptr) != 0)
    return got;
  if (::GetLastError() == ERROR_BROKEN_PIPE)  // The end of a pipe.
    return 0;
  return std::nullopt;
}

bool HostFile::writeAll(const void* data, std::size_t size) const {
  const auto* from = static_cast<const char*>(data);
  while (size > 0) {
    DWORD put = 0;
    if (::WriteFile(native_, from, static_cast<DWORD>(std::min(size, kFilePiece)), &put, nullptr) == 0)
      return false;
    from += put;
    size -= put;
  }
  return true;
}

std::string writeWholeFile(const std::string& path, const void* data, std::size_t size) {
  std::string name;
  HostFile file(createBeside(path, name));
  if (!file.isOpen())
    return fileErrorText();
  if (file.writeAll(data, size) && ::FlushFileBuffers(file.native()) != 0 && file.close() &&
      ::MoveFileExA(name.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
    return {};
  std::string error = fileErrorText();
  file.close();
  ::DeleteFileA(name.c_str());
  return error;
}

const char* searchPathSeparators() noexcept {
  return ";";
}

char pathSeparator() noexcept {
  return '\\';
}

}  // namespace OVI::platform
