// Values of all kinds: limits, increments, texts, enumerations, booleans, commands, indexed values, copies.
#include "test_map.h"

using namespace GenApi;
using GenICam::gcstring;
using testing::ElementsAre;

TEST(Integers, LimitsAreTheNodesOwnNarrowedByItsSource) {
  struct Case {
    const char* elements;
    std::int64_t min, max, inc;
  };
  const std::vector<Case> cases{
      {"<Value>1</Value>", std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), 1},
      {"<Value>1</Value><Min>-3</Min><Max>30</Max><Inc>4</Inc>", -3, 30, 4},
      {"<pValue>Source</pValue>", 2, 20, 3},
      {"<pValue>Source</pValue><Min>0</Min><Max>10</Max><Inc>6</Inc>", 2, 10, 6},
      {"<pValue>Source</pValue><pMin>Five</pMin><pMax>Five</pMax><pInc>Five</pInc>", 5, 5, 5},
      {"<pValue>Source</pValue><pValueCopy>Byte</pValueCopy>", 2, 20, 3},
      {"<Value>1</Value><Min>0</Min><Max>0xFFFFFFFFFFFFFFFF</Max>", 0, std::numeric_limits<std::int64_t>::max(), 1},
      {"<pValue>Source</pValue><Max>0xFFFFFFFFFFFFFFFF</Max>", 2, 20, 3},
      {"<Value>1</Value><pMin>Five</pMin><Max>-1</Max>", 5, std::numeric_limits<std::int64_t>::max(), 1},
      {"<Value>1</Value><Min>-9</Min><Max>-1</Max>", -9, -1, 1},
  };
  for (const auto& [elements, min, max, inc] : cases) {
    SCOPED_TRACE(elements);
    TestMap map(
        "<Integer Name=\"Source\"><Value>5</Value><Min>2</Min><Max>20</Max><Inc>3</Inc></Integer>"
        "<Integer Name=\"Five\"><Value>5</Value></Integer>" +
        reg("IntReg", "Byte", at(0), {}, "1") + "<Integer Name=\"X\">" + elements + "</Integer>");
    EXPECT_EQ(map.integer("X").GetMin(), min);
    EXPECT_EQ(map.integer("X").GetMax(), max);
    EXPECT_EQ(map.integer("X").GetInc(), inc);
  }
}

TEST(Integers, AreCheckedWhenWrittenVerified) {
  TestMap map(
      "<Integer Name=\"X\"><Value>5</Value><Min>2</Min><Max>20</Max><Inc>3</Inc></Integer>"
      "<Integer Name=\"Bad\"><Value>5</Value><Min>0</Min><Inc>0</Inc></Integer>");
  auto& node = map.integer("X");
  expectThrow<GenICam::OutOfRangeException>([&] { node.SetValue(1); },
                                            "Value = 1 must be equal or greater than Min = 2.");
  expectThrow<GenICam::OutOfRangeException>([&] { node.SetValue(21); },
                                            "Value = 21 must be equal or smaller than Max = 20.");
  expectThrow<GenICam::OutOfRangeException>(
      [&] { node.SetValue(6); },
      "The difference between Value = 6 and Min = 2 must be dividable without rest by Inc = 3.");
  expectThrow<GenICam::LogicalErrorException>([&] { map.integer("Bad").SetValue(1); },
                                              "Increment must be larger than 0.");
  EXPECT_EQ(node.GetValue(), 5);
  node = 8;
  EXPECT_EQ(node(), 8);
  node.SetValue(1, false);
  EXPECT_EQ(*node, 1);
  EXPECT_THROW(node.GetValue(true), GenICam::OutOfRangeException);
  node.ImposeMin(5);
  node.ImposeMax(11);
  EXPECT_EQ(node.GetMin(), 5);
  EXPECT_EQ(node.GetMax(), 11);
}

TEST(Integers, AsText) {
  TestMap map(
      "<Integer Name=\"H\"><Value>255</Value><Representation>HexNumber</Representation></Integer>"
      "<Integer Name=\"IP\"><Value>0xC0A80001</Value><Representation>IPV4Address</Representation></Integer>"
      "<Integer Name=\"D\"><pValue>H</pValue><Representation>Linear</Representation></Integer>"
      "<Integer Name=\"Inherits\"><pValue>IP</pValue></Integer>");
  EXPECT_EQ(map.text("H"), "0xff");
  EXPECT_EQ(map.text("D"), "255");
  EXPECT_EQ(map.text("IP"), "192.168.0.1");
  EXPECT_EQ(map.integer("Inherits").GetRepresentation(), IPV4Address);
  map.get<IValue>("Inherits").FromString("10.0.0.2");
  EXPECT_EQ(map.integer("IP").GetValue(), 0x0A000002);
  for (const auto& [text, value] : {std::pair{"0x1F", 31}, {" 8", 8}, {"8abc", 8}, {"8.0", 8}, {"-3", -3}}) {
    map.get<IValue>("D").FromString(text);
    EXPECT_EQ(map.integer("H").GetValue(), value) << text;
  }
}

