// The lexer of formulas.
#include "formula/lexer.h"

#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "base/number_text.h"

namespace GenApiEngine {
namespace {

using Kind = FormulaTokenKind;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isHexDigit(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool isNamePart(char c) {
  return isNameStart(c) || isDigit(c) || c == '.';
}
bool isFormulaBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Longer spellings stand before those that they begin with.
constexpr std::pair<std::string_view, Kind> kOperators[] = {{"**", Kind::power},
                                                            {"*", Kind::times},
                                                            {"/", Kind::slash},
                                                            {"%", Kind::percent},
                                                            {"+", Kind::plus},
                                                            {"-", Kind::minus},
                                                            {"~", Kind::tilde},
                                                            {"<<", Kind::shiftLeft},
                                                            {"<=", Kind::lessOrEqual},
                                                            {"<>", Kind::notEqual},
                                                            {"<", Kind::less},
                                                            {">>", Kind::shiftRight},
                                                            {">=", Kind::greaterOrEqual},
                                                            {">", Kind::greater},
                                                            {"=", Kind::equal},
                                                            {"&&", Kind::logicAnd},
                                                            {"&", Kind::bitAnd},
                                                            {"||", Kind::logicOr},
                                                            {"|", Kind::bitOr},
                                                            {"^", Kind::bitXor},
                                                            {"?", Kind::question},
                                                            {":", Kind::colon},
                                                            {"(", Kind::open},
                                                            {")", Kind::close},
                                                            {",", Kind::comma}};

std::size_t lengthWhile(std::string_view text, std::size_t from, bool (*accept)(char)) {
  while (from < text.size() && accept(text[from]))
    ++from;
  return from;
}

// How much of the text is a number: digits with a fraction and an exponent, or 0x and hexadecimal digits.
std::size_t numberLength(std::string_view text) {
  if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    return lengthWhile(text, 2, isHexDigit);
  std::size_t end = lengthWhile(text, 0, isDigit);
  if (end < text.size() && text[end] == '.')
    end = lengthWhile(text, end + 1, isDigit);
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    const std::size_t sign = end + 1 < text.size() && (text[end + 1] == '+' || text[end + 1] == '-') ? 1 : 0;
    const std::size_t digits = end + 1 + sign;
    const std::size_t exponentEnd = lengthWhile(text, digits, isDigit);
    if (exponentEnd > digits)
      end = exponentEnd;
  }
  return end;
}

}  // namespace

bool parseFormulaNumber(std::string_view text, FormulaKind kind, FormulaValue& value) {
  if (const auto integer = wholeInteger(text)) {
    value = FormulaValue::ofInteger(*integer);
    return true;
  }
  const auto number = wholeFloat(text);
  if (!number)
    return false;
  if (kind == FormulaKind::floating) {
    value = FormulaValue::ofNumber(*number);
    return true;
  }
  // Up to 2^63, which only its negation can use.
  if (*number != std::trunc(*number) || std::fabs(*number) > 0x1p63)
    return false;
  value = FormulaValue::ofInteger(*number >= 0x1p63 ? INT64_MIN : static_cast<std::int64_t>(*number));
  return true;
}

void FormulaLexer::skipBlanks() {
  constexpr std::string_view kCommentStart = "<!--";
  constexpr std::string_view kCommentEnd = "-->";
  while (!rest_.empty()) {
    if (isFormulaBlank(rest_.front())) {
      rest_.remove_prefix(1);
    } else if (rest_.starts_with(kCommentStart)) {
      const std::size_t end = rest_.find(kCommentEnd, kCommentStart.size());
      if (end == std::string_view::npos)
        return;
      rest_.remove_prefix(end + kCommentEnd.size());
    } else {
      return;
    }
  }
}

FormulaToken FormulaLexer::take(FormulaTokenKind kind, std::size_t length) {
  FormulaToken token;
  token.kind = kind;
  token.text = rest_.substr(0, length);
  rest_.remove_prefix(token.text.size());
  return token;
}

FormulaToken FormulaLexer::number() {
  FormulaToken token = take(Kind::number, numberLength(rest_));
  if ((!rest_.empty() && isNamePart(rest_.front())) || !parseFormulaNumber(token.text, kind_, token.value))
    token.kind = Kind::invalid;
  return token;
}

FormulaToken FormulaLexer::next() {
  skipBlanks();
  if (rest_.empty())
    return {};
  if (isDigit(rest_.front()))
    return number();
  if (isNameStart(rest_.front()))
    return take(Kind::name, lengthWhile(rest_, 0, isNamePart));
  if (rest_.starts_with("<!"))
    return take(Kind::invalid, 2);
  for (const auto& [spelling, kind] : kOperators) {
    if (rest_.starts_with(spelling))
      return take(kind, spelling.size());
  }
  return take(Kind::invalid, 1);
}

bool FormulaLexer::bracketFollows() {
  skipBlanks();
  return rest_.starts_with('(');
}

}  // namespace GenApiEngine
