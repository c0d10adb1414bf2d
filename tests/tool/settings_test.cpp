// Settings saved, compared and brought back.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(Settings, ComeBackFromAFileInWhateverOrderTheyDependOnEachOther) {
  // The offset fits only after the width is smaller, whose line comes first here.
  const Outcome saved =
      ovi(words("save set.txt -c Mono --set Width=320 --set OffsetX=64 --set ExposureTime=1234 --set "
                "PixelFormat=Mono12p"));
  ASSERT_EQ(saved.code, 0) << saved.err;
  const std::string text = readText("set.txt");
  for (const char* line :
       {"\nWidth = 320\n", "\nOffsetX = 64\n", "\nPixelFormat = Mono12p\n", "\nExposureTime = 1234\n"})
    EXPECT_THAT(text, HasSubstr(line));
  for (const char* other : {"\nDeviceUserID", "\nFileAccess", "\nTLParamsLocked"})
    EXPECT_THAT(text, Not(HasSubstr(other)));

  const Outcome different = ovi(words("diff set.txt -c Mono"));
  EXPECT_EQ(different.code, 1);
  EXPECT_THAT(different.out, HasSubstr("Width\t1280\t320"));
  EXPECT_THAT(different.err, HasSubstr("ovi load set.txt --camera Mono"));

  const Outcome loaded = ovi(words("load set.txt -c Mono"));
  EXPECT_EQ(loaded.code, 0) << loaded.err;
  writeText("turned.txt", "OffsetX = 64\nWidth = 320\n");
  EXPECT_EQ(ovi(words("load turned.txt -c Mono")).code, 0);

  const Outcome same =
      ovi(words("diff set.txt -c Mono --set Width=320 --set OffsetX=64 --set ExposureTime=1234 --set "
                "PixelFormat=Mono12p"));
  EXPECT_EQ(same.code, 0) << same.out << same.err;
  EXPECT_THAT(same.out, IsEmpty());
}

TEST(Settings, SayWhatCouldNotBeSetAndWhy) {
  writeText(
      "wrong.txt",
      "# a comment\n\nWidth = 320\nHieght = 10\nTriggerDelay [TriggerSelector=Nothing] = 1\nPixelFormat = RGB8\n");
  const Outcome run = ovi(words("load wrong.txt -c Mono --json"));
  EXPECT_EQ(run.code, 1);
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["settings"], 4);
  EXPECT_EQ(json["failed"].size(), 3U);
  for (const char* said : {"3 of 4 settings", "Did you mean Height?", "\"Nothing\"", "no entry \"RGB8\""})
    EXPECT_THAT(run.err, HasSubstr(said));

  writeText("broken.txt", "Width = 320\nnothing at all\n");
  const Outcome broken = ovi(words("load broken.txt -c Mono"));
  EXPECT_EQ(broken.code, 2);
  EXPECT_THAT(broken.err, HasSubstr("broken.txt, line 2: \"nothing at all\""));
}

TEST(Settings, OfACameraWithOddFeatures) {
  const auto odd = [](const std::string& command) { return ovi(words(command + " --producer " ODD_PRODUCER)); };
  // What cannot be read is told and costs nothing else; a selector may reach to the largest number.
  const Outcome saved = odd("save odd.txt");
  EXPECT_EQ(saved.code, 0) << saved.err;
  EXPECT_THAT(saved.err, HasSubstr("note: Unreadable is missing: Unreadable cannot be read: IO-Error"));
  EXPECT_THAT(saved.err, HasSubstr("note: Unmatched is missing: "));
  const std::string text = readText("odd.txt");
  for (const char* line : {"# Unreadable is missing: ", "# the camera's description marks no feature as streamable: ",
                           "\nUnwritable = 0\n",
                           "\nSelected [LastSelector=9223372036854775806] = 0\nSelected "
                           "[LastSelector=9223372036854775807] = 0\n"})
    EXPECT_THAT(text, HasSubstr(line));
  writeText("odd.txt", "\xEF\xBB\xBFUnwritable = 0\n");
  EXPECT_EQ(odd("load odd.txt").code, 0);

  // Limits that nobody can read forbid nothing.
  EXPECT_EQ(odd("set WriteOnly=5 WriteOnlyFloat=1.5 Unreadable=3").code, 1);
  EXPECT_EQ(odd("set WriteOnly=5 WriteOnlyFloat=1.5 Bytes=0102").code, 0);
  EXPECT_THAT(odd("set WriteOnly=much").err, HasSubstr("WriteOnly = much is no integer: "));
  EXPECT_THAT(odd("set Bytes=0102030405").err, HasSubstr("Bytes = 0102030405 is too long: 4 bytes"));
  const Outcome refused = odd("set Unwritable=1");
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.err, HasSubstr("Failed to set parameter! Parameter: Unwritable, Value: 1"));

  // What forbids it is told, though it is no feature.
  EXPECT_THAT(odd("set Locked=5").err, HasSubstr("Locked = 5: the feature is read-only now. LockReg = 1 locks it."));
  EXPECT_THAT(odd("set Mode=Fast").err,
              HasSubstr("Mode = Fast: the entry is not available now. Unlocked = 0 (from LockReg = 1) makes it "
                        "unavailable."));

  const Outcome table = odd("features");
  EXPECT_THAT(table.out, HasSubstr("\nWriteOnly\tinteger\two\t\t\t\n"));
  // What a terminal would obey is shown, also within JSON, and is the same text for whoever parses that. Windows takes
  // the last of the bytes as a character of its code page, others as none.
  const Outcome value = odd("get Text");
  const Outcome data = odd("features --json");
