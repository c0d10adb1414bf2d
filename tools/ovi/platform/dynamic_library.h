// A library that is loaded while the program runs, and what keeps one from being loaded.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tool {

class DynamicLibrary {
 public:
  /// Loads it as the camera library loads a producer, with its names kept to itself. Throws ToolError with the system's
  /// reason.
  explicit DynamicLibrary(const std::filesystem::path& file);
  /// The library of this file, when this process has loaded it before; else null.
  static std::unique_ptr<DynamicLibrary> alreadyLoaded(const std::filesystem::path& file);
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  /// The exported function of that name, or null.
  void* find(const char* name) const;

 private:
  explicit DynamicLibrary(void* handle) : handle_(handle) {}

  void* handle_ = nullptr;
};

/// Whether a library that is loaded from a link is the one that was loaded from the file itself before, and knows that
/// path as its own.
#ifdef _WIN32
constexpr bool kLinksAreTheirFile = false;
#else
constexpr bool kLinksAreTheirFile = true;
#endif

/// How the system would find a library that another one needs.
struct LibraryLookup {
  bool found = false;
  std::filesystem::path file;  ///< set when it was found but not what it needs itself
  std::string problem;         ///< the system's words, when it was not found
};

/// Looks for a library by its name, where the system looks and in these folders. May load it, with all that comes of
/// that: called in a process that is there for the purpose.
LibraryLookup lookUpLibrary(const std::string& name, const std::vector<std::filesystem::path>& folders);

}  // namespace tool
