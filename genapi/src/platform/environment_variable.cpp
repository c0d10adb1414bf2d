// Asks the system, whose environment on Windows is not the C library's copy of it: that lacks what an application in
// another language sets, and what one with a C library of its own does.
#include "platform/environment_variable.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstdlib>
#endif

namespace GenApiEngine {

#ifdef _WIN32

std::optional<std::string> environmentVariable(const char* name) {
  std::string value(256, '\0');
  for (;;) {
    SetLastError(ERROR_SUCCESS);
    const DWORD length = GetEnvironmentVariableA(name, value.data(), static_cast<DWORD>(value.size()));
    if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND)
      return std::nullopt;
    const bool fits = length < value.size();
    value.resize(length);
    if (fits)
      return value;
  }
}

#else

std::optional<std::string> environmentVariable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

#endif

}  // namespace GenApiEngine