#ifndef _WIN32
  EXPECT_EQ(value.out, "two\\nlines, \\u001B[2J\\u007F no \\xE4 UTF-8\n");
#endif
  EXPECT_THAT(table.out, HasSubstr("\ttwo\\nlines, \\u001B[2J\\u007F no "));
  for (const std::string& shown : {table.out, value.out, data.out})
    EXPECT_EQ(shown.find_first_of("\x1B\x7F"), std::string::npos) << shown;
  const nlohmann::json json = nlohmann::json::parse(data.out);
  EXPECT_THAT(json.at(5)["value"].get<std::string>(),
              testing::AllOf(testing::StartsWith("two\nlines, \x1B[2J\x7F no "), testing::EndsWith(" UTF-8")));
  EXPECT_FALSE(json.at(0).contains("range"));
}

constexpr const char* kOddDescription = R"(<RegisterDescription ModelName="Odd" VendorName="Kestrova"
 SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
 SubMinorVersion="0" xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root"><pFeature>Gain</pFeature><pFeature>Table</pFeature><pFeature>Other</pFeature>
 <pFeature>Label</pFeature><pFeature>Held</pFeature><pFeature>Bounded</pFeature><pFeature>Hidden</pFeature>
 <pFeature>Sum</pFeature><pFeature>Arrival</pFeature><pFeature>Which</pFeature></Category>
<Integer Name="Gain"><Streamable>Yes</Streamable><pValue>GainReg</pValue></Integer>
<IntReg Name="GainReg"><Address>0x100</Address><pIndex Offset="4">WhichReg</pIndex><Length>4</Length>
 <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="Which"><Streamable>Yes</Streamable><EnumEntry Name="A"><Value>0</Value></EnumEntry>
 <EnumEntry Name="B"><Value>1</Value></EnumEntry><pValue>WhichReg</pValue><pSelected>Gain</pSelected></Enumeration>
<IntReg Name="WhichReg"><Address>0x150</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Register Name="Table"><Streamable>Yes</Streamable><Address>0x120</Address><Length>4</Length>
 <AccessMode>RW</AccessMode><pPort>Device</pPort></Register>
<StringReg Name="Label"><Streamable>Yes</Streamable><Address>0x200</Address><Length>16</Length>
 <AccessMode>RW</AccessMode><pPort>Device</pPort></StringReg>
<Integer Name="Other"><Value>3</Value></Integer>
<Integer Name="Held"><pValue>HeldReg</pValue></Integer>
<IntReg Name="HeldReg"><pIsLocked>LockReg</pIsLocked><Address>0x130</Address><Length>4</Length>
 <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="LockReg"><Address>0x140</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Integer Name="Bounded"><pIsLocked>Zero</pIsLocked><Value>1</Value><Min>0</Min><pMax>Bound</pMax></Integer>
<IntSwissKnife Name="Bound"><pVariable Name="O">Other</pVariable><Formula>O * 2</Formula></IntSwissKnife>
<Integer Name="Zero"><Value>0</Value></Integer>
<Integer Name="Hidden"><pIsImplemented>Zero</pIsImplemented><Value>0</Value></Integer>
<IntSwissKnife Name="Sum"><pVariable Name="O">Other</pVariable><Formula>O + 1</Formula></IntSwissKnife>
<IntReg Name="Arrival"><Address>0</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>EventPort</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Port Name="Device"></Port><Port Name="EventPort"><EventID>9001</EventID></Port>
</RegisterDescription>)";

TEST(Settings, AreWhatTheDescriptionMarksAndRefusalsNameTheNodeThatForbids) {
  writeText("streamable.xml", kOddDescription);
  const Environment description("ODD_DESCRIPTION", std::filesystem::absolute("streamable.xml").string());
  const auto odd = [](const std::string& command) { return ovi(words(command + " --producer " ODD_PRODUCER)); };
  const Outcome saved = odd("save marked.txt --set Which=B --set Gain=5 --set Table=0a0b0c0d --set Label=007");
  EXPECT_EQ(saved.code, 0) << saved.err;
  EXPECT_THAT(
      readText("marked.txt"),
      testing::EndsWith("\nGain [Which=A] = 0\nGain [Which=B] = 5\nWhich = B\nTable = 0a0b0c0d\nLabel = 007\n"));
  // The selector is a setting too: it ends where the file has it, whichever line was the last to move it.
  writeText("turned.txt", "Which = B\nTable = 0x0A0B 0C0D\nLabel = 007\nGain [Which=B] = 5\nGain [Which=A] = 7\n");
  EXPECT_EQ(odd("load turned.txt").code, 0);
  const Outcome differs = odd("diff marked.txt --set Table=0a0b0c0d --set Label=7");
  EXPECT_THAT(differs.out, testing::EndsWith("\nGain [Which=B]\t0\t5\nWhich\tA\tB\nLabel\t7\t007\n"));

  for (const auto& [command, said] : std::vector<std::pair<const char*, const char*>>{
           {"set Held=1", "LockReg = 1 locks HeldReg, which is behind Held."},
           {"set Bounded=7", "nearest 6. Its maximum depends on Other = 3."},
           {"set Bounded=-1", "nearest 0. Its minimum is fixed in the camera's description."},
           {"set Sum=1", "It is computed from Other = 3 and can never be set."},
           {"set Arrival=1", "Arrival is filled by an event, and none has come."},
           {"get Hidden", "Zero = 0: this camera does not have it."},
           {"get Arrival", "Arrival is filled by an event, and none has come."}})
    EXPECT_THAT(odd(command).err, HasSubstr(said));
}

}  // namespace
}  // namespace tool_test
