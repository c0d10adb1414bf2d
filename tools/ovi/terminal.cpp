// What a person sees: tables on standard output, progress and messages on standard error.
#include "terminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "platform/console.h"
#include "printable.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

Styled& Styled::operator+=(const Styled& other) {
  parts_.insert(parts_.end(), other.parts_.begin(), other.parts_.end());
  return *this;
}

std::string Styled::rendered(bool onTerminal) const {
  static constexpr std::array<const char*, 7> kCodes = {"",         "\x1b[31m", "\x1b[33m", "\x1b[32m",
                                                        "\x1b[34m", "\x1b[2m",  "\x1b[1m"};
  static const bool refused = !environmentVariable("NO_COLOR").empty();
  std::string text;
  for (const Part& part : parts_) {
    const bool plain = !onTerminal || refused || part.colour == Colour::kNone;
    text += plain ? "" : kCodes.at(static_cast<std::size_t>(part.colour));
    text += printableLines(part.text);
    text += plain ? "" : "\x1b[0m";
  }
  return text;
}

void Table::add(std::vector<std::string> row) {
  for (std::string& cell : row)
    cell = printable(cell);
  rows_.push_back(std::move(row));
}

Styled Table::text(bool aligned) const {
  std::vector<std::size_t> widths;
  for (const std::string& heading : headings_)
    widths.push_back(displayWidth(heading));
  for (const auto& row : rows_)
    for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
      widths[i] = std::max(widths[i], displayWidth(row[i]));

  const auto lineOf = [&](const std::vector<std::string>& row) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0)
        line += aligned ? "  " : "\t";
      line += row[i];
      if (aligned && i + 1 < row.size() && i < widths.size())
        line.append(widths[i] - std::min(widths[i], displayWidth(row[i])), ' ');
    }
    return line;
  };
  Styled result(lineOf(headings_), Colour::kBold);
  for (const auto& row : rows_)
    result += "\n" + lineOf(row);
  return result;
}

namespace {

// So many columns of it.
std::string beginningOf(const std::string& utf8, std::size_t columns) {
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; };
  std::size_t end = 0;
  for (std::size_t taken = 0; end < utf8.size() && (!begins(utf8[end]) || taken < columns); ++end)
    taken += begins(utf8[end]) ? 1U : 0U;
  return utf8.substr(0, end);
}

}  // namespace

ProgressLine::ProgressLine() : terminal_(standardErrorIsTerminal()) {}

ProgressLine::~ProgressLine() {
  clear();
}

void ProgressLine::show(double fraction, std::string_view text, bool forced) {
  if (!terminal_)
    return;
  const auto now = std::chrono::steady_clock::now();
  if (!forced && shown_ && now - last_ < std::chrono::milliseconds(50))
    return;
  last_ = now;
  shown_ = true;
  std::string line = "\r\x1b[2K";
  if (fraction >= 0.0) {
    constexpr int kWidth = 24;
    const int filled = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * kWidth));
    line += "[" + std::string(static_cast<std::size_t>(filled), '#') +
            std::string(static_cast<std::size_t>(kWidth - filled), '.') + "] ";
  }
  const std::size_t room = static_cast<std::size_t>(std::max(20, terminalWidth() - (fraction >= 0.0 ? 28 : 1)));
  line += beginningOf(printable(text), room);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

void ProgressLine::clear() {
  if (!shown_)
    return;
  std::fputs("\r\x1b[2K", stderr);
  std::fflush(stderr);
  shown_ = false;
}

namespace {

std::FILE* dataStream = stdout;

// Who asked for data must not take a part of them for all.
void writeData(const std::string& text) {
  const std::string line = text + "\n";
  errno = 0;
  if (std::fwrite(line.data(), 1, line.size(), dataStream) == line.size() && std::fflush(dataStream) == 0)
    return;
  if (errno == EPIPE)
    throw ToolError("nobody reads the output", {}, ExitCode::kReaderGone);
  throw ToolError("cannot write to standard output: " + systemReason(), "is the disk full, or standard output closed?");
}

}  // namespace

void setDataStream(std::FILE* stream) {
  dataStream = stream;
}

void printData(const Styled& text) {
  writeData(text.rendered(standardOutputIsTerminal()));
}

void printFile(const std::string& text) {
  writeData(standardOutputIsTerminal() ? printableLines(text) : text);
}

void printJson(const nlohmann::ordered_json& json, int indent) {
  printData(json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

void printTable(const Table& table) {
  printData(table.text(standardOutputIsTerminal()));
}

void printNote(const Styled& text) {
  const std::string line = text.rendered(standardErrorIsTerminal()) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tool
