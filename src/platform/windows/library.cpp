// Loading of libraries and the system's error texts.
#include <windows.h>

#include <array>

#include "platform/platform.h"

namespace OVI::platform {

namespace {

constexpr DWORD kEnglishUnitedStates = 1033;

// Makes the folder of a library the place where what it needs is looked for, for the time of one load.
class DllFolder {
 public:
  explicit DllFolder(const std::string& path) {
    const std::size_t end = path.find_last_of("\\/");
    active_ = end != std::string::npos && SetDllDirectoryA(path.substr(0, end).c_str()) != 0;
  }
  ~DllFolder() {
    if (active_)
      SetDllDirectoryA(nullptr);
  }
  DllFolder(const DllFolder&) = delete;
  DllFolder& operator=(const DllFolder&) = delete;

 private:
  bool active_ = false;
};

}  // namespace

LibraryHandle loadLibrary(const std::string& path) {
  // No dialogue about a missing library: a producer that does not load is a line in the log.
  DWORD previousMode = 0;
  SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
  HMODULE module = nullptr;
  DWORD error = 0;
  {
    const DllFolder folder(path);
    module = LoadLibraryA(path.c_str());
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
