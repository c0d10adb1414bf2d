// Integers as applications write them: decimal, or hexadecimal behind an "x".
#pragma once

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace OVI {

/**
 * The number at the start of a text; what follows it is ignored. Behind the first "x" (else the first "X") the digits
 * are hexadecimal and whatever stands before it is ignored; without one the text is decimal and may hold digits and "-"
 * only. A minus negates in two's complement.
 *
 * @param maximum  the largest magnitude that is in range; a power of two less one
 * @return nothing for a text without a number or with one out of range
 */
inline std::optional<std::uint64_t> parseInteger(const char* text, std::uint64_t maximum) {
  const char* hex = std::strchr(text, 'x');
  if (hex == nullptr)
    hex = std::strchr(text, 'X');
  if (hex == nullptr && text[std::strspn(text, "0123456789-")] != '\0')
    return std::nullopt;
  const char* const start = hex != nullptr ? hex + 1 : text;
  const char* const sign = start + std::strspn(start, " \t\n\v\f\r");
  char* end = nullptr;
  errno = 0;
  const std::uint64_t value = std::strtoull(start, &end, hex != nullptr ? 16 : 10);
  const std::uint64_t magnitude = *sign == '-' ? 0 - value : value;
  if (end == start || errno == ERANGE || magnitude > maximum)
    return std::nullopt;
  return value & maximum;
}

}  // namespace OVI
