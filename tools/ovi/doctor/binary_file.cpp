// What kind of program file a producer is, and which libraries it needs, told from its content alone.
//
// Files are hostile here: every offset is checked against the file, every list has a limit.
#include "doctor/binary_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>

#include "paths.h"
#include "platform/binary_format.h"
#include "text.h"

namespace tool {

namespace {

struct Machine {
  std::uint32_t code;
  const char* name;
};

constexpr std::array kElfMachines = {Machine{2, "SPARC"},    Machine{3, "x86"},       Machine{8, "MIPS"},
                                     Machine{20, "PowerPC"}, Machine{21, "PowerPC"},  Machine{40, "ARM"},
                                     Machine{62, "x86-64"},  Machine{183, "AArch64"}, Machine{243, "RISC-V"}};
constexpr std::array kPeMachines = {Machine{0x14C, "x86"}, Machine{0x1C0, "ARM"}, Machine{0x1C4, "ARM"},
                                    Machine{0x8664, "x86-64"}, Machine{0xAA64, "AArch64"}};

constexpr unsigned kBits = 8 * sizeof(void*);

constexpr std::size_t kMostEntries = 4096;
constexpr std::size_t kLongestName = 4096;

template<std::size_t N>
std::string machineName(const std::array<Machine, N>& machines, std::uint32_t code) {
  for (const Machine& machine : machines)
    if (machine.code == code)
      return machine.name;
  return "machine " + std::to_string(code);
}

// Numbers and texts anywhere in a file; outside of it there are none.
class Content {
 public:
  explicit Content(const std::filesystem::path& file) : stream_(file, std::ios::binary) {}

  bool isOpen() const { return stream_.is_open(); }
  void setBigEndian(bool bigEndian) { bigEndian_ = bigEndian; }

  std::string bytes(std::uint64_t at, std::size_t size) {
    std::string text(size, '\0');
    stream_.clear();
    stream_.seekg(static_cast<std::streamoff>(at));
    stream_.read(text.data(), static_cast<std::streamsize>(size));
    text.resize(stream_.gcount() < 0 ? 0 : static_cast<std::size_t>(stream_.gcount()));
    return text;
  }
  std::optional<std::uint64_t> number(std::uint64_t at, std::size_t size) {
    const std::string text = bytes(at, size);
    if (text.size() != size)
      return std::nullopt;
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
      value = value << 8U | static_cast<unsigned char>(text[bigEndian_ ? i : size - 1 - i]);
    return value;
  }
  std::uint64_t numberOrZero(std::uint64_t at, std::size_t size) { return number(at, size).value_or(0); }
  // Up to its NUL; empty when there is none near.
  std::string text(std::uint64_t at) {
    const std::string found = bytes(at, kLongestName);
    const std::size_t end = found.find('\0');
    return end == std::string::npos ? std::string() : found.substr(0, end);
  }

