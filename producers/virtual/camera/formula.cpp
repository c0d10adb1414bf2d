// Evaluates formulas while it parses them: they are short and evaluated only when a register is written.
#include "formula.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>
#include <type_traits>

namespace vcam {
namespace {

template<class T>
class Parser {
 public:
  Parser(std::string_view text, const Formula::Lookup& lookup) : text_(text), lookup_(lookup) {}

  T run() {
    const T value = conditional();
    if (skipBlanks() < text_.size()) {
      fail();
    }
    return value;
  }

 private:
  struct Operator {
    std::string_view text;
    T (*apply)(T, T);
  };

  static T remainder(T a, T b) {
    if (b == T{}) {
      return T{};
    }
    if constexpr (std::is_floating_point_v<T>) {
      return std::fmod(a, b);
    } else {
      return a % b;
    }
  }

  static constexpr std::array<Operator, 13> kOperators{{
      {"||", [](T a, T b) { return T(a != T{} || b != T{}); }},
      {"&&", [](T a, T b) { return T(a != T{} && b != T{}); }},
      {"<>", [](T a, T b) { return T(a != b); }},
      {"<=", [](T a, T b) { return T(a <= b); }},
      {">=", [](T a, T b) { return T(a >= b); }},
      {"=", [](T a, T b) { return T(a == b); }},
      {"<", [](T a, T b) { return T(a < b); }},
      {">", [](T a, T b) { return T(a > b); }},
      {"+", [](T a, T b) { return T(a + b); }},
      {"-", [](T a, T b) { return T(a - b); }},
      {"*", [](T a, T b) { return T(a * b); }},
      {"/", [](T a, T b) { return b == T{} ? T{} : T(a / b); }},
      {"%", &Parser::remainder},
  }};
  // Where each level of precedence begins in the table, the loosest first; the last entry ends it.
  static constexpr std::array<std::size_t, 6> kLevels{0, 1, 2, 8, 10, 13};

  [[noreturn]] void fail() const { throw std::invalid_argument("malformed formula: " + std::string(text_)); }

  std::size_t skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') {
      ++at_;
    }
    return at_;
  }

  bool take(std::string_view token) {
    skipBlanks();
    if (text_.substr(at_, token.size()) != token) {
      return false;
    }
    at_ += token.size();
    return true;
  }

  T conditional() {
    const T condition = binary(0);
    if (!take("?")) {
      return condition;
    }
    const T yes = conditional();
    if (!take(":")) {
      fail();
    }
    const T no = conditional();
    return condition != T{} ? yes : no;
  }

  T binary(std::size_t level) {
    if (level + 1 == kLevels.size()) {
      return unary();
    }
    T left = binary(level + 1);
    for (;;) {
      const auto* const end = kOperators.begin() + kLevels[level + 1];
      const auto* const found = std::find_if(kOperators.begin() + kLevels[level], end,
                                             [&](const Operator& candidate) { return take(candidate.text); });
      if (found == end) {
        return left;
      }
      left = found->apply(left, binary(level + 1));
    }
  }

  T unary() {
    if (take("-")) {
      return T{} - unary();
    }
    if (take("(")) {
      const T value = conditional();
      if (!take(")")) {
        fail();
      }
      return value;
    }
    skipBlanks();
    std::string word;
    while (at_ < text_.size() &&
           (std::isalnum(static_cast<unsigned char>(text_[at_])) != 0 || text_[at_] == '_' || text_[at_] == '.')) {
      word += text_[at_++];
    }
    if (word.empty()) {
      fail();
    }
    if (std::isdigit(static_cast<unsigned char>(word.front())) != 0) {
      double number = 0.0;  // Not stod: the application's locale may read commas.
      std::from_chars(word.data(), word.data() + word.size(), number);
      return static_cast<T>(number);
    }
    return static_cast<T>(lookup_(word));
  }

  std::string_view text_;
  const Formula::Lookup& lookup_;
  std::size_t at_ = 0;
};

}  // namespace

Formula::Formula(std::string text) : text_(std::move(text)) {
  const Lookup collect = [this](const std::string& name) {
    if (std::ranges::find(names_, name) == names_.end()) {
      names_.push_back(name);
    }
    return 1.0;
  };
  if (!text_.empty()) {
    Parser<double>(text_, collect).run();
  }
}

std::int64_t Formula::integer(const Lookup& lookup) const {
  return Parser<std::int64_t>(text_, lookup).run();
}

double Formula::floating(const Lookup& lookup) const {
  return Parser<double>(text_, lookup).run();
}

}  // namespace vcam
