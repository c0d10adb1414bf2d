// Host files read and written whole, on Windows.
#include "platform/files.h"

#include <windows.h>

#include <algorithm>
#include <system_error>

namespace OVI::platform {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;
constexpr int kNameAttempts = 100;

std::string errorText() {
  return std::system_category().message(static_cast<int>(::GetLastError()));
}

class File {
 public:
  explicit File(HANDLE handle) : handle_(handle) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { close(); }

  bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE handle() const { return handle_; }
  bool close() {
    const HANDLE closed = handle_;
    handle_ = INVALID_HANDLE_VALUE;
    return closed == INVALID_HANDLE_VALUE || ::CloseHandle(closed) != 0;
  }

 private:
  HANDLE handle_;
};

HANDLE openForReading(const std::string& path) {
  return ::CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool readUpTo(const File& file, std::size_t count, std::vector<std::uint8_t>& out) {
  while (out.size() < count) {
    const std::size_t before = out.size();
    const std::size_t room = out.capacity() - before;  // A file of the size that was foreseen moves no memory.
    out.resize(before + std::min({room != 0 ? room : kPiece, kPiece, count - before}));
    DWORD got = 0;
    const bool read =
        ::ReadFile(file.handle(), out.data() + before, static_cast<DWORD>(out.size() - before), &got, nullptr) != 0;
    out.resize(before + got);
    if (!read)
      return ::GetLastError() == ERROR_BROKEN_PIPE;
    if (got == 0)
      return true;
  }
  return true;
}

bool writeAll(const File& file, const void* data, std::size_t size) {
  const auto* from = static_cast<const char*>(data);
  while (size > 0) {
    DWORD put = 0;
    if (::WriteFile(file.handle(), from, static_cast<DWORD>(std::min(size, kPiece)), &put, nullptr) == 0)
      return false;
    from += put;
    size -= put;
  }
  return true;
}

HANDLE createBeside(const std::string& path, std::string& name) {
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    name = path + ".part" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(attempt);
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

std::string readFileStart(const std::string& path, std::size_t count, std::vector<std::uint8_t>& out) {
  out.clear();
  const File file(openForReading(path));
  if (file.isOpen() && readUpTo(file, count, out))
    return {};
  std::string error = errorText();
  out.clear();
  return error;
}

std::string readWholeFile(const std::string& path, std::uint64_t limit, std::vector<std::uint8_t>& out) {
  out.clear();
  const File file(openForReading(path));
  if (!file.isOpen())
    return errorText();
  const std::string tooLarge = "The file is larger than " + std::to_string(limit) + " bytes.";
  LARGE_INTEGER size{};
  if (::GetFileSizeEx(file.handle(), &size) != 0 && size.QuadPart > 0) {
    if (static_cast<std::uint64_t>(size.QuadPart) > limit)
      return tooLarge;
    out.reserve(static_cast<std::size_t>(size.QuadPart) + 1);
  }
  std::string error;
  if (!readUpTo(file, static_cast<std::size_t>(limit) + 1, out))
    error = errorText();
  else if (out.size() > limit)
    error = tooLarge;
  if (!error.empty())
    out.clear();
  return error;
}

std::string writeWholeFile(const std::string& path, const void* data, std::size_t size) {
  std::string name;
  File file(createBeside(path, name));
  if (!file.isOpen())
    return errorText();
  if (writeAll(file, data, size) && ::FlushFileBuffers(file.handle()) != 0 && file.close() &&
      ::MoveFileExA(name.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
    return {};
  std::string error = errorText();
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
