// The instructions of a compiled formula.
#pragma once

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

}  // namespace GenApiEngine
