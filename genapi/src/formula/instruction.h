// The instructions of a compiled formula.
#pragma once

#include <cstddef>
#include <cstdint>

#include "formula/program.h"

namespace GenApiEngine {

/// Each takes its operands from the top of the value stack and leaves one result there.
enum class FormulaOp : std::uint8_t {
  constant,  ///< argument: index of the constant
  variable,  ///< argument: place in the frame
  negate,
  invert,
  power,
  multiply,
  divide,
  remainder,
  add,
  subtract,
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
  select,  ///< condition, value if it is not zero, value otherwise
  sign,
  absolute,
  arcTangent,
  cosine,
  sine,
  tangent,
  exponential,
  naturalLogarithm,
  decimalLogarithm,
  squareRoot,
  truncate,
  fraction,
  floor,
  ceiling,
  round,
  roundToDigits,  ///< value, number of decimals
  arcSine,
  arcCosine
};

struct FormulaProgram::Instruction {
  FormulaOp op;
  std::uint32_t argument;
};

/// A frame holds the variables that a formula reads and its value stack. One of usual size lies on the thread's stack,
/// where there may be one for each of the nodes that ask each other; a larger one is allocated, an unreasonable one
/// refused.
inline constexpr std::size_t kSmallFormulaFrame = 96;
inline constexpr std::size_t kMaxFormulaFrame = 1024;
/// Expressions are compiled in place at each use; these two end what would grow without bound. The longest formulas of
/// real cameras need a few hundred.
inline constexpr std::size_t kMaxFormulaInstructions = 32768;
inline constexpr std::size_t kMaxFormulaCharacters = std::size_t{4} << 20;
/// Expressions that name expressions that name expressions...; also what ends a circle of them.
inline constexpr int kMaxExpressionDepth = 24;

}  // namespace GenApiEngine
