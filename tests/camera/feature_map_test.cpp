// Formulas, and registers made from declared features.
#include "camera/feature_map.h"

#include <gtest/gtest.h>

#include <array>
#include <locale>
#include <stdexcept>
#include <string>

#include "camera/formula.h"

namespace vcam {
namespace {

TEST(Formulas, EvaluateAsKnivesDo) {
  const Formula::Lookup lookup = [](const std::string& name) { return name == "A" ? 7.0 : name == "B" ? 2.0 : 0.5; };
  struct Case {
    const char* text;
    std::int64_t integer;
    double floating;
  };
  for (const Case& c :
       {Case{"A / B", 3, 3.5}, Case{"A % B", 1, 1}, Case{"-A + B * 3", -1, -1}, Case{"(A + B) * 2", 18, 18},
        Case{"A > B && B <> 2", 0, 0}, Case{"A < B || B = 2", 1, 1}, Case{"A >= 7 ? B : 100", 2, 2},
        Case{"A <= 6 ? B : A = 7 ? 40 : 50", 40, 40}, Case{"10 - 3 - 2", 5, 5}, Case{"A / 0", 0, 0}}) {
    EXPECT_EQ(Formula(c.text).integer(lookup), c.integer) << c.text;
    EXPECT_DOUBLE_EQ(Formula(c.text).floating(lookup), c.floating) << c.text;
  }
  for (const char* const text : {"A +", "(A", "A B", "A ? B", ")"}) {
    EXPECT_THROW(Formula{text}, std::invalid_argument) << text;
  }
  EXPECT_EQ(Formula("B * A + B").names(), (std::vector<std::string>{"B", "A"}));
}

class FeatureMapTest : public testing::TestWithParam<bool> {
 protected:
  FeatureMapTest() : map_(GetParam()) {
    map_.category("Main", "Everything");
    map_.integer("Limit", "Main", "").value(100);
    map_.integer("Locked", "Main", "").max("1");
    map_.integer("Value", "Main", "").min("-10").max("Limit - 4").inc("2").isSigned().lockedIf("Locked").stored();
    map_.floating("Level", "Main", "").min("0").max("Limit / 8").stored();
    map_.floating("Stepped", "Main", "").min("0").max("100").scaled(0.5);
    map_.enumeration("Outer", "Main", "").entry("X", 0).entry("Y", 1).entry("Z", 2, "", "Limit > 50");
    map_.integer("Inner", "Main", "").min("0").max("3");
    map_.integer("Cell", "Main", "").selectedBy({"Outer", "Inner"}).length(8).stored();
    map_.string("Name", "Main", "", 8).value("abc");
    map_.integer("Fixed", "Main", "").at(0xA000).readOnly().value(0x01020304);
    map_.integer("Refusing", "Main", "").value(5).onWrite([](std::size_t) { return GC_ERROR{GC_ERR_BUSY}; });
    map_.seal();
  }

  GC_ERROR write(const std::string& name, std::uint64_t value, std::size_t slot = 0) {
    const Feature& f = *map_.find(name);
    std::vector<std::byte> bytes(f.registerLength());
    map_.putInteger(bytes, value);
    return map_.write(f.address() + slot * bytes.size(), bytes);
  }

