// Access modes: what a node is by itself, what guards and needed nodes make of it, and how long that is remembered.
#include "test_map.h"

using namespace GenApi;

namespace {

std::string constant(const char* name, int value) {
  return "<Integer Name=\"" + std::string(name) + "\"><Value>" + std::to_string(value) + "</Value></Integer>";
}
const std::string kModes = reg("IntReg", "Ro", at(0), {}, "4", "RO") + reg("IntReg", "Wo", at(4), {}, "4", "WO") +
                           reg("IntReg", "Rw", at(8)) + constant("Zero", 0) + constant("One", 1) +
                           "<Integer Name=\"Ni\"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>"
                           "<Integer Name=\"Na\"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>"
                           "<Enumeration Name=\"Mode\"><EnumEntry Name=\"On\"><Value>1</Value>"
                           "<NumericValue>0.2</NumericValue></EnumEntry><Value>1</Value></Enumeration>";

}  // namespace

TEST(Access, GuardsAndSources) {
  struct Case {
    const char* elements;
    EAccessMode mode;
  };
  // Each is what an Integer X holds.
  const std::vector<Case> cases{
      {"<Value>1</Value>", RW},
      {"<pValue>Ro</pValue>", RO},
      {"<pValue>Wo</pValue>", WO},
      {"<pValue>Ni</pValue>", NI},
      {"<pValue>Na</pValue>", NA},
      {"<pValue>Rw</pValue><pValueCopy>Ro</pValueCopy>", RO},
      {"<pIsImplemented>Zero</pIsImplemented><pValue>Rw</pValue>", NI},
      {"<pIsImplemented>One</pIsImplemented><pValue>Rw</pValue>", RW},
      {"<pIsAvailable>Zero</pIsAvailable><pValue>Rw</pValue>", NA},
      {"<pIsLocked>One</pIsLocked><pValue>Rw</pValue>", RO},
      {"<pIsLocked>One</pIsLocked><pValue>Wo</pValue>", NA},
      {"<pIsLocked>Mode</pIsLocked><pValue>Rw</pValue>", RO},  // by its entry's value, not by what that stands for
      {"<pIsLocked>Zero</pIsLocked><pValue>Wo</pValue>", WO},
      {"<ImposedAccessMode>WO</ImposedAccessMode><pValue>Ro</pValue>", NA},
      {"<ImposedAccessMode>RO</ImposedAccessMode><pValue>Rw</pValue>", RO},
      // A guard that cannot be asked.
      {"<pIsAvailable>Ni</pIsAvailable><pValue>Rw</pValue>", NI},
      {"<pIsAvailable>Na</pIsAvailable><pValue>Rw</pValue>", NA},
      {"<pIsLocked>Ni</pIsLocked><pValue>Rw</pValue>", NI},
      {"<pIsLocked>Wo</pIsLocked><pValue>Rw</pValue>", NA},
      {"<pIsImplemented>Na</pIsImplemented><pValue>Rw</pValue>", NA},
      // Limits that cannot be had take the node with them; limits that can only be written do not.
      {"<pValue>Rw</pValue><pMin>Ni</pMin>", NI},
      {"<pValue>Rw</pValue><pMax>Na</pMax>", NA},
      {"<pValue>Rw</pValue><pMin>Wo</pMin>", RW},
  };
  for (const auto& [elements, mode] : cases) {
    TestMap map(kModes + "<Integer Name=\"X\">" + elements + "</Integer>");
    EXPECT_EQ(map.mode("X"), mode) << elements;
  }
}

