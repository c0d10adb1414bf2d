// What this program itself is made as: the container and the machine that a producer must fit, and the variable with
// the folders in which the system looks for the libraries that it needs.
#pragma once

#include <string_view>

namespace tool {

#if defined(_WIN32)
inline constexpr std::string_view kContainer = "PE";
inline constexpr const char* kLibraryPath = "PATH";
#else
inline constexpr std::string_view kContainer = "ELF";
inline constexpr const char* kLibraryPath = "LD_LIBRARY_PATH";
#endif
#if defined(__x86_64__) || defined(_M_X64)
inline constexpr std::string_view kMachine = "x86-64";
#elif defined(__aarch64__) || defined(_M_ARM64)
inline constexpr std::string_view kMachine = "AArch64";
#elif defined(__i386__) || defined(_M_IX86)
inline constexpr std::string_view kMachine = "x86";
#else
inline constexpr std::string_view kMachine = "";
#endif

}  // namespace tool
