// What a person sees: tables on standard output, progress and messages on standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

enum class Colour { kNone, kRed, kYellow, kGreen, kBlue, kDim, kBold };

/// Text for people, parts of it in colours. What is written for people goes through here: whatever a terminal would
/// obey in the parts is shown instead, as printableLines has it.
class Styled {
 public:
  Styled(const char* text) : Styled(std::string(text)) {}                 // NOLINT(google-explicit-constructor)
  Styled(std::string text) : parts_{{std::move(text), Colour::kNone}} {}  // NOLINT(google-explicit-constructor)
  Styled(std::string text, Colour colour) : parts_{{std::move(text), colour}} {}

  Styled& operator+=(const Styled& other);
  friend Styled operator+(Styled left, const Styled& right) { return left += right; }

  /// As it is to be written: with colours for a terminal, unless NO_COLOR is set.
  std::string rendered(bool onTerminal) const;

 private:
  struct Part {
    std::string text;
    Colour colour;
  };
  std::vector<Part> parts_;
};

/// Rows of text under headings. On a terminal the columns are aligned; elsewhere they are separated by tabs, for
/// scripts.
class Table {
 public:
  explicit Table(std::vector<std::string> headings) : headings_(std::move(headings)) {}
  /// A cell is one line.
  void add(std::vector<std::string> row);
  bool empty() const { return rows_.empty(); }
  Styled text(bool aligned) const;

 private:
  std::vector<std::string> headings_;
  std::vector<std::vector<std::string>> rows_;
};

/// One line on standard error that is rewritten in place; silent when standard error is no terminal.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// Shows a bar (fraction 0 to 1; below 0: none) and a text. At most twenty times a second unless forced.
  void show(double fraction, std::string_view text, bool forced = false);
  void clear();

 private:
  bool terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point last_;
};

/// Where printData writes; standard output unless told otherwise.
void setDataStream(std::FILE* stream);

/// Writes a line to standard output, data that other programs may read. Within JSON as well, nothing is left that a
/// terminal would obey.
void printData(const Styled& text);

/// Writes to standard output what might as well be in a file: as it is, unless that is a terminal.
void printFile(const std::string& text);

/// Writes JSON to standard output, in one line when the indent is negative. Bytes of a camera's text that are no UTF-8
/// become replacement characters.
void printJson(const nlohmann::ordered_json& json, int indent = 2);

/// Writes a table to standard output, aligned when that is a terminal.
void printTable(const Table& table);

/// Writes a line to standard error, for people.
void printNote(const Styled& text);

}  // namespace tool