TEST(Integers, IndexedValuesAndCopies) {
  TestMap map(
      "<Integer Name=\"Index\"><Value>1</Value></Integer><Integer "
      "Name=\"Other\"><Value>50</Value><Max>60</Max><Unit>us</Unit></Integer>"
      "<Integer Name=\"X\"><pIndex>Index</pIndex><ValueIndexed Index=\"1\">10</ValueIndexed>"
      "<pValueIndexed Index=\"0x2\">Other</pValueIndexed><ValueDefault>99</ValueDefault></Integer>"
      "<Float Name=\"F\"><pIndex>Index</pIndex><ValueIndexed "
      "Index=\"1\">1.5</ValueIndexed><pValueDefault>Other</pValueDefault></Float>"
      "<Integer Name=\"Gap\"><pIndex>Index</pIndex><ValueIndexed Index=\"1\">4</ValueIndexed></Integer>"
      "<Integer Name=\"C\"><pValueCopy>C1</pValueCopy><pValue>C2</pValue><pValueCopy>C3</pValueCopy></Integer>" +
      reg("IntReg", "C1", at(0)) + reg("IntReg", "C2", at(4)) + reg("IntReg", "C3", at(8)));
  auto& node = map.integer("X");
  EXPECT_EQ(node.GetValue(), 10);
  node.SetValue(11);
  map.integer("Index").SetValue(2);
  EXPECT_EQ(node.GetValue(), 50);
  EXPECT_EQ(node.GetMax(), 60);
  EXPECT_STREQ(node.GetUnit(), "us");
  node.SetValue(55);
  EXPECT_EQ(map.integer("Other").GetValue(), 55);
  EXPECT_EQ(map.number("F").GetValue(), 55);
  map.integer("Index").SetValue(3);
  EXPECT_EQ(node.GetValue(), 99);
  EXPECT_EQ(map.mode("Gap"), NA) << "there is no value for that index, and no default";
  map.integer("Index").SetValue(1);
  EXPECT_EQ(node.GetValue(), 11);
  EXPECT_EQ(map.integer("Gap").GetValue(), 4);
  EXPECT_EQ(map.number("F").GetValue(), 1.5);
  map.integer("C").SetValue(7);
  EXPECT_EQ(map.port.writes, 3);
  EXPECT_EQ(map.port.bytes[8], 7);
  EXPECT_EQ(map.integer("C").GetValue(), 7);
}

TEST(Integers, ListOfValidValues) {
  TestMap map(
      "<Integer Name=\"X\"><Value>2</Value><Max>4</Max><ValidValueSet>1;2; "
      "4;8;0x7FFFFFFFFFFFFFFE</ValidValueSet></Integer>"
      "<Float Name=\"F\"><pValue>X</pValue></Float>");
  EXPECT_EQ(map.integer("X").GetListOfValidValues().size(), 3U);
  EXPECT_EQ(map.integer("X").GetListOfValidValues(false)[3], 8);
  EXPECT_EQ(map.integer("X").GetListOfValidValues(false)[4], 0x7FFFFFFFFFFFFFFE) << "exact, not as a double";
  EXPECT_EQ(map.integer("X").GetIncMode(), listIncrement);
  EXPECT_EQ(map.number("F").GetListOfValidValues(false)[1], 2.0);
  map.integer("X").SetValue(3);
  EXPECT_EQ(map.integer("X").GetValue(), 3) << "the list only informs";
}

TEST(Integers, MayBeReadByTheLimitsOfWhatTheyAreWrittenTo) {
  TestMap map(
      reg("IntReg", "R", at(0)) +
      "<Integer Name=\"X\"><pValue>Y</pValue></Integer><Integer Name=\"Y\"><pValue>R</pValue><pMax>K</pMax></Integer>"
      "<IntSwissKnife Name=\"K\"><pVariable Name=\"A\">X</pVariable><Formula>A+5</Formula></IntSwissKnife>");
  map.integer("X").SetValue(5);
  map.integer("X").SetValue(10);
  EXPECT_EQ(map.integer("K").GetValue(), 15);
  EXPECT_THROW(map.integer("X").SetValue(16), GenICam::OutOfRangeException);
}