 private:
  std::ifstream stream_;
  bool bigEndian_ = false;
};

// A part of the file that has an address of its own when it is loaded.
struct Part {
  std::uint64_t address;
  std::uint64_t offset;
  std::uint64_t size;
};

std::optional<std::uint64_t> offsetOf(const std::vector<Part>& parts, std::uint64_t address) {
  for (const Part& part : parts)
    if (address >= part.address && address - part.address < part.size)
      return part.offset + (address - part.address);
  return std::nullopt;
}

void addFolders(const std::string& list, const std::filesystem::path& origin, std::vector<std::string>& folders) {
  std::size_t start = 0;
  while (start <= list.size()) {
    const std::size_t end = std::min(list.find(':', start), list.size());
    std::string folder = list.substr(start, end - start);
    for (const std::string_view word : {"${ORIGIN}", "$ORIGIN"})
      if (const std::size_t at = folder.find(word); at != std::string::npos)
        folder.replace(at, word.size(), pathText(origin));
    if (!folder.empty())
      folders.push_back(folder);
    start = end + 1;
  }
}

// The dynamic section of a 64-bit ELF file.
void readElfNeeds(Content& content, const std::filesystem::path& origin, BinaryFile& binary) {
  constexpr std::uint64_t kLoad = 1;
  constexpr std::uint64_t kDynamic = 2;
  enum Tag : std::uint64_t { kEnd = 0, kNeeded = 1, kTexts = 5, kRpath = 15, kRunpath = 29 };
  const std::uint64_t table = content.numberOrZero(32, 8);
  const std::uint64_t entrySize = content.numberOrZero(54, 2);
  const std::uint64_t entries = content.numberOrZero(56, 2);
  std::vector<Part> parts;
  std::optional<Part> dynamic;
  for (std::uint64_t i = 0; i < entries; ++i) {
    const std::uint64_t at = table + i * entrySize;
    const std::uint64_t type = content.numberOrZero(at, 4);
    const Part part{content.numberOrZero(at + 16, 8), content.numberOrZero(at + 8, 8),
                    content.numberOrZero(at + 32, 8)};
    if (type == kLoad)
      parts.push_back(part);
    if (type == kDynamic)
      dynamic = part;
  }
  if (!dynamic)
    return;
  std::vector<std::uint64_t> names;
  std::vector<std::uint64_t> searched;
  std::uint64_t texts = 0;
  for (std::uint64_t i = 0; i < kMostEntries && i * 16 < dynamic->size; ++i) {
    const std::uint64_t tag = content.numberOrZero(dynamic->offset + i * 16, 8);
    const std::uint64_t value = content.numberOrZero(dynamic->offset + i * 16 + 8, 8);
    if (tag == kEnd)
      break;
    if (tag == kNeeded)
      names.push_back(value);
    if (tag == kRpath || tag == kRunpath)
      searched.push_back(value);
    if (tag == kTexts)
      texts = value;
  }
  const std::optional<std::uint64_t> start = offsetOf(parts, texts);
  if (!start)
    return;
  for (const std::uint64_t name : names)
    binary.needs.push_back(content.text(*start + name));
  for (const std::uint64_t list : searched)
    addFolders(content.text(*start + list), origin, binary.folders);
}

// The import table of a 64-bit PE file, whose header of sections is `header`.
void readPeNeeds(Content& content, std::uint64_t header, BinaryFile& binary) {
  constexpr std::uint64_t kCoffSize = 24;  // with the signature
  constexpr std::uint64_t kImportEntry = 112 + 8;
  const std::uint64_t sections = content.numberOrZero(header + 6, 2);
  const std::uint64_t optionalSize = content.numberOrZero(header + 20, 2);
  std::vector<Part> parts;
  for (std::uint64_t i = 0; i < sections; ++i) {
    const std::uint64_t at = header + kCoffSize + optionalSize + i * 40;
    parts.push_back(
        {content.numberOrZero(at + 12, 4), content.numberOrZero(at + 20, 4), content.numberOrZero(at + 16, 4)});
  }
  const std::optional<std::uint64_t> imports =
      offsetOf(parts, content.numberOrZero(header + kCoffSize + kImportEntry, 4));
  for (std::uint64_t i = 0; imports && i < kMostEntries; ++i) {
    const std::uint64_t name = content.numberOrZero(*imports + i * 20 + 12, 4);
    if (name == 0)
      break;
    if (const std::optional<std::uint64_t> at = offsetOf(parts, name))
      binary.needs.push_back(content.text(*at));
  }
}

void describe(BinaryFile& binary, std::string_view container, bool library) {
  binary.kind = std::string(container) + (library ? " library for " : " file, no library, for ") + binary.machine +
                ", " + std::to_string(binary.bits) + " bit";
  binary.fits =
      library && container == kContainer && (kMachine.empty() || binary.machine == kMachine) && binary.bits == kBits;
}

bool inspectElf(Content& content, const std::filesystem::path& origin, BinaryFile& binary) {
  constexpr std::uint64_t kShared = 3;
  if (content.bytes(0, 4) !=
      "\x7F"
      "ELF")
    return false;
  binary.bits = content.numberOrZero(4, 1) == 2 ? 64 : 32;
  content.setBigEndian(content.numberOrZero(5, 1) == 2);
  binary.machine = machineName(kElfMachines, static_cast<std::uint32_t>(content.numberOrZero(18, 2)));
  describe(binary, "ELF", content.numberOrZero(16, 2) == kShared);
  if (binary.fits && binary.bits == 64)
    readElfNeeds(content, origin, binary);
  return true;
}

bool inspectPe(Content& content, BinaryFile& binary) {
  constexpr std::uint64_t kDll = 0x2000;
  if (content.bytes(0, 2) != "MZ")
    return false;
  const std::uint64_t header = content.numberOrZero(0x3C, 4);
  if (content.bytes(header, 4) != std::string_view("PE\0\0", 4))
    return false;
  binary.machine = machineName(kPeMachines, static_cast<std::uint32_t>(content.numberOrZero(header + 4, 2)));
  binary.bits = content.numberOrZero(header + 24, 2) == 0x20B ? 64 : 32;
  describe(binary, "PE", (content.numberOrZero(header + 22, 2) & kDll) != 0);
  if (binary.fits && binary.bits == 64)
    readPeNeeds(content, header, binary);
  return true;
}

}  // namespace

BinaryFile inspectBinary(const std::filesystem::path& file) {
  BinaryFile binary;
  errno = 0;
  Content content(file);
  if (!content.isOpen()) {
    binary.kind = "cannot be read: " + systemReason();
    return binary;
  }
  binary.readable = true;
  const std::string start = content.bytes(0, 4096);
  if (start.empty())
    binary.kind = "empty file";
  else if (!inspectElf(content, file.parent_path(), binary) && !inspectPe(content, binary)) {
    const bool printable = std::ranges::all_of(
        start, [](char c) { return static_cast<unsigned char>(c) >= 0x20 || c == '\n' || c == '\r' || c == '\t'; });
    binary.kind = printable ? "text, no library" : "no library";
  }
  return binary;
}

std::string loadableKind() {
  return std::string(kContainer) + ", " + (kMachine.empty() ? "" : std::string(kMachine) + ", ") +
         std::to_string(kBits) + " bit";
}

}  // namespace tool
