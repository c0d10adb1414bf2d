// What kind of program file a producer is, and which libraries it needs, told from its content alone.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct BinaryFile {
  bool readable = false;
  bool fits = false;                 ///< for this machine's kind of program
  std::string kind;                  ///< "ELF library for x86-64, 64 bit", "text, no library", ...
  std::string machine;               ///< "x86-64", "AArch64", ...; empty when it is no program file
  unsigned bits = 0;                 ///< 32 or 64; 0 when it is no program file
  std::vector<std::string> needs;    ///< names of the libraries that are loaded with it; of files that fit only
  std::vector<std::string> folders;  ///< where it says itself that they are; $ORIGIN is replaced
};

BinaryFile inspectBinary(const std::filesystem::path& file);

/// The kind of library that this program can load: "ELF, x86-64, 64 bit".
std::string loadableKind();

}  // namespace tool
