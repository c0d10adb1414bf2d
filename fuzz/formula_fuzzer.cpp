// Compiles and evaluates any text as a formula. The first byte chooses the kind; a NUL ends the formula and begins an
// expression.
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "formula/program.h"

using namespace GenApiEngine;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0)
    return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t end = text.find('\0');
  const std::string_view expression = end != std::string_view::npos ? text.substr(end + 1) : std::string_view("A+B");
  const std::array<std::string_view, 5> variables = {"A", "B", "C", "TO", "SEL.Entry.X"};
  const std::array<FormulaName, 2> constants = {{{"K", "0x7FFFFFFFFFFFFFFF"}, {"F", expression.substr(0, 8)}}};
  const std::array<FormulaName, 2> expressions = {{{"X", expression}, {"Y", "X*X"}}};
  const FormulaKind kind = (data[0] & 1) != 0 ? FormulaKind::integer : FormulaKind::floating;

  std::string error;
  const auto program = FormulaProgram::compile({kind, text.substr(0, end), variables, constants, expressions}, error);
  if (!program) {
    if (error.empty())
      __builtin_trap();
    return 0;
  }
  const std::array<FormulaValue, 5> values = {
      FormulaValue::ofInteger(0), FormulaValue::ofInteger(std::numeric_limits<std::int64_t>::min()),
      FormulaValue::ofInteger(-1), FormulaValue::ofNumber(std::numeric_limits<double>::quiet_NaN()),
      FormulaValue::ofNumber(1e300)};
  FormulaValue result;
  program->evaluate([&](std::uint32_t index) { return values[index % values.size()]; }, result);
  program->evaluate([&](std::uint32_t index) { return FormulaValue::ofInteger(std::int64_t{index} + 1); }, result);
  return 0;
}
