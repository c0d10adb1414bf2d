// Evaluates compiled formulas.
#include "formula/program.h"

#include <cmath>
#include <limits>

#include "base/limits.h"
#include "formula/instruction.h"

namespace GenApiEngine {
namespace {

using Op = FormulaOp;
using Fault = FormulaFault;

std::uint64_t bits(std::int64_t value) {
  return static_cast<std::uint64_t>(value);
}
std::int64_t wrapped(std::uint64_t value) {
  return static_cast<std::int64_t>(value);
}
constexpr std::uint64_t kShiftMask = 63;

std::int64_t shiftLeft(std::int64_t value, std::int64_t count) {
  return wrapped(bits(value) << (bits(count) & kShiftMask));
}
std::int64_t shiftRight(std::int64_t value, std::int64_t count) {
  return value >> (bits(count) & kShiftMask);
}
std::int64_t negated(std::int64_t value) {
  return wrapped(0 - bits(value));
}

bool divide(std::int64_t a, std::int64_t b, std::int64_t& quotient, std::int64_t& remainder) {
  if (b == 0)
    return false;
  // The one quotient that does not fit.
  quotient = b == -1 ? negated(a) : a / b;
  remainder = b == -1 ? 0 : a % b;
  return true;
}

Fault power(std::int64_t base, std::int64_t exponent, std::int64_t& result) {
  if (exponent < 0) {
    if (base == 0)
      return Fault::divisionByZero;
    const bool odd = (exponent & 1) != 0;
    result = base == 1 ? 1 : base == -1 ? (odd ? -1 : 1) : 0;
    return Fault::none;
  }
  std::uint64_t product = 1;
  std::uint64_t factor = bits(base);
  for (std::uint64_t left = bits(exponent); left != 0; left >>= 1) {
    if ((left & 1) != 0)
      product *= factor;
    factor *= factor;
  }
  result = wrapped(product);
  return Fault::none;
}

/// Rounds half away from zero; false outside the range of integers.
bool toInteger(double value, std::int64_t& result) {
  const double rounded = std::round(value);
  if (!(rounded >= -0x1p63 && rounded < 0x1p63))
    return false;
  result = static_cast<std::int64_t>(rounded);
  return true;
}

// The value stack of an integer formula.
struct IntegerFrame {
  using Cell = std::int64_t;

  static Fault load(const FormulaValue& value, Cell& cell) {
    if (value.isInteger) {
      cell = value.integer;
      return Fault::none;
    }
    return toInteger(value.number, cell) ? Fault::none : Fault::outOfRange;
  }
  static FormulaValue result(Cell cell) { return FormulaValue::ofInteger(cell); }
  static bool isTrue(Cell cell) { return cell != 0; }

  static Fault unary(Op op, Cell& x) {
    switch (op) {
      case Op::negate:
        x = negated(x);
        return Fault::none;
      case Op::invert:
        x = ~x;
        return Fault::none;
      case Op::sign:
        x = (x > 0) - (x < 0);
        return Fault::none;
      default:
        return Fault::notANumber;
    }
  }

