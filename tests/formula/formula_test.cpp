// What formulas mean: precedence, the two kinds of numbers, functions, faults, and texts that are no formulas.
#include "formula/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace GenApiEngine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

constexpr std::array<std::string_view, 7> kVariables = {"A", "B", "Z", "HUGE", "HALF", "SEL.Entry.Mono8", "GAIN"};
constexpr std::array<FormulaName, 6> kConstants = {
    {{"TEN", " 10 "}, {"MASK", "0xFF"}, {"TENTH", "0.1"}, {"FOUR", "4.0"}, {"WORD", "ten"}, {"E", "16"}}};
constexpr std::array<FormulaName, 4> kExpressions = {
    {{"SUM", "A + B"}, {"DOUBLE", "SUM * 2"}, {"LOOP", "LOOP + 1"}, {"NOTHING", " "}}};

FormulaValue valueOf(std::uint32_t index) {
  const std::array<FormulaValue, kVariables.size()> values = {
      FormulaValue::ofInteger(7),    FormulaValue::ofInteger(-3), FormulaValue::ofInteger(0),
      FormulaValue::ofInteger(kMax), FormulaValue::ofNumber(0.5), FormulaValue::ofInteger(8),
      FormulaValue::ofInteger(5)};
  return index < values.size() ? values[index] : FormulaValue::ofInteger(1000 + index);
}

FormulaSource source(FormulaKind kind, std::string_view text) {
  return {kind, text, kVariables, kConstants, kExpressions};
}

struct Outcome {
  FormulaFault fault = FormulaFault::none;
  FormulaValue value;
  std::string error;
};

Outcome evaluate(FormulaKind kind, std::string_view text) {
  Outcome outcome;
  if (const auto program = FormulaProgram::compile(source(kind, text), outcome.error))
    outcome.fault = program->evaluate(valueOf, outcome.value);
  return outcome;
}

struct IntegerCase {
  const char* text;
  std::int64_t expected;
};

TEST(IntegerFormula, CalculatesWithSixtyFourBits) {
  const std::vector<IntegerCase> cases = {
      // numbers
      {"42", 42},
      {" 0x1F ", 31},
      {"0XfF", 255},
      {"010", 10},
      {"0xFFFFFFFFFFFFFFFF", -1},
      {"-9223372036854775808", kMin},
      {"4.0", 4},
      {"1e3", 1000},
      // names
      {"A", 7},
      {"a", 7},
      {"TEN + MASK", 265},
      {"FOUR", 4},
      {"E", 16},
      {"DOUBLE", 8},
      {"SEL.Entry.Mono8", 8},
      // precedence, from tight to loose
      {"-2**2", 4},
      {"2**3**2", 64},
      {"2**-1", 0},
      {"~0**2", 1},
      {"2*3**2", 18},
      {"1+2*3", 7},
      {"(1+2)*3", 9},
      {"10-3-2", 5},
      {"100/10/5", 2},
      {"1<<2+1", 8},
      {"1+1<<2 > 7", 1},
      {"1<2=1", 1},
      {"6&3=3", 0},
      {"4|1&0", 4},
      {"6^3&1", 7},
      {"1|6^3", 5},
      {"1||0&&0", 1},
      {"0||0?1:2", 2},
      {"1?2:0?3:4", 2},
      {"0?2:0?3:4", 4},
      {"0?2:1?3:4", 3},
      {"1?(0?1:2):3", 2},
      {"A > 5 ? A : B", 7},
      {"- -3", 3},
      {"+-+3", -3},
      {"~~5", 5},
      {"A--3", 10},
      // division cuts towards zero
      {"7/2", 3},
      {"-7/2", -3},
      {"7/-2", -3},
      {"7%3", 1},
      {"-7%3", -1},
      {"7%-3", 1},
      {"A/B", -2},
      {"0x8000000000000000 / -1", kMin},
      {"0x8000000000000000 % -1", 0},
      // overflow wraps
      {"HUGE + 1", kMin},
      {"HUGE * 2", -2},
      {"-(HUGE + 1)", kMin},
      {"2**63", kMin},
      {"2**64", 0},
      {"3**-1", 0},
      {"(-1)**-3", -1},
      {"0**0", 1},
      // shifts look at six bits of the count and keep the sign
      {"1<<63", kMin},
      {"1<<64", 1},
      {"1<<-1", kMin},
      {"-8>>1", -4},
      {"-1>>63", -1},
      // comparison and logic give one or zero
      {"3<>3", 0},
      {"3<>4", 1},
      {"3<=3", 1},
      {"3>=4", 0},
      {"5&&2", 1},
      {"5&2", 0},
      {"Z||B", 1},
      {"A<-1", 0},
      // the only functions that integer formulas know
      {"SGN(-5)+SGN(0)+SGN(9)", 0},
      {"neg(A)", -7},
      // a variable of another kind is rounded half away from zero
      {"HALF", 1},
      // blanks and comments
      {"\t1\r\n+ <!-- one & more --> 2", 3},
      {"1<!---->+<!-- a -- b -->1", 2},
  };
  for (const IntegerCase& test : cases) {
    const Outcome outcome = evaluate(FormulaKind::integer, test.text);
    EXPECT_EQ(outcome.error, "") << test.text;
    EXPECT_EQ(outcome.fault, FormulaFault::none) << test.text;
    EXPECT_TRUE(outcome.value.isInteger) << test.text;
    EXPECT_EQ(outcome.value.integer, test.expected) << test.text;
  }
}