TEST(Access, OtherKinds) {
  struct Case {
    std::string nodes;
    EAccessMode mode;
  };
  const auto entry = [](const char* name, const char* guard) {
    return std::string("<EnumEntry Name=\"") + name + "\">" + guard + "<Value>1</Value></EnumEntry>";
  };
  const char* const unavailable = "<pIsAvailable>Zero</pIsAvailable>";
  const char* const missing = "<pIsImplemented>Zero</pIsImplemented>";
  const std::vector<Case> cases{
      {"<IntSwissKnife Name=\"X\"><pVariable Name=\"A\">Wo</pVariable><Formula>A</Formula></IntSwissKnife>", RO},
      {"<IntSwissKnife Name=\"X\"><pVariable Name=\"A\">Na</pVariable><Formula>A</Formula></IntSwissKnife>", NA},
      {"<Category Name=\"X\"/>", NI},
      {"<Category Name=\"X\"><pFeature>Ni</pFeature></Category>", NI},
      {"<Category Name=\"X\"><pFeature>Ni</pFeature><pFeature>Na</pFeature></Category>", RO},
      {"<Category Name=\"X\"><pIsAvailable>Zero</pIsAvailable><pFeature>Rw</pFeature></Category>", RO},
      {"<Category Name=\"X\"><pIsImplemented>Zero</pIsImplemented><pFeature>Rw</pFeature></Category>", NI},
      {"<Enumeration Name=\"X\">" + entry("A", unavailable) + entry("B", unavailable) +
           "<pValue>Rw</pValue></Enumeration>",
       NA},
      {"<Enumeration Name=\"X\">" + entry("A", missing) + entry("B", missing) + "<pValue>Rw</pValue></Enumeration>",
       NI},
      {"<Enumeration Name=\"X\">" + entry("A", missing) + entry("B", "") + "<pValue>Rw</pValue></Enumeration>", RW},
      {"<Enumeration Name=\"X\">" + entry("A", "") + "<pValue>Wo</pValue></Enumeration>", WO},
      {reg("IntReg", "X", "<pAddress>Na</pAddress>"), NA},
      {reg("IntReg", "X", "<pIndex Offset=\"4\">Ni</pIndex>"), NI},
      {"<SmartFeature Name=\"X\"><FeatureID>1</FeatureID></SmartFeature>", NA},
      {"<Node Name=\"X\"/>", RW},
      {"<Command Name=\"X\"><pValue>Wo</pValue><CommandValue>1</CommandValue></Command>", WO},
  };
  for (const auto& [nodes, mode] : cases) {
    TestMap map(kModes + nodes);
    EXPECT_EQ(map.mode("X"), mode) << nodes;
  }
  TestMap map(kModes + "<Enumeration Name=\"E\">" + entry("A", "<ImposedAccessMode>WO</ImposedAccessMode>") +
              entry("B", "") + "<pValue>Rw</pValue></Enumeration>");
  EXPECT_EQ(map.mode("EnumEntry_E_A"), NA);
  EXPECT_EQ(map.mode("EnumEntry_E_B"), RO);
}

TEST(Access, NothingIsThereWithoutAPort) {
  TestMap map(kModes +
                  "<Integer Name=\"X\"><pValue>Rw</pValue></Integer>"
                  "<Port Name=\"Chunk\"><ChunkID>12</ChunkID></Port>",
              false);
  EXPECT_EQ(map.mode("Device"), NI);
  EXPECT_EQ(map.mode("Chunk"), NA);
  EXPECT_EQ(map.mode("X"), NI);
  EXPECT_EQ(map.mode("One"), RW);
  expectThrow<GenICam::AccessException>([&] { map.integer("X").SetValue(1, false); }, "not connected");
  EXPECT_TRUE(map->Connect(&map.port));
  EXPECT_EQ(map.mode("X"), RW);
  EXPECT_FALSE(map->Connect(&map.port, "Nobody"));
  EXPECT_TRUE(map->Connect(static_cast<IPort*>(nullptr)));
  EXPECT_EQ(map.mode("X"), NI);
}

TEST(Access, IsRememberedUntilSomethingThatItDependsOnChanges) {
  const auto guarded = [](const char* caching) {
    return reg("IntReg", "Guard", at(0x10), std::string("<Cachable>") + caching + "</Cachable>") +
           "<Integer Name=\"X\"><pIsAvailable>Guard</pIsAvailable><Value>1</Value></Integer>";
  };
  TestMap cached(guarded("WriteThrough"));
  EXPECT_EQ(cached.mode("X"), NA);
  cached.port.put(0x10, {1});
  EXPECT_EQ(cached.mode("X"), NA) << "nobody said that the register changed";
  cached.node("Guard").InvalidateNode();
  EXPECT_EQ(cached.mode("X"), RW);
  cached.integer("Guard").SetValue(0);
  EXPECT_EQ(cached.mode("X"), NA);
  EXPECT_EQ(cached.node("X").IsAccessModeCacheable(), Yes);

  TestMap uncached(guarded("NoCache"));
  EXPECT_EQ(uncached.mode("X"), NA);
  uncached.port.put(0x10, {1});
  EXPECT_EQ(uncached.mode("X"), RW);
  EXPECT_EQ(uncached.node("X").IsAccessModeCacheable(), No);
}