  static Fault binary(Op op, Cell& a, Cell b) {
    Cell unused = 0;
    switch (op) {
      case Op::power:
        return power(a, b, a);
      case Op::multiply:
        a = wrapped(bits(a) * bits(b));
        return Fault::none;
      case Op::divide:
        return divide(a, b, a, unused) ? Fault::none : Fault::divisionByZero;
      case Op::remainder:
        return divide(a, b, unused, a) ? Fault::none : Fault::divisionByZero;
      case Op::add:
        a = wrapped(bits(a) + bits(b));
        return Fault::none;
      case Op::subtract:
        a = wrapped(bits(a) - bits(b));
        return Fault::none;
      case Op::shiftLeft:
        a = shiftLeft(a, b);
        return Fault::none;
      case Op::shiftRight:
        a = shiftRight(a, b);
        return Fault::none;
      case Op::less:
        a = a < b;
        return Fault::none;
      case Op::lessOrEqual:
        a = a <= b;
        return Fault::none;
      case Op::greater:
        a = a > b;
        return Fault::none;
      case Op::greaterOrEqual:
        a = a >= b;
        return Fault::none;
      case Op::equal:
        a = a == b;
        return Fault::none;
      case Op::notEqual:
        a = a != b;
        return Fault::none;
      case Op::bitAnd:
        a &= b;
        return Fault::none;
      case Op::bitXor:
        a ^= b;
        return Fault::none;
      case Op::bitOr:
        a |= b;
        return Fault::none;
      case Op::logicAnd:
        a = a != 0 && b != 0;
        return Fault::none;
      case Op::logicOr:
        a = a != 0 || b != 0;
        return Fault::none;
      default:
        return Fault::notANumber;
    }
  }
};

// The value stack of a floating formula. Integers remain integers as long as only integers meet and the result is one.
struct FloatingFrame {
  struct Cell {
    union {
      std::int64_t integer;
      double number;
    };
    bool isInteger;

    double asNumber() const { return isInteger ? static_cast<double>(integer) : number; }
    Fault set(std::int64_t value) {
      integer = value;
      isInteger = true;
      return Fault::none;
    }
    Fault set(double value) {
      number = value;
      isInteger = false;
      return Fault::none;
    }
    // For bit operations: cut towards zero.
    bool cut(std::int64_t& value) const {
      if (isInteger)
        value = integer;
      else if (number >= -0x1p63 && number < 0x1p63)
        value = static_cast<std::int64_t>(number);
      else
        return false;
      return true;
    }
  };

  static Fault load(const FormulaValue& value, Cell& cell) {
    return value.isInteger ? cell.set(value.integer) : cell.set(value.number);
  }
  static FormulaValue result(const Cell& cell) { return FormulaValue::ofNumber(cell.asNumber()); }
  static bool isTrue(const Cell& cell) { return cell.isInteger ? cell.integer != 0 : cell.number != 0; }

  // A result that is not finite is a fault, unless an operand was not finite already.
  static Fault finish(Cell& cell, double value, bool finiteOperands) {
    if (!std::isfinite(value) && finiteOperands)
      return std::isnan(value) ? Fault::notANumber : Fault::outOfRange;
    return cell.set(value);
  }

  static double calculated(Op op, double x) {
    switch (op) {
      case Op::absolute:
        return std::fabs(x);
      case Op::arcTangent:
        return std::atan(x);
      case Op::cosine:
        return std::cos(x);
      case Op::sine:
        return std::sin(x);
      case Op::tangent:
        return std::tan(x);
      case Op::exponential:
        return std::exp(x);
      case Op::naturalLogarithm:
        return std::log(x);
      case Op::decimalLogarithm:
        return std::log10(x);
      case Op::squareRoot:
        return std::sqrt(x);
      case Op::fraction:
        return x - std::trunc(x);
      case Op::truncate:
        return std::trunc(x);
      case Op::floor:
        return std::floor(x);
      case Op::ceiling:
        return std::ceil(x);
      case Op::round:
        return std::round(x);
      case Op::arcSine:
        return std::asin(x);
      case Op::arcCosine:
        return std::acos(x);
      default:
        return std::numeric_limits<double>::quiet_NaN();
    }
  }

  static Fault unary(Op op, Cell& x) {
    std::int64_t integer = 0;
    switch (op) {
      case Op::negate:
        if (x.isInteger && x.integer != std::numeric_limits<std::int64_t>::min())
          return x.set(-x.integer);
        return x.set(-x.asNumber());
      case Op::invert:
        return x.cut(integer) ? x.set(~integer) : Fault::outOfRange;
      case Op::sign: {
        const double value = x.asNumber();
        return x.set(std::int64_t{value > 0} - std::int64_t{value < 0});
      }
      case Op::truncate:
      case Op::floor:
      case Op::ceiling:
      case Op::round:
        if (x.isInteger)
          return Fault::none;
        break;
      case Op::absolute:
        if (x.isInteger && x.integer >= 0)
          return Fault::none;
        break;
      default:
        break;
    }
    const double operand = x.asNumber();
    return finish(x, calculated(op, operand), std::isfinite(operand));
  }

