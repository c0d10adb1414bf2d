// Asks the system for the present environment, which on Windows is not the C library's copy of it.
#include "platform/environment.h"

#ifdef _WIN32
#include <windows.h>

#include <vector>
#else
#include <cstdlib>
#endif

namespace vcam {

#ifdef _WIN32

std::optional<std::string> environmentVariable(const char* name) {
  const std::wstring wideName(name, name + std::char_traits<char>::length(name));
  std::vector<wchar_t> value(32768);
  const DWORD length = GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  if (length == 0 || length >= value.size()) {
    return std::nullopt;
  }
  const int bytes =
      WideCharToMultiByte(CP_UTF8, 0, value.data(), static_cast<int>(length), nullptr, 0, nullptr, nullptr);
  std::string text(static_cast<std::size_t>(bytes), '\0');
  WideCharToMultiByte(CP_UTF8, 0, value.data(), static_cast<int>(length), text.data(), bytes, nullptr, nullptr);
  return text;
}

#else

std::optional<std::string> environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  if (value == nullptr || *value == '\0') {
    return std::nullopt;
  }
  return value;
}

#endif

}  // namespace vcam
