// Which devices a discovery lists, what it tells about them, and how it reports.
#include <array>
#include <cstring>

#include "discovery_fixture.h"

namespace discovery_test {

class Discovery : public DiscoveryTest {};

// The tree has it in UTF-8.
#ifdef _WIN32
constexpr const char* kForMe = "f\xFCr mich";
#else
constexpr const char* kForMe = "f\xC3\xBCr mich";
#endif

TEST_F(Discovery, RecordHoldsEverythingThatIsKnown) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  ASSERT_EQ(found(), 3U);
  const struct {
    const char* field;
    const char* value;
    int command;  // Of IFGetDeviceInfo, or -1.
  } fields[] = {
      {device(1).deviceID, "cam1", -1},
      {device(1).displayName, "display of Model1", DEVICE_INFO_DISPLAYNAME},
      {device(1).model, "Model1", -1},
      {device(1).vendor, "Kestrova", -1},
      {device(1).serialNumber, "4711", DEVICE_INFO_SERIAL_NUMBER},
      {device(1).interfaceDisplayName, "if0 info 1", -1},
      {device(1).interfaceID, "if0", -1},
      {device(1).userDefinedName, kForMe, DEVICE_INFO_USER_DEFINED_NAME},
      {device(1).version, "1.2", DEVICE_INFO_VERSION},
      {device(1).interfaceTLType, "if0 info 2", -1},
      {device(1).tlDisplayName, "tree info 7", -1},
      {device(1).tlType, "Custom", DEVICE_INFO_TLTYPE},
      {device(1).tlPathName, "/somewhere/TreeProducer.cti", -1},
      {device(1).tlID, "tree info 0", -1},
  };
  for (const auto& field : fields)
    EXPECT_STREQ(field.field, field.value);
  EXPECT_EQ(device(1).reserved0, 0U);
  oviDeviceInfo info;
  ASSERT_EQ(oviGetDeviceInfo(1, &info), OVI_SUCCESS);
  EXPECT_EQ(std::memcmp(&info, &device(1), sizeof info), 0);

  // A missing info leaves its own field empty and everything else as it was.
  for (const auto& missing : fields) {
    if (missing.command < 0)
      continue;
    SCOPED_TRACE(missing.value);
    fail("IFGetDeviceInfo", GC_ERR_NOT_IMPLEMENTED, missing.command);
    ASSERT_EQ(discover(), OVI_SUCCESS);
    ASSERT_EQ(found(), 3U);
    for (const auto& field : fields)
      EXPECT_STREQ(field.field, field.command == missing.command ? "" : field.value);
  }
  fail("TLGetInterfaceInfo", GC_ERR_NOT_IMPLEMENTED);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  ASSERT_EQ(found(), 3U);
  EXPECT_STREQ(device(1).displayName, "display of Model1");
  EXPECT_STREQ(device(1).interfaceTLType, "if0 info 2") << "the interface itself knows it too";
}

TEST_F(Discovery, AccessStatusKeepsWhatApplicationsKnow) {
  const std::array<std::pair<std::int32_t, std::uint32_t>, 8> cases = {
      {{-1, 0}, {0, 0}, {1, 1}, {2, 2}, {4, 4}, {5, 5}, {6, 0}, {1000, 0}}};
  for (const auto& [told, recorded] : cases) {
    script().interfaces[0].devices[0].accessStatus = told;
    ASSERT_EQ(discover(), OVI_SUCCESS);
    EXPECT_EQ(device(0).accessStatus, recorded) << told;
  }
  fail("IFGetDeviceInfo", GC_ERR_NOT_IMPLEMENTED, DEVICE_INFO_ACCESS_STATUS);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  ASSERT_EQ(found(), 3U);
  EXPECT_EQ(device(0).accessStatus, 0U);
}

TEST_F(Discovery, VendorsThatAreNotServedAreDropped) {
  const struct {
    const char* vendor;
    const char* model;
    bool served;
  } cases[] = {
      {"Intel", "m", true},
      {"The Kestrova company", "m", true},
      {"Allied Vision", "m", true},
      {"SVS-VISTEK", "m", true},
      {"Tattile", "m", true},
      {"TATTILE", "m", true},
      {"Mikrotron GmbH", "m", true},
      {"Net", "m", true},
      {"Machine Vision Games Ltd.", "m", true},
      {"NET GmbH", "m", false},
      {"MIKROTRON", "m", false},
      {"kestrova", "m", false},
      {"Machine Vision Games", "m", false},
      {"", "m", false},
      {"Kestrova", "", false},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.vendor);
    script().interfaces[0].devices[0].infos = tree::infosOf(test.model, test.vendor);
    takeLog();
    ASSERT_EQ(discover(), OVI_SUCCESS);
    EXPECT_EQ(found(), test.served ? 3U : 2U);
    EXPECT_EQ(contains(takeLog(),
                       "Found a device that is currently not supported by this consumer! Device will be ignored.."),
              !test.served);
  }
}

struct Report {
  double progress;
  int running;
  std::uint32_t devices;
};
std::vector<Report> reports;
oviErr answerInside = OVI_SUCCESS;

