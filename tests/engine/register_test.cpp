// Registers: addresses, byte orders, signs, bit fields, floats and texts.
#include "test_map.h"

using namespace GenApi;
using GenICam::gcstring;

namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();

}  // namespace

TEST(Registers, Integers) {
  struct Case {
    const char* length;
    const char* elements;
    std::vector<int> bytes;
    std::int64_t value, min, max;
  };
  const std::vector<Case> cases{
      {"1", "", {0xFF}, 255, 0, 255},
      {"1", "<Sign>Signed</Sign>", {0xFF}, -1, -128, 127},
      {"2", "<Endianess>LittleEndian</Endianess>", {0x34, 0x12}, 0x1234, 0, 65535},
      {"2", "<Endianess>BigEndian</Endianess><Sign>Signed</Sign>", {0xFF, 0xFE}, -2, -32768, 32767},
      {"3", "<Endianess>BigEndian</Endianess>", {1, 2, 3}, 0x010203, 0, 0xFFFFFF},
      {"4", "", {0xFF, 0xFF, 0xFF, 0xFF}, 0xFFFFFFFF, 0, 0xFFFFFFFF},
      {"8", "<Endianess>BigEndian</Endianess>", {0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, kMax, 0, kMax},
      {"8", "", {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, -1, 0, kMax},
      {"8", "<Sign>Signed</Sign>", {0, 0, 0, 0, 0, 0, 0, 0x80}, kMin, kMin, kMax},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.length) + c.elements);
    TestMap map(reg("IntReg", "R", at(0), c.elements, c.length));
    for (std::size_t i = 0; i < c.bytes.size(); ++i) {
      map.port.bytes[static_cast<std::int64_t>(i)] = static_cast<std::uint8_t>(c.bytes[i]);
    }
    auto& node = map.integer("R");
    EXPECT_EQ(node.GetValue(), c.value);
    EXPECT_EQ(node.GetMin(), c.min);
    EXPECT_EQ(node.GetMax(), c.max);
    const auto before = map.port.bytes;
    node.SetValue(c.value, false);
    EXPECT_EQ(map.port.bytes, before) << "writing back what was read changes nothing";
  }
  for (const char* const length : {"0", "9"}) {
    TestMap map(reg("IntReg", "R", at(0), {}, length));
    expectThrow<GenICam::RuntimeException>([&] { map.integer("R").GetValue(); }, "holds no integer");
  }
}

