// Loading of libraries and the system's error texts.
#include <windows.h>

#include <array>
#include <mutex>

#include "platform/platform.h"

namespace OVI::platform {

namespace {

constexpr DWORD kEnglishUnitedStates = 1033;

// Makes the folder of a library the place where what it needs is looked for, for the time of one load; the
// application's own choice is in force again afterwards. The choice is one of the whole process, so one load at a time
// makes it.
class DllFolder {
 public:
  explicit DllFolder(const std::string& path) : lock_(mutex()) {
    const std::size_t end = path.find_last_of("\\/");
    if (end == std::string::npos)
      return;
    std::array<wchar_t, 32768> previous{};
    const DWORD length = GetDllDirectoryW(static_cast<DWORD>(previous.size()), previous.data());
    previous_.assign(previous.data(), length < previous.size() ? length : 0);
    active_ = SetDllDirectoryA(path.substr(0, end + 1).c_str()) != 0;
  }
  ~DllFolder() {
    if (active_)
      SetDllDirectoryW(previous_.empty() ? nullptr : previous_.c_str());
  }
  DllFolder(const DllFolder&) = delete;
  DllFolder& operator=(const DllFolder&) = delete;

 private:
  static std::recursive_mutex& mutex() {
    static std::recursive_mutex instance;  // A library may load another one while it is being loaded.
    return instance;
  }

  std::lock_guard<std::recursive_mutex> lock_;
  std::wstring previous_;
  bool active_ = false;
};

// A path from the root. What is relative would be looked for beside the application, no longer in the current folder,
// while DllFolder is in force. A bare name stays one: the system knows where it searches for those.
std::string fullPath(const std::string& path) {
  if (path.find_first_of("\\/") == std::string::npos)
    return path;
  std::string full(GetFullPathNameA(path.c_str(), 0, nullptr, nullptr), '\0');
  full.resize(GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
  return full.empty() ? path : full;
}

}  // namespace

LibraryHandle loadLibrary(const std::string& path) {
  // No dialogue about a missing library: a producer that does not load is a line in the log.
  DWORD previousMode = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
  HMODULE module = nullptr;
  DWORD error = 0;
  {
    const std::string full = fullPath(path);
    const DllFolder folder(full);
    module = LoadLibraryA(full.c_str());
    error = GetLastError();
  }
  SetThreadErrorMode(previousMode, nullptr);
  SetLastError(error);
  return module;
}

void* resolve(LibraryHandle library, const char* name) noexcept {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void unload(LibraryHandle library) noexcept {
  if (library != nullptr)
    FreeLibrary(static_cast<HMODULE>(library));
}

std::string lastErrorText() {
  std::array<char, 1024> text{};
  const DWORD length =
      FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, GetLastError(),
                     kEnglishUnitedStates, text.data(), static_cast<DWORD>(text.size()), nullptr);
  if (length == 0)
    return "<Couldn't get error message>";
  return {text.data(), length};
}

}  // namespace OVI::platform
