// Bytes as hexadecimal text, and numbers that may be hexadecimal.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// "0a1b" for the bytes 10 and 27.
std::string hexFromBytes(std::span<const std::uint8_t> bytes);

/// The bytes that the digits mean; blanks and a leading 0x do not matter. Nothing for other characters or half a byte.
std::optional<std::vector<std::uint8_t>> bytesFromHex(std::string_view text);

/// "0x1F" for 31.
std::string hexNumber(std::uint64_t value, std::size_t digits = 1);

/// A number in decimal, or in hexadecimal after 0x. Nothing for anything else.
std::optional<std::uint64_t> numberFrom(std::string_view text);

}  // namespace tool
