// Opening and closing of devices, alone and from several threads.
#include <atomic>
#include <stdexcept>
#include <thread>

#include "discovery_fixture.h"
#include "platform/platform.h"

namespace discovery_test {

class DeviceAccess : public DiscoveryTest {
 protected:
  DeviceAccess() { EXPECT_EQ(discover(), OVI_SUCCESS); }
};

TEST_F(DeviceAccess, ArgumentsAreJudgedBeforeTheProducerIsAsked) {
  std::uint64_t handle = 5;
  takeCalls();
  EXPECT_EQ(oviOpenDevice(nullptr, &handle, 10, 3), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviOpenDevice("cam0", nullptr, 10, 3), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(open("", handle), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(open("Cam0", handle), OVI_ERR_NOT_FOUND);
  script().interfaces[0].devices.push_back({"new", tree::infosOf("M", "Kestrova"), 1, false});
  EXPECT_EQ(open("new", handle), OVI_ERR_NOT_FOUND) << "only what the latest discovery listed";
  EXPECT_THAT(takeCalls(), testing::IsEmpty());
  EXPECT_EQ(oviCloseDevice(123456), OVI_ERR_NOT_FOUND);
  EXPECT_TRUE(contains(takeLog(), "Device not found!"));
  EXPECT_EQ(handle, 5U);
}

TEST_F(DeviceAccess, OpensThroughTheKeptInterfaceAndCloses) {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  takeCalls();
  ASSERT_EQ(open("cam0", first), OVI_SUCCESS);
  EXPECT_THAT(takeCalls(), testing::ElementsAre("TLUpdateInterfaceList", "IFUpdateDeviceList", "IFOpenDevice"));
  const std::vector<std::string> log = takeLog();
  EXPECT_TRUE(contains(log, "Interface not found in TL, maybe it is till open. Search in list of stored interfaces.."));
  EXPECT_TRUE(contains(log, "Interface was found!"));
  ASSERT_EQ(open("cam1", second), OVI_SUCCESS);
  EXPECT_NE(first, second);
  EXPECT_EQ(open("cam0", second), OVI_ERR_RESOURCE_IN_USE);

  // A list that cannot be updated ends no device that is in use.
  fail("IFUpdateDeviceList", GC_ERR_TIMEOUT);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 0U);
  fail("", 0);
  EXPECT_TRUE(script().interfaces[0].isOpen);
  EXPECT_FALSE(script().interfaces[1].isOpen);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(found(), 3U);

  EXPECT_EQ(oviCloseDevice(first), OVI_SUCCESS);
  EXPECT_TRUE(contains(takeLog(), "Closing device. Handle-Nr: " + std::to_string(first)));
  EXPECT_EQ(oviCloseDevice(first), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(open("cam0", first), OVI_SUCCESS);
  takeCalls();
  oviClose();
  EXPECT_THAT(takeCalls(), testing::ElementsAre("DevClose", "DevClose", "IFClose", "IFClose", "GCCloseLib"));
  initialise();
  EXPECT_EQ(oviCloseDevice(first), OVI_ERR_NOT_FOUND);
}

TEST_F(DeviceAccess, EachStepFailsWithItsOwnWords) {
  const struct {
    const char* function;
    bool interfaceKept;
    const char* text;
  } cases[] = {
      {"TLUpdateInterfaceList", true, "Error updating interface list in TL [TreeProducer.cti]"},
      {"TLGetNumInterfaces", true,
       "Failed to get interface with ID: if0 for device cam0. Perhaps the interface was disconnected?"},
      {"TLOpenInterface", false, "Failed to open interface with ID: if0 for device cam0. Message: "},
      {"IFUpdateDeviceList", true, "Error updating device list in TL [TreeProducer.cti]: IF id: if0. Error: "},
      {"IFGetNumDevices", true, "Could not get device info. Interface: if0"},
      {"IFOpenDevice", true, "Failed to open device with ID: [cam0] in TL [TreeProducer.cti]: IF id: if0. Error: "},
  };
  std::uint64_t handle = 0;
  for (const auto& test : cases) {
    SCOPED_TRACE(test.function);
    if (!test.interfaceKept) {
      fail("IFUpdateDeviceList", GC_ERR_IO);
      EXPECT_EQ(open("cam0", handle), OVI_ERR_IO);
    }
    fail(test.function, GC_ERR_BUSY);
    takeLog();
    EXPECT_EQ(open("cam0", handle), OVI_ERR_BUSY);
    const std::vector<std::string> log = takeLog();
    EXPECT_TRUE(contains(log, test.text));
    EXPECT_TRUE(contains(log, "the tree's own words"));
    EXPECT_EQ(handle, 0U);
    fail("", 0);
    ASSERT_EQ(open("cam0", handle), OVI_SUCCESS);
    ASSERT_EQ(oviCloseDevice(handle), OVI_SUCCESS);
    handle = 0;
  }

  fail("DevClose", GC_ERR_IO);
  ASSERT_EQ(open("cam0", handle), OVI_SUCCESS);
  EXPECT_EQ(oviCloseDevice(handle), OVI_ERR_IO);
  EXPECT_TRUE(contains(takeLog(), "Failed to close device! Error: "));

  // An interface that is neither listed nor kept, and a device that its interface lists no more.
  fail("IFUpdateDeviceList", GC_ERR_IO);
  EXPECT_EQ(open("cam2", handle), OVI_ERR_IO);
  fail("", 0);
  script().interfaces[1].isListed = false;
  EXPECT_EQ(open("cam2", handle), OVI_ERR_NOT_FOUND);
  EXPECT_TRUE(
      contains(takeLog(), "Could not open interface for device: cam2. Perhaps the interface was disconnected?"));
  script().interfaces[1].isListed = true;
  script().interfaces[1].devices.clear();
  EXPECT_EQ(open("cam2", handle), OVI_ERR_NOT_FOUND);
  EXPECT_TRUE(contains(takeLog(), "Could not get device info. Interface: if1"));
}

TEST_F(DeviceAccess, VendorDecidesAboutTheAdjustmentBefore) {
  const struct {
    const char* vendor;
    std::uint32_t expected;
  } cases[] = {{"Net mIkRoTrOn", 0}, {"Mikrotron GmbH", 0}, {"Kestrova", 1}, {"Net mi-k", 1}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.vendor);
    script().interfaces[0].devices[0].infos = tree::infosOf("M", test.vendor);
    ASSERT_EQ(discover(), OVI_SUCCESS);
    script().systemRegister = 1;
    std::uint64_t handle = 0;
    ASSERT_EQ(open("cam0", handle), OVI_SUCCESS);
    EXPECT_EQ(script().systemRegister, test.expected);
    bool family = true;
    for (const auto ask : {oviIsUsingS2iTL, oviIsUsingKitharaTL, oviIsUsingNimboTL}) {
      EXPECT_EQ(ask(handle, &family), OVI_SUCCESS);
      EXPECT_FALSE(family);
    }
    EXPECT_FALSE(oviNimboIsRecordingAvailable(handle));
    EXPECT_THROW(oviNimboStartRecording(handle), std::runtime_error);
    ASSERT_EQ(oviCloseDevice(handle), OVI_SUCCESS);
  }
  script().interfaces[0].devices[0].infos = tree::infosOf("M", "Mikrotron");
  ASSERT_EQ(discover(), OVI_SUCCESS);
  fail("GCWritePort", GC_ERR_IO);
  std::uint64_t handle = 0;
  EXPECT_EQ(open("cam0", handle), OVI_SUCCESS) << "a failing adjustment does not matter";
}

TEST_F(DeviceAccess, FromManyThreadsAtOnce) {
  for (int i = 0; i < 8; ++i)
    script().interfaces[0].devices.push_back({"t" + std::to_string(i), tree::infosOf("M", "Kestrova"), 1, false});
  ASSERT_EQ(discover(), OVI_SUCCESS);
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&, id = "t" + std::to_string(i)] {
      for (int round = 0; round < 20; ++round) {
        std::uint64_t handle = 0;
        failures += oviOpenDevice(id.c_str(), &handle, 10, 3) != OVI_SUCCESS;
        failures += oviCloseDevice(handle) != OVI_SUCCESS;
      }
    });
  }
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      const auto info = std::make_unique<oviDiscoveryInfo>();
      for (int round = 0; round < 20; ++round) {
        failures += oviDiscoverDevices(info.get(), 10, nullptr, folder().c_str(), 1) != OVI_SUCCESS;
        failures += info->deviceCount != 11;
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_THAT(takeCalls(), testing::Contains("TLOpenInterface").Times(2)) << "each interface once";
}

// A process that forgets to close: its producers are closed in order before they are destroyed. A forked child leaves
// them alone.
TEST(ForgottenClose, IsDoneAtExit) {
  const auto output = OVI::platform::runAndRead(FORGETFUL_PROGRAM, treeFolder("TreeProducer"));
  ASSERT_TRUE(output.has_value());
  const std::size_t opened = output->find("IFOpenDevice");
  std::size_t at = opened;
  for (const char* next : {"ready", "DevClose", "IFClose", "TLClose", "GCCloseLib", "destroyed"}) {
    at = output->find(next, at);
    ASSERT_NE(at, std::string::npos) << next << " missing in:\n" << *output;
  }
  EXPECT_EQ(output->find("callback after main"), std::string::npos);
  EXPECT_EQ(output->find("GCCloseLib"), output->rfind("GCCloseLib")) << *output;
  EXPECT_EQ(output->find("late call: 0"), std::string::npos);
  EXPECT_NE(output->find("late call: 1"), std::string::npos);
}

}  // namespace discovery_test