  FeatureMap map_;
};

INSTANTIATE_TEST_SUITE_P(ByteOrders, FeatureMapTest, testing::Bool());

TEST_P(FeatureMapTest, ChecksWhatIsWritten) {
  struct Case {
    const char* name;
    std::int64_t value;
    GC_ERROR result;
  };
  for (const Case& c :
       {Case{"Value", 96, GC_ERR_SUCCESS}, Case{"Value", 98, GC_ERR_INVALID_VALUE},
        Case{"Value", 95, GC_ERR_INVALID_VALUE}, Case{"Value", -10, GC_ERR_SUCCESS},
        Case{"Value", -12, GC_ERR_INVALID_VALUE}, Case{"Outer", 3, GC_ERR_INVALID_VALUE},
        Case{"Outer", 2, GC_ERR_SUCCESS}, Case{"Fixed", 1, GC_ERR_ACCESS_DENIED}, Case{"Refusing", 6, GC_ERR_BUSY},
        Case{"Limit", 20, GC_ERR_SUCCESS}, Case{"Outer", 2, GC_ERR_INVALID_VALUE},
        Case{"Value", 18, GC_ERR_INVALID_VALUE}, Case{"Value", 16, GC_ERR_SUCCESS}, Case{"Locked", 1, GC_ERR_SUCCESS},
        Case{"Value", 14, GC_ERR_ACCESS_DENIED}}) {
    EXPECT_EQ(write(c.name, static_cast<std::uint64_t>(c.value)), c.result) << c.name << " = " << c.value;
  }
  EXPECT_EQ(map_.find("Value")->integer(), 16);
  EXPECT_EQ(map_.find("Refusing")->integer(), 5);
  EXPECT_EQ(write("Level", std::bit_cast<std::uint64_t>(2.5)), GC_ERR_SUCCESS);
  for (const double bad :
       {-0.1, 2.6, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    EXPECT_EQ(write("Level", std::bit_cast<std::uint64_t>(bad)), GC_ERR_INVALID_VALUE) << bad;
  }
  EXPECT_EQ(write("Stepped", 201), GC_ERR_INVALID_VALUE);
  EXPECT_EQ(write("Stepped", 33), GC_ERR_SUCCESS);
  EXPECT_DOUBLE_EQ(map_.find("Stepped")->floating(), 16.5);
}

TEST_P(FeatureMapTest, MovesAnyLengthAtAnyAddressOfTheMap) {
  std::array<std::byte, 4> bytes{};
  ASSERT_EQ(map_.read(0xA000, bytes), GC_ERR_SUCCESS);
  EXPECT_EQ(bytes[0], GetParam() ? std::byte{1} : std::byte{4});
  ASSERT_EQ(map_.read(0xA001, std::span(bytes).first(2)), GC_ERR_SUCCESS);
  EXPECT_EQ(bytes[0], GetParam() ? std::byte{2} : std::byte{3});
  EXPECT_EQ(map_.read(0xA002, bytes), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(map_.read(0x9FFF, bytes), GC_ERR_INVALID_ADDRESS);
  EXPECT_EQ(map_.write(map_.endAddress(), bytes), GC_ERR_INVALID_ADDRESS);

  // A part of a number changes just that part.
  const std::byte byte{0x05};
  const Feature& cell = *map_.find("Cell");
  ASSERT_EQ(map_.write(cell.address() + 1, {&byte, 1}), GC_ERR_SUCCESS);
  EXPECT_EQ(cell.integer(0), GetParam() ? 0x05000000000000LL : 0x0500LL);
  // A text that is written from its start replaces the longer one.
  ASSERT_EQ(map_.write(map_.find("Name")->address(), std::as_bytes(std::span("z", 1))), GC_ERR_SUCCESS);
  EXPECT_EQ(map_.find("Name")->text(), "z");
}

TEST_P(FeatureMapTest, SelectorsOfTwoLevelsReachTheirOwnCells) {
  for (std::size_t slot = 0; slot < 12; ++slot) {
    ASSERT_EQ(write("Cell", 1000 + slot, slot), GC_ERR_SUCCESS);
  }
  ASSERT_EQ(write("Outer", 2), GC_ERR_SUCCESS);
  ASSERT_EQ(write("Inner", 3), GC_ERR_SUCCESS);
  const Feature& cell = *map_.find("Cell");
  EXPECT_EQ(map_.currentSlot(cell), 11U);
  EXPECT_EQ(cell.integer(map_.currentSlot(cell)), 1011);
}

TEST_P(FeatureMapTest, UserSetsKeepWhatIsStoredAndRefuseWhatIsNotLegal) {
  ASSERT_EQ(write("Value", 42), GC_ERR_SUCCESS);
  ASSERT_EQ(write("Cell", 7, 5), GC_ERR_SUCCESS);
  const std::string set = map_.saveUserSet();
  map_.loadDefaults();
  EXPECT_EQ(map_.find("Value")->integer(), 0);
  EXPECT_TRUE(map_.loadUserSet(set));
  EXPECT_EQ(map_.find("Value")->integer(), 42);
  EXPECT_EQ(map_.find("Cell")->integer(5), 7);
  for (const char* const line : {"Value[0]=999", "Value[7]=4", "Value[x]=4", "Value=4", "Limit[0]=4", "Nothing[0]=4",
                                 "]=[", "Value[0]=", "Level[0]=nan"}) {
    EXPECT_TRUE(map_.loadUserSet(std::string("UserSet\n") + line + "\n")) << line;
    EXPECT_EQ(map_.find("Value")->integer(), 42) << line;
    EXPECT_EQ(map_.find("Limit")->integer(), 100) << line;
  }
  EXPECT_FALSE(map_.loadUserSet("something else"));
  // The file is the same whatever the application has made its numbers look like.
  struct Grouped : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  ASSERT_EQ(write("Cell", 1234567, 5), GC_ERR_SUCCESS);
  ASSERT_EQ(write("Level", std::bit_cast<std::uint64_t>(2.5)), GC_ERR_SUCCESS);
  const std::string plain = map_.saveUserSet();
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Grouped));
  const std::string grouped = map_.saveUserSet();
  map_.loadDefaults();
  EXPECT_TRUE(map_.loadUserSet(plain));
  std::locale::global(before);
  EXPECT_EQ(grouped, plain);
  EXPECT_DOUBLE_EQ(map_.find("Level")->floating(), 2.5);
}

TEST(FeatureMapDeclaration, ContradictionsAreFoundWhenItIsSealed) {
  const auto sealing = [](auto&& declare) {
    FeatureMap map(false);
    declare(map);
    map.seal();
  };
  EXPECT_THROW(sealing([](FeatureMap& m) { m.integer("A", "C", "").max("B"); }), std::logic_error);
  EXPECT_THROW(sealing([](FeatureMap& m) { m.integer("A", "C", "").selectedBy({"B"}); }), std::logic_error);
  EXPECT_THROW(sealing([](FeatureMap& m) { m.integer("A", "C", "").dependsOn({"B"}); }), std::logic_error);
  EXPECT_THROW(sealing([](FeatureMap& m) {
                 m.integer("A", "C", "");
                 m.boolean("A", "C", "");
               }),
               std::logic_error);
}

}  // namespace
}  // namespace vcam