  // Adds, subtracts or multiplies integers if the result fits.
  static bool exact(Op op, const Cell& a, const Cell& b, Cell& result) {
    if (!a.isInteger || !b.isInteger)
      return false;
    // Well below 2^63, as the estimate is rounded.
    constexpr double kCertainlyFits = 0x1.fffp62;
    const std::uint64_t x = bits(a.integer);
    const std::uint64_t y = bits(b.integer);
    if (op == Op::multiply) {
      if (std::fabs(static_cast<double>(a.integer) * static_cast<double>(b.integer)) >= kCertainlyFits)
        return false;
      result.set(wrapped(x * y));
      return true;
    }
    const std::uint64_t sum = op == Op::add ? x + y : x - y;
    const std::uint64_t overflow = op == Op::add ? (x ^ sum) & (y ^ sum) : (x ^ y) & (x ^ sum);
    if (wrapped(overflow) < 0)
      return false;
    result.set(wrapped(sum));
    return true;
  }

  static Fault arithmetic(Op op, Cell& a, const Cell& b) {
    const double x = a.asNumber();
    const double y = b.asNumber();
    const bool finite = std::isfinite(x) && std::isfinite(y);
    switch (op) {
      case Op::power:
        return x == 0 && y < 0 ? Fault::divisionByZero : finish(a, std::pow(x, y), finite);
      case Op::divide:
        return y == 0 ? Fault::divisionByZero : finish(a, x / y, finite);
      case Op::multiply:
        return exact(op, a, b, a) ? Fault::none : finish(a, x * y, finite);
      case Op::add:
        return exact(op, a, b, a) ? Fault::none : finish(a, x + y, finite);
      default:
        return exact(op, a, b, a) ? Fault::none : finish(a, x - y, finite);
    }
  }

  static Fault remainder(Cell& a, const Cell& b) {
    if (b.asNumber() == 0)
      return Fault::divisionByZero;
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t unused = 0;
    const bool whole =
        a.cut(x) && b.cut(y) && static_cast<double>(x) == a.asNumber() && static_cast<double>(y) == b.asNumber();
    if (!whole)
      return finish(a, std::fmod(a.asNumber(), b.asNumber()), std::isfinite(a.asNumber()));
    return divide(x, y, unused, x) ? a.set(x) : Fault::divisionByZero;
  }

  static Fault bitwise(Op op, Cell& a, const Cell& b) {
    std::int64_t x = 0;
    std::int64_t y = 0;
    if (!a.cut(x) || !b.cut(y))
      return Fault::outOfRange;
    switch (op) {
      case Op::shiftLeft:
        return a.set(shiftLeft(x, y));
      case Op::shiftRight:
        return a.set(shiftRight(x, y));
      case Op::bitAnd:
        return a.set(x & y);
      case Op::bitXor:
        return a.set(x ^ y);
      default:
        return a.set(x | y);
    }
  }

  template<class Number>
  static bool compare(Op op, Number x, Number y) {
    switch (op) {
      case Op::less:
        return x < y;
      case Op::lessOrEqual:
        return x <= y;
      case Op::greater:
        return x > y;
      case Op::greaterOrEqual:
        return x >= y;
      case Op::equal:
        return x == y;
      default:
        return x != y;
    }
  }

  static Fault roundToDigits(Cell& a, const Cell& b) {
    const double value = a.asNumber();
    const double scale = std::pow(10.0, std::trunc(b.asNumber()));
    const double scaled = value * scale;
    // More digits than a double has, or none that are left.
    if (!std::isfinite(scaled))
      return a.set(value);
    if (scale == 0)
      return a.set(0.0);
    return finish(a, std::round(scaled) / scale, std::isfinite(value));
  }

