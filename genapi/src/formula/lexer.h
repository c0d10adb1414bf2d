// Splits the text of a formula into numbers, names and operators.
#pragma once

#include <string>
#include <string_view>

#include "formula/program.h"

namespace GenApiEngine {

enum class FormulaTokenKind : std::uint8_t {
  end,
  number,
  name,
  plus,
  minus,
  tilde,
  power,
  times,
  slash,
  percent,
  shiftLeft,
  shiftRight,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  equal,
  notEqual,
  bitAnd,
  bitXor,
  bitOr,
  logicAnd,
  logicOr,
  question,
  colon,
  open,
  close,
  comma,
  invalid
};

struct FormulaToken {
  FormulaTokenKind kind = FormulaTokenKind::end;
  std::string_view text;
  FormulaValue value;  ///< of a number
};

class FormulaLexer {
 public:
  FormulaLexer(std::string_view text, FormulaKind kind) : rest_(text), kind_(kind) {}

  /// The next token; blanks and comments (<!-- -->) before it are skipped.
  FormulaToken next();
  /// Whether an opening bracket comes next.
  bool bracketFollows();

 private:
  void skipBlanks();
  FormulaToken take(FormulaTokenKind kind, std::size_t length);
  FormulaToken number();

  std::string_view rest_;
  FormulaKind kind_;
};

/// The value of a literal or constant; nothing if the text is no number, or none that the kind of formula can calculate
/// with: an integer formula takes no fractions.
bool parseFormulaNumber(std::string_view text, FormulaKind kind, FormulaValue& value);

}  // namespace GenApiEngine