TEST(Registers, BitFields) {
  struct Case {
    const char* length;
    const char* elements;
    std::uint64_t whole;  // as the register's own byte order reads it
    std::int64_t value, min, max;
  };
  const std::vector<Case> cases{
      {"4", "<LSB>8</LSB><MSB>15</MSB><Endianess>LittleEndian</Endianess>", 0x0000AB00, 0xAB, 0, 255},
      {"4", "<LSB>15</LSB><MSB>8</MSB><Endianess>LittleEndian</Endianess>", 0x0000AB00, 0xAB, 0,
       255},  // wrong way round
      {"2", "<LSB>11</LSB><MSB>0</MSB><Endianess>BigEndian</Endianess>", 0xABC5, 0xABC, 0, 4095},
      {"2", "<LSB>0</LSB><MSB>11</MSB><Endianess>BigEndian</Endianess>", 0xABC5, 0xABC, 0, 4095},
      {"4", "<Bit>31</Bit><Endianess>LittleEndian</Endianess>", 0x80000000, 1, 0, 1},
      {"4", "<Bit>31</Bit><Endianess>BigEndian</Endianess>", 1, 1, 0, 1},
      {"4", "<LSB>4</LSB><MSB>7</MSB><Sign>Signed</Sign><Endianess>LittleEndian</Endianess>", 0xF0, -1, -8, 7},
      {"8", "<LSB>32</LSB><MSB>63</MSB><Endianess>LittleEndian</Endianess>", 0xFFFFFFFF00000000, 0xFFFFFFFF, 0,
       0xFFFFFFFF},
      {"8", "<LSB>0</LSB><MSB>63</MSB><Endianess>LittleEndian</Endianess>", 5, 5, 0, -1},
      {"8", "<LSB>0</LSB><MSB>63</MSB><Sign>Signed</Sign><Endianess>LittleEndian</Endianess>", 5, 5, kMin, kMax},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.elements);
    TestMap map(reg("MaskedIntReg", "M", at(0), c.elements, c.length));
    const int size = c.length[0] - '0';
    const bool big = std::string(c.elements).find("BigEndian") != std::string::npos;
    const auto whole = [&] {
      std::uint64_t value = 0;
      for (int i = 0; i < size; ++i) {
        value = (value << 8) | map.port.bytes[big ? i : size - 1 - i];
      }
      return value;
    };
    for (int i = 0; i < size; ++i) {
      map.port.bytes[big ? size - 1 - i : i] = static_cast<std::uint8_t>(c.whole >> (8 * i));
    }
    auto& node = map.integer("M");
    EXPECT_EQ(node.GetValue(), c.value);
    EXPECT_EQ(node.GetMin(), c.min);
    EXPECT_EQ(node.GetMax(), c.max);
    node.SetValue(0, false);
    EXPECT_EQ(node.GetValue(), 0);
    node.SetValue(c.value, false);
    EXPECT_EQ(whole(), c.whole) << "the other bits are what they were";
  }
  TestMap outside(reg("MaskedIntReg", "M", at(0), "<Bit>32</Bit>"));
  expectThrow<GenICam::RuntimeException>([&] { outside.integer("M").GetValue(); }, "do not lie in a register");
  TestMap negative(reg("MaskedIntReg", "M", at(0), "<LSB>-1</LSB><MSB>3</MSB>"));
  expectThrow<GenICam::RuntimeException>([&] { negative.integer("M").GetValue(); }, "do not lie in a register");
  TestMap writeOnly(reg("MaskedIntReg", "M", at(0), "<Bit>3</Bit>", "4", "WO"));
  EXPECT_THROW(writeOnly.integer("M").SetValue(1), GenICam::AccessException);
  EXPECT_EQ(writeOnly.port.reads + writeOnly.port.writes, 0);
}

TEST(Registers, AddressIsTheSumOfItsParts) {
  const std::string others =
      "<Integer Name=\"Base\"><Value>0x100</Value></Integer><Integer Name=\"Index\"><Value>3</Value></Integer>"
      "<Integer Name=\"Step\"><Value>16</Value></Integer>";
  struct Case {
    const char* parts;
    std::int64_t address;
  };
  const std::vector<Case> cases{
      {"<Address>8</Address>", 8},
      {"<Address>-8</Address>", -8},
      {"<Address>8</Address><Address>0x10</Address>", 24},
      {"<Address>8</Address><pAddress>Base</pAddress>", 0x108},
      {"<pAddress>Base</pAddress><pAddress>Base</pAddress>", 0x200},
      {"<Address>8</Address><pIndex Offset=\"8\">Index</pIndex>", 32},
      {"<Address>8</Address><pIndex Offset=\"0x8\">Index</pIndex><pIndex Offset=\"1\">Index</pIndex>", 35},
      {"<Address>8</Address><pIndex pOffset=\"Step\">Index</pIndex>", 56},
      {"<Address>8</Address><pIndex>Index</pIndex>", 20},
      {"<IntSwissKnife Name=\"K\"><pVariable "
       "Name=\"B\">Base</pVariable><Formula>B*2</Formula></IntSwissKnife><Address>1</Address>",
       0x201},
  };
  for (const auto& [parts, address] : cases) {
    SCOPED_TRACE(parts);
    TestMap map(others + reg("IntReg", "R", parts));
    EXPECT_EQ(map.get<IRegister>("R").GetAddress(), address);
    map.port.bytes[address] = 77;
    EXPECT_EQ(map.integer("R").GetValue(), 77);
  }
  TestMap moving(others + reg("IntReg", "R", "<pIndex Offset=\"4\">Index</pIndex>"));
  moving.port.bytes[12] = 1;
  moving.port.bytes[20] = 2;
  EXPECT_EQ(moving.integer("R").GetValue(), 1);
  moving.integer("Index").SetValue(5);
  EXPECT_EQ(moving.integer("R").GetValue(), 2);
  EXPECT_EQ(moving.get<IRegister>("R").GetAddress(), 20);
}

