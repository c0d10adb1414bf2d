// A library that is loaded while the program runs.
#include "platform/dynamic_library.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <system_error>

#include "paths.h"
#include "tool_error.h"

namespace tool {

#ifdef _WIN32

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    : handle_(LoadLibraryExW(std::filesystem::absolute(file).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH)) {
  if (handle_ == nullptr)
    throw ToolError(pathText(file) +
                    " does not load: " + std::system_category().message(static_cast<int>(GetLastError())));
}

DynamicLibrary::~DynamicLibrary() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

void* DynamicLibrary::find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

#else

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    : handle_(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    const char* const reason = dlerror();
    throw ToolError(pathText(file) + " does not load: " + (reason == nullptr ? "no reason is given" : reason));
  }
}

DynamicLibrary::~DynamicLibrary() {
  dlclose(handle_);
}

void* DynamicLibrary::find(const char* name) const {
  return dlsym(handle_, name);
}

#endif

}  // namespace tool
