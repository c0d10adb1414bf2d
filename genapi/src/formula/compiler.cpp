// Compiles a formula: operators are ordered with a stack of their own, so that no nesting in a text can exhaust ours.
#include <algorithm>
#include <array>
#include <numbers>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/limits.h"
#include "formula/instruction.h"
#include "formula/lexer.h"

namespace GenApiEngine {
namespace {

using Kind = FormulaTokenKind;
using Op = FormulaOp;

struct Operator {
  Kind token;
  Op op;
  int precedence;
};

constexpr int kUnaryPrecedence = 13;
// All of them associate to the left, power too.
constexpr Operator kBinaryOperators[] = {
    {Kind::power, Op::power, 12},        {Kind::times, Op::multiply, 11},
    {Kind::slash, Op::divide, 11},       {Kind::percent, Op::remainder, 11},
    {Kind::plus, Op::add, 10},           {Kind::minus, Op::subtract, 10},
    {Kind::shiftLeft, Op::shiftLeft, 9}, {Kind::shiftRight, Op::shiftRight, 9},
    {Kind::less, Op::less, 8},           {Kind::lessOrEqual, Op::lessOrEqual, 8},
    {Kind::greater, Op::greater, 8},     {Kind::greaterOrEqual, Op::greaterOrEqual, 8},
    {Kind::equal, Op::equal, 7},         {Kind::notEqual, Op::notEqual, 7},
    {Kind::bitAnd, Op::bitAnd, 6},       {Kind::bitXor, Op::bitXor, 5},
    {Kind::bitOr, Op::bitOr, 4},         {Kind::logicAnd, Op::logicAnd, 3},
    {Kind::logicOr, Op::logicOr, 2}};

struct Function {
  std::string_view name;
  Op op;
  std::size_t arguments;
  bool inIntegerFormulas;
};

constexpr Function kFunctions[] = {
    {"SGN", Op::sign, 1, true},
    {"NEG", Op::negate, 1, true},
    {"ATAN", Op::arcTangent, 1, false},
    {"COS", Op::cosine, 1, false},
    {"SIN", Op::sine, 1, false},
    {"TAN", Op::tangent, 1, false},
    {"ABS", Op::absolute, 1, false},
    {"EXP", Op::exponential, 1, false},
    {"LN", Op::naturalLogarithm, 1, false},
    {"LG", Op::decimalLogarithm, 1, false},
    {"SQRT", Op::squareRoot, 1, false},
    {"TRUNC", Op::truncate, 1, false},
    {"FRAC", Op::fraction, 1, false},
    {"FLOOR", Op::floor, 1, false},
    {"CEIL", Op::ceiling, 1, false},
    {"ROUND", Op::round, 1, false},
    {"ROUND", Op::roundToDigits, 2, false},
    {"ASIN", Op::arcSine, 1, false},
    {"ACOS", Op::arcCosine, 1, false},
};

struct NumberName {
  std::string_view name;
  double value;
};
constexpr NumberName kNumberNames[] = {{"PI", std::numbers::pi}, {"E", std::numbers::e}};

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
bool sameIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return upper(x) == upper(y); });
}
std::string upperCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), upper);
  return result;
}

struct Name {
  enum class Of : std::uint8_t { variable, constant, expression } of;
  std::uint32_t index;
};

// Finds a declared name: by its exact spelling, else by the first that differs in case only.
class NameTable {
 public:
  explicit NameTable(const FormulaSource& source) : source_(source) {
    if (count() <= kSearchedInOrder)
      return;
    forEach([this](std::string_view spelling, Name name) {
      exact_.emplace(spelling, name);
      folded_.emplace(upperCase(spelling), name);
      return false;
    });
  }

  std::optional<Name> find(std::string_view wanted) const {
    if (count() > kSearchedInOrder) {
      if (const auto found = exact_.find(wanted); found != exact_.end())
        return found->second;
      const auto found = folded_.find(upperCase(wanted));
      return found != folded_.end() ? std::optional(found->second) : std::nullopt;
    }
    std::optional<Name> folded;
    std::optional<Name> exact;
    forEach([&](std::string_view spelling, Name name) {
      if (spelling == wanted)
        exact = name;
      else if (!folded && sameIgnoringCase(spelling, wanted))
        folded = name;
      return exact.has_value();
    });
    return exact ? exact : folded;
  }

 private:
  static constexpr std::size_t kSearchedInOrder = 24;

  std::size_t count() const { return source_.variables.size() + source_.constants.size() + source_.expressions.size(); }

  template<class Visit>
  void forEach(Visit&& visit) const {
    for (std::uint32_t i = 0; i < source_.variables.size(); ++i) {
      if (visit(source_.variables[i], Name{Name::Of::variable, i}))
        return;
    }
    for (std::uint32_t i = 0; i < source_.constants.size(); ++i) {
      if (visit(source_.constants[i].name, Name{Name::Of::constant, i}))
        return;
    }
    for (std::uint32_t i = 0; i < source_.expressions.size(); ++i) {
      if (visit(source_.expressions[i].name, Name{Name::Of::expression, i}))
        return;
    }
  }

