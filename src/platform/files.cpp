// Host files read whole, the same on every system.
#include "platform/files.h"

#include <algorithm>

#include "host_file.h"

namespace OVI::platform {
namespace {

/** Appends what the file has, up to `count` bytes in all. */
bool readUpTo(const HostFile& file, std::size_t count, std::vector<std::uint8_t>& out) {
  while (out.size() < count) {
    const std::size_t before = out.size();
    const std::size_t room = out.capacity() - before;  // A file of the size that was foreseen moves no memory.
    out.resize(before + std::min({room != 0 ? room : kFilePiece, kFilePiece, count - before}));
    const std::optional<std::size_t> got = file.read(out.data() + before, out.size() - before);
    out.resize(before + got.value_or(0));
    if (!got || *got == 0)
      return got.has_value();
  }
  return true;
}

}  // namespace

std::string nameBeside(const std::string& path, unsigned long process, int attempt) {
  return path + ".part" + std::to_string(process) + "-" + std::to_string(attempt);
}

std::string readFileStart(const std::string& path, std::size_t count, std::vector<std::uint8_t>& out) {
  out.clear();
  const HostFile file(HostFile::openForReading(path));
  if (file.isOpen() && readUpTo(file, count, out))
    return {};
  std::string error = fileErrorText();
  out.clear();
  return error;
}

std::string readWholeFile(const std::string& path, std::uint64_t limit, std::vector<std::uint8_t>& out) {
  out.clear();
  const HostFile file(HostFile::openForReading(path));
  if (!file.isOpen())
    return fileErrorText();
  std::string tooLarge = "The file is larger than " + std::to_string(limit) + " bytes.";
  const std::uint64_t size = file.size();
  if (size > limit)
    return tooLarge;
  if (size > 0)
    out.reserve(static_cast<std::size_t>(size) + 1);
  std::string error;
  if (!readUpTo(file, static_cast<std::size_t>(limit) + 1, out))
    error = fileErrorText();
  else if (out.size() > limit)
    error = std::move(tooLarge);
  if (!error.empty())
    out.clear();
  return error;
}

}  // namespace OVI::platform
