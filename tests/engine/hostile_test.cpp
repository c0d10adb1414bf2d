// Descriptions and registers that mean harm: an exception or nodes that are not there, always with the rest usable.
#include <chrono>
#include <cstring>
#include <random>

#include "model/text.h"
#include "test_map.h"

using namespace GenApi;

namespace {

/// Asks every node of a map everything; all that may happen is a GenICam exception.
void askEverything(TestMap& map) {
  NodeList_t nodes;
  map->GetNodes(nodes);
  const auto attempt = [](auto&& work) {
    try {
      work();
    } catch (const GenICam::GenericException& error) {
      EXPECT_STRNE(error.what(), "");
    }
  };
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    INode* const node = nodes[i];
    node->GetAccessMode();
    node->GetCachingMode();
    node->IsAccessModeCacheable();
    attempt([&] { node->GetVisibility(); });
    NodeList_t list;
    for (const ELinkType type : {ctParentNodes, ctReadingChildren, ctDependingNodes, ctTerminalNodes}) {
      node->GetChildren(list, type);
    }
    if (CValuePtr value = node) {
      attempt([&] { value->ToString(); });
      attempt([&] { value->ToString(true, true); });
      attempt([&] { value->FromString("1"); });
      attempt([&] { value->FromString("1", false); });
    }
    if (CIntegerPtr integer = node) {
      attempt([&] { integer->GetMin(); });
      attempt([&] { integer->GetMax(); });
      attempt([&] { integer->GetInc(); });
      attempt([&] { integer->GetListOfValidValues(); });
      attempt([&] { integer->GetUnit(); });
    }
    if (CFloatPtr number = node) {
      attempt([&] { number->GetMin(); });
      attempt([&] { number->GetMax(); });
      attempt([&] { number->GetInc(); });
      attempt([&] { number->GetListOfValidValues(); });
    }
    if (CRegisterPtr bytes = node) {
      attempt([&] { bytes->GetAddress(); });
      attempt([&] { bytes->GetLength(); });
    }
    if (CCommandPtr command = node) {
      attempt([&] { command->Execute(); });
      attempt([&] { command->IsDone(); });
    }
    if (CEnumerationPtr enumeration = node) {
      attempt([&] { enumeration->GetCurrentEntry(); });
    }
    attempt([&] { node->InvalidateNode(); });
  }
  map->Poll(100000);
}

const std::string kGood = "<Integer Name=\"Good\"><Value>7</Value></Integer>";

std::string integerOver(const std::string& name, const std::string& source) {
  return "<Integer Name=\"" + name + "\"><pValue>" + source + "</pValue></Integer>";
}

}  // namespace

TEST(Hostile, CyclesOfEveryKind) {
  const std::vector<std::string> cases{
      integerOver("A", "A"),
      integerOver("A", "B") + integerOver("B", "C") + integerOver("C", "A"),
      "<IntSwissKnife Name=\"A\"><pVariable Name=\"X\">A</pVariable><Formula>X</Formula></IntSwissKnife>",
      "<Integer Name=\"A\"><pIsAvailable>A</pIsAvailable><Value>1</Value></Integer>",
      "<Integer Name=\"A\"><pIsImplemented>B</pIsImplemented><Value>1</Value></Integer>"
      "<Integer Name=\"B\"><pIsLocked>A</pIsLocked><Value>1</Value></Integer>",
      "<Integer Name=\"A\"><Value>1</Value><pMin>B</pMin></Integer><Integer "
      "Name=\"B\"><Value>1</Value><pMax>A</pMax></Integer>",
      "<Integer Name=\"A\"><Value>1</Value><pMin>A</pMin><pInc>A</pInc></Integer>",
      "<Category Name=\"Root\"><pFeature>Root</pFeature><pFeature>B</pFeature></Category><Category "
      "Name=\"B\"><pFeature>Root</pFeature></Category>",
      "<Integer Name=\"A\"><pInvalidator>B</pInvalidator><Value>1</Value></Integer><Integer "
      "Name=\"B\"><pInvalidator>A</pInvalidator>"
      "<Value>1</Value></Integer>",
      "<Enumeration Name=\"E\"><EnumEntry "
      "Name=\"X\"><pIsAvailable>K</pIsAvailable><Value>0</Value></EnumEntry><Value>0</Value>"
      "<pSelected>E</pSelected></Enumeration><IntSwissKnife Name=\"K\"><pVariable "
      "Name=\"V\">E</pVariable><Formula>V=0</Formula></IntSwissKnife>",
      reg("IntReg", "A", "<pAddress>A</pAddress>"),
      "<IntReg Name=\"A\"><Address>0</Address><pLength>A</pLength><pPort>Device</pPort></IntReg>",
      "<Integer Name=\"A\"><Value>1</Value><pError>E</pError></Integer><Enumeration Name=\"E\"><EnumEntry "
      "Name=\"X\"><Value>1</Value>"
      "</EnumEntry><pError>E</pError><Value>1</Value></Enumeration>",
      "<Command Name=\"A\"><pValue>A</pValue><pCommandValue>A</pCommandValue></Command>",
      "<Converter Name=\"A\"><pVariable "
      "Name=\"X.Max\">B</pVariable><FormulaTo>FROM</FormulaTo><FormulaFrom>TO+X.Max</FormulaFrom>"
      "<pValue>Good</pValue></Converter><Float Name=\"B\"><Value>1</Value><pMax>A</pMax></Float>",
      "<SwissKnife Name=\"A\"><Expression Name=\"X\">Y</Expression><Expression "
      "Name=\"Y\">X</Expression><Formula>X</Formula></SwissKnife>",
      "<Port Name=\"P\"><pChunkID>S</pChunkID></Port><StringReg "
      "Name=\"S\"><Address>0</Address><Length>4</Length><pPort>P</pPort></StringReg>",
  };
  for (const std::string& nodes : cases) {
    SCOPED_TRACE(nodes);
    TestMap map(kGood + nodes);
    askEverything(map);
    map.integer("Good").SetValue(9);
    EXPECT_EQ(map.integer("Good").GetValue(), 9);
  }
}

