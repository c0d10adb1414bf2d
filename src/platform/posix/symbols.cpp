// Names for code addresses in a signal handler: the process's map and the symbol tables of the modules' files.
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <cstring>

#include "posix/signal_safe.h"

namespace OVI::platform {

namespace {

// One line of the process's memory map.
struct Mapping {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
  std::uint64_t fileOffset = 0;
  bool executable = false;
  std::array<char, PATH_MAX> path{};
};

class FileDescriptor {
 public:
  explicit FileDescriptor(const char* path) noexcept : value_(open(path, O_RDONLY | O_CLOEXEC)) {}
  ~FileDescriptor() {
    if (value_ >= 0)
      close(value_);
  }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  int get() const noexcept { return value_; }
  bool readAt(std::uint64_t offset, void* to, std::size_t size) const noexcept {
    return pread(value_, to, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
  }

 private:
  int value_;
};

// Reads the map line by line through a small buffer.
class MapReader {
 public:
  bool next(Mapping& mapping) noexcept {
    mapping = Mapping{};
    char c = 0;
    mapping.begin = number(c);
    mapping.end = number(c);
    if (c != ' ')
      return false;
    std::array<char, 5> rights{};
    for (char& right : rights)
      right = get();
    mapping.executable = rights[2] == 'x';
    mapping.fileOffset = number(c);
    while (c != '\n' && c != 0 && c != '/')  // Device and inode follow, then the path behind blanks.
      c = get();
    std::size_t length = 0;
    for (; c != '\n' && c != 0; c = get())
      if (length + 1 < mapping.path.size())
        mapping.path.at(length++) = c;
    return true;
  }

 private:
  std::uintptr_t number(char& terminator) noexcept {
    std::uintptr_t value = 0;
    for (;;) {
      const char c = get();
      if (c >= '0' && c <= '9') {
        value = value * 16 + static_cast<std::uintptr_t>(c - '0');
      } else if (c >= 'a' && c <= 'f') {
        value = value * 16 + static_cast<std::uintptr_t>(c - 'a' + 10);
      } else {
        terminator = c;
        return value;
      }
    }
  }

  char get() noexcept {
    if (position_ == filled_) {
      const ssize_t count = read(file_.get(), buffer_.data(), buffer_.size());
      if (count <= 0)
        return 0;
      filled_ = static_cast<std::size_t>(count);
      position_ = 0;
    }
    return buffer_.at(position_++);
  }

  FileDescriptor file_{"/proc/self/maps"};
  std::array<char, 1024> buffer_{};
  std::size_t position_ = 0;
  std::size_t filled_ = 0;
};

using Header = ElfW(Ehdr);
using Segment = ElfW(Phdr);
using Section = ElfW(Shdr);
using Symbol = ElfW(Sym);

// The address that the file itself gives to the byte at this offset of it.
bool fileAddress(const FileDescriptor& file, const Header& header, std::uint64_t offset,
                 std::uint64_t& address) noexcept {
  for (unsigned i = 0; i < header.e_phnum; ++i) {
    Segment segment{};
    if (!file.readAt(header.e_phoff + i * sizeof(segment), &segment, sizeof(segment)))
      return false;
    if (segment.p_type == PT_LOAD && offset >= segment.p_offset && offset - segment.p_offset < segment.p_filesz) {
      address = offset - segment.p_offset + segment.p_vaddr;
      return true;
    }
  }
  return false;
}

// The function of one symbol table that holds the address; its name goes straight into the report.
bool writeFromTable(SignalSafeWriter& report, const FileDescriptor& file, const Header& header, const Section& table,
                    std::uint64_t address) noexcept {
  std::array<Symbol, 64> symbols{};
  const std::uint64_t count = table.sh_size / sizeof(Symbol);
  for (std::uint64_t i = 0; i < count; i += symbols.size()) {
    const std::uint64_t part = std::min<std::uint64_t>(symbols.size(), count - i);
    if (!file.readAt(table.sh_offset + i * sizeof(Symbol), symbols.data(), part * sizeof(Symbol)))
      return false;
    for (std::uint64_t k = 0; k < part; ++k) {
      const Symbol& symbol = symbols.at(k);
      if ((symbol.st_info & 0xF) != STT_FUNC || symbol.st_shndx == SHN_UNDEF || address < symbol.st_value ||
          address - symbol.st_value >= symbol.st_size)
        continue;
      Section names{};
      std::array<char, 512> name{};
      if (!file.readAt(header.e_shoff + table.sh_link * sizeof(names), &names, sizeof(names)))
        return false;
      if (pread(file.get(), name.data(), name.size() - 1, static_cast<off_t>(names.sh_offset + symbol.st_name)) <= 0)
        return false;
      report.text(name.data()).text("+").hexadecimal(address - symbol.st_value);
      return true;
    }
  }
  return false;
}

bool writeFunction(SignalSafeWriter& report, const Mapping& mapping, std::uintptr_t address) noexcept {
  const FileDescriptor file(mapping.path.data());
  Header header{};
  if (file.get() < 0 || !file.readAt(0, &header, sizeof(header)) ||
      std::memcmp(&header.e_ident[0], ELFMAG, SELFMAG) != 0 || header.e_shentsize != sizeof(Section))
    return false;
  std::uint64_t inFile = 0;
  if (!fileAddress(file, header, address - mapping.begin + mapping.fileOffset, inFile))
    return false;
  for (const auto wanted : {SHT_SYMTAB, SHT_DYNSYM}) {
    for (unsigned i = 0; i < header.e_shnum; ++i) {
      Section section{};
      if (!file.readAt(header.e_shoff + i * sizeof(section), &section, sizeof(section)))
        return false;
      if (section.sh_type == static_cast<unsigned>(wanted) && writeFromTable(report, file, header, section, inFile))
        return true;
    }
  }
  return false;
}

}  // namespace

bool readMemory(std::uintptr_t address, void* to, std::size_t size) noexcept {
  const iovec local{to, size};
  const iovec remote{reinterpret_cast<void*>(address), size};  // NOLINT(performance-no-int-to-ptr): it is an address.
  // A sandbox may forbid the call, and the file is closed to a process that has rights of its own.
  return process_vm_readv(getpid(), &local, 1, &remote, 1, 0) == static_cast<ssize_t>(size) ||
         FileDescriptor("/proc/self/mem").readAt(address, to, size);
}

void writeSymbol(SignalSafeWriter& report, std::uintptr_t address) noexcept {
  MapReader map;
  Mapping mapping;
  while (map.next(mapping)) {
    if (address < mapping.begin || address >= mapping.end)
      continue;
    if (mapping.path.front() == 0)
      break;
    if (!writeFunction(report, mapping, address))
      report.text("??");
    report.text(" (").text(mapping.path.data()).text("+");
    report.hexadecimal(address - mapping.begin + mapping.fileOffset).text(")");
    return;
  }
  report.text("??");
}

void writeModules(SignalSafeWriter& report) noexcept {
  MapReader map;
  Mapping mapping;
  while (map.next(mapping))
    if (mapping.executable && mapping.path.front() != 0)
      report.text("  ")
          .hexadecimal(mapping.begin)
          .text("-")
          .hexadecimal(mapping.end)
          .text(" ")
          .text(mapping.path.data())
          .text("\n");
}

}  // namespace OVI::platform
