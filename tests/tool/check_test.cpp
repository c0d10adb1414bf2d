// What the tool finds out about producers: nothing about a good one, and each fault of a bad one by its name.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "tool_run.h"

namespace tool_test {
namespace {

using testing::HasSubstr;
using testing::Not;

#ifdef _WIN32
constexpr const char* kCrashInStart = "does not load: it crashes in its own start";
constexpr const char* kCrash = "crashed: access violation, in GCInitLib";
#else
constexpr const char* kCrashInStart = "crashed: Segmentation fault, in its own start, while it is loaded";
constexpr const char* kCrash = "crashed: Segmentation fault, in GCInitLib";
#endif

struct Fault {
  const char* order;
  const char* group;
  int code;
  const char* said;
};

TEST(Producers, PassWhenTheyAreTheVirtualCamera) {
  const Outcome run = ovi({"check", VIRTUAL_DIR "/VirtualCamera.cti", "--json"});
  ASSERT_EQ(run.code, 0) << run.out << run.err;
  const nlohmann::json json = nlohmann::json::parse(run.out);
  EXPECT_EQ(json["warn"], 0) << run.out;
  EXPECT_EQ(json["fail"], 0) << run.out;
  EXPECT_GT(json["pass"], 80);
}

constexpr Fault kFaults[] = {
    {"fail GCInitLib -1001", "life", 1, "GCInitLib returned GC_ERR_ERROR (-1001)"},
    {"fail DSQueueBuffer -1010", "buffers", 1, "DSQueueBuffer returned GC_ERR_IO (-1010)"},
    {"fail GCWritePortStacked -1001", "ports", 1, "GCWritePortStacked returned GC_ERR_ERROR"},
    {"text DevGetInfo 0", "device", 1, "DevGetInfo(DEVICE_INFO_ID) has no terminating NUL"},
    {"text IFGetDeviceInfo 1", "interfaces", 1, "(DEVICE_INFO_MODEL) is empty"},
    {"text TLGetInterfaceID 2", "system", 1, "TLGetInterfaceID(0) has no terminating NUL"},
    {"type DSGetInfo 6", "buffers", 1, "DSGetInfo(STREAM_INFO_ID) is of type UINT32, not STRING"},
    {"short", "ports", 1, "bytes and reported success"},
    {"frames 1", "images", 0, "1 images were incomplete"},
    {"frames 2", "images", 0, "without width, height or pixel format"},
    {"frames 4", "images", 1, "frame ID 2 came after 3"},
    {"frames 8", "images", 0, "1 frame IDs are missing"},
    {"pause", "images", 1, "no buffer came within 3000 ms"},
    {"lose", "device", 1, "was disconnected"},
    {"busy", "images", 0, "the command AcquisitionStart was busy"},
    {"slow 700", "system", 0, "TLUpdateInterfaceList took 7"},
    {"slow 3000", "system", 1, "TLUpdateInterfaceList with a time-out of 1000 ms returned GC_ERR_TIMEOUT"},
    {"block IFClose", "system", 1, "IFClose did not come back within 8 s"},
    {"crash", "exports", 1, kCrashInStart},
    {"crash GCInitLib", "life", 1, kCrash},
    {"exit", "exports", 1, "it ended the process, with exit code 3"},
};

class Check : public testing::TestWithParam<Fault> {};

TEST_P(Check, NamesTheFault) {
  const Environment order("OVI_TEST_ORDER", GetParam().order);
  const Outcome run = ovi({"check", HOSTILE_DIR "/Hostile.cti", "--only", GetParam().group});
  EXPECT_EQ(run.code, GetParam().code) << run.out << run.err;
  EXPECT_THAT(run.out, HasSubstr(GetParam().said));
}

INSTANTIATE_TEST_SUITE_P(Faults, Check, testing::ValuesIn(kFaults), [](const auto& fault) {
  std::string name = fault.param.order;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
  return name;
});

TEST(Producers, AreToldAFaultOnceAndFoundTidyAfterIt) {
  struct Case {
    const char* order;
    const char* groups;
    int fail;  // one, and one more where the function answers wrongly when it should refuse
    int skip;
  };
  for (const Case& one :
       {Case{"frames 4", "images stops", 1, 0}, Case{"fail EventGetData -1010", "images stops", 1, 6},
        Case{"fail DSStopAcquisition -1010", "images stops", 2, 4}, Case{"lose", "device events faults", 2, 3}}) {
    SCOPED_TRACE(one.order);
    const Environment order("OVI_TEST_ORDER", one.order);
    std::vector<std::string> arguments = {"check", HOSTILE_DIR "/Hostile.cti", "--json"};
    for (const std::string& group : words(one.groups))
      arguments.insert(arguments.end(), {"--only", group});
    const Outcome run = ovi(arguments);
    const nlohmann::json json = nlohmann::json::parse(run.out);
    EXPECT_EQ(json["fail"], one.fail) << run.out;
    EXPECT_EQ(json["skip"], one.skip) << run.out;
    EXPECT_THAT(run.out, Not(HasSubstr("returned GC_ERR_RESOURCE_IN_USE"))) << "after what an earlier rule left";
  }
}

TEST(Producers, AreToldFromLibrariesThatAreNone) {
  const Outcome hollow = ovi({"check", HOLLOW_DIR "/Hollow.cti"});
  EXPECT_EQ(hollow.code, 1);
  EXPECT_THAT(hollow.out, HasSubstr("not exported: GCInitLib"));
  EXPECT_EQ(ovi({"check", "missing.cti"}).code, 2);
  EXPECT_THAT(ovi({"check", HOLLOW_DIR}).err, HasSubstr(" is a folder; in it are:\n  " HOLLOW_DIR));
  const Outcome other = ovi({"check", VIRTUAL_DIR "/VirtualCamera.cti", "--only", "device", "-c", "Nobody"});
  EXPECT_EQ(other.code, 2) << "it is not the producer's fault";
  EXPECT_THAT(other.err, HasSubstr("the producer has no device \"Nobody\""));
}

}  // namespace
}  // namespace tool_test