TEST(Hostile, ReferencesToNothing) {
  const std::string nodes =
      kGood + integerOver("A", "Nobody") + reg("IntReg", "B", "<pAddress>Nobody</pAddress>") +
      reg("Register", "C", "<pIndex>Nobody</pIndex><pIndex pOffset=\"Nobody\">Good</pIndex>") +
      "<StringReg Name=\"D\"><Address>0</Address><pLength>Nobody</pLength><pPort>Nobody</pPort></StringReg>"
      "<IntSwissKnife Name=\"E\"><pVariable Name=\"X\">Nobody</pVariable><Formula>X</Formula></IntSwissKnife>"
      "<Converter Name=\"F\"><pVariable "
      "Name=\"X\">Nobody</pVariable><FormulaTo>X</FormulaTo><FormulaFrom>X</FormulaFrom>"
      "<pValue>Nobody</pValue></Converter><Command Name=\"G\"><pValue>Nobody</pValue></Command>"
      "<Enumeration Name=\"H\"><pEnumEntry>Nobody</pEnumEntry><pValue>Nobody</pValue></Enumeration>";
  TestMap map(nodes);
  askEverything(map);
  const std::uint8_t byte = 1;
  EXPECT_THROW(map.get<IRegister>("C").Set(&byte, 1, false), GenICam::AccessException);
  EXPECT_EQ(map.mode("A"), NI);
  EXPECT_EQ(map.integer("Good").GetValue(), 1) << "the good node was written";
}

