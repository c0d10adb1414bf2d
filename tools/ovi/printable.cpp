// Texts of cameras, producers and files as a terminal can show them: they may hold anything, and a terminal obeys some
// of it.
#include "printable.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace tool {

namespace {

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// What is not shown as it is: controls, separators of lines, marks of direction and of no width, noncharacters at the
// end of the first plane.
constexpr std::array kUnprintable = {
    Range{0x00, 0x1F},     Range{0x7F, 0x9F},     Range{0xAD, 0xAD},     Range{0x61C, 0x61C},   Range{0x200B, 0x200F},
    Range{0x2028, 0x202E}, Range{0x2060, 0x206F}, Range{0xFEFF, 0xFEFF}, Range{0xFFF9, 0xFFFB}, Range{0xFFFE, 0xFFFF}};

struct Character {
  std::size_t length = 0;  // in bytes; 0: what begins here is no UTF-8
  std::uint32_t code = 0;
};

Character characterAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[at + i]); };
  const std::uint8_t lead = byte(0);
  if (lead < 0x80)
    return {1, lead};
  const std::size_t length = lead >= 0xF0 ? 4U : lead >= 0xE0 ? 3U : 2U;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size())
    return {};
  std::uint32_t code = lead & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U)
      return {};
    code = code << 6U | (byte(i) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < kSmallest.at(length) || code > 0x10FFFF || isSurrogate ? Character{} : Character{length, code};
}

void appendHex(std::string& text, std::uint32_t value, unsigned digits) {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  while (digits-- > 0)
    text += kDigits[value >> (4U * digits) & 0xFU];
}

void appendEscaped(std::string& text, std::uint32_t code) {
  const std::string_view brief = code == '\n' ? "\\n" : code == '\t' ? "\\t" : code == '\r' ? "\\r" : "";
  text += brief.empty() ? "\\u" : brief;
  if (brief.empty())
    appendHex(text, code, 4);
}

std::string escaped(std::string_view text, std::string_view kept) {
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const Character character = characterAt(text, at);
    if (character.length == 0) {
      shown += "\\x";
      appendHex(shown, static_cast<std::uint8_t>(text[at]), 2);
      ++at;
      continue;
    }
    const bool obeyed = std::ranges::any_of(kUnprintable, [&](const Range& range) {
      return character.code >= range.first && character.code <= range.last;
    });
    if (obeyed && kept.find(text[at]) == std::string_view::npos)
      appendEscaped(shown, character.code);
    else
      shown += text.substr(at, character.length);
    at += character.length;
  }
  return shown;
}

}  // namespace

std::string printable(std::string_view text) {
  return escaped(text, {});
}

std::string printableLines(std::string_view text) {
  return escaped(text, "\n\t");
}

}  // namespace tool
