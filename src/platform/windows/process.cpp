// Shell commands, the end of the process and the monotonic clock.
#include <windows.h>

#include <array>
#include <cstdio>
#include <memory>

#include "platform/platform.h"

namespace OVI::platform {

// A library's own exit functions run when the system takes the libraries down: then the other threads are gone already,
// and so is what was loaded after us. The application's run before. They belong to the C runtime that it is linked
// with, which is one of these two, unless it brings one of its own.
void callAtExit(void (*function)()) noexcept {
  using Function = int (*)();
  struct Runtime {
    const char* library;
    const char* registration;
  };
  constexpr Runtime kRuntimes[] = {{"ucrtbase.dll", "_crt_atexit"}, {"msvcrt.dll", "_onexit"}};
  HMODULE own = nullptr;
  if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                         reinterpret_cast<const char*>(function), &own) == 0)
    return;
  for (const Runtime& runtime : kRuntimes) {
    const HMODULE library = GetModuleHandleA(runtime.library);
    if (library == nullptr)
      continue;
    // The two answer differently; neither answer helps.
    const auto add =
        reinterpret_cast<void* (*)(Function)>(reinterpret_cast<void*>(GetProcAddress(library, runtime.registration)));
    if (add != nullptr)
      add(reinterpret_cast<Function>(reinterpret_cast<void*>(function)));
  }
}

unsigned long processId() noexcept {
  return ::GetCurrentProcessId();
}

std::optional<std::string> runAndRead(const std::string& program, const std::string& argument) {
  const auto close = [](std::FILE* pipe) { _pclose(pipe); };
  const std::unique_ptr<std::FILE, decltype(close)> pipe(_popen((program + " " + argument).c_str(), "r"), close);
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