struct FloatCase {
  const char* text;
  double expected;
};

TEST(FloatingFormula, CalculatesWithDoubles) {
  const std::vector<FloatCase> cases = {
      {"10.2+10+0x10+010", 46.2},
      {"1.5e-3", 0.0015},
      {"2.E1", 20},
      {"18446744073709551616", 18446744073709551616.0},
      {"7/2", 3.5},
      {"1/3*3", 1},
      {"-2.5**2", 6.25},
      {"2**0.5", std::sqrt(2.0)},
      {"2**-1", 0.5},
      {"HALF*A", 3.5},
      {"TENTH", 0.1},
      {"-2.2", -2.2},
      {"+2.2", 2.2},
      // bit operations cut towards zero, and see all bits of integers
      {"6.9&3", 2},
      {"~-1.5", 0},
      {"1<<4.7", 16},
      {"HUGE&1", 1},
      {"(HUGE-1)&3", 2},
      {"(HUGE>>2)*2+1&7", 7},
      {"HUGE=HUGE-1", 0},
      {"HUGE+1=HUGE", 1},
      {"HUGE*4/4", 9223372036854775807.0},
      {"(2.5<<1)|1", 5},
      // remainders
      {"7%3", 1},
      {"-7%3", -1},
      {"7.5%2", 1.5},
      {"-7.5%2", -1.5},
      // comparison and logic
      {"0.5&&0.1", 1},
      {"HALF||0", 1},
      {"0.1+0.2=0.3", 0},
      {"0.5<0.75", 1},
      {"HALF?2.5:1", 2.5},
      {"1?0.1:0?2:3", 0.1},
      // functions
      {"PI", 3.141592653589793},
      {"pi()", 3.141592653589793},
      {"E", 16},
      {"EXP(1)", 2.718281828459045},
      {"E()*0", 0},
      {"ABS(-2.5)+abs(B)", 5.5},
      {"SGN(-0.1)", -1},
      {"NEG(2.5)", -2.5},
      {"SIN(PI/2)+COS(0)", 2},
      {"TAN(0)+ATAN(0)+ASIN(0)+ACOS(1)", 0},
      {"ACOS(-1)", 3.141592653589793},
      {"LN(EXP(2))", 2},
      {"LG(1000)", 3},
      {"SQRT(6.25)", 2.5},
      {"TRUNC(-2.7)", -2},
      {"FLOOR(-2.2)", -3},
      {"CEIL(-2.7)", -2},
      {"FRAC(2.75)", 0.75},
      {"FRAC(-2.75)", -0.75},
      {"ROUND(2.5)", 3},
      {"ROUND(-2.5)", -3},
      {"ROUND(3.14159,2)", 3.14},
      {"ROUND(1250,-2)", 1300},
      {"ROUND(0.1,400)", 0.1},
      {"ROUND(5,-400)", 0},
      {"ROUND(SQRT((1+2)*3),0)", 3},
  };
  for (const FloatCase& test : cases) {
    const Outcome outcome = evaluate(FormulaKind::floating, test.text);
    // E is a constant of this table, so its call is that of no function.
    if (std::string_view(test.text) == "E()*0") {
      EXPECT_THAT(outcome.error, HasSubstr("unexpected '('"));
      continue;
    }
    EXPECT_EQ(outcome.error, "") << test.text;
    EXPECT_EQ(outcome.fault, FormulaFault::none) << test.text;
    EXPECT_FALSE(outcome.value.isInteger) << test.text;
    EXPECT_NEAR(outcome.value.number, test.expected, 1e-12 * (1 + std::fabs(test.expected))) << test.text;
  }
}