TEST(Floats, RoundSnapAndPrint) {
  TestMap map(
      "<Integer Name=\"I\"><Value>0</Value><Min>1</Min><Max>100</Max><Inc>4</Inc></Integer><Float "
      "Name=\"OverI\"><pValue>I</pValue></Float>"
      "<Float Name=\"F\"><Value>2.5</Value><Min>-10</Min><Max>1234.56789</Max><Inc>0.5</Inc></Float><Integer "
      "Name=\"OverF\"><pValue>F</pValue>"
      "</Integer><Float "
      "Name=\"Fixed\"><Value>1</Value><DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>2</DisplayPrecision>"
      "</Float>");
  for (const auto& [written, value] : {std::pair{5.4, 5}, {7.0, 5}, {7.6, 9}, {1.0, 1}}) {
    map.number("OverI").SetValue(written);
    EXPECT_EQ(map.integer("I").GetValue(), value) << written;
  }
  EXPECT_EQ(map.number("OverI").GetInc(), 4.0);
  EXPECT_THROW(map.number("OverI").SetValue(1e30, false), GenICam::OutOfRangeException);
  for (const auto& [written, value] : {std::pair{2.5, 3}, {-2.5, -3}, {2.4, 2}}) {
    map.number("F").SetValue(written);
    EXPECT_EQ(map.integer("OverF").GetValue(), value) << written;
  }
  map.number("F").SetValue(1.23);
  EXPECT_EQ(map.number("F").GetValue(), 1.23) << "a float's increment is not enforced";
  map.number("F").SetValue(1234.56789);
  EXPECT_EQ(map.text("F"), "1234.56") << "what is printed can be written again";
  map.get<IValue>("F").FromString(map.text("F").c_str());
  EXPECT_EQ(map.text("Fixed"), "1.00");
  map.get<IValue>("F").FromString("0x10");
  EXPECT_EQ(map.number("F").GetValue(), 16.0);
  EXPECT_THROW(map.get<IValue>("F").FromString("x"), GenICam::InvalidArgumentException);
}

TEST(Booleans, OnAndOff) {
  TestMap map(reg("IntReg", "R", at(0)) +
              "<Boolean Name=\"B\"><pValue>R</pValue><OnValue>5</OnValue><OffValue>3</OffValue></Boolean>"
              "<Boolean Name=\"C\"><Value>true</Value></Boolean>");
  auto& node = map.get<IBoolean>("B");
  expectThrow<GenICam::RuntimeException>([&] { node.GetValue(); }, "neither OnValue");
  node.SetValue(true);
  EXPECT_EQ(map.port.bytes[0], 5);
  node = false;
  EXPECT_EQ(map.port.bytes[0], 3);
  EXPECT_EQ(map.text("C"), "1");
  for (const auto& [text, value] : {std::pair{"true", true}, {"0", false}, {"1", true}, {"FALSE", false}}) {
    map.get<IValue>("B").FromString(text);
    EXPECT_EQ(node.GetValue(), value) << text;
  }
  EXPECT_THROW(map.get<IValue>("B").FromString("maybe"), GenICam::InvalidArgumentException);
}

