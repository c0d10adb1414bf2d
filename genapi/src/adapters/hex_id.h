// IDs of chunks and events: hexadecimal texts that are compared as numbers.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include "Base/GCString.h"

namespace GenApiEngine {

/// An ID without its prefix, leading zeros and case: "0x00aB" is "AB". The ID 0 is "0", no ID is empty.
inline std::string normalizedId(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  while (!text.empty() && isBlank(text.front()))
    text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back()))
    text.remove_suffix(1);
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    text.remove_prefix(2);
  while (text.size() > 1 && text.front() == '0')
    text.remove_prefix(1);
  std::string id(text);
  std::ranges::transform(id, id.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return id;
}
inline std::string normalizedId(const GENICAM_NAMESPACE::gcstring& text) {
  return normalizedId(std::string_view(text.c_str(), text.length()));
}

/// An ID given as a number.
std::string normalizedId(std::uint64_t number);

}  // namespace GenApiEngine