  static Fault binary(Op op, Cell& a, const Cell& b) {
    switch (op) {
      case Op::power:
      case Op::multiply:
      case Op::divide:
      case Op::add:
      case Op::subtract:
        return arithmetic(op, a, b);
      case Op::remainder:
        return remainder(a, b);
      case Op::shiftLeft:
      case Op::shiftRight:
      case Op::bitAnd:
      case Op::bitXor:
      case Op::bitOr:
        return bitwise(op, a, b);
      case Op::logicAnd:
        return a.set(std::int64_t{isTrue(a) && isTrue(b)});
      case Op::logicOr:
        return a.set(std::int64_t{isTrue(a) || isTrue(b)});
      case Op::roundToDigits:
        return roundToDigits(a, b);
      default:
        return a.set(std::int64_t{a.isInteger && b.isInteger ? compare(op, a.integer, b.integer)
                                                             : compare(op, a.asNumber(), b.asNumber())});
    }
  }
};

bool takesTwo(Op op) {
  return (op >= Op::power && op <= Op::logicOr) || op == Op::roundToDigits;
}

template<class Frame, class Read>
Fault evaluateIn(typename Frame::Cell* cells, std::span<const FormulaProgram::Instruction> instructions,
                 std::span<const FormulaValue> constants, std::size_t variableCount, Read&& readVariable,
                 FormulaValue& result) {
  for (std::size_t i = 0; i < variableCount; ++i) {
    if (const Fault fault = Frame::load(readVariable(i), cells[i]); fault != Fault::none)
      return fault;
  }
  typename Frame::Cell* top = cells + variableCount - 1;
  for (const FormulaProgram::Instruction& instruction : instructions) {
    Fault fault = Fault::none;
    if (instruction.op == Op::variable) {
      *++top = cells[instruction.argument];
    } else if (instruction.op == Op::constant) {
      fault = Frame::load(constants[instruction.argument], *++top);
    } else if (takesTwo(instruction.op)) {
      --top;
      fault = Frame::binary(instruction.op, *top, top[1]);
    } else if (instruction.op == Op::select) {
      top -= 2;
      *top = Frame::isTrue(*top) ? top[1] : top[2];
    } else {
      fault = Frame::unary(instruction.op, *top);
    }
    if (fault != Fault::none)
      return fault;
  }
  result = Frame::result(*top);
  return Fault::none;
}

}  // namespace

const char* describe(FormulaFault fault) {
  constexpr const char* kTexts[] = {"no fault", "division by zero", "the result is not a number",
                                    "a value is out of range"};
  return kTexts[static_cast<std::size_t>(fault)];
}

FormulaProgram::FormulaProgram() = default;
FormulaProgram::~FormulaProgram() = default;

template<class Frame>
FormulaFault FormulaProgram::runWith(ReadVariable read, const void* context, FormulaValue& result) const {
  const auto run = [&](typename Frame::Cell* cells) {
    const auto readVariable = [&](std::size_t i) { return read(context, usedVariables_[i]); };
    return evaluateIn<Frame>(cells, instructions_, constants_, usedVariables_.size(), readVariable, result);
  };
  // The cells are not initialised: each is written before it is read.
  if (frameSize_ > kSmallFormulaFrame)
    return run(std::unique_ptr<typename Frame::Cell[]>(new typename Frame::Cell[frameSize_]).get());
  typename Frame::Cell cells[kSmallFormulaFrame];  // NOLINT(cppcoreguidelines-pro-type-member-init)
  return run(cells);
}

FormulaFault FormulaProgram::run(ReadVariable read, const void* context, FormulaValue& result) const {
  return kind_ == FormulaKind::integer ? runWith<IntegerFrame>(read, context, result)
                                       : runWith<FloatingFrame>(read, context, result);
}

}  // namespace GenApiEngine