TEST(Enumerations, EntriesAndValues) {
  TestMap map(reg("IntReg", "R", at(0)) +
              "<Integer Name=\"Guard\"><Value>0</Value></Integer><Enumeration Name=\"E\">"
              "<EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
              "<EnumEntry Name=\"Slow\"><Value>1</Value><NumericValue>10</NumericValue></EnumEntry>"
              "<EnumEntry Name=\"Fast\"><Value>2</Value><NumericValue>99.6</NumericValue></EnumEntry>"
              "<EnumEntry Name=\"Gone\"><pIsAvailable>Guard</pIsAvailable><Value>3</Value></EnumEntry>"
              "<EnumEntry Name=\"AlsoOff\"><Value>0</Value></EnumEntry><pValue>R</pValue></Enumeration>"
              "<Float Name=\"F\"><pValue>E</pValue></Float><Integer Name=\"I\"><pValue>E</pValue></Integer>");
  auto& node = map.get<IEnumeration>("E");
  NodeList_t entries;
  node.GetEntries(entries);
  EXPECT_THAT(namesOf(entries), ElementsAre("EnumEntry_E_Off", "EnumEntry_E_Slow", "EnumEntry_E_Fast",
                                            "EnumEntry_E_Gone", "EnumEntry_E_AlsoOff"));
  StringList_t symbolics;
  node.GetSymbolics(symbolics);
  EXPECT_EQ(symbolics.size(), 4U) << "without the one that is not available";
  EXPECT_EQ(map.text("E"), "AlsoOff") << "of two entries with one value the later counts";
  node = "Fast";
  EXPECT_EQ(node.GetIntValue(), 2);
  EXPECT_EQ(map.integer("I").GetValue(), 100);
  EXPECT_EQ(map.number("F").GetValue(), 99.6);
  map.number("F").SetValue(20);
  EXPECT_EQ(map.text("E"), "Slow");
  EXPECT_EQ(node.GetEntryByName("Nobody"), nullptr);
  EXPECT_EQ(node.GetEntry(2)->GetValue(), 2);
  EXPECT_EQ(node.GetEntry(7), nullptr);
  expectThrow<GenICam::AccessException>([&] { node = "Gone"; },
                                        "Failed to write enumeration value. Enum entry is not writable");
  expectThrow<GenICam::InvalidArgumentException>([&] { node = "2"; },
                                                 "Feature 'E' : cannot convert value '2', the value is invalid.");
  EXPECT_THROW(node.SetIntValue(7), GenICam::OutOfRangeException);
  node.SetIntValue(7, false);
  EXPECT_EQ(node.GetCurrentEntry(), nullptr);
  EXPECT_THROW(node.GetCurrentEntry(true), GenICam::OutOfRangeException);
  EXPECT_THROW(map.text("E"), GenICam::InvalidArgumentException);
  EXPECT_EQ(node.GetIntValue(), 7);
  node.SetIntValue(3, false);
  EXPECT_EQ(map.text("E"), "Gone") << "reading does not ask whether the entry is available";

  TestMap away(
      "<Integer Name=\"Zero\"><Value>0</Value></Integer>" + reg("IntReg", "R", at(0)) +
      reg("IntReg", "W", at(4), {}, "4", "WO") +
      "<Enumeration Name=\"Na\"><pIsAvailable>Zero</pIsAvailable><EnumEntry Name=\"A\"><Value>0</Value>"
      "<IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>R</pValue><PollingTime>10</PollingTime></Enumeration>"
      "<Enumeration Name=\"Wo\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><pValue>W</pValue></Enumeration>");
  EXPECT_THROW(away.get<IEnumeration>("Na").GetCurrentEntry(), GenICam::AccessException);
  away->Poll(100);
  EXPECT_EQ(away.port.reads, 0) << "a register that the camera may not have is left alone";
  away.get<IEnumeration>("Wo") = "A";
  EXPECT_STREQ(away.get<IEnumeration>("Wo").GetCurrentEntry()->GetSymbolic(), "A");
}

TEST(Enumerations, ReadWhatClearsItselfPastTheCaches) {
  TestMap map(reg("IntReg", "R", at(0)) +
              "<Enumeration Name=\"E\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry><EnumEntry Name=\"Once\">"
              "<Value>1</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry><pValue>R</pValue>"
              "<PollingTime>10</PollingTime></Enumeration>");
  auto& once = map.get<IEnumeration>("E");
  int told = 0;
  Register(&map.node("E"), std::function<void(INode*)>([&](INode*) { ++told; }));
  once = "Once";
  EXPECT_EQ(once.GetIntValue(), 1);
  map.port.put(0, {0});
  map->Poll(10);
  EXPECT_EQ(told, 2) << "by the write and by polling";
  EXPECT_STREQ(once.ToString(), "Off");
  const int reads = map.port.reads;
  map->Poll(10);
  EXPECT_EQ(once.GetIntValue(), 0);
  EXPECT_EQ(told, 2);
  EXPECT_EQ(map.port.reads, reads) << "what stays is cached and not polled";
}

TEST(Commands, AreDoneWhenTheirRegisterSaysSo) {
  TestMap map(reg("IntReg", "R", at(0)) + reg("IntReg", "W", at(4), {}, "4", "WO") +
              "<Command Name=\"C\"><pValue>R</pValue><CommandValue>7</CommandValue></Command>"
              "<Command Name=\"Blind\"><pValue>W</pValue><CommandValue>1</CommandValue></Command>"
              "<Command Name=\"Own\"><Value>0</Value><CommandValue>1</CommandValue></Command>");
  auto& command = map.get<ICommand>("C");
  EXPECT_TRUE(command.IsDone());
  EXPECT_EQ(map.port.reads, 0) << "what was never executed is done";
  command.Execute();
  EXPECT_EQ(map.port.bytes[0], 7);
  EXPECT_FALSE(command.IsDone());
  EXPECT_FALSE(command.IsDone());
  EXPECT_EQ(map.port.reads, 2) << "each question goes to the register";
  map.port.put(0, {0});
  EXPECT_TRUE(command.IsDone());
  EXPECT_TRUE(command.IsDone());
  EXPECT_EQ(map.port.reads, 3);
  map.get<ICommand>("Blind").Execute();
  EXPECT_TRUE(map.get<ICommand>("Blind").IsDone());
  map.get<ICommand>("Own")();
  EXPECT_TRUE(map.get<ICommand>("Own").IsDone());
  map.get<IValue>("C").FromString("1");
  EXPECT_EQ(map.port.bytes[0], 7);
}

