// Bytes as hexadecimal text, and numbers that may be hexadecimal.
#include "hex.h"

#include <charconv>

namespace tool {

std::string hexFromBytes(std::span<const std::uint8_t> bytes) {
  static constexpr const char* kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4U];
    text += kDigits[byte & 0xFU];
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> bytesFromHex(std::string_view text) {
  if (text.substr(0, 2) == "0x")
    text.remove_prefix(2);
  std::string digits(text);
  std::erase(digits, ' ');
  if (digits.size() % 2 != 0)
    return std::nullopt;
  std::vector<std::uint8_t> bytes(digits.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* const pair = digits.data() + 2 * i;
    if (std::from_chars(pair, pair + 2, bytes[i], 16).ptr != pair + 2)
      return std::nullopt;
  }
  return bytes;
}

std::string hexNumber(std::uint64_t value, std::size_t digits) {
  static constexpr const char* kDigits = "0123456789ABCDEF";
  std::string text;
  for (; value != 0 || text.size() < digits; value >>= 4U)
    text.insert(text.begin(), kDigits[value & 0xFU]);
  return "0x" + text;
}

std::optional<std::uint64_t> numberFrom(std::string_view text) {
  const bool hexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
  if (hexadecimal)
    text.remove_prefix(2);
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size())
    return std::nullopt;
  return value;
}

}  // namespace tool
