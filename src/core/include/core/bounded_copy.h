// The one way in which text goes into a buffer of fixed size.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace OVI {

/** Copies as much of the text as fits and always terminates; writes nothing when there is no room at all. */
inline void boundedCopy(char* to, std::size_t size, std::string_view from) noexcept {
  if (to == nullptr || size == 0) {
    return;
  }
  const std::size_t length = std::min(from.size(), size - 1);
  std::memcpy(to, from.data(), length);
  to[length] = '\0';
}

/** The same into an array, whose size is known. */
template<std::size_t Size>
void boundedCopy(char (&to)[Size], std::string_view from) noexcept {
  boundedCopy(to, Size, from);
}

/** The text in a buffer that should be terminated but may not be: it ends at the first NUL or at the buffer's end. */
inline std::string_view boundedText(const char* text, std::size_t size) noexcept {
  const void* end = std::memchr(text, '\0', size);
  return {text, end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : size};
}

}  // namespace OVI