TEST(Formula, ReportsFaultsOfTheCalculation) {
  struct Case {
    FormulaKind kind;
    const char* text;
    FormulaFault expected;
  };
  const std::vector<Case> cases = {
      {FormulaKind::integer, "1/Z", FormulaFault::divisionByZero},
      {FormulaKind::integer, "1%0", FormulaFault::divisionByZero},
      {FormulaKind::integer, "0**-1", FormulaFault::divisionByZero},
      // Nothing is left out of the calculation.
      {FormulaKind::integer, "1?2:1/0", FormulaFault::divisionByZero},
      {FormulaKind::integer, "0&&1/0", FormulaFault::divisionByZero},
      {FormulaKind::integer, "1||1/0", FormulaFault::divisionByZero},
      {FormulaKind::floating, "1/Z", FormulaFault::divisionByZero},
      {FormulaKind::floating, "1.5%0", FormulaFault::divisionByZero},
      {FormulaKind::floating, "Z**-0.5", FormulaFault::divisionByZero},
      {FormulaKind::floating, "SQRT(-1)", FormulaFault::notANumber},
      {FormulaKind::floating, "ASIN(2)", FormulaFault::notANumber},
      {FormulaKind::floating, "(-8)**(1/3)", FormulaFault::notANumber},
      {FormulaKind::floating, "LN(0)", FormulaFault::outOfRange},
      {FormulaKind::floating, "EXP(1000)", FormulaFault::outOfRange},
      {FormulaKind::floating, "1e308*10", FormulaFault::outOfRange},
      {FormulaKind::floating, "1e300&1", FormulaFault::outOfRange},
      {FormulaKind::floating, "~1e19", FormulaFault::outOfRange},
  };
  for (const Case& test : cases) {
    const Outcome outcome = evaluate(test.kind, test.text);
    EXPECT_EQ(outcome.error, "") << test.text;
    EXPECT_EQ(outcome.fault, test.expected) << test.text;
  }
}

TEST(Formula, LetsValuesThatAreNotFinitePass) {
  const std::array<std::string_view, 1> names = {"X"};
  std::string error;
  const auto program = FormulaProgram::compile({FormulaKind::floating, "X*2+1", names, {}, {}}, error);
  ASSERT_TRUE(program) << error;
  for (const double value : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    FormulaValue result;
    EXPECT_EQ(program->evaluate(std::array{FormulaValue::ofNumber(value)}, result), FormulaFault::none);
    EXPECT_FALSE(std::isfinite(result.number));
  }
  const auto integer = FormulaProgram::compile({FormulaKind::integer, "X", names, {}, {}}, error);
  FormulaValue untouched = FormulaValue::ofInteger(5);
  EXPECT_EQ(integer->evaluate(std::array{FormulaValue::ofNumber(1e19)}, untouched), FormulaFault::outOfRange);
  EXPECT_EQ(untouched.integer, 5);
}

