// Loading of shared libraries.
#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/platform.h"

namespace OVI::platform {

namespace {

constexpr int kMaxDependencies = 64;
constexpr std::size_t kStartSize = 64 * 1024;  // Holds the table of a library's parts.

std::string& lastErrorOfThread() {
  thread_local std::string text;
  return text;
}

/** The file name that a loader's message complains about: "libx.so.1: cannot open shared object file: ...". */
std::string missingLibrary(const std::string& message) {
  const std::string name = message.substr(0, message.find(':'));
  return name.find('/') == std::string::npos ? name : std::string();
}

/**
 * What keeps a file from being handed to the loader; empty when nothing does. The loader itself tells what is no
 * library. But it waits for whoever writes into a pipe, and it maps a file that was copied in part as if it were whole
 * and dies when it touches what is missing.
 */
std::string obstacle(const std::string& path) {
  constexpr const char* kIncomplete = "the file is incomplete";
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  if (!S_ISREG(status.st_mode)) {
    return "not a regular file";
  }
  const auto size = static_cast<std::uint64_t>(status.st_size);
  std::vector<std::uint8_t> start;
  ElfW(Ehdr) header{};
  if (!readFileStart(path, kStartSize, start).empty() || start.size() < sizeof(header)) {
    return {};
  }
  std::memcpy(&header, start.data(), sizeof(header));
  if (std::memcmp(&header.e_ident[0], ELFMAG, SELFMAG) != 0 || header.e_phentsize != sizeof(ElfW(Phdr))) {
    return {};
  }
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    ElfW(Phdr) part{};
    if (header.e_phoff > start.size() || start.size() - header.e_phoff < (i + 1) * sizeof(part)) {
      return start.size() < kStartSize ? kIncomplete : "";
    }
    std::memcpy(&part, start.data() + header.e_phoff + i * sizeof(part), sizeof(part));
    if (part.p_type == PT_LOAD && (part.p_filesz > size || part.p_offset > size - part.p_filesz)) {
      return kIncomplete;
    }
  }
  return {};
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
    if (const std::string reason = obstacle(wanted.back()); !reason.empty()) {
      lastErrorOfThread() = wanted.back() + ": " + reason;
      break;
    }
    LibraryHandle loaded = dlopen(wanted.back().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded != nullptr) {
      wanted.pop_back();
      (wanted.empty() ? library : dependencies.emplace_back()) = loaded;
      continue;
    }
    const char* message = dlerror();
    lastErrorOfThread() = message != nullptr ? message : "";
    const std::string candidate = folder + missingLibrary(lastErrorOfThread());
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
  return lastErrorOfThread();
}

}  // namespace OVI::platform
