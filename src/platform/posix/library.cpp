// Loading of shared libraries.
#include <dlfcn.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/platform.h"

namespace OVI::platform {

namespace {

constexpr int kMaxDependencies = 64;

std::string& errorText() {
  thread_local std::string text;
  return text;
}

/** The file name that a loader's message complains about: "libx.so.1: cannot open shared object file: ...". */
std::string missingLibrary(const std::string& message) {
  const std::string name = message.substr(0, message.find(':'));
  return name.find('/') == std::string::npos ? name : std::string();
}

}  // namespace

LibraryHandle loadLibrary(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash != std::string::npos ? path.substr(0, slash + 1) : "./";
  const std::string file = slash != std::string::npos ? path : folder + path;  // A bare name would be searched for.
  // The loader finds a library that is loaded already by its name, so what it misses is loaded from here first.
  std::vector<LibraryHandle> dependencies;
  LibraryHandle library = nullptr;
  std::vector<std::string> wanted = {file};
  for (int attempt = 0; !wanted.empty() && attempt < kMaxDependencies; ++attempt) {
    LibraryHandle loaded = dlopen(wanted.back().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded != nullptr) {
      wanted.pop_back();
      (wanted.empty() ? library : dependencies.emplace_back()) = loaded;
      continue;
    }
    const char* message = dlerror();
    errorText() = message != nullptr ? message : "";
    const std::string candidate = folder + missingLibrary(errorText());
    if (candidate == folder || candidate == wanted.back() || access(candidate.c_str(), R_OK) != 0) {
      break;
    }
    wanted.push_back(candidate);
  }
  for (LibraryHandle dependency : dependencies) {
    dlclose(dependency);  // The library that needs it holds it now.
  }
  return library;
}

void* resolve(LibraryHandle library, const char* name) noexcept {
  return dlsym(library, name);
}

void unload(LibraryHandle library) noexcept {
  if (library != nullptr) {
    dlclose(library);
  }
}

std::string lastErrorText() {
  return errorText();
}

}  // namespace OVI::platform