TEST(Registers, Floats) {
  TestMap map(reg("FloatReg", "Single", at(0), "<Endianess>BigEndian</Endianess>") +
              reg("FloatReg", "Double", at(8), {}, "8") + reg("FloatReg", "Odd", at(16), {}, "3"));
  map.port.put(0, {0x3F, 0xC0, 0, 0});
  EXPECT_EQ(map.number("Single").GetValue(), 1.5);
  map.number("Double").SetValue(-0.1);
  EXPECT_EQ(map.port.bytes[15], 0xBF);
  EXPECT_EQ(map.number("Double").GetValue(false, true), -0.1);
  EXPECT_EQ(map.number("Single").GetMax(), double{std::numeric_limits<float>::max()});
  EXPECT_EQ(map.number("Double").GetMin(), std::numeric_limits<double>::lowest());
  EXPECT_FALSE(map.number("Single").HasInc());
  expectThrow<GenICam::RuntimeException>([&] { map.number("Single").GetInc(); }, "node does not have an increment.");
  EXPECT_THROW(map.number("Single").SetValue(1e200, false), GenICam::OutOfRangeException);
  EXPECT_THROW(map.number("Single").SetValue(std::numeric_limits<double>::quiet_NaN()), GenICam::OutOfRangeException);
  expectThrow<GenICam::RuntimeException>([&] { map.number("Odd").GetValue(); }, "no floating-point number");
}

TEST(Registers, Texts) {
  TestMap map(reg("StringReg", "S", at(0), {}, "4") + reg("StringReg", "Fixed", at(8), {}, "4", "RO"));
  map.port.put(0, {'a', 'b', 0, 'x'});
  map.port.put(8, {'a', 'b', 'c', 'd'});
  EXPECT_EQ(map.text("S"), "ab");
  EXPECT_EQ(map.text("Fixed"), "abcd");
  EXPECT_EQ(map.get<IString>("S").GetMaxLength(), 4);
  auto& text = map.get<IString>("S");
  text.SetValue("wxyz");
  EXPECT_EQ(map.port.bytes[3], 'z');
  text.SetValue("q");
  EXPECT_EQ(map.port.bytes[1], 0);
  EXPECT_EQ(map.port.bytes[3], 0) << "the rest is filled";
  text = gcstring();
  EXPECT_EQ(map.text("S"), "");
  EXPECT_THROW(text.SetValue("12345"), GenICam::OutOfRangeException);
}