TEST(Formula, RefusesWhatIsNoFormula) {
  struct Case {
    const char* text;
    const char* error;
  };
  const std::vector<Case> cases = {
      {"", "empty"},
      {" \t ", "empty"},
      {"<!-- nothing -->", "empty"},
      {"/A", "unexpected '/'"},
      {"A/", "missing"},
      {"/", "unexpected '/'"},
      {"A==B", "unexpected '='"},
      {"A$B", "unexpected '$'"},
      {"A#B", "unexpected '#'"},
      {"!A", "unexpected '!'"},
      {"A!=B", "unexpected '!'"},
      {"A<!B", "unexpected '<!'"},
      {"A<!-- open", "unexpected '<!'"},
      {"A B", "unexpected 'B'"},
      {"1 2 3", "unexpected '2'"},
      {"(A+B", "')' is missing"},
      {"A+B)", "unexpected ')'"},
      {"()", "unexpected ')'"},
      {"0x", "unexpected '0'"},
      {"0xG", "unexpected '0x'"},
      {"12abc", "unexpected '12'"},
      {"1.2.3", "unexpected '1.2'"},
      {".5", "unexpected '.'"},
      {"0x10000000000000000", "unexpected '0x10000000000000000'"},
      {"1e999", "unexpected '1e999'"},
      {"\"abc\"", "unexpected '\"'"},
      {"'abc", "unexpected '''"},
      {"\\\\* aha *\\\\ 1", "unexpected '\\'"},
      {"A ? B", "'?' without ':'"},
      {"A : B", "':' without '?'"},
      {"A ? B : C : A", "unknown"},
      {"A ? B : A : A", "':' without '?'"},
      {"A ? B ? 1 : 2 : 3", "needs brackets"},
      {"A ? : B", "unexpected ':'"},
      {"(A ? B) : A", "unexpected ')'"},
      {"FOOBAR(A)", "function 'FOOBAR' is unknown"},
      {"SGN()", "number of arguments"},
      {"SGN(A,B)", "number of arguments"},
      {"ROUND(A,B,A)", "number of arguments"},
      {"PI(1)", "number of arguments"},
      {"SGN(A", "')' is missing"},
      {"SGN(A,)", "unexpected ')'"},
      {"SGN(,A)", "unexpected ','"},
      {"A,B", "unexpected ','"},
      {"(A,B)", "unexpected ','"},
      {"A(B)", "unexpected '('"},
      {"SIN", "name 'SIN' is unknown"},
      {"OTHER", "name 'OTHER' is unknown"},
      {"TEN.Max", "name 'TEN.Max' is unknown"},
      {"WORD", "constant 'WORD'"},
      {"LOOP", "circle"},
      {"NOTHING", "missing"},
  };
  for (const Case& test : cases) {
    const Outcome outcome = evaluate(FormulaKind::floating, test.text);
    if (std::string_view(test.text) == "NOTHING")
      EXPECT_THAT(outcome.error, HasSubstr("empty"));
    else
      EXPECT_THAT(outcome.error, HasSubstr(test.error)) << test.text;
  }
}

TEST(IntegerFormula, RefusesFractionsAndFunctionsOfDoubles) {
  for (const char* text :
       {"1.5", "TENTH", "1e-6", "ABS(A)", "SQRT(4)", "ROUND(A)", "PI", "PI()", "1e30", "99999999999999999999"})
    EXPECT_NE(evaluate(FormulaKind::integer, text).error, "") << text;
}