  const FormulaSource& source_;
  std::unordered_map<std::string_view, Name> exact_;
  std::unordered_map<std::string, Name> folded_;
};

struct SyntaxError {
  std::string text;
};

}  // namespace

class FormulaCompiler {
 public:
  explicit FormulaCompiler(const FormulaSource& source)
      : source_(source),
        names_(source),
        placeOf_(source.variables.size(), kNoPlace) {
    program_->kind_ = source.kind;
  }

  std::shared_ptr<const FormulaProgram> compile() {
    formula(source_.text);
    const std::size_t frame = program_->usedVariables_.size() + deepest_;
    if (frame > kMaxFormulaFrame)
      throw SyntaxError{"too deeply nested"};
    program_->frameSize_ = static_cast<std::uint32_t>(frame);
    program_->instructions_.shrink_to_fit();
    return program_;
  }

 private:
  // What waits for its right-hand side. Brackets and the parts of a ternary wait with the operators.
  struct Pending {
    enum class What : std::uint8_t { operation, bracket, call, question, colon } what;
    Op op = Op::constant;
    int precedence = 0;
    std::string_view function = {};
    std::size_t arguments = 0;
  };
  using What = Pending::What;
  static constexpr std::uint32_t kNoPlace = UINT32_MAX;

  // One formula or expression, whose result it leaves on the value stack.
  void formula(std::string_view text) {
    if (++expressionDepth_ > kMaxExpressionDepth)
      throw SyntaxError{"expressions are nested too deeply or in a circle"};
    if (text.size() > charactersLeft_)
      throw SyntaxError{"too long"};
    charactersLeft_ -= text.size();
    FormulaLexer lexer(text, source_.kind);
    std::vector<Pending> pending;
    bool operandExpected = true;
    for (FormulaToken token = lexer.next();; token = lexer.next()) {
      if (token.kind == Kind::end)
        break;
      operandExpected = operandExpected ? operand(token, lexer, pending) : afterOperand(token, pending);
    }
    if (operandExpected)
      throw SyntaxError{pending.empty() ? "the formula is empty" : "an operand is missing at the end"};
    reduce(pending, 0);
    if (!pending.empty())
      throw SyntaxError{pending.back().what == What::question ? "'?' without ':'" : "')' is missing"};
    --expressionDepth_;
  }

  // Both return whether an operand is expected next.
  bool operand(const FormulaToken& token, FormulaLexer& lexer, std::vector<Pending>& pending) {
    switch (token.kind) {
      case Kind::plus:
        return true;
      case Kind::minus:
        pending.push_back({What::operation, Op::negate, kUnaryPrecedence});
        return true;
      case Kind::tilde:
        pending.push_back({What::operation, Op::invert, kUnaryPrecedence});
        return true;
      case Kind::open:
        pending.push_back({What::bracket});
        return true;
      case Kind::number:
        emitConstant(token.value);
        return false;
      case Kind::name:
        return name(token.text, lexer, pending);
      case Kind::close:
        if (!pending.empty() && pending.back().what == What::call && pending.back().arguments == 0) {
          call(pending.back());
          pending.pop_back();
          return false;
        }
        [[fallthrough]];
      default:
        throw unexpected(token);
    }
  }

  bool afterOperand(const FormulaToken& token, std::vector<Pending>& pending) {
    for (const Operator& known : kBinaryOperators) {
      if (known.token != token.kind)
        continue;
      reduceOperations(pending, known.precedence);
      pending.push_back({What::operation, known.op, known.precedence});
      return true;
    }
    switch (token.kind) {
      case Kind::question:
        reduceOperations(pending, 0);
        if (!pending.empty() && pending.back().what == What::question)
          throw SyntaxError{"a '?' between '?' and ':' needs brackets"};
        pending.push_back({What::question});
        return true;
      case Kind::colon:
        reduceOperations(pending, 0);
        if (pending.empty() || pending.back().what != What::question)
          throw SyntaxError{"':' without '?'"};
        pending.back().what = What::colon;
        return true;
      case Kind::comma:
        reduce(pending, 0);
        if (pending.empty() || pending.back().what != What::call)
          throw unexpected(token);
        ++pending.back().arguments;
        return true;
      case Kind::close:
        reduce(pending, 0);
        if (pending.empty() || (pending.back().what != What::call && pending.back().what != What::bracket))
          throw unexpected(token);
        if (pending.back().what == What::call) {
          ++pending.back().arguments;
          call(pending.back());
        }
        pending.pop_back();
        return false;
      default:
        throw unexpected(token);
    }
  }

  // Emits the operators that bind at least as tightly as the next one.
  void reduceOperations(std::vector<Pending>& pending, int precedence) {
    while (!pending.empty() && pending.back().what == What::operation && pending.back().precedence >= precedence) {
      emitOperation(pending.back().op);
      pending.pop_back();
    }
  }

  // The same up to the opening bracket, with the ternaries that end here.
  void reduce(std::vector<Pending>& pending, int precedence) {
    reduceOperations(pending, precedence);
    while (!pending.empty() && pending.back().what == What::colon) {
      emitOperation(Op::select);
      pending.pop_back();
      reduceOperations(pending, precedence);
    }
  }

