// A library that is loaded while the program runs, and what keeps one from being loaded.
#include "platform/dynamic_library.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "paths.h"
#include "platform/console.h"
#include "platform/platform.h"
#include "tool_error.h"

namespace tool {

namespace {

std::string trimmedReason(std::string text) {
  while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ')
    text.pop_back();
  return text.empty() ? "no reason is given" : text;
}

// The system's words, or plainer ones.
std::string whyNotLoaded() {
#ifdef _WIN32
  // Windows catches what happens in a library's own start.
  if (GetLastError() == ERROR_NOACCESS)
    return "it crashes in its own start";
#endif
  return trimmedReason(fromLibraryText(OVI::platform::lastErrorText()));
}

// The path in narrow text. On Windows a name that the code page lacks has a short one that it does not.
std::string narrowPath(const std::filesystem::path& file) {
  const std::string text = pathText(std::filesystem::absolute(file));
#ifdef _WIN32
  if (fromLibraryText(toLibraryText(text)) != text) {
    std::wstring brief(32768, L'\0');
    brief.resize(
        GetShortPathNameW(std::filesystem::absolute(file).c_str(), brief.data(), static_cast<DWORD>(brief.size())));
    if (!brief.empty())
      return toLibraryText(pathText(std::filesystem::path(brief)));
  }
#endif
  return toLibraryText(text);
}

}  // namespace

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    : handle_(OVI::platform::loadLibrary(narrowPath(file))) {
  if (handle_ == nullptr)
    throw ToolError(pathText(file) + " does not load: " + whyNotLoaded());
}

std::unique_ptr<DynamicLibrary> DynamicLibrary::alreadyLoaded(const std::filesystem::path& file) {
#ifdef _WIN32
  HMODULE handle = nullptr;
  if (GetModuleHandleExW(0, std::filesystem::absolute(file).c_str(), &handle) == 0)
    return nullptr;
#else
  void* const handle = dlopen(std::filesystem::absolute(file).c_str(), RTLD_LAZY | RTLD_NOLOAD);
  if (handle == nullptr)
    return nullptr;
#endif
  return std::unique_ptr<DynamicLibrary>(new DynamicLibrary(static_cast<void*>(handle)));
}

DynamicLibrary::~DynamicLibrary() {
  OVI::platform::unload(handle_);
}

void* DynamicLibrary::find(const char* name) const {
  return OVI::platform::resolve(handle_, name);
}

namespace {

// In the folders of whoever needs it.
LibraryLookup lookInFolders(const std::string& name, const std::vector<std::filesystem::path>& folders) {
  std::error_code error;
  for (const std::filesystem::path& folder : folders)
    if (std::filesystem::is_regular_file(folder / pathFromText(name), error))
      return {true, folder / pathFromText(name), {}};
  return {};
}

}  // namespace

#ifdef _WIN32

LibraryLookup lookUpLibrary(const std::string& name, const std::vector<std::filesystem::path>& folders) {
  LibraryLookup lookup = lookInFolders(name, folders);
  if (lookup.found)
    return lookup;
  // Neither its own code nor the libraries that it needs are touched.
  const HMODULE module = LoadLibraryExW(pathFromText(name).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  if (module == nullptr)
    return {false, {}, name + " was not found"};
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
  std::wstring system(32768, L'\0');
  system.resize(GetSystemDirectoryW(system.data(), static_cast<UINT>(system.size())));
  FreeLibrary(module);
  // The system's own libraries are whole.
  std::error_code error;
  lookup.found = true;
  if (!std::filesystem::equivalent(std::filesystem::path(path).parent_path(), system, error))
    lookup.file = path;
  return lookup;
}

#else

LibraryLookup lookUpLibrary(const std::string& name, const std::vector<std::filesystem::path>& folders) {
  if (dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr)  // Never closed: the process ends soon.
    return {true, {}, {}};
  const char* const message = dlerror();
  const std::string problem = message == nullptr ? "" : message;
  LibraryLookup lookup = lookInFolders(name, folders);
  lookup.problem = lookup.found ? std::string() : problem;
  return lookup;
}

#endif

}  // namespace tool
