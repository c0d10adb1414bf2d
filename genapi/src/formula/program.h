// A formula of a swiss knife or converter, compiled once into a flat program. Evaluating it allocates only for formulas
// of unusual size.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace GenApiEngine {

/// The numbers that a formula calculates with.
enum class FormulaKind : std::uint8_t {
  integer,  ///< 64-bit integers throughout; what overflows wraps around
  floating  ///< doubles; integers stay exact where only integers meet, so that bit operations see all 64 bits
};

/// An integer or a double.
struct FormulaValue {
  bool isInteger = true;
  union {
    std::int64_t integer = 0;
    double number;
  };

  static FormulaValue ofInteger(std::int64_t value) {
    FormulaValue made;
    made.integer = value;
    return made;
  }
  static FormulaValue ofNumber(double value) {
    FormulaValue made;
    made.isInteger = false;
    made.number = value;
    return made;
  }
  double asNumber() const { return isInteger ? static_cast<double>(integer) : number; }
};

/// What went wrong in an evaluation.
enum class FormulaFault : std::uint8_t { none, divisionByZero, notANumber, outOfRange };

/// A text for a message, for example "division by zero".
const char* describe(FormulaFault fault);

/// A constant or an expression that a formula may name: its name and its text.
struct FormulaName {
  std::string_view name;
  std::string_view text;
};

/// A formula with the names that it may use. Names are compared exactly first, then without regard to case. The texts
/// are not kept.
struct FormulaSource {
  FormulaKind kind = FormulaKind::floating;
  std::string_view text;
  std::span<const std::string_view> variables;  ///< whole names, suffix included: "GAIN", "GAIN.Max"
  std::span<const FormulaName> constants;
  std::span<const FormulaName> expressions;  ///< may name each other
};

/// A name with a suffix of which only the part before the dot is declared: "GAIN.Max" where there is just "GAIN".
struct DerivedVariable {
  std::uint32_t base = 0;  ///< index of the declared variable
  std::string suffix;      ///< "Max", "Entry.Mono8", ...
};

/// An immutable compiled formula; may be shared between threads.
class FormulaProgram {
 public:
  /// Compiles a formula. Every operand is evaluated, also those of the branch not taken, as the field's programs
  /// expect.
  ///
  /// @param error  receives what is wrong with the formula
  /// @return       null if the formula is wrong
  static std::shared_ptr<const FormulaProgram> compile(const FormulaSource& source, std::string& error);

  FormulaKind kind() const { return kind_; }
  /// The variables that the formula reads, each once, in the order of first use. An index counts in the source's
  /// variables; from their number on it counts in derivedVariables().
  std::span<const std::uint32_t> usedVariables() const { return usedVariables_; }
  std::span<const DerivedVariable> derivedVariables() const { return derived_; }

  /// Evaluates the formula. Each used variable is read once, before anything is calculated.
  ///
  /// @param read    called as FormulaValue(std::uint32_t index); what it throws passes through
  /// @param result  the integer of an integer formula, the double of a floating one; untouched if there is a fault
  template<class Read>
  requires std::is_invocable_r_v<FormulaValue, Read&, std::uint32_t> FormulaFault evaluate(Read&& read,
                                                                                           FormulaValue& result)
  const {
    const auto call = [&read](std::uint32_t index) -> FormulaValue { return read(index); };
    return run([](const void* context, std::uint32_t index) { return (*static_cast<decltype(&call)>(context))(index); },
               &call, result);
  }
  /// As above, with the value of each variable at its index.
  FormulaFault evaluate(std::span<const FormulaValue> values, FormulaValue& result) const {
    return evaluate([values](std::uint32_t index) { return values[index]; }, result);
  }

  struct Instruction;

  FormulaProgram(const FormulaProgram&) = delete;
  FormulaProgram& operator=(const FormulaProgram&) = delete;
  ~FormulaProgram();

 private:
  friend class FormulaCompiler;
  using ReadVariable = FormulaValue (*)(const void* context, std::uint32_t index);

  FormulaProgram();
  FormulaFault run(ReadVariable read, const void* context, FormulaValue& result) const;
  template<class Frame>
  FormulaFault runWith(ReadVariable read, const void* context, FormulaValue& result) const;

  FormulaKind kind_ = FormulaKind::floating;
  std::uint32_t frameSize_ = 0;
  std::vector<Instruction> instructions_;
  std::vector<FormulaValue> constants_;
  std::vector<std::uint32_t> usedVariables_;
  std::vector<DerivedVariable> derived_;
};

}  // namespace GenApiEngine
