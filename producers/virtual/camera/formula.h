// Formulas that limit and lock features. The description gets their text, the camera evaluates them itself, so that
// what a consumer is told and what the camera enforces are one declaration.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace vcam {

// Operators: ?: || && = <> < <= > >= + - * / % unary minus, parentheses; operands: numbers and names of features.
// Malformed text throws std::invalid_argument at construction.
class Formula {
 public:
  using Lookup = std::function<double(const std::string& name)>;

  Formula() = default;
  Formula(std::string text);                                 // NOLINT(google-explicit-constructor)
  Formula(const char* text) : Formula(std::string(text)) {}  // NOLINT(google-explicit-constructor)

  bool empty() const { return text_.empty(); }
  const std::string& text() const { return text_; }
  const std::vector<std::string>& names() const { return names_; }
  // Whether the whole formula is one name.
  bool isName() const { return names_.size() == 1 && text_ == names_.front(); }

  // Whole-number arithmetic as integer knives have it, or floating; a division by zero is 0.
  std::int64_t integer(const Lookup& lookup) const;
  double floating(const Lookup& lookup) const;

 private:
  std::string text_;
  std::vector<std::string> names_;  // each once, in order of appearance
};

}  // namespace vcam
