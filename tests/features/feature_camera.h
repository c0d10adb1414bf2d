// A camera with one feature of each kind, and one for each oddity.
#pragma once

#include <cstring>
#include <string>

#include "library_fixture.h"

namespace scripted {

constexpr std::uint32_t kCamera = OVI_MODULE_REMOTE_DEVICE;

inline std::string intReg(const std::string& name, const std::string& address, int length,
                          const std::string& access = "RW", const std::string& more = "") {
  return "<IntReg Name=\"" + name + "\">" + more + "<Address>" + address + "</Address><Length>" +
         std::to_string(length) + "</Length><AccessMode>" + access +
         "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Signed</Sign>"
         "<Endianess>LittleEndian</Endianess></IntReg>\n";
}

inline std::string bytesReg(const std::string& kind, const std::string& name, const std::string& address,
                            std::size_t length) {
  return "<" + kind + " Name=\"" + name + "\"><Address>" + address + "</Address><Length>" + std::to_string(length) +
         "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></" + kind + ">\n";
}

constexpr std::size_t kLongText = 100000;

// Texts outside ASCII: descriptions and cameras have UTF-8, applications the code page of a Windows for western Europe.
#ifdef _WIN32
constexpr const char* kMicroseconds = "\xB5s";
constexpr const char* kGreeting = "Gr\xFC\xDF";
#else
constexpr const char* kMicroseconds = "\xC2\xB5s";
constexpr const char* kGreeting = "Gr\xC3\xBC\xC3\x9F";
#endif

inline std::string featureCamera() {
  std::string nodes = R"(
<Integer Name="Int"><ToolTip>A number.</ToolTip><DisplayName>Whole number</DisplayName><Visibility>Guru</Visibility>
 <pValue>IntRegister</pValue><Min>0</Min><Max>100</Max><Inc>5</Inc><Unit>px</Unit>
 <Representation>Logarithmic</Representation></Integer>
<Integer Name="Unavailable"><pIsAvailable>NotAvailable</pIsAvailable><Value>1</Value></Integer>
<Integer Name="Hidden"><Visibility>Invisible</Visibility><Value>7</Value></Integer>
<Integer Name="NotAFeature"><Value>8</Value></Integer>
<Float Name="Float"><Value>1.5</Value><Min>0.5</Min><Max>10.0</Max><Unit>)"
                      "\xC2\xB5"
                      R"(s</Unit>
 <DisplayNotation>Fixed</DisplayNotation><DisplayPrecision>3</DisplayPrecision></Float>
<Float Name="WideFloat"><Value>2.5</Value><DisplayNotation>Scientific</DisplayNotation>
 <DisplayPrecision>300</DisplayPrecision></Float>
<Boolean Name="Bool"><pValue>BoolRegister</pValue><OnValue>1</OnValue><OffValue>0</OffValue></Boolean>
<Enumeration Name="Mode">
 <EnumEntry Name="A"><DisplayName>First</DisplayName><Value>0</Value></EnumEntry>
 <EnumEntry Name="B"><DisplayName>Second</DisplayName><Value>1</Value></EnumEntry>
 <EnumEntry Name="Gone"><pIsAvailable>NotAvailable</pIsAvailable><Value>2</Value></EnumEntry>
 <EnumEntry Name="D"><DisplayName>Fourth</DisplayName><Value>3</Value></EnumEntry>
 <pValue>ModeRegister</pValue></Enumeration>
<Enumeration Name="WriteOnlyMode"><EnumEntry Name="A"><Value>0</Value></EnumEntry>
 <EnumEntry Name="B"><Value>1</Value></EnumEntry><pValue>WriteOnlyRegister</pValue></Enumeration>
<Enumeration Name="BlindMode"><ImposedAccessMode>WO</ImposedAccessMode><EnumEntry Name="A"><Value>0</Value></EnumEntry>
 <EnumEntry Name="B"><Value>1</Value></EnumEntry><pValue>ModeRegister</pValue></Enumeration>
<Command Name="Go"><pValue>GoRegister</pValue><CommandValue>1</CommandValue></Command>
<Integer Name="Selector"><pValue>SelectorRegister</pValue><pMax>SelectorMax</pMax><pSelected>Int</pSelected>
 <pSelected>Float</pSelected><pSelected>Bool</pSelected></Integer>
<Integer Name="SelectorMax"><Value>3</Value></Integer>
<Category Name="Again"><pFeature>Int</pFeature><pFeature>Deep0</pFeature>
 <pFeature>BlindMode</pFeature></Category>
)";
  nodes += intReg("IntRegister", "0x100", 4) + intReg("Hex", "0x108", 8) + intReg("WriteOnly", "0x110", 4, "WO") +
           intReg("BoolRegister", "0x118", 4) + intReg("ModeRegister", "0x11C", 4) +
           intReg("WriteOnlyRegister", "0x120", 4, "WO") + intReg("GoRegister", "0x124", 4) +
           intReg("SelectorRegister", "0x128", 4) + bytesReg("StringReg", "Text", "0x1000", kLongText) +
           bytesReg("Register", "Raw", "0x400", 16) + bytesReg("Register", "Raw512", "0x800", 512) +
           bytesReg("Register", "Raw513", "0x800", 513);
  const std::string hex = "<Representation>HexNumber</Representation>";
  nodes.insert(nodes.find("<Endianess>LittleEndian</Endianess></IntReg>", nodes.find("\"Hex\"")) +
                   std::strlen("<Endianess>LittleEndian</Endianess>"),
               hex);
  nodes += "<Enumeration Name=\"Many\">";
  for (int i = 0; i < 300; ++i)
    nodes += "<EnumEntry Name=\"E" + std::to_string(i) + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";
  nodes += "<Value>299</Value></Enumeration>\n";
  constexpr int kDeep = 50;
  for (int i = 0; i < kDeep; ++i)
    nodes += "<Category Name=\"Deep" + std::to_string(i) + "\"><pFeature>" +
             (i + 1 < kDeep ? "Deep" + std::to_string(i + 1) : "Bottom</pFeature><pFeature>Hidden") +
             "</pFeature></Category>";
  nodes += "<Integer Name=\"Bottom\"><Value>0</Value></Integer>";
  nodes += "<Integer Name=\"" + std::string(10000, 'n') + "\"><Value>1</Value></Integer>";
  return describe(
      "Int Hex WriteOnly Unavailable Hidden Float WideFloat Bool Mode WriteOnlyMode Go Selector Text Raw "
      "Raw512 Raw513 Many Again " +
          std::string(10000, 'n'),
      nodes);
}

class FeatureTest : public ScriptedCameraTest {
 protected:
  void SetUp() override {
    ScriptedCameraTest::SetUp();
    script().camera.description = featureCamera();
    store(0x100, 40);
    open();
  }

  void store(std::size_t address, std::uint64_t value, std::size_t size = 4) {
    std::memcpy(script().camera.memory.data() + address, &value, size);
  }
  std::uint64_t stored(std::size_t address, std::size_t size = 4) {
    std::uint64_t value = 0;
    std::memcpy(&value, script().camera.memory.data() + address, size);
    return value;
  }
};

}  // namespace scripted
