// Swiss knives and converters over other nodes.
#include "test_map.h"

using namespace GenApi;

namespace {

const std::string kOthers =
    "<Integer Name=\"I\"><Value>5</Value><Min>2</Min><Max>20</Max><Inc>3</Inc></Integer>"
    "<Float Name=\"F\"><Value>2.5</Value><Min>-1</Min><Max>10</Max></Float>"
    "<Boolean Name=\"B\"><Value>true</Value></Boolean>"
    "<Enumeration Name=\"E\"><EnumEntry Name=\"Low\"><Value>1</Value></EnumEntry>"
    "<EnumEntry Name=\"High\"><Value>2</Value><NumericValue>7</NumericValue></EnumEntry><Value>2</Value></Enumeration>";

std::string knife(const char* kind, const std::string& inside) {
  return kOthers + "<" + kind + " Name=\"K\">" + inside + "</" + kind + ">";
}

}  // namespace

TEST(Knives, ReadOtherNodes) {
  struct Case {
    const char* inside;
    double whole, fraction;  // as IntSwissKnife and as SwissKnife
  };
  const std::vector<Case> cases{
      {"<pVariable Name=\"X\">I</pVariable><Formula>X/2</Formula>", 2, 2.5},
      {"<pVariable Name=\"X\">F</pVariable><Formula>X</Formula>", 3, 2.5},
      {"<pVariable Name=\"X\">B</pVariable><Formula>X+X</Formula>", 2, 2},
      {"<pVariable Name=\"X\">E</pVariable><Formula>X</Formula>", 7, 7},
      {"<pVariable Name=\"X.Min\">I</pVariable><Formula>X.Min</Formula>", 2, 2},
      {"<pVariable Name=\"X.Max\">I</pVariable><pVariable Name=\"X.Inc\">I</pVariable><Formula>X.Max*X.Inc</Formula>",
       60, 60},
      {"<pVariable Name=\"X.Entry.Low\">E</pVariable><Formula>X.Entry.Low</Formula>", 1, 1},
      {"<pVariable Name=\"X.Enum.High\">E</pVariable><Formula>X.Enum.High</Formula>", 2, 2},
      {"<pVariable Name=\"X\">I</pVariable><Formula>X.Max</Formula>", 20, 20},
      {"<pVariable Name=\"X\">I</pVariable><Constant Name=\"C\">4</Constant><Expression Name=\"D\">X*C</Expression>"
       "<Formula>D+1</Formula>",
       21, 21},
      {"<pVariable Name=\"X\">I</pVariable><Formula>(X <!-- five --> &gt; 4) ? 1 : 0</Formula>", 1, 1},
      {"<Formula><![CDATA[ 3 < 4 && 1 ]]></Formula>", 1, 1},
  };
  for (const auto& [inside, whole, fraction] : cases) {
    SCOPED_TRACE(inside);
    TestMap integer(knife("IntSwissKnife", inside));
    EXPECT_EQ(static_cast<double>(integer.integer("K").GetValue()), whole);
    EXPECT_EQ(integer.mode("K"), RO);
    TestMap number(knife("SwissKnife", inside));
    EXPECT_EQ(number.number("K").GetValue(), fraction);
  }
}

TEST(Knives, FailAloneAndCannotBeWritten) {
  const std::vector<std::pair<const char*, const char*>> cases{
      {"<Formula>1/0</Formula>", "division by zero"},     {"<Formula>(1</Formula>", "is wrong"},
      {"<Formula>NOBODY</Formula>", "is wrong"},          {"<Formula></Formula>", "is wrong"},
      {"<Formula>1?2:1/0</Formula>", "division by zero"},
  };
  for (const auto& [inside, message] : cases) {
    SCOPED_TRACE(inside);
    TestMap map(knife("IntSwissKnife", inside));
    expectThrow<GenICam::RuntimeException>([&] { map.integer("K").GetValue(); }, message);
    EXPECT_EQ(map.integer("I").GetValue(), 5);
    GenICam::gcstring_vector errors;
    const bool wrong = std::string(message) == "is wrong";
    EXPECT_EQ(map->ParseSwissKnifes(&errors), !wrong);
    EXPECT_EQ(errors.size(), wrong ? 1U : 0U);
  }
  TestMap map(knife("IntSwissKnife", "<Formula>1</Formula>") +
              "<SwissKnife Name=\"S\"><Formula>1</Formula></SwissKnife>");
  expectThrow<GenICam::AccessException>([&] { map.integer("K").SetValue(1, false); }, "IntSwissKnife is read only.");
  expectThrow<GenICam::LogicalErrorException>([&] { map.number("S").SetValue(1, false); },
                                              "SwissKnife : S SetValue failed. SwissKnife is read only");
  EXPECT_THROW(map.integer("K").SetValue(1), GenICam::AccessException);
}

