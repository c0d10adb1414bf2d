// Features as text, raw memory, registers by address and byte order.
#include "feature_camera.h"

namespace scripted {
namespace {

using FeatureText = FeatureTest;

TEST_F(FeatureText, ReadsEveryType) {
  char text[512];
  const auto get = [&](const char* name) {
    std::memset(text, 'x', sizeof text);
    const oviErr code = oviGetFeature(device(), name, text);
    return code == OVI_SUCCESS ? std::string(text) : std::to_string(code) + text;
  };
  for (const auto& [value, want] : {std::pair{std::uint64_t{255}, "0x000000ff"},
                                    {std::uint64_t{0xFFFFFFFF}, "0xffffffff"},
                                    {std::uint64_t{1} << 32U, "0x0000000100000000"},
                                    {UINT64_MAX, "0xffffffffffffffff"}}) {
    store(0x108, value, 8);
    EXPECT_EQ(get("Hex"), want);
  }
  EXPECT_EQ(get("Int"), "40");
  EXPECT_EQ(get("Float"), "1.500");
  EXPECT_EQ(get("WideFloat"), "2.50000000000000000000000000000000000000000000e+00");
  EXPECT_EQ(get("Bool"), "0");
  EXPECT_EQ(get("Mode"), "A");
  EXPECT_EQ(get("Go"), "0");
  EXPECT_EQ(get("Again"), "-105");
  EXPECT_EQ(get("Nope"), "-104");
  EXPECT_EQ(get("WriteOnly"), "-112");
  EXPECT_EQ(get("Raw513"), "-105");
  std::memset(script().camera.memory.data() + 0x800, 'r', 600);
  EXPECT_EQ(get("Raw512"), std::string(511, 'r'));
  std::strcpy(reinterpret_cast<char*>(script().camera.memory.data() + 0x400), "bytes");
  EXPECT_EQ(get("Raw"), "bytes");
  for (const std::size_t length : {511U, 512U, 100000U}) {
    std::memset(script().camera.memory.data() + 0x1000, 't', length);
    EXPECT_EQ(get("Text"), std::string(511, 't')) << length;
  }
  EXPECT_EQ(oviGetFeatureOnModule(device(), "Empty", text, OVI_MODULE_INTERFACE), OVI_SUCCESS);
  EXPECT_STREQ(text, "0");
}

TEST_F(FeatureText, WritesEveryType) {
  struct Case {
    const char* name;
    const char* text;
    oviErr code;
    std::size_t address;
    std::uint64_t value;
  };
  const Case cases[] = {
      {"Bool", "1", OVI_SUCCESS, 0x118, 1},
      {"Bool", "true", OVI_ERR_INVALID_PARAMETER, 0x118, 1},
      {"Bool", "", OVI_ERR_INVALID_PARAMETER, 0x118, 1},
      {"Int", "0x14", OVI_SUCCESS, 0x100, 20},
      {"Int", "abcx1E", OVI_SUCCESS, 0x100, 30},
      {"Int", "0XA", OVI_SUCCESS, 0x100, 10},
      {"Int", "12a", OVI_ERR_INVALID_PARAMETER, 0x100, 10},
      {"Int", "15-3", OVI_SUCCESS, 0x100, 15},
      {"Int", "--5", OVI_ERR_INVALID_PARAMETER, 0x100, 15},
      {"Int", "", OVI_ERR_INVALID_PARAMETER, 0x100, 15},
      {"Int", "x", OVI_ERR_INVALID_PARAMETER, 0x100, 15},
      {"Int", "99999999999999999999", OVI_ERR_INVALID_PARAMETER, 0x100, 15},
      {"Int", "-5", OVI_ERR_UNKNOWN, 0x100, 15},
      {"Hex", "-5", OVI_SUCCESS, 0x108, 0xFFFFFFFB},
      {"Hex", "0x5G", OVI_SUCCESS, 0x108, 5},
      {"Mode", "D", OVI_SUCCESS, 0x11C, 3},
      {"Mode", "3", OVI_ERR_NOT_FOUND, 0x11C, 3},
      {"Go", "whatever", OVI_SUCCESS, 0x124, 1},
      {"Again", "1", OVI_ERR_INVALID_PARAMETER, 0x124, 1},
      {"Nope", "1", OVI_ERR_NOT_FOUND, 0x124, 1},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(oviSetFeature(device(), each.name, each.text), each.code) << each.name << " = " << each.text;
    EXPECT_EQ(stored(each.address), each.value) << each.name << " = " << each.text;
  }
  double number = 0;
  for (const auto& [text, code, value] : {std::tuple{"2.5", OVI_SUCCESS, 2.5},
                                          {"1e3", OVI_ERR_INVALID_PARAMETER, 2.5},
                                          {"+3", OVI_ERR_INVALID_PARAMETER, 2.5},
                                          {".75", OVI_SUCCESS, 0.75},
                                          {"-", OVI_ERR_INVALID_PARAMETER, 0.75},
                                          {"", OVI_ERR_INVALID_PARAMETER, 0.75},
                                          {"3-2", OVI_SUCCESS, 3.0},
                                          {"99", OVI_ERR_UNKNOWN, 3.0}}) {
    EXPECT_EQ(oviSetFeature(device(), "Float", text), code) << text;
    EXPECT_EQ(oviGetFeatureFloat(device(), "Float", &number, kCamera), OVI_SUCCESS);
    EXPECT_EQ(number, value) << text;
  }
  char bytes[512];
  std::memset(bytes, 'w', sizeof bytes);
  EXPECT_EQ(oviSetFeature(device(), "Raw512", bytes), OVI_SUCCESS);
  EXPECT_EQ(script().camera.memory[0x9FF], 'w');
  EXPECT_EQ(script().camera.memory[0xA00], 0);

  // A command that fails is tried five times.
  int attempts = 0;
  script().camera.onWrite = [&attempts](std::uint64_t, std::size_t) {
    ++attempts;
    return GC_ERR_BUSY;
  };
  EXPECT_EQ(oviSetFeature(device(), "Go", ""), OVI_ERR_BUSY);
  EXPECT_EQ(attempts, 5);
}

TEST_F(FeatureText, MovesMemoryInTheCamerasByteOrder) {
  std::vector<std::pair<std::uint64_t, std::uint32_t>> writes;
  script().camera.onWrite = [&](std::uint64_t address, std::size_t) {
    writes.emplace_back(address, static_cast<std::uint32_t>(stored(address)));
    return GC_ERR_SUCCESS;
  };
  script().camera.memory[0x300] = 1;
  script().camera.memory[0x301] = 2;
  script().camera.memory[0x302] = 3;
  script().camera.memory[0x303] = 4;
  store(0xA190, 0x1234);
  std::uint8_t bytes[4] = {};
  char text[16] = "";
  bool little = false;
  EXPECT_EQ(oviReadMemory(device(), 0x300, bytes, 4), OVI_SUCCESS);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(oviGetRegisterValue(device(), "0x300", text, 1), OVI_SUCCESS);
  EXPECT_STREQ(text, "0x4030201");
  EXPECT_EQ(oviGetRegisterValue(device(), "4660", text, 0), OVI_SUCCESS);
  EXPECT_STREQ(text, "0x1234");
  EXPECT_EQ(oviSetRegisterValue(device(), "0x304", "-1", 1), OVI_SUCCESS);
  EXPECT_EQ(oviSetRegisterValue(device(), "0x308", "7", 0), OVI_SUCCESS);
  EXPECT_EQ(writes, (std::vector<std::pair<std::uint64_t, std::uint32_t>>{
                        {0xA18C, 4660}, {0x304, 0xFFFFFFFF}, {0xA184, 0x308}, {0xA188, 7}}));
  EXPECT_EQ(oviIsModuleLittleEndian(device(), kCamera, &little), OVI_SUCCESS);
  EXPECT_TRUE(little);

  script().camera.bigEndian = true;
  open();
  EXPECT_EQ(oviReadMemory(device(), 0x300, bytes, 4), OVI_SUCCESS);
  EXPECT_EQ(std::string(bytes, bytes + 4), "\4\3\2\1");
  const std::uint8_t written[3] = {7, 8, 9};
  EXPECT_EQ(oviWriteMemory(device(), 0x310, written, 3), OVI_SUCCESS);
  EXPECT_EQ(script().camera.memory[0x310], 9);
  EXPECT_EQ(script().camera.memory[0x312], 7);
  EXPECT_EQ(oviIsModuleLittleEndian(device(), kCamera, &little), OVI_SUCCESS);
  EXPECT_FALSE(little);
  EXPECT_EQ(oviIsModuleLittleEndian(device(), OVI_MODULE_LOCAL_DEVICE, &little), OVI_SUCCESS);
  EXPECT_TRUE(little);
  takeLog();

  std::uint8_t byte = 0;
  for (const char* const address : {"", "12a", "0x", "0x100000000"})
    EXPECT_EQ(oviGetRegisterValue(device(), address, text, 1), OVI_ERR_INVALID_PARAMETER) << address;
  EXPECT_EQ(oviReadMemory(device(), 0, nullptr, 1), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviReadMemory(device(), 0, &byte, 0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviReadMemory(0, 0, &byte, 1), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviReadMemory(999999, 0, &byte, 1), OVI_ERR_NOT_FOUND);
  takeLog();
  EXPECT_EQ(oviReadMemory(device(), kMemorySize, &byte, 1), OVI_ERR_INVALID_PARAMETER);
  EXPECT_NE(findInLog(takeLog(1), "Error reading memory on remote device. Error: "), "");
  EXPECT_EQ(oviWriteMemory(device(), kMemorySize, &byte, 1), OVI_ERR_INVALID_PARAMETER);
  EXPECT_NE(findInLog(takeLog(1), "Error writing memory on remote device. Error: "), "");
}

}  // namespace
}  // namespace scripted
