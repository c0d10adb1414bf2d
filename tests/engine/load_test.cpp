// Loading: what is taken from a description, what is forgiven, what is refused.
#include <chrono>

#include "test_map.h"

using namespace GenApi;
using GenICam::gcstring;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

bool hasWarning(const TestMap& map, const std::string& text) {
  const auto all = map.warnings();
  return std::any_of(all.begin(), all.end(),
                     [&](const auto& warning) { return warning.text.find(text) != std::string::npos; });
}

const std::string kInteger = "<Integer Name=\"A\"><Value>7</Value></Integer>";

/** A global object of an application, which loads a description when main is over. */
const struct LateLoader {
  ~LateLoader() {
    INodeMap* const map = CNodeMapFactory(gcstring(describe(kInteger).c_str()), CacheUsage_Automatic).CreateNodeMap();
    dynamic_cast<IDestroy&>(*map).Destroy();
  }
} kLateLoader;

}  // namespace

TEST(Load, TellsWhatTheDescriptionSaysOfTheDevice) {
  TestMap map(kInteger);
  auto& info = dynamic_cast<IDeviceInfo&>(*map);
  EXPECT_STREQ(info.GetModelName(), "Model");
  EXPECT_STREQ(info.GetVendorName(), "Vendor");
  EXPECT_STREQ(info.GetProductGuid(), "p");
  Version_t version{};
  info.GetDeviceVersion(version);
  EXPECT_EQ(version.Major * 100 + version.Minor * 10 + version.SubMinor, 234);
  info.GetSchemaVersion(version);
  EXPECT_EQ(version.Major * 10 + version.Minor, 11);
  EXPECT_STREQ(map->GetDeviceName(), "Device");
  EXPECT_EQ(map->GetNumNodes(), 2U);
}

