// A library that is loaded while the program runs.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

class DynamicLibrary {
 public:
  /// Loads it with its names kept to itself. Throws ToolError with the system's reason.
  explicit DynamicLibrary(const std::filesystem::path& file);
  ~DynamicLibrary();
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;

  /// The exported function of that name, or null.
  void* find(const char* name) const;

 private:
  void* handle_ = nullptr;
};

}  // namespace tool
