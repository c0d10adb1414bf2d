// Counts lines in blocks, and only when somebody asks.
#include "model/line_table.h"

#include <algorithm>
#include <iterator>

#include "base/limits.h"

namespace GenApiEngine {

void WarningList::add(std::uint32_t line, std::string text) {
  if (warnings_.size() < kMaxWarnings) {
    warnings_.push_back({line, std::move(text)});
  } else {
    ++suppressed_;
  }
}

void LineTable::readTexts() const {
  std::uint32_t offset = 1;
  for (const std::string_view text : texts_) {
    Document& document = documents_.emplace_back();
    document.offset = offset;
    const std::optional<std::string_view> plain = plainText(text.data(), text.size(), cutAtFirstEnd_);
    if (!plain) {
      document.converted = prepareDocument(text.data(), text.size(), cutAtFirstEnd_);
    }
    document.text = plain ? *plain : std::string_view(document.converted.data.get() + 1, document.converted.size);
    std::uint32_t lines = 0;
    for (std::size_t at = 0; at < document.text.size(); at += kBlock) {
      document.linesBefore.push_back(lines);
      lines += countLines(document.text.substr(at, kBlock));
    }
    document.linesBefore.push_back(lines);
    offset += static_cast<std::uint32_t>(document.text.size()) + 2;
  }
}

std::uint32_t LineTable::countLines(std::string_view text) {
  // Pieces whose sum fits into a byte, so that the compiler counts in many bytes at once.
  constexpr std::size_t kPiece = 128;
  std::uint32_t lines = 0;
  for (; text.size() >= kPiece; text.remove_prefix(kPiece)) {
    std::uint8_t inPiece = 0;
    for (std::size_t i = 0; i < kPiece; ++i) {
      inPiece = static_cast<std::uint8_t>(inPiece + (text[i] == '\n' ? 1 : 0));
    }
    lines += inPiece;
  }
  return lines + static_cast<std::uint32_t>(std::ranges::count(text, '\n'));
}

std::string_view LineTable::textBefore(std::uint32_t offset, const Document*& document) const {
  if (documents_.empty()) {
    readTexts();
  }
  const auto after = std::ranges::upper_bound(documents_, offset, {}, &Document::offset);
  document = after == documents_.begin() ? documents_.data() : &*std::prev(after);
  return document->text.substr(0, offset - std::min(offset, document->offset));
}

std::uint32_t LineTable::lineOf(std::uint32_t offset) const {
  const Document* document = nullptr;
  const std::string_view before = textBefore(offset, document);
  const std::size_t block = before.size() / kBlock;
  return document->linesBefore[block] + countLines(before.substr(block * kBlock)) + 1;
}

LineTable::Position LineTable::positionOf(std::uint32_t offset) const {
  const Document* document = nullptr;
  const std::string_view before = textBefore(offset, document);
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 when there is none
  return {lineOf(offset), static_cast<std::uint32_t>(before.size() - lineStart) + 1};
}

}  // namespace GenApiEngine
