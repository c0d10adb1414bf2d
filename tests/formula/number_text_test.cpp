// Numbers as text: what is read from a text, and how values are shown.
#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace GenApiEngine {
namespace {

using namespace GENAPI_NAMESPACE;

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

TEST(NumberText, ReadsTheIntegerATextBeginsWith) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> prefix;
    std::optional<std::int64_t> whole;
  };
  const std::vector<Case> cases = {
      {"8", 8, 8},
      {" \t-3 ", -3, -3},
      {"+5", 5, 5},
      {"018", 18, 18},
      {"0x1f", 31, 31},
      {"0XFF", 255, 255},
      {"-0x10", -16, -16},
      {"0xFFFFFFFFFFFFFFFF", -1, -1},
      {"9223372036854775807", kMax, kMax},
      {"-9223372036854775808", kMin, kMin},
      {"8abc", 8, {}},
      {"8.0", 8, {}},
      {"1e1", 1, {}},
      {"3,5", 3, {}},
      {"0x", 0, {}},
      {"0xg", 0, {}},
      {"9223372036854775808", {}, {}},
      {"-9223372036854775809", {}, {}},
      {"0x1FFFFFFFFFFFFFFFF", {}, {}},
      {"", {}, {}},
      {" ", {}, {}},
      {"-", {}, {}},
      {"--5", {}, {}},
      {"abc", {}, {}},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(integerPrefix(test.text), test.prefix) << test.text;
    EXPECT_EQ(wholeInteger(test.text), test.whole) << test.text;
  }
}

TEST(NumberText, ReadsTheFloatATextBeginsWith) {
  struct Case {
    const char* text;
    std::optional<double> prefix;
    bool whole;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<Case> cases = {
      {"1.5", 1.5, true},    {" -2e3 ", -2000, true},  {"+.5", 0.5, true},         {"5.", 5, true},
      {"0x10", 16, true},    {"INF", kInfinity, true}, {"-inf", -kInfinity, true}, {"3,5", 3, false},
      {"1.5mm", 1.5, false}, {"1e-999", 0, true},      {"1e999", {}, false},       {"+-1", {}, false},
      {"", {}, false},       {"e5", {}, false},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(floatPrefix(test.text), test.prefix) << test.text;
    EXPECT_EQ(wholeFloat(test.text).has_value(), test.whole) << test.text;
  }
  EXPECT_TRUE(std::isnan(wholeFloat("NaN").value_or(0)));
}

TEST(NumberText, ReadsTheNumbersOfADescription) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> integer;
    std::optional<double> number;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const std::vector<Case> cases = {
      {" 7\n", 7, 7.0},
      {"-0x10", -16, -16.0},
      {"18446744073709551615", -1, 18446744073709551615.0},
      {"0xFFFFFFFFFFFFFFFF", -1, -1.0},
      {"99999999999999999999", kMax, 1e20},
      {"-1e999", kMin, -kInfinity},
      {"1.5", 2, 1.5},
      {"-2.5e0", -3, -2.5},
      {"1e-999", 0, 0.0},
      {"0x1FFFFFFFFFFFFFFFF", {}, {}},
      {"0x1.8", {}, {}},
      {"8 abc", {}, {}},
      {"+-1", {}, {}},
      {"0x", {}, {}},
      {"", {}, {}},
  };
  for (const Case& test : cases) {
    EXPECT_EQ(describedInteger(test.text), test.integer) << test.text;
    EXPECT_EQ(describedFloat(test.text), test.number) << test.text;
  }
  EXPECT_EQ(describedInteger("NaN"), std::nullopt);
}

TEST(NumberText, ShowsIntegersAsTheirRepresentation) {
  EXPECT_EQ(integerText(kMin, PureNumber), "-9223372036854775808");
  EXPECT_EQ(integerText(255, HexNumber), "0xff");
  EXPECT_EQ(integerText(-1, HexNumber), "0xffffffffffffffff");
  EXPECT_EQ(integerText(0xC0A80001, IPV4Address), "192.168.0.1");
  EXPECT_EQ(integerText(0x0011223344AB, MACAddress), "00:11:22:33:44:ab");

  EXPECT_EQ(integerFromText("192.168.0.1", IPV4Address), 0xC0A80001);
  EXPECT_EQ(integerFromText("3232235521", IPV4Address), 0xC0A80001);
  EXPECT_EQ(integerFromText("0xC0A80001", IPV4Address), 0xC0A80001);
  EXPECT_EQ(integerFromText("00:11:22:33:44:AB", MACAddress), 0x0011223344AB);
  EXPECT_EQ(integerFromText("0-1-2-3-4-5", MACAddress), 0x000102030405);
  for (const char* text : {"192.168.0", "192.168.0.256", "192.168.0.1.2", "192.168..1", "a.b.c.d"})
    EXPECT_EQ(integerFromText(text, IPV4Address), std::nullopt) << text;
  EXPECT_EQ(integerFromText("00:11:22:33:44", MACAddress), std::nullopt);
  // Only addresses are read as addresses.
  EXPECT_EQ(integerFromText("192.168.0.1", PureNumber), 192);
}

TEST(NumberText, ShowsFloatsAsAStreamDoes) {
  EXPECT_EQ(floatText(0.1, fnAutomatic, 6), "0.1");
  EXPECT_EQ(floatText(1234567.0, fnAutomatic, 6), "1.23457e+06");
  EXPECT_EQ(floatText(3.14159265, fnAutomatic, -1), "3.14159");
  EXPECT_EQ(floatText(2.0, fnFixed, 3), "2.000");
  EXPECT_EQ(floatText(1234.5, fnScientific, 2), "1.23e+03");
  EXPECT_EQ(floatText(1e308, fnFixed, 1000).size(), 309U + 1 + 64);
}

TEST(NumberText, ShowsNoFloatOutsideItsLimits) {
  struct Case {
    double value;
    double minimum;
    double maximum;
    const char* expected;
  };
  constexpr double kHuge = std::numeric_limits<double>::max();
  const std::vector<Case> cases = {
      {1234.56789, -kHuge, 1234.56789, "1234.56"}, {1234.56789, -kHuge, kHuge, "1234.57"},   {0.001, 5, 10, "0.0015"},
      {0.12345649, 0.12345649, 1, "0.123457"},     {1234567.8, 0, 1234567.8, "1.23456e+06"}, {5, 5, 5, "5"},
  };
  for (const Case& test : cases)
    EXPECT_EQ(floatTextWithin(test.value, fnAutomatic, 6, test.minimum, test.maximum), test.expected) << test.value;
}

}  // namespace
}  // namespace GenApiEngine
