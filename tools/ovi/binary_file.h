// What kind of program file a producer is, told from its header alone.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

struct BinaryFile {
  bool readable = false;
  bool fits = false;  ///< for this machine's kind of program
  std::string kind;   ///< "ELF, x86-64, 64 bit", "text, no library", ...
};

BinaryFile inspectBinary(const std::filesystem::path& file);

}  // namespace tool