  bool name(std::string_view text, FormulaLexer& lexer, std::vector<Pending>& pending) {
    if (const auto declared = names_.find(text)) {
      switch (declared->of) {
        case Name::Of::variable:
          emitVariable(declared->index);
          break;
        case Name::Of::constant:
          constant(source_.constants[declared->index]);
          break;
        case Name::Of::expression:
          formula(source_.expressions[declared->index].text);
          break;
      }
      return false;
    }
    if (lexer.bracketFollows()) {
      static_cast<void>(lexer.next());
      pending.push_back({What::call, Op::constant, 0, text});
      return true;
    }
    if (const NumberName* number = numberName(text)) {
      emitConstant(FormulaValue::ofNumber(number->value));
      return false;
    }
    const std::size_t dot = text.find('.');
    if (const auto base = dot != std::string_view::npos ? names_.find(text.substr(0, dot)) : std::nullopt;
        base && base->of == Name::Of::variable) {
      emitVariable(derivedVariable(base->index, text.substr(dot + 1)));
      return false;
    }
    throw SyntaxError{"the name '" + std::string(text) + "' is unknown"};
  }

  void constant(const FormulaName& declared) {
    FormulaValue value;
    if (!parseFormulaNumber(declared.text, source_.kind, value))
      throw SyntaxError{"the constant '" + std::string(declared.name) + "' is not a number of this formula's kind: '" +
                        std::string(declared.text) + "'"};
    emitConstant(value);
  }

  const NumberName* numberName(std::string_view text) const {
    if (source_.kind == FormulaKind::floating) {
      for (const NumberName& known : kNumberNames) {
        if (sameIgnoringCase(known.name, text))
          return &known;
      }
    }
    return nullptr;
  }

  void call(const Pending& pending) {
    bool known = false;
    for (const Function& function : kFunctions) {
      if (!sameIgnoringCase(function.name, pending.function) ||
          (source_.kind == FormulaKind::integer && !function.inIntegerFormulas))
        continue;
      known = true;
      if (function.arguments != pending.arguments)
        continue;
      emitOperation(function.op);
      return;
    }
    if (const NumberName* number = numberName(pending.function)) {
      known = true;
      if (pending.arguments == 0) {
        emitConstant(FormulaValue::ofNumber(number->value));
        return;
      }
    }
    const std::string quoted = "'" + std::string(pending.function) + "'";
    throw SyntaxError{known ? quoted + " has the wrong number of arguments" : "the function " + quoted + " is unknown"};
  }

  std::uint32_t derivedVariable(std::uint32_t base, std::string_view suffix) {
    auto& derived = program_->derived_;
    auto found = std::ranges::find_if(
        derived, [&](const DerivedVariable& known) { return known.base == base && known.suffix == suffix; });
    if (found == derived.end()) {
      found = derived.insert(derived.end(), {base, std::string(suffix)});
      placeOf_.push_back(kNoPlace);
    }
    return static_cast<std::uint32_t>(source_.variables.size() + static_cast<std::size_t>(found - derived.begin()));
  }

  void emitVariable(std::uint32_t index) {
    std::uint32_t& place = placeOf_[index];
    auto& used = program_->usedVariables_;
    if (place == kNoPlace) {
      if (used.size() >= kMaxFormulaFrame)
        throw SyntaxError{"too many variables"};
      place = static_cast<std::uint32_t>(used.size());
      used.push_back(index);
    }
    emit(Op::variable, place, 0);
  }

  void emitConstant(const FormulaValue& value) {
    program_->constants_.push_back(value);
    emit(Op::constant, static_cast<std::uint32_t>(program_->constants_.size() - 1), 0);
  }

  void emitOperation(Op op) { emit(op, 0, operandsOf(op)); }

  static std::size_t operandsOf(Op op) {
    if (op == Op::select)
      return 3;
    const bool binary = (op >= Op::power && op <= Op::logicOr) || op == Op::roundToDigits;
    return binary ? 2 : 1;
  }

  void emit(Op op, std::uint32_t argument, std::size_t operands) {
    if (program_->instructions_.size() >= kMaxFormulaInstructions)
      throw SyntaxError{"too long"};
    program_->instructions_.push_back({op, argument});
    depth_ = depth_ - operands + 1;
    deepest_ = std::max(deepest_, depth_);
  }

  static SyntaxError unexpected(const FormulaToken& token) { return {"unexpected '" + std::string(token.text) + "'"}; }

  const FormulaSource& source_;
  NameTable names_;
  std::shared_ptr<FormulaProgram> program_{new FormulaProgram};
  std::vector<std::uint32_t> placeOf_;
  std::size_t depth_ = 0;
  std::size_t deepest_ = 0;
  int expressionDepth_ = 0;
  std::size_t charactersLeft_ = kMaxFormulaCharacters;
};

std::shared_ptr<const FormulaProgram> FormulaProgram::compile(const FormulaSource& source, std::string& error) {
  try {
    return FormulaCompiler(source).compile();
  } catch (const SyntaxError& wrong) {
    error = wrong.text;
    return nullptr;
  }
}

}  // namespace GenApiEngine
