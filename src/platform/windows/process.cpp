// Shell commands and the monotonic clock.
#include <windows.h>

#include <array>
#include <cstdio>
#include <memory>

#include "platform/platform.h"

namespace OVI::platform {

std::optional<std::string> runAndRead(const std::string& command) {
  const auto close = [](std::FILE* pipe) { _pclose(pipe); };
  const std::unique_ptr<std::FILE, decltype(close)> pipe(_popen(command.c_str(), "r"), close);
  if (pipe == nullptr)
    return std::nullopt;
  std::string output;
  std::array<char, 256> piece{};
  while (std::fgets(piece.data(), static_cast<int>(piece.size()), pipe.get()) != nullptr)
    output += piece.data();
  return output;
}

std::uint64_t monotonicNanoseconds() noexcept {
  static const std::uint64_t frequency = [] {
    LARGE_INTEGER value{};
    QueryPerformanceFrequency(&value);
    return static_cast<std::uint64_t>(value.QuadPart);
  }();
  LARGE_INTEGER value{};
  QueryPerformanceCounter(&value);
  const auto count = static_cast<std::uint64_t>(value.QuadPart);
  constexpr std::uint64_t kCommonFrequency = 10'000'000;
  if (frequency == kCommonFrequency)
    return count * 100;
  constexpr std::uint64_t kNanoseconds = 1'000'000'000;
  return count / frequency * kNanoseconds + count % frequency * kNanoseconds / frequency;
}

}  // namespace OVI::platform
