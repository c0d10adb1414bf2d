// Host files opened, read and replaced, on POSIX.
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
#include <utility>

#include "host_file.h"
#include "platform/platform.h"

namespace OVI::platform {
namespace {

/** A new file beside the target, with the target's mode when there is one. */
int createBeside(const std::string& path, const struct stat* old, std::string& name) {
  for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
    name = nameBeside(path, processId(), attempt);
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

std::string fileErrorText() {
  return std::generic_category().message(errno);
}

HostFile::Native HostFile::openForReading(const std::string& path) {
  return ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

bool HostFile::isOpen() const {
  return native_ >= 0;
}

bool HostFile::close() {
  const int closed = std::exchange(native_, -1);
  return closed < 0 || ::close(closed) == 0;
}

std::uint64_t HostFile::size() const {
  struct stat status {};
  return ::fstat(native_, &status) == 0 && status.st_size > 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::optional<std::size_t> HostFile::read(void* to, std::size_t count) const {
  for (;;) {
    const ssize_t got = ::read(native_, to, count);
    if (got >= 0)
      return static_cast<std::size_t>(got);
    if (errno != EINTR)
      return std::nullopt;
  }
}

bool HostFile::writeAll(const void* data, std::size_t size) const {
  const auto* from = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t put = ::write(native_, from, std::min(size, kFilePiece));
    if (put < 0 && errno != EINTR)
      return false;
    const auto written = static_cast<std::size_t>(std::max<ssize_t>(put, 0));
    from += written;
    size -= written;
  }
  return true;
}

std::string writeWholeFile(const std::string& path, const void* data, std::size_t size) {
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) {
    HostFile target(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return target.isOpen() && target.writeAll(data, size) && target.close() ? std::string() : fileErrorText();
  }
  if (exists && ::access(path.c_str(), W_OK) != 0) {
    return fileErrorText();  // The folder would let it be replaced, but somebody has protected it.
  }
  const std::string target = exists ? followed(path) : path;
  std::string name;
  HostFile file(createBeside(target, exists ? &old : nullptr, name));
  if (!file.isOpen())
    return fileErrorText();
  if (file.writeAll(data, size) && ::fsync(file.native()) == 0 && file.close() &&
      ::rename(name.c_str(), target.c_str()) == 0)
    return {};
  std::string error = fileErrorText();
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