TEST(Errors, AreAskedForAfterAVerifiedWrite) {
  TestMap map(
      reg("IntReg", "State", at(0)) + reg("IntReg", "R", at(4)) +
      "<Enumeration Name=\"Error\"><EnumEntry Name=\"None\"><Value>0</Value></EnumEntry><EnumEntry Name=\"TooHot\">"
      "<ToolTip>Let it cool down</ToolTip><DisplayName>Too hot</DisplayName><Value>1</Value></EnumEntry>"
      "<pValue>State</pValue></Enumeration><Integer Name=\"X\"><pError>Error</pError><pValue>R</pValue></Integer>"
      "<Boolean Name=\"B\"><pError>Error</pError><Value>1</Value></Boolean>"
      "<String Name=\"S\"><pError>Error</pError><Value>text</Value></String>"
      "<Enumeration Name=\"E\"><EnumEntry "
      "Name=\"One\"><Value>1</Value></EnumEntry><pError>Error</pError><Value>1</Value>"
      "</Enumeration>");
  map.integer("X").SetValue(1);
  map.port.put(0, {1});
  expectThrow<GenICam::RuntimeException>([&] { map.integer("X").SetValue(2); }, "Too hot : Let it cool down");
  map.integer("X").SetValue(3, false);
  EXPECT_EQ(map.port.bytes[4], 3);
  const std::vector<std::function<void(bool)>> reads{
      [&](bool verify) { map.integer("X").GetValue(verify); },
      [&](bool verify) { map.get<IBoolean>("B").GetValue(verify); },
      [&](bool verify) { map.get<IString>("S").GetValue(verify); },
      [&](bool verify) { map.get<IValue>("S").ToString(verify); },
      [&](bool verify) { map.get<IEnumeration>("E").GetIntValue(verify); }};
  for (const auto& read : reads) {
    EXPECT_NO_THROW(read(false));
    expectThrow<GenICam::RuntimeException>([&] { read(true); }, "Too hot");
  }
  map.node("Error").ImposeAccessMode(NA);
  EXPECT_NO_THROW(map.integer("X").SetValue(4)) << "what cannot say it is none";
}

TEST(Strings, OwnAndOfOthers) {
  TestMap map(
      "<String Name=\"Own\"><Value>text</Value></String><String Name=\"Over\"><pValue>Own</pValue></String>"
      "<String Name=\"Empty\"><Value></Value></String>");
  EXPECT_EQ(map.text("Over"), "text");
  map.get<IString>("Over").SetValue("new");
  EXPECT_STREQ(map.get<IString>("Own").GetValue(), "new");
  EXPECT_EQ(map.text("Empty"), "");
}

TEST(Interfaces, AreFoundWithAndWithoutDynamicCast) {
  TestMap map(reg("IntReg", "R", at(0)) + "<Category Name=\"Root\"><pFeature>R</pFeature></Category>");
  INode* const node = map->GetNode("R");
  EXPECT_EQ(CIntegerPtr(node).operator->(), dynamic_cast<IInteger*>(node));
  EXPECT_EQ(CRegisterPtr(node).operator->(), dynamic_cast<IRegister*>(node));
  EXPECT_EQ(CValuePtr(node).operator->(), dynamic_cast<IValue*>(node));
  EXPECT_FALSE(CFloatPtr(node).IsValid());
  EXPECT_EQ(node->GetPrincipalInterfaceType(), intfIInteger);
  EXPECT_EQ(CNodePtr(CValuePtr(node)).operator->(), node);
  EXPECT_TRUE(CPortPtr(map->GetNode("Device")).IsValid());
  EXPECT_TRUE(CPortConstructPtr(map->GetNode("Device")).IsValid());
  EXPECT_TRUE(CSelectorPtr(node).IsValid());
  int data = 0;
  CNodeUserDataPtr user(node);
  EXPECT_EQ(user->SetUserData(&data), nullptr);
  EXPECT_EQ(user->GetUserData(), &data);
}
