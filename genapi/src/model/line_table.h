// Where in the texts of a description something is, and what was found wrong there.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/model.h"
#include "model/text.h"

namespace GenApiEngine {

/// Warnings of one build, bounded.
class WarningList {
 public:
  void add(std::uint32_t line, std::string text);
  std::vector<ModelWarning> take() { return std::move(warnings_); }
  std::size_t suppressed() const { return suppressed_; }

 private:
  std::vector<ModelWarning> warnings_;
  std::size_t suppressed_ = 0;
};

/// Where the lines of the texts begin. Parsing in place destroys the line ends, so the texts are looked at once more
/// when somebody asks; most descriptions are loaded without a question.
class LineTable {
 public:
  LineTable(std::span<const std::string_view> texts, bool cutAtFirstEnd)
      : texts_(texts),
        cutAtFirstEnd_(cutAtFirstEnd) {}

  std::uint32_t lineOf(std::uint32_t offset) const;
  struct Position {
    std::uint32_t line, column;
  };
  /// Both counted from 1, within the document that holds the offset.
  Position positionOf(std::uint32_t offset) const;

 private:
  // The lines are counted once for each block, and within one block at every question.
  static constexpr std::size_t kBlock = 4096;
  struct Document {
    std::uint32_t offset = 0;
    std::string_view text;
    DocumentText converted;  // what the text is in, unless it is the caller's
    std::vector<std::uint32_t> linesBefore;
  };
  void readTexts() const;
  std::string_view textBefore(std::uint32_t offset, const Document*& document) const;
  static std::uint32_t countLines(std::string_view text);

  std::span<const std::string_view> texts_;
  bool cutAtFirstEnd_;
  mutable std::vector<Document> documents_;
};

}  // namespace GenApiEngine
