// Letters of names and protocols. The C library's functions follow the application's locale, where "i" may not be "I".
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace OVI::platform {

constexpr char upperCase(char character) noexcept {
  return character >= 'a' && character <= 'z' ? static_cast<char>(character - 'a' + 'A') : character;
}

inline std::string upperCase(std::string_view text) {
  std::string upper(text);
  std::ranges::transform(upper, upper.begin(), [](char character) { return upperCase(character); });
  return upper;
}

inline bool equalsIgnoringCase(std::string_view left, std::string_view right) noexcept {
  return std::ranges::equal(left, right, [](char a, char b) { return upperCase(a) == upperCase(b); });
}

}  // namespace OVI::platform
