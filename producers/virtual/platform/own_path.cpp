// Asks the loader for the file that holds this code; the only place of the producer with operating system headers.
#include "platform/own_path.h"

#ifdef _WIN32
#include <windows.h>

#include <array>
#else
#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#endif

namespace vcam {

namespace {
const char anchor = 0;
constexpr const char* kDefaultName = "VirtualCamera.cti";
}  // namespace

#ifdef _WIN32

std::string ownPath() {
  HMODULE module = nullptr;
  std::array<wchar_t, 32768> path{};
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&anchor), &module) == 0) {
    return kDefaultName;
  }
  const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  const int bytes =
      WideCharToMultiByte(CP_UTF8, 0, path.data(), static_cast<int>(length), nullptr, 0, nullptr, nullptr);
  if (length == 0 || bytes <= 0) {
    return kDefaultName;
  }
  std::string text(static_cast<std::size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, path.data(), static_cast<int>(length), text.data(), bytes, nullptr, nullptr);
  return text;
}

#else

std::string ownPath() {
  Dl_info info{};
  if (dladdr(&anchor, &info) == 0 || info.dli_fname == nullptr) {
    return kDefaultName;
  }
  const std::unique_ptr<char, void (*)(void*)> full(::realpath(info.dli_fname, nullptr), std::free);
  return full ? full.get() : info.dli_fname;
}

#endif

}  // namespace vcam