TEST(Registers, Bytes) {
  TestMap map(
      reg("Register", "R", at(0), {}, "4") +
      "<Integer Name=\"Size\"><Value>2</Value></Integer>"
      "<Register "
      "Name=\"Sized\"><Address>16</Address><pLength>Size</pLength><AccessMode>RW</AccessMode><pPort>Device</pPort>"
      "</Register><Integer Name=\"Huge\"><Value>0x7FFFFFFFFFFFFFFF</Value></Integer>"
      "<Register Name=\"Absurd\"><Address>16</Address><pLength>Huge</pLength><pPort>Device</pPort></Register>");
  auto& node = map.get<IRegister>("R");
  map.port.put(0, {1, 2, 3, 0xAB});
  EXPECT_EQ(map.text("R"), "0x010203ab");
  std::uint8_t buffer[6] = {9, 9, 9, 9, 9, 9};
  node.Get(buffer, 2);
  EXPECT_THAT(buffer, testing::ElementsAre(1, 2, 9, 9, 9, 9));
  node.Get(buffer, 6);
  EXPECT_THAT(buffer, testing::ElementsAre(1, 2, 3, 0xAB, 0, 0)) << "what the register does not hold is zero";
  node.Set(buffer + 2, 1);
  EXPECT_EQ(map.text("R"), "0x030203ab") << "a shorter write leaves the rest alone";
  map.get<IValue>("R").FromString("0xFFEEDDCC");
  EXPECT_EQ(map.port.bytes[1], 0xEE);
  EXPECT_THROW(map.get<IValue>("R").FromString("0xFF"), GenICam::InvalidArgumentException);
  EXPECT_EQ(map.get<IRegister>("Sized").GetLength(), 2);
  map.integer("Size").SetValue(5);
  EXPECT_EQ(map.get<IRegister>("Sized").GetLength(), 5);
  expectThrow<GenICam::RuntimeException>([&] { map.get<IRegister>("Absurd").GetLength(); }, "The register's length is");
  EXPECT_THROW(node.Get(nullptr, 4), GenICam::InvalidArgumentException);
}

TEST(Registers, PartsOfThemAreNeverStale) {
  TestMap map("<Integer Name=\"Trigger\"><Value>0</Value></Integer>" +
              reg("Register", "R", at(0), "<pInvalidator>Trigger</pInvalidator>", "4"));
  auto& node = map.get<IRegister>("R");
  std::uint8_t buffer[4] = {7, 7, 7, 7};
  const auto startOf = [&](std::int64_t length) {
    node.Get(buffer, length);
    return buffer[0];
  };
  const auto cameraPuts = [&](std::uint8_t value) {
    map.port.put(0, {value, value, value, value});
    map.integer("Trigger").SetValue(1);
  };
  // A part that was written or read does not come back once the register was invalidated.
  node.Set(buffer, 2);
  cameraPuts(1);
  EXPECT_EQ(startOf(4), 1);
  cameraPuts(2);
  EXPECT_EQ(startOf(2), 2);
  EXPECT_EQ(startOf(4), 2);
  EXPECT_EQ(startOf(2), 2);
  cameraPuts(3);
  EXPECT_EQ(startOf(4), 3);
  EXPECT_EQ(startOf(2), 3);
  map.port.put(0, {4, 4, 4, 4});
  EXPECT_EQ(startOf(2), 3) << "a part of what is known is not asked for again";
}

TEST(Registers, PortsSwapWordsAndRecord) {
  TestMap map(
      "<Port Name=\"Swapping\"><SwapEndianess>Yes</SwapEndianess></Port><IntReg "
      "Name=\"R\"><Address>0</Address><Length>4</Length>"
      "<AccessMode>RW</AccessMode><pPort>Swapping</pPort><Endianess>BigEndian</Endianess></IntReg>");
  EXPECT_TRUE(map->Connect(&map.port, "Swapping"));
  map.integer("R").SetValue(0x01020304);
  EXPECT_EQ(map.port.bytes[0], 4);
  EXPECT_EQ(map.integer("R").GetValue(false, true), 0x01020304);
}

TEST(Registers, LackPortLengthOrAccessMode) {
  TestMap map("<IntReg Name=\"R\"><Address>4</Address></IntReg>");
  map.port.put(4, {5});
  EXPECT_EQ(map.mode("R"), RO);
  EXPECT_EQ(map.integer("R").GetValue(), 5);
  EXPECT_EQ(map.get<IRegister>("R").GetLength(), 4);
  TestMap two("<IntReg Name=\"R\"><Address>4</Address><Length>4</Length></IntReg>");
  two.port.put(4, {5});
  EXPECT_EQ(two.integer("R").GetValue(), 5);
  two.node("Device").InvalidateNode();
  two.port.put(4, {6});
  EXPECT_EQ(two.integer("R").GetValue(), 6) << "the implied port counts as a reference";
}
