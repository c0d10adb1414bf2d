// An open file of the host: the part of file access that each operating system does its own way.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace OVI::platform {

/** Closed when it goes. What fails leaves its reason for fileErrorText(). */
class HostFile {
 public:
#ifdef _WIN32
  using Native = void*;
#else
  using Native = int;
#endif

  explicit HostFile(Native native) : native_(native) {}
  HostFile(const HostFile&) = delete;
  HostFile& operator=(const HostFile&) = delete;
  ~HostFile() {
    close();
  }

  /** Open, or not: see isOpen(). */
  static Native openForReading(const std::string& path);

  bool isOpen() const;
  Native native() const {
    return native_;
  }
  bool close();

  /** In bytes; 0 when the system does not tell, as for a pipe. */
  std::uint64_t size() const;
  /** Up to `count` bytes; how many came, 0 at the end; nothing when reading fails. */
  std::optional<std::size_t> read(void* to, std::size_t count) const;
  /** All bytes, or false. */
  bool writeAll(const void* data, std::size_t size) const;

 private:
  Native native_;
};

/** Why the last call to the system failed. */
std::string fileErrorText();

/** A new name for a file beside the one that it is to replace. */
std::string nameBeside(const std::string& path, unsigned long process, int attempt);

/** How many bytes are asked of the system at once, and how many names are tried for a new file. */
constexpr std::size_t kFilePiece = std::size_t{1} << 20U;
constexpr int kNameAttempts = 100;

}  // namespace OVI::platform