TEST(Converters, ConvertBothWays) {
  TestMap map(kOthers +
              "<Converter Name=\"C\"><pVariable Name=\"G\">F</pVariable><FormulaTo>FROM*10/G</FormulaTo>"
              "<FormulaFrom>TO*G/10</FormulaFrom><pValue>I</pValue><Unit>dB</Unit></Converter>"
              "<IntConverter Name=\"IC\"><FormulaTo>FROM+1</FormulaTo><FormulaFrom>TO-1</FormulaFrom><pValue>I</pValue>"
              "<Slope>Increasing</Slope></IntConverter>");
  EXPECT_EQ(map.number("C").GetValue(), 1.25);
  map.number("C").SetValue(2.1);
  EXPECT_EQ(map.integer("I").GetValue(), 8) << "8.4 goes to the nearest that the increment allows";
  EXPECT_STREQ(map.number("C").GetUnit(), "dB");
  EXPECT_EQ(map.integer("IC").GetValue(), 7);
  map.integer("IC").SetValue(10);
  EXPECT_EQ(map.integer("I").GetValue(), 11);
  EXPECT_THROW(map.integer("IC").SetValue(100), GenICam::OutOfRangeException);
}

TEST(Converters, LimitsFollowTheSlope) {
  struct Case {
    const char* formula;
    const char* slope;
    double min, max;
  };
  // I reaches from 2 to 20.
  const std::vector<Case> cases{
      {"TO*2", "<Slope>Increasing</Slope>", 4, 40},    {"100-TO", "<Slope>Decreasing</Slope>", 80, 98},
      {"100-TO", "<Slope>Automatic</Slope>", 80, 98},  {"TO*2", "<Slope>Automatic</Slope>", 4, 40},
      {"100-TO", "<Slope>Increasing</Slope>", 98, 80},
  };
  for (const auto& [formula, slope, min, max] : cases) {
    SCOPED_TRACE(std::string(formula) + slope);
    const std::string inside =
        "<FormulaTo>FROM</FormulaTo><FormulaFrom>" + std::string(formula) + "</FormulaFrom><pValue>I</pValue>" + slope;
    TestMap number(knife("Converter", inside));
    EXPECT_EQ(number.number("K").GetMin(), min);
    EXPECT_EQ(number.number("K").GetMax(), max);
    TestMap integer(knife("IntConverter", inside));
    EXPECT_EQ(static_cast<double>(integer.integer("K").GetMin()), min);
    EXPECT_EQ(static_cast<double>(integer.integer("K").GetMax()), max);
  }
  const std::string plain = "<FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>I</pValue>";
  TestMap integer(knife("IntConverter", plain));
  EXPECT_EQ(integer.integer("K").GetMin(), 0);
  EXPECT_EQ(integer.integer("K").GetMax(), 0) << "an integer converter has to state its slope";
  TestMap number(knife("Converter", plain));
  EXPECT_EQ(number.number("K").GetMax(), 20);
  TestMap unlimited(kOthers +
                    "<Float Name=\"U\"><Value>1</Value></Float><Converter Name=\"K\"><FormulaTo>FROM/2</FormulaTo>"
                    "<FormulaFrom>TO*2</FormulaFrom><pValue>U</pValue><Slope>Increasing</Slope></Converter>");
  EXPECT_EQ(unlimited.number("K").GetMax(), std::numeric_limits<double>::max());
  TestMap pole(
      reg("IntReg", "Period", at(0), {}, "1") +
      "<Converter Name=\"K\"><FormulaTo>1/FROM</FormulaTo><FormulaFrom>1/TO</FormulaFrom><pValue>Period</pValue>"
      "<Slope>Decreasing</Slope></Converter><Float Name=\"Rate\"><pValue>K</pValue><Max>1</Max></Float>");
  EXPECT_EQ(pole.number("Rate").GetMin(), 1.0 / 255);
  EXPECT_EQ(pole.number("K").GetMax(), std::numeric_limits<double>::max()) << "no limit where the formula has no value";
  pole.number("Rate").SetValue(0.1);
  EXPECT_EQ(pole.port.bytes[0], 10);
}

TEST(Converters, IncrementOfALinearOne) {
  const std::string inside = "<FormulaTo>FROM/2</FormulaTo><FormulaFrom>TO*2</FormulaFrom><pValue>I</pValue>";
  TestMap linear(knife("Converter", inside + "<IsLinear>Yes</IsLinear>"));
  EXPECT_EQ(linear.number("K").GetInc(), 6);
  TestMap other(knife("Converter", inside));
  EXPECT_FALSE(other.number("K").HasInc());
}