TEST(Load, TakesTextsInEveryDress) {
  const std::string plain = describe(kInteger);
  std::string utf16le = "\xFF\xFE";
  std::string utf16be = "\xFE\xFF";
  std::string utf32 = std::string("\xFF\xFE\0\0", 4);
  for (const char c : plain) {
    utf16le += std::string{c, '\0'};
    utf16be += std::string{'\0', c};
    utf32 += std::string{c, '\0', '\0', '\0'};
  }
  struct Case {
    const char* name;
    std::string text;
    const char* warning = nullptr;
  };
  const std::vector<Case> cases{
      {"plain", plain},
      {"byte-order mark", "\xEF\xBB\xBF" + plain},
      {"UTF-16 little", utf16le},
      {"UTF-16 big", utf16be},
      {"UTF-16 with zeros behind", utf16le + std::string(10, '\0')},
      {"UTF-32", utf32},
      {"blanks before", "\n\n  " + plain},
      {"text before", "free text" + plain.substr(plain.find("<Reg")), "stands before the description"},
      {"zeros behind", plain + std::string(1000, '\0')},
      {"remains behind", plain + "<broken <<< &", "what follows the end"},
      {"remains of a document behind", plain + "</Integer></RegisterDescription>", "what follows the end"},
      {"comment behind", plain + "<!-- made by hand -->"},
      {"entities", "<!DOCTYPE x [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>" + plain.substr(plain.find("<Reg"))},
      {"no version", "<RegisterDescription>" + kInteger + "</RegisterDescription>", "no SchemaMajorVersion"},
  };
  for (const auto& [name, text, warning] : cases) {
    SCOPED_TRACE(name);
    try {
      TestMap map(TestMap::RawText{text});
      EXPECT_EQ(map.integer("A").GetValue(), 7);
      EXPECT_EQ(map.warnings().size(), warning == nullptr ? 0U : 1U);
      EXPECT_TRUE(warning == nullptr || hasWarning(map, warning));
    } catch (const GenICam::GenericException& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

TEST(Load, TakesLatin1ForWhatIsNoUtf8) {
  TestMap map(
      "<Integer Name=\"A\"><ToolTip>20 \xB0"
      "C</ToolTip><Unit>\xC2\xB5s</Unit><Value>1</Value></Integer>");
  EXPECT_STREQ(map.node("A").GetToolTip(),
               "20 \xC2\xB0"
               "C");
  EXPECT_STREQ(map.integer("A").GetUnit(), "\xC2\xB5s");
  ASSERT_EQ(map.warnings().size(), 1U);
  EXPECT_THAT(map.warnings().front().text, testing::HasSubstr("no UTF-8"));
  EXPECT_EQ(map.warnings().front().line, 3U);
}

TEST(Load, RefusesWhatIsNoDescription) {
  const std::vector<std::pair<std::string, const char*>> cases{
      {"no xml at all", "Error while parsing XML stream at line 1"},
      {describe("<Integer Name=\"A\">\n<Value>7</Val"), "Error while parsing XML stream at line 4"},
      {"<Html></Html>", "RegisterDescription"},
      {"<RegisterDescription SchemaMajorVersion=\"2\"></RegisterDescription>", "schema version"},
  };
  for (const auto& [text, message] : cases) {
    expectThrow<GenICam::RuntimeException>([&] { TestMap map(TestMap::RawText{text}); }, message);
  }
  EXPECT_THROW(CNodeMapFactory{gcstring("")}, GenICam::InvalidArgumentException);
  EXPECT_THROW(CNodeMapFactory(ContentType_Xml, "", 0), GenICam::InvalidArgumentException);
  expectThrow<GenICam::RuntimeException>([] { CNodeMapFactory(ContentType_Xml, "/no/such/file.xml").CreateNodeMap(); },
                                         "/no/such/file.xml");
}

TEST(Load, ForgivesAndWarnsWithTheLine) {
  struct Case {
    std::string nodes;
    const char* warning;
  };
  const std::vector<Case> cases{
      {"\n<Strange/>", "'Strange' is no node"},
      {"\n<Integer Name=\"B\"><Wonder>1</Wonder><Value>1</Value></Integer>", "'Wonder' in 'B'"},
      {"\n<integer Name=\"B\"><VALUE>1</VALUE></integer>", "'integer' is taken for Integer"},
      {"\n<Integer Name=\"A\"><Value>8</Value></Integer>", "'A' is defined twice"},
      {"\n<Integer><Value>8</Value></Integer>", "without a name"},
      {"\n<Node Name=\"C\" Name=\"D\"/>", "another attribute 'Name'"},
      {"\n<IntSwissKnife Name=\"C\"><pVariable Name=\"X\" Name=\"Y\">A</pVariable><Formula>X</Formula>"
       "</IntSwissKnife>",
       "pVariable has another attribute"},
      {"\n<Integer Name=\"B\"><Value>eight</Value></Integer>", "is no number: 'eight'"},
      {"\n<Integer Name=\"B\"><pValue>Nobody</pValue></Integer>", "'Nobody', which is not there"},
      {"\n<Category Name=\"Root\"><pFeature>Nobody</pFeature><pFeature>A</pFeature></Category>",
       "'Nobody', which is not there"},
      {"\n<Integer Name=\"B\"><pValue>Device</pValue></Integer>",
       "pValue of 'B' means 'Device', which is of the wrong kind: Port"},
      {"\n<String Name=\"S\"><pValue>A</pValue></String><Boolean "
       "Name=\"B\"><pIsLocked>S</pIsLocked><Value>1</Value></Boolean>",
       "'A', which is of the wrong kind: Integer"},
      {"\n<IntReg Name=\"B\"><Address>0</Address><Length>4</Length><pPort>A</pPort></IntReg>",
       "'A', which is of the wrong kind: Integer"},
      {"\n<Integer Name=\"B\"><ValueIndexed Index=\"1\">2</ValueIndexed></Integer>", "'B' has no pIndex"},
      {"\n<Integer Name=\"B\"><pIndex>A</pIndex><ValueIndexed Index=\"x\">2</ValueIndexed></Integer>",
       "Index of 'B' is no number: 'x'"},
      {"\n<Integer Name=\"B\"><pIndex>A</pIndex><ValueIndexed>2</ValueIndexed></Integer>",
       "Index of 'B' is no number: ''"},
      {"\n<IntReg Name=\"B\"><pIndex Offset=\"four\">A</pIndex><Length>4</Length><pPort>Device</pPort></IntReg>",
       "Offset of 'B' is no number: 'four'"},
      {"\n<Integer Name=\"B\"/>", "'B' has no value"},
      {"\n<Integer Name=\"B\"><pValue>C</pValue></Integer><Integer Name=\"C\"><pValue>B</pValue></Integer>",
       "depends on itself"},
  };
  for (const auto& [nodes, warning] : cases) {
    SCOPED_TRACE(nodes);
    TestMap map(kInteger + nodes);
    EXPECT_TRUE(hasWarning(map, warning));
    EXPECT_EQ(map.warnings().front().line, 4U);
    EXPECT_EQ(map.integer("A").GetValue(), 7) << "the rest is usable";
    if (INode* const concerned = map->GetNode("B");
        concerned != nullptr && nodes.find("Wonder") == std::string::npos && nodes.find("VALUE") == std::string::npos) {
      EXPECT_EQ(concerned->GetAccessMode(), NI);
      EXPECT_THROW(dynamic_cast<IValue&>(*concerned).ToString(), GenICam::AccessException);
    }
  }
}

TEST(Load, TellsWhenAskedWhatTheSchemaForbids) {
  const auto remarksOn = [](const std::string& nodes) {
    std::vector<std::string> remarks;
    const TestMap map(nodes);
    for (const GenApiEngine::DescriptionRemark& remark : GenApiEngine::reviewOf(*map)) {
      remarks.push_back(remark.node + ": " + remark.text);
    }
    return remarks;
  };
  const std::vector<std::pair<std::string, const char*>> cases{
      {"<Integer Name=\"X\"><Max>5</Max><Value>1</Value></Integer>", "X: Value stands behind Max"},
      {"<IntReg Name=\"X\"><Address>0</Address><Length>4</Length><pPort>Device</pPort><Endianess>BigEndian</Endianess>"
       "</IntReg>",
       "X: there is no AccessMode, RO is assumed"},
      {reg("IntReg", "X", at(0)), "X: there is no Endianess, LittleEndian is assumed"},
      {reg("MaskedIntReg", "X", at(0), "<LSB>0</LSB><MSB>7</MSB><Endianess>BigEndian</Endianess>"),
       "X: LSB and MSB are exchanged, BigEndian counts from the highest bit"},
      {reg("StringReg", "X", at(0), {}, "4", "R"), "X: AccessMode is 'R', which is none of RO WO RW"},
      {"<Integer Name=\"X\"><Visibility>guru</Visibility><Value>1</Value></Integer>",
       "X: Visibility is 'guru', which is none of Beginner Expert Guru Invisible"},
      {"<Boolean Name=\"X\"><Value>True</Value></Boolean>", "X: Value is 'True', which is neither true nor false"},
      {"<Integer Name=\"X\"><Value>0xFFFFFFFFFFFFFFFF</Value></Integer>",
       "X: Value is '0xFFFFFFFFFFFFFFFF', which is no integer of the schema"},
      {"<Float Name=\"X\"><Value>0x10</Value></Float>", "X: Value is '0x10', which is no float of the schema"},
      {"<Integer Name=\"X\"><Value> 1 </Value><Max>5</Max></Integer><Integer Name=\"Y\"><Value>1\n</Value></Integer>",
       ": 2 numbers stand between blanks"},
  };
  for (const auto& [nodes, remark] : cases) {
    EXPECT_THAT(remarksOn(nodes), ElementsAre(remark));
  }
  EXPECT_THAT(
      remarksOn(
          "<StructReg><ToolTip>t</ToolTip><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode>"
          "<pPort>Device</pPort><Endianess>BigEndian</Endianess><StructEntry Name=\"S\"><Visibility>Guru</Visibility>"
          "<AccessMode>RO</AccessMode><LSB>7</LSB><MSB>0</MSB><Sign>Signed</Sign></StructEntry></StructReg>"
          "<Enumeration Name=\"E\"><Streamable>Yes</Streamable><EnumEntry Name=\"A\"><Value>0</Value><NumericValue>0.5"
          "</NumericValue></EnumEntry><Value>0</Value><pSelected>C</pSelected><PollingTime>5</PollingTime></"
          "Enumeration>"
          "<Converter Name=\"C\"><pVariable Name=\"V\">F</pVariable><Constant Name=\"K\">1e3</Constant><FormulaTo>FROM"
          "</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>F</pValue><Unit>s</Unit><Slope>Automatic</Slope></"
          "Converter>"
          "<Float "
          "Name=\"F\"><Value>-1.5</Value><Min>-INF</Min><Inc>2</Inc><DisplayNotation>Fixed</DisplayNotation></Float>"
          "<Integer Name=\"I\"><pIndex>S</pIndex><ValueIndexed Index=\"0\">0x7FFFFFFFFFFFFFFF</ValueIndexed>"
          "<pValueDefault>S</pValueDefault><Min>-5</Min><Representation>Linear</Representation></Integer>"),
      IsEmpty());
}

TEST(Load, TakesNumbersInEverySpelling) {
  const std::vector<std::pair<const char*, std::int64_t>> cases{{" 5 ", 5},
                                                                {"\n 0x1F \n", 31},
                                                                {"0XfF", 255},
                                                                {"0xFFFFFFFFFFFFFFFF", -1},
                                                                {"-12", -12},
                                                                {"+12", 12},
                                                                {"018", 18},
                                                                {"1000.0", 1000},
                                                                {"<!-- c -->4<!-- d -->2", 42},
                                                                {"<![CDATA[ 9 ]]>", 9},
                                                                {"1e3", 1000},
                                                                {"1_000", 1000},
                                                                {"0x1234_5678", 0x12345678}};
  for (const auto& [text, value] : cases) {
    EXPECT_EQ(TestMap("<Integer Name=\"B\"><Value>" + std::string(text) + "</Value></Integer>").integer("B").GetValue(),
              value)
        << text;
  }
  const std::vector<std::pair<const char*, double>> floats{
      {"1.5", 1.5}, {"0x10", 16.0}, {"-2e-3", -0.002}, {" 3 ", 3.0}};
  for (const auto& [text, value] : floats) {
    EXPECT_EQ(TestMap("<Float Name=\"B\"><Value>" + std::string(text) + "</Value></Float>").number("B").GetValue(),
              value)
        << text;
  }
  EXPECT_EQ(TestMap("<Float Name=\"B\"><Value>1</Value><Max>INF</Max></Float>").number("B").GetMax(),
            std::numeric_limits<double>::infinity());
}

TEST(Load, OpensGroupsAndStructsAndIgnoresExtensions) {
  TestMap map(
      "<Group Comment=\"c\"><Group Comment=\"d\"><Integer Name=\"B\"><Extension><Value>9</Value><Integer Name=\"X\"/>"
      "</Extension><Value>2</Value></Integer></Group></Group>"
      "<StructReg Comment=\"s\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
      "<Endianess>BigEndian</Endianess><IntSwissKnife Name=\"Inline\"><Formula>0x10</Formula></IntSwissKnife>"
      "<StructEntry Name=\"S1\"><Bit>31</Bit></StructEntry>"
      "<StructEntry Name=\"S2\"><AccessMode>RO</AccessMode><LSB>15</LSB><MSB>0</MSB><Sign>Signed</Sign></StructEntry>"
      "</StructReg>");
  EXPECT_EQ(map.integer("B").GetValue(), 2);
  EXPECT_EQ(map->GetNode("X"), nullptr);
  map.port.put(0x18, {0xFF, 0xFE, 0x00, 0x01});
  EXPECT_EQ(map.integer("S1").GetValue(), 1);
  EXPECT_EQ(map.integer("S2").GetValue(), -2);
  EXPECT_EQ(map.mode("S1"), RW);
  EXPECT_EQ(map.mode("S2"), RO);
  EXPECT_EQ(map.integer("Inline").GetValue(), 16);
  EXPECT_EQ(map.get<IRegister>("S1").GetAddress(), 0x18);
}

TEST(Load, KeepsARegistersOwnFormulaUnderATakenName) {
  TestMap map(kInteger + reg("IntReg", "R", "<IntSwissKnife Name=\"K\"><Formula>4</Formula></IntSwissKnife>") +
              reg("IntReg", "S", "<IntSwissKnife Name=\"K\"><Formula>8</Formula></IntSwissKnife>") +
              reg("IntReg", "R", "<IntSwissKnife Name=\"K2\"><Formula>12</Formula></IntSwissKnife>"));
  EXPECT_TRUE(hasWarning(map, "'K' is defined twice"));
  EXPECT_EQ(map.get<IRegister>("R").GetAddress(), 4);
  EXPECT_EQ(map.get<IRegister>("S").GetAddress(), 8) << "not what the other node of that name computes";
  EXPECT_EQ(map.integer("K").GetValue(), 4);
}

TEST(Load, NamesAndRelations) {
  TestMap map(
      "<Category Name=\"Root\" NameSpace=\"Standard\"><pFeature>Sub</pFeature><pFeature>E</pFeature></Category>"
      "<Category Name=\"Sub\"><DisplayName>Below</DisplayName><pFeature>A</pFeature><pFeature>A</pFeature></Category>"
      "<Enumeration Name=\"E\" NameSpace=\"Standard\"><EnumEntry Name=\"One\"><Value>1</Value></EnumEntry>"
      "<EnumEntry Name=\"Two\"><DisplayName>Zwei</DisplayName><Value>2</Value><Symbolic>Deux</Symbolic></EnumEntry>"
      "<Value>1</Value><pSelected>A</pSelected></Enumeration>"
      "<Integer Name=\"A\"><pAlias>E</pAlias><pValue>R</pValue><pMax>M</pMax><pInvalidator>I</pInvalidator></Integer>"
      "<Integer Name=\"M\"><Value>9</Value></Integer><Node Name=\"I\"/>" +
      reg("IntReg", "R", at(0)));
  EXPECT_STREQ(map.node("E").GetName(true), "Std::E");
  EXPECT_EQ(map->GetNode("Std::E"), map->GetNode("E"));
  EXPECT_EQ(map->GetNode("Nobody"), nullptr);
  EXPECT_STREQ(map.node("Sub").GetDisplayName(), "Below");
  EXPECT_STREQ(map.node("EnumEntry_E_One").GetDisplayName(), "One");
  EXPECT_STREQ(map.get<IEnumEntry>("EnumEntry_E_Two").GetSymbolic(), "Deux");
  EXPECT_TRUE(map.node("A").IsFeature());
  EXPECT_TRUE(map.node("Sub").IsFeature());
  EXPECT_FALSE(map.node("R").IsFeature());
  EXPECT_FALSE(map.node("EnumEntry_E_One").IsFeature());
  EXPECT_EQ(map.node("A").GetAlias(), &map.node("E"));
  EXPECT_EQ(map.node("E").GetAlias(), nullptr);
  FeatureList_t features;
  map.get<ICategory>("Sub").GetFeatures(features);
  EXPECT_THAT(namesOf(features), ElementsAre("A"));
  map.get<ISelector>("E").GetSelectedFeatures(features);
  EXPECT_THAT(namesOf(features), ElementsAre("A"));
  map.get<ISelector>("A").GetSelectingFeatures(features);
  EXPECT_THAT(namesOf(features), ElementsAre("E"));
  EXPECT_TRUE(map.get<ISelector>("E").IsSelector());
  EXPECT_FALSE(map.get<ISelector>("A").IsSelector());
  NodeList_t list;
  map.node("A").GetChildren(list, ctReadingChildren);
  EXPECT_THAT(namesOf(list), ElementsAre("R", "M"));
  map.node("E").GetChildren(list, ctReadingChildren);
  EXPECT_THAT(namesOf(list), IsEmpty()) << "the entries are asked for apart";
  map.node("A").GetChildren(list, ctInvalidatingChildren);
  EXPECT_THAT(namesOf(list), ElementsAre("R", "M", "I"));
  map.node("A").GetChildren(list, ctTerminalNodes);
  EXPECT_THAT(namesOf(list), ElementsAre("R"));
  map.node("M").GetParents(list);
  EXPECT_THAT(namesOf(list), ElementsAre("A"));
  map.node("R").GetChildren(list, ctDependingNodes);
  EXPECT_THAT(namesOf(list), ElementsAre("A", "Sub", "Root"));
}

TEST(Load, Properties) {
  TestMap map(
      "<SwissKnife Name=\"K\" NameSpace=\"Standard\"><ToolTip>tip</ToolTip><pVariable Name=\"X\">A</pVariable>"
      "<pVariable Name=\"Y\">A</pVariable><Formula>X+Y</Formula><Unit>mm</Unit></SwissKnife>" +
      kInteger +
      reg("IntReg", "R", "<pIndex Offset=\"4\">A</pIndex><pIndex>A</pIndex><pIndex pOffset=\"A\">A</pIndex>"));
  gcstring value;
  gcstring attribute;
  EXPECT_TRUE(map.node("K").GetProperty("pVariable", value, attribute));
  EXPECT_STREQ(value, "A\tA");
  EXPECT_STREQ(attribute, "X\tY");
  EXPECT_TRUE(map.node("K").GetProperty("Unit", value, attribute));
  EXPECT_STREQ(value, "mm");
  EXPECT_STREQ(attribute, "");
  EXPECT_TRUE(map.node("R").GetProperty("pIndex", value, attribute));
  EXPECT_STREQ(value, "A\tA\tA");
  EXPECT_STREQ(attribute, "4\t\tA");
  EXPECT_FALSE(map.node("R").GetProperty("pOffset", value, attribute));
  EXPECT_FALSE(map.node("K").GetProperty("Representation", value, attribute));
  EXPECT_STREQ(value, "");
  GenICam::gcstring_vector names;
  map.node("K").GetPropertyNames(names);
  std::vector<std::string> all;
  for (std::size_t i = 0; i < names.size(); ++i) {
    all.emplace_back(names[i].c_str());
  }
  EXPECT_THAT(all, ElementsAre("Name", "NameSpace", "ToolTip", "pVariable", "Formula", "Unit"));
}

TEST(Load, InjectsOneDescriptionIntoAnother) {
  const auto make = [](const std::string& injectedNodes) {
    const std::string target = describe("<Category Name=\"Root\"><pFeature>A</pFeature></Category>" + kInteger);
    CNodeMapFactory factory(gcstring(target.c_str()), CacheUsage_Ignore);
    std::string injected = describe(injectedNodes);
    injected.erase(injected.find("<Port"), std::string("<Port Name=\"Device\"/>").size());
    CNodeMapFactory second{gcstring(injected.c_str())};
    factory.AddInjectionData(second);
    return factory.CreateNodeMap();
  };
  INodeMap* const map = make(
      "<Category Name=\"Root\"><pFeature>B</pFeature></Category><Integer Name=\"B\"><Value>5</Value></Integer>"
      "<Integer Name=\"A\" MergePriority=\"+1\"><Value>8</Value></Integer>");
  FeatureList_t features;
  CCategoryPtr(map->GetNode("Root"))->GetFeatures(features);
  EXPECT_THAT(namesOf(features), ElementsAre("A", "B"));
  EXPECT_EQ(CIntegerPtr(map->GetNode("A"))->GetValue(), 8);
  EXPECT_EQ(map->GetNumNodes(), 4U);
  dynamic_cast<IDestroy*>(map)->Destroy();
  INodeMap* const kept = make("<Integer Name=\"A\" MergePriority=\"-1\"><Value>8</Value></Integer>");
  EXPECT_EQ(CIntegerPtr(kept->GetNode("A"))->GetValue(), 7);
  dynamic_cast<IDestroy*>(kept)->Destroy();
  expectThrow<GenICam::RuntimeException>([&] { make("<Integer Name=\"A\"><Value>8</Value></Integer>"); },
                                         "MergePriority");
}

TEST(Load, SharesTheModelOfTheSameContent) {
  CNodeMapFactory::ClearCache();
  const std::string text = describe("<Integer Name=\"Shared\"><Value>1</Value></Integer>");
  expectThrow<GenICam::RuntimeException>(
      [&] { CNodeMapFactory(gcstring(text.c_str()), CacheUsage_ForceRead).CreateNodeMap(); }, "not in the cache");
  CNodeMapFactory first{gcstring(text.c_str())};
  INodeMap* const a = first.CreateNodeMap();
  EXPECT_TRUE(first.IsCameraDescriptionFileDataReleased());
  INodeMap* const again = first.CreateNodeMap();
  INodeMap* const b = CNodeMapFactory(gcstring(text.c_str()), CacheUsage_ForceRead).CreateNodeMap();
  CIntegerPtr(a->GetNode("Shared"))->SetValue(5);
  EXPECT_EQ(CIntegerPtr(b->GetNode("Shared"))->GetValue(), 1) << "values belong to the map";
  EXPECT_EQ(CIntegerPtr(again->GetNode("Shared"))->GetValue(), 1);
  for (INodeMap* const map : {a, again, b}) {
    dynamic_cast<IDestroy*>(map)->Destroy();
  }
  // Two changes that a hash of words in lanes may let cancel each other.
  const std::string letters(200, 'a');
  const std::string plain =
      describe("<Integer Name=\"Shared\"><ToolTip>" + letters + "</ToolTip><Value>1</Value></Integer>");
  const TestMap original{TestMap::RawText{plain}};
  for (std::size_t i = plain.find(letters); i < plain.find(letters) + 64; ++i) {
    std::string changed = plain;
    changed[i] = static_cast<char>(changed[i] ^ '\x80');
    changed[i + 28] ^= 0x40;
    INodeMap* const other = CNodeMapFactory(gcstring(changed.c_str())).CreateNodeMap();
    EXPECT_STRNE(other->GetNode("Shared")->GetToolTip(), letters.c_str()) << i;
    dynamic_cast<IDestroy*>(other)->Destroy();
  }
  INodeMap* const empty = CNodeMapFactory::CreateEmptyNodeMap();
  EXPECT_EQ(empty->GetNode("Root"), nullptr);
  MemoryPort port;
  EXPECT_FALSE(empty->Connect(&port));
  empty->Poll(100);
  empty->InvalidateNodes();
  dynamic_cast<IDestroy*>(empty)->Destroy();
}