TEST_F(Discovery, ProgressIsReportedInPhases) {
  const auto callback = [](oviDiscoveryInfo* info) {
    reports.push_back({info->progress, info->running, info->deviceCount});
    oviDeviceInfo inside;
    answerInside = oviGetDeviceInfo(0, &inside);
  };
  for (const int run : {1, 2}) {
    SCOPED_TRACE(run);
    reports.clear();
    ASSERT_EQ(discover(callback), OVI_SUCCESS);
    std::vector<Report> expected = {{0, 1, 0}};
    if (run == 1)
      expected.push_back({5, 1, 0});
    for (const Report& report :
         {Report{10, 1, 0}, Report{10, 1, 0}, Report{32.5, 1, 1}, Report{55, 1, 2}, Report{100, 0, 3}})
      expected.push_back(report);
    ASSERT_EQ(reports.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_DOUBLE_EQ(reports[i].progress, expected[i].progress) << i;
      EXPECT_EQ(reports[i].running, expected[i].running) << i;
      EXPECT_EQ(reports[i].devices, expected[i].devices) << i;
    }
    EXPECT_NE(answerInside, OVI_SUCCESS) << "a callback cannot use the list that is being made";
  }
  reports.clear();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_TRUE(reports.empty());
}

TEST_F(Discovery, MoreDevicesThanARecordHolds) {
  oviDeviceInfo info;
  EXPECT_EQ(oviGetDeviceInfo(0, &info), OVI_ERR_NOT_FOUND);
  for (int i = 0; i < 17; ++i)
    script().interfaces[1].devices.push_back({"more" + std::to_string(i), tree::infosOf("M", "Kestrova"), 1, false});
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 16U);
  EXPECT_EQ(oviGetDeviceInfo(17, &info), OVI_SUCCESS);
  EXPECT_STREQ(info.deviceID, "more14");
  EXPECT_EQ(oviGetDeviceInfo(20, &info), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviGetDeviceInfo(0, nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviDiscoverDevices(nullptr, 1, nullptr, nullptr, 0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_TRUE(contains(takeLog(), " discovery invalid parameter"));

  // What is gone is listed no more, and what oviClose forgot is not either.
  script().interfaces[1].devices.clear();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 2U);
  oviClose();
  EXPECT_EQ(oviGetDeviceInfo(0, &info), OVI_ERR_NOT_INITIALIZED);
  initialise();
  EXPECT_EQ(oviGetDeviceInfo(0, &info), OVI_ERR_NOT_FOUND);
}

TEST_F(Discovery, InterfacesStayOpen) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  takeCalls();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);
  EXPECT_THAT(takeCalls(), testing::ElementsAre("TLUpdateInterfaceList", "IFUpdateDeviceList", "IFUpdateDeviceList"));

  // Also one that its producer does not list while it is open.
  script().interfaces[1].isListed = false;
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);

  // One that fails is closed, and opened afresh when it is back.
  fail("IFUpdateDeviceList", GC_ERR_IO);
  takeLog();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 0U);
  EXPECT_TRUE(contains(takeLog(), "Error updating device list in TL [TreeProducer.cti]: IF id: if0. Error: "));
  fail("", 0);
  script().interfaces[1].isListed = true;
  takeCalls();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);
  EXPECT_THAT(takeCalls(), testing::Contains("TLOpenInterface").Times(2));

  takeCalls();
  oviClose();
  EXPECT_THAT(takeCalls(), testing::ElementsAre("IFClose", "IFClose", "GCCloseLib"));
  initialise();
}

class GigEProducer : public DiscoveryTest {
 protected:
  GigEProducer() : DiscoveryTest("gevtls2i") {}
  ~GigEProducer() override { oviSetIgnoreSubnetEnabled(0); }
};

TEST_F(GigEProducer, IsToldAboutSubnets) {
  oviSetIgnoreSubnetEnabled(1);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(script().interfaces[0].registers[0], 1U);
  EXPECT_EQ(script().interfaces[1].registers[0], 1U);
  oviSetIgnoreSubnetEnabled(0);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(script().interfaces[0].registers[0], 0U);
  fail("GCWritePort", GC_ERR_IO);
  oviSetIgnoreSubnetEnabled(1);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);
}

TEST_F(Discovery, OtherProducersAreNotToldAboutSubnets) {
  oviSetIgnoreSubnetEnabled(1);
  script().interfaces[1].registers[0] = 7;
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(script().interfaces[0].registers[0], 0U);
  EXPECT_EQ(script().interfaces[1].registers[0], 7U);

  // Nor does one that does not say who it is fail at that.
  fail("GCGetInfo", GC_ERR_IO, TL_INFO_PATHNAME);
  takeLog();
  ASSERT_EQ(discover(), OVI_SUCCESS);
  oviSetIgnoreSubnetEnabled(0);
  EXPECT_EQ(found(), 3U);
  const std::vector<std::string> log = takeLog();
  EXPECT_TRUE(contains(log, "Error getting device TL type. Error: "));
  EXPECT_FALSE(contains(log, "IgnoreSubnet"));
}

}  // namespace discovery_test