TEST(Access, NeverThrows) {
  TestMap map(kModes +
              "<Integer Name=\"X\"><pIsAvailable>Ro</pIsAvailable><Value>1</Value></Integer>"
              "<Integer Name=\"Y\"><pIsImplemented>Ro</pIsImplemented><Value>1</Value></Integer>");
  map.port.fails = true;
  EXPECT_EQ(map.mode("X"), NA);
  EXPECT_EQ(map.mode("Y"), NI);
  map.port.fails = false;
  map.port.put(0, {1});
  EXPECT_EQ(map.mode("X"), RW) << "a failure is not remembered";
}

TEST(Access, ImposedAtRunTime) {
  TestMap map(kModes + "<Integer Name=\"X\"><pValue>Rw</pValue></Integer>");
  EXPECT_EQ(map.mode("X"), RW);
  map.node("Rw").ImposeAccessMode(RO);
  EXPECT_EQ(map.mode("X"), RO);
  map.node("Rw").ImposeAccessMode(RW);
  EXPECT_EQ(map.mode("X"), RW);
  map.node("X").ImposeVisibility(Guru);
  EXPECT_EQ(map.node("X").GetVisibility(), Guru);
}

TEST(Access, VisibilityOfACategoryIsItsMostVisibleFeature) {
  TestMap map(
      "<Category Name=\"C\"><Visibility>Beginner</Visibility><pFeature>A</pFeature><pFeature>B</pFeature></Category>"
      "<Integer Name=\"A\"><Visibility>Guru</Visibility><Value>1</Value></Integer>"
      "<Integer Name=\"B\"><Visibility>Expert</Visibility><Value>1</Value></Integer>");
  EXPECT_EQ(map.node("C").GetVisibility(), Expert);
}

TEST(Access, MessagesNameTheNodeAndTheCall) {
  TestMap map(
      kModes +
      "<Integer Name=\"X\"><pValue>Wo</pValue></Integer><Integer Name=\"Y\"><Value>1</Value><Max>5</Max></Integer>"
      "<Float Name=\"F\"><Value>1</Value><Max>5</Max></Float>");
  const auto what = [](auto&& work) -> std::string {
    try {
      work();
    } catch (const GenICam::GenericException& error) {
      return error.what();
    }
    return "nothing thrown";
  };
  using testing::StartsWith;
  EXPECT_THAT(
      what([&] { map.integer("X").GetValue(); }),
      StartsWith("Node is not readable. : AccessException thrown in node 'X' while calling 'X.GetValue()' (file '"));
  EXPECT_THAT(what([&] { map.integer("Ro").SetValue(1); }),
              StartsWith("Node is not writable. : AccessException thrown in node 'Ro' while calling 'Ro.SetValue()'"));
  EXPECT_THAT(what([&] { map.integer("Na").GetMin(); }),
              StartsWith("Node is not available. : AccessException thrown in node 'Na'"));
  EXPECT_THAT(what([&] { map.integer("Y").SetValue(6); }),
              StartsWith("Value = 6 must be equal or smaller than Max = 5. : OutOfRangeException thrown in node 'Y'"));
  EXPECT_THAT(
      what([&] { map.number("F").SetValue(6); }),
      StartsWith("Value 6.000000 must be smaller than or equal 5.000000. : OutOfRangeException thrown in node 'F'"));
  EXPECT_THAT(what([&] { map.get<IValue>("Y").FromString("abc"); }),
              StartsWith("Node 'Y' : cannot convert string 'abc' to int. : InvalidArgumentException"));
}

TEST(Access, TargetsWithDifferentIncrementsCannotBeWritten) {
  const auto target = [](const char* name, const std::string& increment) {
    return "<Integer Name=\"" + std::string(name) + "\"><Value>0</Value>" + increment + "</Integer>";
  };
  for (const auto& [increment, expected] : {std::pair("<Inc>2</Inc>", RW), std::pair("<Inc>3</Inc>", RO)}) {
    TestMap map("<Integer Name=\"X\"><pValue>A</pValue><pValueCopy>B</pValueCopy></Integer>" +
                target("A", "<Inc>2</Inc>") + target("B", increment));
    EXPECT_EQ(map.mode("X"), expected) << increment;
  }
}
