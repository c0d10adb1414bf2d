// What a person sees: tables on standard output, progress and messages on standard error.
#include "terminal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "platform/console.h"
#include "text.h"

namespace tool {

std::string coloured(std::string_view text, Colour colour, bool onTerminal) {
  static constexpr std::array<const char*, 7> kCodes = {"",         "\x1b[31m", "\x1b[33m", "\x1b[32m",
                                                        "\x1b[34m", "\x1b[2m",  "\x1b[1m"};
  static const bool refused = !environmentVariable("NO_COLOR").empty();
  if (!onTerminal || refused || colour == Colour::kNone)
    return std::string(text);
  return kCodes.at(static_cast<std::size_t>(colour)) + std::string(text) + "\x1b[0m";
}

void Table::add(std::vector<std::string> row) {
  for (std::string& cell : row)
    cell = printable(std::move(cell));
  rows_.push_back(std::move(row));
}

std::string Table::text(bool aligned) const {
  std::vector<std::size_t> widths;
  for (const std::string& heading : headings_)
    widths.push_back(displayWidth(heading));
  for (const auto& row : rows_)
    for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
      widths[i] = std::max(widths[i], displayWidth(row[i]));

  std::string result;
  const auto appendRow = [&](const std::vector<std::string>& row, Colour colour) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0)
        line += aligned ? "  " : "\t";
      line += row[i];
      if (aligned && i + 1 < row.size() && i < widths.size())
        line.append(widths[i] - std::min(widths[i], displayWidth(row[i])), ' ');
    }
    result += coloured(line, colour, aligned) + "\n";
  };
  appendRow(headings_, Colour::kBold);
  for (const auto& row : rows_)
    appendRow(row, Colour::kNone);
  return result;
}

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
  line += text.substr(0, room);
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

}  // namespace

void setDataStream(std::FILE* stream) {
  dataStream = stream;
}

void printData(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), dataStream);
  std::fputc('\n', dataStream);
  std::fflush(dataStream);
}

void printJson(const nlohmann::ordered_json& json, int indent) {
  printData(json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}

void printTable(const Table& table) {
  std::string text = table.text(standardOutputIsTerminal());
  text.pop_back();
  printData(text);
}

void printNote(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fputc('\n', stderr);
}

}  // namespace tool