TEST(Formula, ReadsEachUsedVariableOnce) {
  std::string error;
  const auto program =
      FormulaProgram::compile(source(FormulaKind::integer, "B + A*B + GAIN.Max - A + GAIN.max + GAIN.Max"), error);
  ASSERT_TRUE(program) << error;
  const auto first = static_cast<std::uint32_t>(kVariables.size());
  EXPECT_THAT(program->usedVariables(), ElementsAre(1, 0, first, first + 1));
  ASSERT_EQ(program->derivedVariables().size(), 2U);
  EXPECT_EQ(program->derivedVariables()[0].base, 6U);
  EXPECT_EQ(program->derivedVariables()[0].suffix, "Max");

  std::vector<std::uint32_t> reads;
  FormulaValue result;
  program->evaluate(
      [&](std::uint32_t index) {
        reads.push_back(index);
        return valueOf(index);
      },
      result);
  EXPECT_THAT(reads, ElementsAre(1, 0, first, first + 1));
  EXPECT_EQ(result.integer, -3 + -21 + 1007 - 7 + 1008 + 1007);
}

TEST(Formula, PrefersTheExactSpellingOfAName) {
  std::vector<std::string> spellings = {"gain", "Gain", "GAIN"};
  // Few names are searched in order, many through a table; both must find the same.
  for (const std::size_t others : {0U, 100U}) {
    std::vector<std::string> all = spellings;
    for (std::size_t i = 0; i < others; ++i)
      all.push_back("OTHER" + std::to_string(i));
    const std::vector<std::string_view> names(all.begin(), all.end());
    const auto used = [&](std::string_view text) {
      std::string error;
      const auto program = FormulaProgram::compile({FormulaKind::integer, text, names, {}, {}}, error);
      return program ? std::optional(program->usedVariables()[0]) : std::nullopt;
    };
    EXPECT_EQ(used("gain"), 0U);
    EXPECT_EQ(used("Gain"), 1U);
    EXPECT_EQ(used("GAIN"), 2U);
    EXPECT_EQ(used("gAIN"), 0U);
    EXPECT_EQ(used("GAINS"), std::nullopt);
  }
}

std::string repeated(std::string_view text, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i)
    result += text;
  return result;
}

TEST(Formula, EndsWhatGrowsWithoutBound) {
  // Deep nesting that needs no stack is calculated, ...
  EXPECT_EQ(evaluate(FormulaKind::integer, repeated("(", 100000) + "1" + repeated(")", 100000)).value.integer, 1);
  EXPECT_EQ(evaluate(FormulaKind::integer, repeated("~", 20000) + "1").value.integer, 1);
  EXPECT_EQ(evaluate(FormulaKind::integer, "1" + repeated("+1", 10000)).value.integer, 10001);
  std::string chain;
  for (int i = 0; i < 300; ++i)
    chain += "A=" + std::to_string(1000 - i) + "?" + std::to_string(i) + ":";
  EXPECT_EQ(evaluate(FormulaKind::integer, chain + "A=7?12:13").value.integer, 12);
  // ... what needs more than the frame or the program may hold is refused.
  EXPECT_EQ(evaluate(FormulaKind::integer, repeated("1+(", 5000) + "1" + repeated(")", 5000)).error,
            "too deeply nested");
  EXPECT_EQ(evaluate(FormulaKind::integer, "1" + repeated("+1", 100000)).error, "too long");
  EXPECT_EQ(evaluate(FormulaKind::integer, repeated(" ", std::size_t{5} << 20) + "1").error, "too long");

  std::vector<std::string> texts = {"A+A"};
  std::vector<std::string> spellings = {"X0"};
  for (int i = 1; i < 20; ++i) {
    texts.push_back(spellings.back() + "+" + spellings.back());
    spellings.push_back("X" + std::to_string(i));
  }
  std::vector<FormulaName> expressions;
  for (std::size_t i = 0; i < texts.size(); ++i)
    expressions.push_back({spellings[i], texts[i]});
  std::string error;
  EXPECT_FALSE(FormulaProgram::compile({FormulaKind::integer, "X19", kVariables, {}, expressions}, error));
  EXPECT_EQ(error, "too long");
}

}  // namespace
}  // namespace GenApiEngine
