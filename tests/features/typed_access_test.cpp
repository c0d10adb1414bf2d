// Typed access: every result code with its log line, on every module.
#include <functional>

#include "feature_camera.h"
#include "gmock/gmock.h"

namespace scripted {
namespace {

using TypedAccess = FeatureTest;

TEST_F(TypedAccess, AnswersWithCodeAndLogLine) {
  std::int64_t integer = -1;
  double number = -1;
  bool flag = false;
  std::size_t size = 0;
  oviFeatureParameter record;
  std::uint8_t bytes[16] = {};
  const std::string unknown = "Node for parameter was not found! Parameter: Nope";
  const auto mismatch = [](const std::string& name, int type) {
    return "Node for parameter was found but of different type than requested! Parameter: " + name +
           " - GenApi node type (int): " + std::to_string(type);
  };
  struct Case {
    const char* what;
    std::function<oviErr()> call;
    oviErr code;
    std::vector<LogLine> log;
  };
  const Case cases[] = {
      {"unknown name",
       [&] { return oviGetFeatureInt(device(), "Nope", &integer, kCamera); },
       OVI_ERR_NOT_FOUND,
       {{2, unknown}, {2, "Failed to get parameter! Parameter: Nope Error: Feature node was not found!"}}},
      {"unknown name, set",
       [&] { return oviSetFeatureInt(device(), "Nope", 3, kCamera); },
       OVI_ERR_NOT_FOUND,
       {{2, unknown}, {2, "Failed to set parameter! Parameter: Nope, Value: 3 Error: Feature node was not found!"}}},
      {"other type",
       [&] { return oviGetFeatureFloat(device(), "Int", &number, kCamera); },
       OVI_ERR_NOT_FOUND,
       {{1, mismatch("Int", 2)}, {2, "Failed to get parameter! Parameter: Int Error: Feature node was not found!"}}},
      {"other type, set",
       [&] { return oviSetFeatureBool(device(), "Float", true, kCamera); },
       OVI_ERR_NOT_FOUND,
       {{1, mismatch("Float", 5)},
        {2, "Failed to set parameter! Parameter: Float, Value: 1 Error: Feature node was not found!"}}},
      {"not available",
       [&] { return oviGetFeatureInt(device(), "Unavailable", &integer, kCamera); },
       OVI_ERR_NO_ACCESS,
       {{2, "Failed to get parameter! Parameter: Unavailable Error: Feature node was not readable!"}}},
      {"write only",
       [&] { return oviGetFeatureInt(device(), "WriteOnly", &integer, kCamera); },
       OVI_ERR_NO_ACCESS,
       {{2, "Failed to get parameter! Parameter: WriteOnly Error: Feature node was not readable!"}}},
      {"not writable",
       [&] { return oviSetFeatureInt(device(), "Unavailable", 5, kCamera); },
       OVI_ERR_NO_ACCESS,
       {{2, "Failed to set parameter! Parameter: Unavailable, Value: 5 Error: Feature node was not writable!"}}},
      {"entry unknown",
       [&] { return oviSetFeatureEnum(device(), "Mode", "X", kCamera); },
       OVI_ERR_NOT_FOUND,
       {{1,
         "Failed to set enumeration parameter to entry! Parameter: Mode, Entry value: X Error: Enum entry not "
         "found!"}}},
      {"entry unknown, as text",
       [&] { return oviSetFeatureString(device(), "Mode", "X", kCamera); },
       OVI_ERR_NOT_FOUND,
       {{1,
         "Failed to set enumeration parameter to entry! Parameter: Mode, Entry value: X Error: Enum entry not "
         "found!"}}},
      {"no enumeration", [&] { return oviSetFeatureEnum(device(), "Int", "A", kCamera); }, OVI_ERR_NOT_FOUND, {}},
      {"command unknown",
       [&] { return oviExecuteCommand(device(), "Nope", kCamera); },
       OVI_ERR_NOT_FOUND,
       {{2, unknown}, {1, "Failed to execute command parameter! Parameter: Nope Error: Bad node for device!"}}},
      {"state of no command",
       [&] { return oviIsCommandActive(device(), "Int", &flag, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {{1, mismatch("Int", 2)},
        {1, "Failed to execute command parameter! Parameter: Int Error: Bad node for device!"}}},
      {"register of no register",
       [&] { return oviSetFeatureReg(device(), "Float", bytes, 4, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {{1, mismatch("Float", 5)}}},
      {"entry of no enumeration",
       [&] { return oviGetFeatureEnum(device(), "Int", &record, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {{1, mismatch("Int", 2)}}},
      {"null value",
       [&] { return oviGetFeatureInt(device(), "Int", nullptr, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {}},
      {"null size",
       [&] { return oviGetFeatureString(device(), "Text", nullptr, nullptr, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {}},
      {"null name",
       [&] { return oviGetFeatureFloat(device(), nullptr, &number, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {}},
      {"null name, set",
       [&] { return oviSetFeatureFloat(device(), nullptr, 1, kCamera); },
       OVI_ERR_INVALID_PARAMETER,
       {}},
      {"handle 0", [&] { return oviGetFeatureBool(0, "Bool", &flag, kCamera); }, OVI_ERR_INVALID_PARAMETER, {}},
      {"handle 0, command", [&] { return oviExecuteCommand(0, "Go", kCamera); }, OVI_ERR_INVALID_PARAMETER, {}},
      {"length 0", [&] { return oviSetFeatureReg(device(), "Raw", bytes, 0, kCamera); }, OVI_ERR_INVALID_PARAMETER, {}},
      {"unknown handle",
       [&] { return oviGetFeatureString(999999, "Text", nullptr, &size, kCamera); },
       OVI_ERR_NOT_FOUND,
       {{2, "Failed to get parameter! Parameter: Text Error: Feature node was not found!"}}},
      {"selector 0",
       [&] { return oviGetFeatureInt(device(), "Int", &integer, 0); },
       OVI_ERR_NOT_FOUND,
       {{2, "Failed to get parameter! Parameter: Int Error: Feature node was not found!"}}},
      {"selector 7",
       [&] { return oviGetFeatureInt(device(), "Int", &integer, 7); },
       OVI_ERR_NOT_FOUND,
       {{2, "Failed to get parameter! Parameter: Int Error: Feature node was not found!"}}},
      {"no stream above",
       [&] { return oviGetFeatureInt(device(), "Empty", &integer, OVI_MODULE_DATA_STREAM); },
       OVI_ERR_NOT_FOUND,
       {{2, "Failed to get parameter! Parameter: Empty Error: Feature node was not found!"}}},
      {"system", [&] { return oviGetFeatureInt(device(), "Empty", &integer, OVI_MODULE_SYSTEM); }, OVI_SUCCESS, {}},
      {"interface",
       [&] { return oviGetFeatureInt(device(), "Empty", &integer, OVI_MODULE_INTERFACE); },
       OVI_SUCCESS,
       {}},
      {"local device",
       [&] { return oviGetFeatureInt(device(), "Empty", &integer, OVI_MODULE_LOCAL_DEVICE); },
       OVI_SUCCESS,
       {}},
  };
  takeLog();
  for (const Case& each : cases) {
    SCOPED_TRACE(each.what);
    EXPECT_EQ(each.call(), each.code);
    EXPECT_EQ(takeLog(), each.log);
  }
  EXPECT_EQ(size, 0U);
}

TEST_F(TypedAccess, ReadsAndWritesEveryType) {
  std::int64_t integer = 77;
  double number = 0;
  bool flag = false;
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 45, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &integer, kCamera), OVI_SUCCESS);
  EXPECT_EQ(integer, 45);
  EXPECT_EQ(oviGetFeatureInt(device(), "NotAFeature", &integer, kCamera), OVI_SUCCESS);
  EXPECT_EQ(integer, 8);
  EXPECT_EQ(oviSetFeatureFloat(device(), "Float", 2.25, kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviGetFeatureFloat(device(), "Float", &number, kCamera), OVI_SUCCESS);
  EXPECT_EQ(number, 2.25);
  EXPECT_EQ(oviSetFeatureBool(device(), "Bool", true, kCamera), OVI_SUCCESS);
  EXPECT_EQ(stored(0x118), 1U);
  EXPECT_EQ(oviGetFeatureBool(device(), "Bool", &flag, kCamera), OVI_SUCCESS);
  EXPECT_TRUE(flag);

  // An enumeration as an integer: read, but not handed out.
  EXPECT_EQ(oviSetFeatureEnum(device(), "Mode", "D", kCamera), OVI_SUCCESS);
  integer = 77;
  EXPECT_EQ(oviGetFeatureInt(device(), "Mode", &integer, kCamera), OVI_SUCCESS);
  EXPECT_EQ(integer, 77);
  char text[16] = "";
  std::size_t size = sizeof text;
  EXPECT_EQ(oviGetFeatureString(device(), "Mode", text, &size, kCamera), OVI_SUCCESS);
  EXPECT_STREQ(text, "D");
  store(0x11C, 9);
  EXPECT_EQ(oviGetFeatureInt(device(), "Mode", &integer, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviGetFeatureString(device(), "Mode", text, &size, kCamera), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(takeLog(), (std::vector<LogLine>(2, {1, "Current value for enum feature Mode not found!"})));

  for (const std::int64_t refused : {-5, 101, 7}) {
    EXPECT_EQ(oviSetFeatureInt(device(), "Int", refused, kCamera), OVI_ERR_UNKNOWN);
    EXPECT_NE(findInLog(takeLog(1),
                        "Failed to set parameter! Parameter: Int, Value: " + std::to_string(refused) + " Error: "),
              "");
  }
  EXPECT_EQ(stored(0x100), 45U);
}

TEST_F(TypedAccess, GivesTextsOutsideAsciiAsTheSystemWritesThem) {
  const auto* const stored = reinterpret_cast<const char*>(script().camera.memory.data()) + 0x1000;
  EXPECT_EQ(oviSetFeatureString(device(), "Text", kGreeting, kCamera), OVI_SUCCESS);
  EXPECT_STREQ(stored, "Gr\xC3\xBC\xC3\x9F");
  char text[16] = "";
  std::size_t size = 0;
  EXPECT_EQ(oviGetFeatureString(device(), "Text", nullptr, &size, kCamera), OVI_SUCCESS);
  EXPECT_EQ(size, std::strlen(kGreeting) + 1);
  EXPECT_EQ(oviGetFeatureString(device(), "Text", text, &size, kCamera), OVI_SUCCESS);
  EXPECT_STREQ(text, kGreeting);
  // What another program has stored in a code page is no UTF-8 and is handed on.
  std::memcpy(script().camera.memory.data() + 0x1000, "\xFC\xDF", 3);
  oviFeatureParameter record;
  EXPECT_EQ(oviGetFeatureParameter(device(), "Text", &record, kCamera), OVI_SUCCESS);
  EXPECT_STREQ(record.stringValue, "\xFC\xDF");
}

TEST_F(TypedAccess, CopiesTextsAsFarAsTheyFit) {
  for (const std::size_t length : {0U, 3U, 511U, 512U, 99999U, 100000U}) {
    const std::string value(length, 's');
    EXPECT_EQ(oviSetFeatureString(device(), "Text", value.c_str(), kCamera), OVI_SUCCESS) << length;
    std::size_t size = 0;
    EXPECT_EQ(oviGetFeatureString(device(), "Text", nullptr, &size, kCamera), OVI_SUCCESS);
    EXPECT_EQ(size, length + 1);
    std::vector<char> whole(size + 1, '#');
    EXPECT_EQ(oviGetFeatureString(device(), "Text", whole.data(), &size, kCamera), OVI_SUCCESS);
    EXPECT_EQ(whole.data(), value);
    EXPECT_EQ(whole.back(), '#');
    char small[4] = {'#', '#', '#', '#'};
    size = 3;
    EXPECT_EQ(oviGetFeatureString(device(), "Text", small, &size, kCamera), OVI_SUCCESS);
    EXPECT_EQ(small, value.substr(0, 2));
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(small[3], '#');
  }
}

TEST_F(TypedAccess, CommandsAndRegisters) {
  bool active = true;
  EXPECT_EQ(oviIsCommandActive(device(), "Go", &active, kCamera), OVI_SUCCESS);
  EXPECT_FALSE(active);
  EXPECT_EQ(oviExecuteCommand(device(), "Go", kCamera), OVI_SUCCESS);
  EXPECT_EQ(oviIsCommandActive(device(), "Go", &active, kCamera), OVI_SUCCESS);
  EXPECT_TRUE(active);
  store(0x124, 0);
  EXPECT_EQ(oviIsCommandActive(device(), "Go", &active, kCamera), OVI_SUCCESS);
  EXPECT_FALSE(active);

  std::int64_t length = 0;
  EXPECT_EQ(oviGetFeatureReg(device(), "Raw", nullptr, &length, kCamera), OVI_SUCCESS);
  EXPECT_EQ(length, 16);
  std::vector<std::uint8_t> bytes(16);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 3);
  EXPECT_EQ(oviSetFeatureReg(device(), "Raw", bytes.data(), length, kCamera), OVI_SUCCESS);
  std::vector<std::uint8_t> read(16);
  EXPECT_EQ(oviGetFeatureReg(device(), "Raw", read.data(), &length, kCamera), OVI_SUCCESS);
  EXPECT_EQ(read, bytes);
  for (const auto& [absurd, code] : {std::pair{std::int64_t{-1}, OVI_ERR_UNKNOWN},
                                     {INT64_MIN, OVI_ERR_UNKNOWN},
                                     {17, OVI_SUCCESS},
                                     {INT64_MAX, OVI_SUCCESS}}) {
    length = absurd;
    std::vector<std::uint8_t> guarded(17, 0xAA);
    EXPECT_EQ(oviGetFeatureReg(device(), "Raw", guarded.data(), &length, kCamera), code) << absurd;
    EXPECT_EQ(guarded[16], 0xAA) << absurd;
    length = absurd;
    EXPECT_EQ(oviGetFeatureReg(device(), "Raw", nullptr, &length, kCamera), OVI_SUCCESS) << absurd;
    EXPECT_EQ(length, 16) << absurd;
  }
  EXPECT_EQ(oviSetFeatureReg(device(), "Raw", bytes.data(), -1, kCamera), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(TypedAccess, PortFailuresAreMapped) {
  takeLog();
  std::int64_t integer = 0;
  script().camera.onRead = [](std::uint64_t, std::size_t) { return GC_ERR_IO; };
  EXPECT_EQ(oviGetFeatureInt(device(), "Int", &integer, kCamera), OVI_ERR_IO);
  EXPECT_NE(findInLog(takeLog(), "Failed to get parameter! Parameter: Int Error: "), "");
  std::uint8_t bytes[16] = {};
  std::int64_t length = 16;
  EXPECT_EQ(oviGetFeatureReg(device(), "Raw", bytes, &length, kCamera), OVI_ERR_IO);
  EXPECT_NE(findInLog(takeLog(), "Failed to get register parameter! Parameter: Raw, Error: "), "");
  script().camera.onWrite = [](std::uint64_t, std::size_t) { return GC_ERR_TIMEOUT; };
  EXPECT_EQ(oviSetFeatureInt(device(), "Int", 10, kCamera), OVI_ERR_TIMEOUT);
  EXPECT_EQ(oviExecuteCommand(device(), "Go", kCamera), OVI_ERR_TIMEOUT);
  EXPECT_EQ(oviSetFeatureReg(device(), "Raw", bytes, 16, kCamera), OVI_ERR_TIMEOUT);
  EXPECT_NE(findInLog(takeLog(), "Failed to get register parameter! Parameter: Raw, Error: "), "");
}

}  // namespace
}  // namespace scripted
