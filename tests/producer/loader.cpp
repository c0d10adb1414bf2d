// The operating system's loader behind one small class.
#include "loader.h"

#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace producer_test {

std::string producerPath() {
  const char* folder = std::getenv("GENICAM_GENTL64_PATH");
  return std::string(folder == nullptr ? "." : folder) + "/VirtualCamera.cti";
}

#ifdef _WIN32

SharedLibrary::SharedLibrary(const std::string& path) : handle_(LoadLibraryA(path.c_str())) {}

SharedLibrary::~SharedLibrary() {
  if (handle_ != nullptr) {
    FreeLibrary(static_cast<HMODULE>(handle_));
  }
}

void* SharedLibrary::find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

#else

SharedLibrary::SharedLibrary(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

SharedLibrary::~SharedLibrary() {
  if (handle_ != nullptr) {
    dlclose(handle_);
  }
}

void* SharedLibrary::find(const char* name) const {
  return dlsym(handle_, name);
}

#endif

}  // namespace producer_test
