// What kind of program file a producer is, told from its header alone.
#include "binary_file.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <string_view>

#include "platform/binary_format.h"

namespace tool {

namespace {

struct Machine {
  std::uint32_t code;
  const char* name;
};

constexpr std::array kElfMachines = {Machine{3, "x86"}, Machine{40, "ARM"}, Machine{62, "x86-64"},
                                     Machine{183, "AArch64"}, Machine{243, "RISC-V"}};
constexpr std::array kPeMachines = {Machine{0x14C, "x86"}, Machine{0x1C4, "ARM"}, Machine{0x8664, "x86-64"},
                                    Machine{0xAA64, "AArch64"}};

template<std::size_t N>
std::string nameOf(const std::array<Machine, N>& machines, std::uint32_t code) {
  for (const Machine& machine : machines)
    if (machine.code == code)
      return machine.name;
  return "machine " + std::to_string(code);
}

BinaryFile describe(std::string_view container, const std::string& machine) {
  return {true, container == kContainer && (kMachine.empty() || machine == kMachine),
          std::string(container) + " library for " + machine};
}

}  // namespace

BinaryFile inspectBinary(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::array<char, 4096> bytes{};
  stream.read(bytes.data(), bytes.size());
  const auto size = static_cast<std::size_t>(stream.gcount());
  const std::string_view text(bytes.data(), size);
  const auto byteAt = [&](std::size_t at) -> std::uint32_t {
    return at < size ? static_cast<unsigned char>(bytes.at(at)) : 0U;
  };
  if (size == 0)
    return {stream.is_open(), false, stream.is_open() ? "empty file" : "cannot be read"};
  if (text.substr(0, 4) ==
      "\x7F"
      "ELF") {
    const bool bigEndian = byteAt(5) == 2;
    return describe("ELF",
                    nameOf(kElfMachines, bigEndian ? byteAt(18) << 8U | byteAt(19) : byteAt(19) << 8U | byteAt(18)));
  }
  if (text.substr(0, 2) == "MZ") {
    const std::size_t header = byteAt(0x3C) | byteAt(0x3D) << 8U;
    if (text.substr(std::min(header, size), 2) == "PE")
      return describe("PE", nameOf(kPeMachines, byteAt(header + 5) << 8U | byteAt(header + 4)));
  }
  const bool printable = std::ranges::all_of(
      text, [](char c) { return static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\r' || c == '\t'; });
  return {true, false, printable ? "text, no library" : "no library"};
}

}  // namespace tool
