// The name of a crash report: "<directory>/<executable>.<seconds>.dmp", composed without touching the heap.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace OVI::platform {

/** Writes at most size characters, the terminator included; returns whether all of the name fitted. The slash stands
 * there even when the directory ends with a separator. */
template<class Char>
bool composeDumpName(Char* to, std::size_t size, const Char* directory, const Char* executable,
                     std::int64_t seconds) noexcept {
  std::size_t used = 0;
  bool fits = true;
  const auto put = [&](Char c) {
    if (used + 1 < size)
      to[used++] = c;
    else
      fits = false;
  };
  const auto putText = [&](const auto* text) {
    for (; *text != 0; ++text)
      put(static_cast<Char>(*text));
  };
  std::array<char, 24> digits{};
  std::size_t count = 0;
  for (std::uint64_t rest = seconds < 0 ? 0 : static_cast<std::uint64_t>(seconds); rest > 0 || count == 0; rest /= 10)
    digits[count++] = static_cast<char>('0' + rest % 10);

  putText(directory);
  put(static_cast<Char>('/'));
  putText(executable);
  put(static_cast<Char>('.'));
  while (count > 0)
    put(static_cast<Char>(digits[--count]));
  putText(".dmp");
  if (size > 0)
    to[used] = 0;
  return fits;
}

}  // namespace OVI::platform