TEST(Hostile, ReferencesToTheWrongKind) {
  const std::string all = kGood +
                          "<Node Name=\"N\"/><Category Name=\"Cat\"/><String "
                          "Name=\"S\"><Value>x</Value></String><Float Name=\"F\"><Value>1.5</Value></Float>" +
                          reg("Register", "R", at(0), {}, "16") +
                          "<Command Name=\"C\"><Value>1</Value></Command><Port Name=\"P\"/>";
  for (const char* const target : {"N", "Cat", "S", "F", "R", "C", "P", "Device", "Good"}) {
    std::string nodes = all;
    for (const char* const link : {"pValue", "pMin", "pMax", "pInc", "pIsAvailable", "pIsLocked", "pIsImplemented",
                                   "pError", "pAlias", "pCastAlias", "pInvalidator", "pSelected", "pBlockPolling"}) {
      nodes += std::string("<Integer Name=\"I_") + link + "\"><" + link + ">" + target + "</" + link +
               "><Value>1</Value><PollingTime>1</PollingTime>"
               "</Integer><Float Name=\"F_" +
               link + "\"><" + link + ">" + target + "</" + link + "><Value>1</Value></Float>";
    }
    for (const char* const link : {"pAddress", "pIndex", "pLength", "pPort"}) {
      nodes += std::string("<IntReg Name=\"R_") + link + "\"><" + link + ">" + target + "</" + link +
               "><Address>0</Address></IntReg>";
    }
    for (const char* const kind : {"Boolean", "Enumeration", "Command", "String", "Converter", "IntConverter"}) {
      nodes += std::string("<") + kind + " Name=\"V_" + kind + "\"><pValue>" + target +
               "</pValue><FormulaTo>FROM</FormulaTo>"
               "<FormulaFrom>TO</FormulaFrom></" +
               kind + ">";
    }
    nodes += std::string("<IntSwissKnife Name=\"K\"><pVariable Name=\"X\">") + target +
             "</pVariable><pVariable Name=\"Y.Entry.Z\">" + target +
             "</pVariable><Formula>X+Y.Entry.Z</Formula></IntSwissKnife><Enumeration Name=\"Old\"><pEnumEntry>" +
             target + "</pEnumEntry><Value>1</Value></Enumeration><Category Name=\"Root\"><pFeature>" + target +
             "</pFeature></Category>";
    SCOPED_TRACE(target);
    TestMap map(nodes);
    askEverything(map);
    EXPECT_NO_THROW(map.integer("Good").GetValue());
  }
}

TEST(Hostile, RegistersFullOfNonsense) {
  const std::string nodes =
      reg("IntReg", "A", at(0), {}, "8") +
      reg("IntReg", "Moving", "<pAddress>A</pAddress><pIndex>A</pIndex>", {}, "8") +
      "<Register "
      "Name=\"Sized\"><pAddress>A</pAddress><pLength>B</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></"
      "Register>"
      "<StringReg "
      "Name=\"Text\"><Address>0</Address><pLength>B</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort></"
      "StringReg>" +
      reg("MaskedIntReg", "M", at(3), "<LSB>1</LSB><MSB>60</MSB><Sign>Signed</Sign>", "8") +
      reg("IntReg", "B", at(9), "<Sign>Signed</Sign>", "1") +
      reg("FloatReg", "F", at(16), "<Cachable>NoCache</Cachable>") +
      "<Integer Name=\"I\"><pValue>F</pValue><pMin>A</pMin><pMax>B</pMax><pInc>M</pInc></Integer>"
      "<Float "
      "Name=\"G\"><pValue>A</pValue><pMin>F</pMin><pMax>F</pMax><DisplayPrecision>99999999999</DisplayPrecision></"
      "Float>"
      "<Converter Name=\"Conv\"><pVariable "
      "Name=\"V\">F</pVariable><FormulaTo>FROM/V</FormulaTo><FormulaFrom>SQRT(TO)/V</FormulaFrom>"
      "<pValue>A</pValue></Converter><IntConverter Name=\"IConv\"><pVariable "
      "Name=\"V\">A</pVariable><FormulaTo>FROM%V</FormulaTo>"
      "<FormulaFrom>TO**V/V&lt;&lt;V</FormulaFrom><pValue>M</pValue><Slope>Automatic</Slope></IntConverter>"
      "<Enumeration Name=\"E\"><EnumEntry "
      "Name=\"X\"><Value>1</Value><NumericValue>1e300</NumericValue></EnumEntry><pValue>M</pValue></Enumeration>"
      "<Integer Name=\"OverE\"><pValue>E</pValue></Integer><Boolean Name=\"Bool\"><pValue>A</pValue></Boolean>"
      "<Command Name=\"C\"><pValue>A</pValue><pCommandValue>B</pCommandValue></Command>";
  std::mt19937 random(7);
  TestMap map(nodes);
  map.port.onRead = [&] {
    for (std::int64_t i = 0; i < 24; ++i) {
      map.port.bytes[i] = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random());
    }
  };
  for (int round = 0; round < 100; ++round) {
    map->InvalidateNodes();
    askEverything(map);
  }
}

