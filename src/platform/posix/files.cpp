// Host files read and written whole, on POSIX.
#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>

namespace OVI::platform {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20U;
constexpr int kNameAttempts = 100;

std::string errorText() {
  return std::generic_category().message(errno);
}

class File {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { close(); }

  bool isOpen() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }
  bool close() {
    const int closed = descriptor_;
    descriptor_ = -1;
    return closed < 0 || ::close(closed) == 0;
  }

 private:
  int descriptor_;
};

/** Appends up to `count` bytes; false with errno set when reading fails. */
bool readUpTo(const File& file, std::size_t count, std::vector<std::uint8_t>& out) {
  while (out.size() < count) {
    const std::size_t before = out.size();
    const std::size_t room = out.capacity() - before;  // A file of the size that was foreseen moves no memory.
    out.resize(before + std::min({room != 0 ? room : kPiece, kPiece, count - before}));
    const ssize_t got = ::read(file.descriptor(), out.data() + before, out.size() - before);
    out.resize(before + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got == 0)
      return true;
    if (got < 0 && errno != EINTR)
      return false;
  }
  return true;
}

bool writeAll(const File& file, const void* data, std::size_t size) {
  const auto* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t put = ::write(file.descriptor(), from, std::min(size, kPiece));
    if (put < 0 && errno != EINTR)
      return false;
    const auto written = static_cast<std::size_t>(std::max<ssize_t>(put, 0));
    from += written;
    size -= written;
  }
  return true;
}

/** A new file beside the target, with the target's mode when there is one. */
int createBeside(const std::string& path, const struct stat* old, std::string& name) {
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    name = path + ".part" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor >= 0 && old != nullptr)
      static_cast<void>(::fchmod(descriptor, old->st_mode & 07777));
    if (descriptor >= 0 || errno != EEXIST)
      return descriptor;
  }
  return -1;
}

/** Where a symbolic link leads, so that the link itself stays; the path as it is for anything else. */
std::string followed(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.c_str(), nullptr), std::free);
  return real != nullptr ? std::string(real.get()) : path;
}

}  // namespace

std::uint64_t mainMemory() noexcept {
  const long pages = ::sysconf(_SC_PHYS_PAGES);
  const long pageSize = ::sysconf(_SC_PAGESIZE);
  return pages > 0 && pageSize > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) : 0;
}

std::string readFileStart(const std::string& path, std::size_t count, std::vector<std::uint8_t>& out) {
  out.clear();
  const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.isOpen() && readUpTo(file, count, out))
    return {};
  std::string error = errorText();
  out.clear();
  return error;
}

std::string readWholeFile(const std::string& path, std::uint64_t limit, std::vector<std::uint8_t>& out) {
  out.clear();
  const File file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0)
    return errorText();
  std::string tooLarge = "The file is larger than " + std::to_string(limit) + " bytes.";
  if (status.st_size > 0) {
    if (static_cast<std::uint64_t>(status.st_size) > limit)
      return tooLarge;
    out.reserve(static_cast<std::size_t>(status.st_size) + 1);
  }
  std::string error;
  if (!readUpTo(file, static_cast<std::size_t>(limit) + 1, out))
    error = errorText();
  else if (out.size() > limit)
    error = tooLarge;
  if (!error.empty())
    out.clear();
  return error;
}

std::string writeWholeFile(const std::string& path, const void* data, std::size_t size) {
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) {
    File target(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return target.isOpen() && writeAll(target, data, size) && target.close() ? std::string() : errorText();
  }
  if (exists && ::access(path.c_str(), W_OK) != 0) {
    return errorText();  // The folder would let it be replaced, but somebody has protected it.
  }
  const std::string target = exists ? followed(path) : path;
  std::string name;
  File file(createBeside(target, exists ? &old : nullptr, name));
  if (!file.isOpen())
    return errorText();
  if (writeAll(file, data, size) && ::fsync(file.descriptor()) == 0 && file.close() &&
      ::rename(name.c_str(), target.c_str()) == 0)
    return {};
  std::string error = errorText();
  static_cast<void>(::unlink(name.c_str()));
  return error;
}

const char* searchPathSeparators() noexcept {
  return ";:";
}

char pathSeparator() noexcept {
  return '/';
}

}  // namespace OVI::platform
