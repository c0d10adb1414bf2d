// Folders, files, commands and the clock.
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <utility>

#include "platform/platform.h"

namespace OVI::platform {

namespace {

std::string environmentOr(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : fallback;
}

}  // namespace

void callAtExit(void (*function)()) noexcept {
  static_cast<void>(std::atexit(function));
}

unsigned long processId() noexcept {
  return static_cast<unsigned long>(::getpid());
}

std::optional<std::string> publicDocuments() {
  return environmentOr("XDG_PUBLICSHARE_DIR", "/var/lib");
}

std::string tempDirectory() {
  return environmentOr("TMPDIR", "/tmp");
}

std::optional<std::string> runAndRead(const std::string& program, const std::string& argument) {
  // In quotation marks, because to this shell parentheses are more than text. What it has to say itself is silenced
  // too.
  std::string quoted = "'";
  for (const char c : argument) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  quoted += '\'';
  std::FILE* pipe = popen(("exec 2>/dev/null\n" + program + " " + quoted).c_str(), "r");
  if (pipe == nullptr) {
    return std::nullopt;
  }
  std::string output;
  char block[256];
  for (std::size_t count = 0; (count = std::fread(block, 1, sizeof(block), pipe)) > 0;) {
    output.append(block, count);
  }
  pclose(pipe);
  return output;
}

std::optional<std::string> readFile(const std::string& path, std::uint64_t limit) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;  // A camera may name the file: a pipe or a terminal would be waited for, for ever.
  }
  std::ifstream file(path, std::ios::binary);
  std::string content;
  char block[4096];
  while (file.read(block, sizeof(block)) || file.gcount() > 0) {
    content.append(block, static_cast<std::size_t>(file.gcount()));
    if (content.size() > limit) {
      return std::nullopt;
    }
  }
  return file.eof() ? std::optional(std::move(content)) : std::nullopt;
}

std::uint64_t monotonicNanoseconds() noexcept {
  constexpr std::uint64_t kNanosecondsPerSecond = 1000000000;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * kNanosecondsPerSecond + static_cast<std::uint64_t>(now.tv_nsec);
}

}  // namespace OVI::platform