TEST(Hostile, DepthAndBreadth) {
  // Ten thousand groups in each other, a chain of nodes longer than any stack, and nodes that each use the next one
  // twice.
  std::string nodes;
  for (int i = 0; i < 10000; ++i) {
    nodes += "<Group Comment=\"g\">";
  }
  nodes += kGood;
  for (int i = 0; i < 10000; ++i) {
    nodes += "</Group>";
  }
  constexpr int kChain = 20000;
  for (int i = 0; i < kChain; ++i) {
    const std::string name = "C" + std::to_string(i);
    nodes += integerOver(name, i + 1 == kChain ? "Good" : "C" + std::to_string(i + 1));
    nodes += "<Integer Name=\"G" + std::to_string(i) + "\"><pIsAvailable>" +
             (i + 1 == kChain ? "Good" : "G" + std::to_string(i + 1)) + "</pIsAvailable><Value>1</Value></Integer>";
  }
  constexpr int kLevels = 150;
  for (int i = 0; i < kLevels; ++i) {
    const std::string next = i + 1 == kLevels ? "Uncached" : "D" + std::to_string(i + 1);
    nodes += "<IntSwissKnife Name=\"D" + std::to_string(i) + "\"><pVariable Name=\"A\">" + next +
             "</pVariable><pVariable Name=\"B\">" + next +
             "</pVariable><Formula>A+B</Formula></IntSwissKnife><Integer Name=\"L" + std::to_string(i) +
             "\"><Value>1</Value><pMin>L" + std::to_string(i + 1) + "</pMin><pMax>L" + std::to_string(i + 1) +
             "</pMax></Integer>";
  }
  nodes += reg("IntReg", "Uncached", at(0), "<Cachable>NoCache</Cachable>") +
           integerOver("L" + std::to_string(kLevels), "Uncached");
  const auto begin = std::chrono::steady_clock::now();
  TestMap map(nodes);
  EXPECT_EQ(map.integer("Good").GetValue(), 7);
  map.node("C0").GetAccessMode();
  EXPECT_THROW(map.integer("C0").GetValue(), GenICam::GenericException);
  EXPECT_EQ(map.integer("C19990").GetValue(), 7);
  map.node("C0").GetCachingMode();
  EXPECT_STREQ(map.integer("C0").GetUnit(), "");
  EXPECT_THROW(map.integer("D0").GetValue(), GenICam::GenericException);
  map.node("G0").GetAccessMode();
  EXPECT_EQ(map.mode("G19990"), RW);
  map.integer("Good").SetValue(1);
  try {
    map.integer("L0").GetMin();
    map.integer("L0").SetValue(1);
  } catch (const GenICam::GenericException&) {
    // What matters is that the answer comes.
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

TEST(Hostile, TooMuchText) {
  const auto expectRefused = [](const std::string& text, const char* reason) {
    expectThrow<GenICam::RuntimeException>(
        [&] { CNodeMapFactory(ContentType_Xml, text.data(), text.size()).CreateNodeMap(); }, reason);
  };
  expectRefused(std::string(std::size_t{129} << 20, ' '), "more than the");
  std::string tags;
  while (tags.size() < std::size_t{68} << 20) {
    tags += "<a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/><a/>";
  }
  expectRefused(tags, "mostly tags");
  TestMap map(kGood + "<Integer Name=\"" + std::string(100000, 'n') + "\"><ToolTip>" + std::string(17 << 20, 't') +
              "</ToolTip><Value>" + std::string(100000, '1') + "</Value></Integer>");
  EXPECT_EQ(map.integer("Good").GetValue(), 7);
  std::string strange;
  for (int i = 0; i < 3000; ++i) {
    strange += "<Strange" + std::to_string(i) + "/>";
  }
  TestMap many(kGood + strange);
  const auto diagnostics = GenApiEngine::diagnosticsOf(*many);
  EXPECT_EQ(diagnostics.warnings.size() + diagnostics.warningsSuppressed, 3000U);
  EXPECT_LE(diagnostics.warnings.size(), 1000U);
}

// Text that means more than its length: work and memory stay in proportion to it all the same.
TEST(Hostile, TextThatMultiplies) {
  constexpr int kMany = 20000;
  std::string categories = "<Category Name=\"Root\"><pFeature>Good</pFeature></Category>";
  std::string entries = "<StructReg>";
  std::string values = "<Enumeration Name=\"" + std::string(10000, 'E') + "\"><Value>0</Value>";
  for (int i = 0; i < kMany; ++i) {
    const std::string name = "N" + std::to_string(i);
    categories += "<Category Name=\"Root\"><pFeature>Good</pFeature><pFeature>" + name + "</pFeature></Category>" +
                  "<Integer Name=\"" + name + "\"><Value>1</Value></Integer>";
    entries += "<Address>0</Address><StructEntry Name=\"S" + name + "\"><Bit>1</Bit></StructEntry>";
    values += "<EnumEntry Name=\"" + name + "\"><Value>0</Value></EnumEntry>";
  }
  TestMap map(kGood + categories + entries + "</StructReg>" + values + "</Enumeration>");
  FeatureList_t features;
  CCategoryPtr(map->GetNode("Root"))->GetFeatures(features);
  ASSERT_EQ(features.size(), kMany + 1U);
  EXPECT_EQ(features[kMany]->GetNode()->GetName(), "N19999");
  EXPECT_EQ(map->GetNode("SN0"), nullptr);
  EXPECT_THAT(map.warnings().front().text, testing::HasSubstr("which is too much, and is skipped"));
  EXPECT_THAT(map.warnings().at(1).text, testing::HasSubstr("too long a name for its 20000 entries"));
  NodeList_t left;
  CEnumerationPtr(map->GetNode(GenICam::gcstring(10000, 'E')))->GetEntries(left);
  EXPECT_TRUE(left.empty());
  std::string ends = "<RegisterDescription>";
  for (int i = 0; i < 50 * kMany; ++i) {
    ends += "RegisterDescription>";
  }
  EXPECT_THROW(TestMap(TestMap::RawText{ends}), GenICam::RuntimeException);
}

// Names of one hash: found by running the hash backwards from its result.
TEST(Hostile, NamesThatResembleEachOther) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ULL;
  std::uint64_t inverse = kMultiplier;
  for (int i = 0; i < 6; ++i) {
    inverse *= 2 - kMultiplier * inverse;
  }
  const auto halfFolded = [](std::uint64_t word) { return word ^ (word >> 32); };
  std::vector<std::string> names;
  for (std::uint32_t low = 0; names.size() < 2000; ++low) {
    char text[17] = "Resemble";
    std::uint64_t first = 0;
    std::memcpy(&first, text, sizeof first);
    const std::uint64_t before = halfFolded((16 * kMultiplier ^ first) * kMultiplier);
    const std::uint64_t last = before ^ halfFolded(((std::uint64_t{0x1234} << 32) + low) * inverse) * inverse;
    std::memcpy(text + 8, &last, sizeof last);
    if (std::all_of(text + 8, text + 16,
                    [](char c) { return c > '!' && c <= '~' && std::strchr("<>&\"'", c) == nullptr; })) {
      names.emplace_back(text);
    }
  }
  std::string nodes = kGood;
  for (const std::string& name : names) {
    ASSERT_EQ(GenApiEngine::hashText(name), GenApiEngine::hashText(names.front()));
    nodes += "<Integer Name=\"" + name + "\"><Value>1</Value></Integer>";
  }
  TestMap map(nodes);
  EXPECT_EQ(map.integer("Good").GetValue(), 7);
  EXPECT_EQ(map.integer(names[1000].c_str()).GetValue(), 1);
  EXPECT_EQ(map->GetNode(names.back().c_str()), nullptr);
  EXPECT_THAT(map.warnings().front().text, testing::HasSubstr("were made to resemble it"));
}

// Any prefix and any single changed byte of a description is either refused or answered.
TEST(Hostile, DamagedText) {
  const std::string text = describe(
      "<Category Name=\"Root\"><pFeature>E</pFeature></Category><Enumeration Name=\"E\"><EnumEntry "
      "Name=\"X\"><Value>1</Value></EnumEntry>"
      "<pValue>R</pValue></Enumeration>" +
      reg("IntReg", "R", "<Address>4</Address><IntSwissKnife Name=\"K\"><Formula>2*2</Formula></IntSwissKnife>") +
      "<StructReg><Address>0</Address><Length>4</Length><pPort>Device</pPort><StructEntry "
      "Name=\"S\"><Bit>1</Bit></StructEntry></StructReg>"
      "<Converter Name=\"C\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>R</pValue></Converter>");
  const auto attempt = [](const std::string& damaged) {
    try {
      TestMap map(TestMap::RawText{damaged});
      askEverything(map);
    } catch (const GenICam::GenericException& error) {
      EXPECT_STRNE(error.what(), "");
    }
  };
  for (std::size_t size = 1; size < text.size(); size += 7) {
    attempt(text.substr(0, size));
  }
  std::mt19937 random(11);
  for (int i = 0; i < 600; ++i) {
    std::string damaged = text;
    for (int k = 0; k < 3; ++k) {
      damaged[random() % damaged.size()] = "<>/\"&;=0A \0\xFF!-"[random() % 15];
    }
    attempt(damaged);
  }
}
