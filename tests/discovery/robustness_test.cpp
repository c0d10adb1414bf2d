// Every GenTL function on the way from discovery to closing fails with every code, on its first and on its second call:
// the library answers as it should, and the next attempt succeeds.
#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "core/result.h"
#include "discovery_fixture.h"
#include "ovi_virtual/hostility.h"
#include "platform/platform.h"

namespace discovery_test {

namespace {

enum class Step { Discover, Open, CloseDevice, CloseLibrary };

/** What a fault of one function does. */
enum class Effect {
  Logged,     // Devices may be missing from the list; discovery itself succeeds.
  Tolerated,  // At most a field is empty: the device is listed and opens.
  Returned,   // The call returns the mapped code.
  Unseen,     // The call succeeds.
};

struct Row {
  const char* function;
  Step step;
  Effect effect;
  const char* log;  // On a fault that the standard knows; "" for none.
};

constexpr Row kRows[] = {
    {"GCInitLib", Step::Discover, Effect::Logged, "Failed to load and initialize producer from "},
    {"TLOpen", Step::Discover, Effect::Logged, "Error opening transport layer for producer from location"},
    {"GCGetInfo", Step::Discover, Effect::Tolerated, ""},
    {"TLUpdateInterfaceList", Step::Discover, Effect::Logged, "Error updating interface list in TL ["},
    {"TLGetNumInterfaces", Step::Discover, Effect::Logged, "Error updating interface list in TL ["},
    {"TLGetInterfaceID", Step::Discover, Effect::Logged, "Error updating interface list in TL ["},
    {"TLGetInterfaceInfo", Step::Discover, Effect::Tolerated, ""},
    {"TLOpenInterface", Step::Discover, Effect::Logged, "Failed to open interface with ID: "},
    {"IFUpdateDeviceList", Step::Discover, Effect::Logged, "Error updating device list in TL ["},
    {"IFGetNumDevices", Step::Discover, Effect::Logged, "Error updating device list in TL ["},
    {"IFGetDeviceID", Step::Discover, Effect::Logged, "Error updating device list in TL ["},
    {"IFGetDeviceInfo", Step::Discover, Effect::Logged, " is not available: "},
    {"GCGetLastError", Step::Discover, Effect::Tolerated, ""},
    {"GCGetInfo", Step::Open, Effect::Unseen, ""},
    {"TLUpdateInterfaceList", Step::Open, Effect::Returned, "Error updating interface list in TL ["},
    {"IFUpdateDeviceList", Step::Open, Effect::Returned, "Error updating device list in TL ["},
    {"IFGetNumDevices", Step::Open, Effect::Returned, "Could not get device info. Interface: "},
    {"IFGetDeviceID", Step::Open, Effect::Returned, "Could not get device info. Interface: "},
    {"IFOpenDevice", Step::Open, Effect::Returned, "Failed to open device with ID: ["},
    {"DevClose", Step::CloseDevice, Effect::Returned, "Failed to close device! Error: "},
    {"DevClose", Step::CloseLibrary, Effect::Unseen, ""},
    {"IFClose", Step::CloseLibrary, Effect::Unseen, ""},
    {"TLClose", Step::CloseLibrary, Effect::Unseen, ""},
    {"GCCloseLib", Step::CloseLibrary, Effect::Unseen, ""},
};

std::vector<GC_ERROR> faults() {
  std::vector<GC_ERROR> codes = {-1023, -10000, 1};
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  // The other codes take the same ways, which the slow builds need not walk once more.
  return {GC_ERR_ERROR, GC_ERR_BUSY, 1};
#endif
  for (GC_ERROR code = GC_ERR_ERROR; code >= GC_ERR_BUSY; --code)
    codes.push_back(code);
  return codes;
}

}  // namespace

class Robustness : public testing::Test {
 protected:
  Robustness() : library_(OVI::platform::loadLibrary(VIRTUAL_DIR "/VirtualCamera.cti")) {
    void* const entry = OVI::platform::resolve(library_, "oviVirtualHostility");
    orders_ = reinterpret_cast<POviVirtualHostility>(entry)();
    closeProducer_ = reinterpret_cast<PGCCloseLib>(OVI::platform::resolve(library_, "GCCloseLib"));
    initialise();
  }
  ~Robustness() override {
    orders_->reset();
    oviClose();
    OVI::platform::unload(library_);
  }

  oviErr discover() { return oviDiscoverDevices(info_.get(), 1000, nullptr, VIRTUAL_DIR, 1); }
  void order(const Row& row, GC_ERROR code, std::uint64_t call) {
    ASSERT_EQ(orders_->fail(row.function, code, call, 1), 0) << row.function;
    takeLog();
  }
  void reopenLibrary() {
    EXPECT_EQ(oviClose(), OVI_SUCCESS);
    initialise();
  }
  /** Everything works again: the whole list, and a camera that opens and closes. */
  void expectHealthy(std::uint32_t devices, const std::string& id) {
    orders_->reset();
    ASSERT_EQ(discover(), OVI_SUCCESS);
    EXPECT_EQ(info_->deviceCount, devices);
    std::uint64_t handle = 0;
    ASSERT_EQ(oviOpenDevice(id.c_str(), &handle, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
    EXPECT_EQ(oviCloseDevice(handle), OVI_SUCCESS);
  }

  void* library_;
  const OviVirtualHostility* orders_;
  PGCCloseLib closeProducer_;
  std::unique_ptr<oviDiscoveryInfo> info_ = std::make_unique<oviDiscoveryInfo>();
};

TEST_F(Robustness, EveryFaultOfEveryFunction) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  const std::uint32_t all = info_->deviceCount;
  ASSERT_GE(all, 2U);
  const std::string id = info_->devices[0].deviceID;

  for (const Row& row : kRows) {
    std::uint64_t happenings = 0;
    for (const GC_ERROR code : faults()) {
      for (const std::uint64_t call : {1U, 2U}) {
        SCOPED_TRACE(std::string(row.function) + " " + std::to_string(code) + " at call " + std::to_string(call) +
                     " of step " + std::to_string(static_cast<int>(row.step)));
        const bool known = code <= GC_ERR_ERROR && code >= GC_ERR_BUSY;
        if (row.step == Step::Discover) {
          reopenLibrary();
          order(row, code, call);
          if (row.function == std::string_view("GCGetLastError")) {  // Asked only after something else has failed.
            ASSERT_EQ(orders_->fail("TLGetInterfaceInfo", GC_ERR_ERROR, 1, UINT64_MAX), 0);
          }
          orders_->startCounting();
          ASSERT_EQ(discover(), OVI_SUCCESS);
          const bool happened = orders_->calls(row.function) >= call;
          happenings += happened ? 1 : 0;
          if (row.effect == Effect::Tolerated) {
            EXPECT_EQ(info_->deviceCount, all);
          }
          if (known && happened) {
            EXPECT_TRUE(contains(takeLog(), row.log));
          }
        } else if (row.step == Step::Open) {
          std::uint64_t handle = 0;
          order(row, code, call);
          orders_->startCounting();
          const oviErr result = oviOpenDevice(id.c_str(), &handle, 1000, OVI_DEVICE_ACCESS_CONTROL);
          const bool happened = orders_->calls(row.function) >= call;
          happenings += happened ? 1 : 0;
          if (row.effect == Effect::Returned && known && happened) {
            EXPECT_EQ(result, OVI::mapGenTLError(code));
            EXPECT_TRUE(contains(takeLog(), row.log));
            EXPECT_EQ(handle, 0U);
          } else if (!happened || (row.effect == Effect::Unseen && call == 2)) {
            EXPECT_EQ(result, OVI_SUCCESS);
          }
          EXPECT_EQ(result == OVI_SUCCESS, handle != 0);
          if (result == OVI_SUCCESS) {
            EXPECT_EQ(oviCloseDevice(handle), OVI_SUCCESS);
          }
        } else {
          std::uint64_t handle = 0;
          ASSERT_EQ(oviOpenDevice(id.c_str(), &handle, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
          order(row, code, call);
          if (row.step == Step::CloseDevice) {
            EXPECT_EQ(oviCloseDevice(handle), known && call == 1 ? OVI::mapGenTLError(code) : OVI_SUCCESS);
            EXPECT_EQ(contains(takeLog(), row.log), known && call == 1);
          }
          EXPECT_EQ(oviClose(), OVI_SUCCESS);
          orders_->reset();
          closeProducer_();  // One that refused stays initialised, because this test keeps it loaded.
          initialise();
        }
        ASSERT_NO_FATAL_FAILURE(expectHealthy(all, id));
      }
    }
    if (row.step == Step::Discover || row.step == Step::Open) {
      EXPECT_GT(happenings, 0U) << row.function << " is not called, so that its row proves nothing";
    }
  }
}

TEST_F(Robustness, TextsWithoutAnEndAreCut) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  const std::uint32_t all = info_->deviceCount;
  for (const char* function : {"GCGetInfo", "TLGetInterfaceInfo", "IFGetDeviceInfo"}) {
    for (const OviVirtualText how : {OVI_VIRTUAL_TEXT_UNTERMINATED, OVI_VIRTUAL_TEXT_EMPTY, OVI_VIRTUAL_TEXT_FULL}) {
      ASSERT_EQ(orders_->spoilText(function, -1, how, UINT64_MAX), 0);
      ASSERT_EQ(discover(), OVI_SUCCESS);
      for (std::uint32_t i = 0; i < info_->deviceCount; ++i) {
        const oviDeviceInfo& device = info_->devices[i];
        for (const auto* field : {&device.displayName, &device.vendor, &device.interfaceDisplayName, &device.tlID})
          EXPECT_LT(std::string_view(*field, 512).find('\0'), 512U);
      }
      orders_->reset();
    }
  }
  expectHealthy(all, "VC-KV130001");
}

TEST_F(Robustness, ACameraThatIsStuckHoldsUpNoOther) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  ASSERT_GE(info_->deviceCount, 3U);
  std::array<std::uint64_t, 2> cameras{};
  for (std::size_t i = 0; i < cameras.size(); ++i)
    ASSERT_EQ(oviOpenDevice(info_->devices[i].deviceID, &cameras[i], 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  std::int64_t height = 0;
  ASSERT_EQ(oviGetFeatureInt(cameras[0], "Height", &height, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);

  ASSERT_EQ(orders_->block("GCWritePort", 1, 1), 0);
  std::atomic<bool> isOver{false};
  std::thread stuck([&] {
    EXPECT_EQ(oviSetFeatureInt(cameras[0], "Height", height, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    isOver = true;
  });
  while (orders_->blocked() == 0 && !isOver)
    std::this_thread::yield();
  EXPECT_EQ(oviGetFeatureInt(cameras[1], "Height", &height, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  EXPECT_EQ(oviSetFeatureInt(cameras[1], "Height", height, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  std::uint64_t third = 0;
  EXPECT_EQ(oviOpenDevice(info_->devices[2].deviceID, &third, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  EXPECT_EQ(oviCloseDevice(third), OVI_SUCCESS);
  EXPECT_FALSE(isOver);
  ASSERT_EQ(orders_->release("GCWritePort"), 0);
  stuck.join();
  for (const std::uint64_t camera : cameras)
    EXPECT_EQ(oviCloseDevice(camera), OVI_SUCCESS);
}

TEST_F(Robustness, AClosedDeviceTakesWhatIsItsOwnAndNoMore) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  std::array<std::uint64_t, 2> cameras{};
  for (std::size_t i = 0; i < cameras.size(); ++i)
    ASSERT_EQ(oviOpenDevice(info_->devices[i].deviceID, &cameras[i], 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  std::uint64_t stream = 0;
  std::uint64_t images = 0;
  std::uint64_t errors = 0;
  ASSERT_EQ(oviCreateDataStream(cameras[0], 0, &stream, 2, 0), OVI_SUCCESS);
  ASSERT_EQ(oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &images, OVI_MODULE_DATA_STREAM), OVI_SUCCESS);
  ASSERT_EQ(oviRegisterEvent(cameras[0], OVI_EVENT_ERROR, &errors, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
  ASSERT_EQ(oviCloseDevice(cameras[0]), OVI_SUCCESS);
  void* data = nullptr;
  for (const std::uint64_t event : {images, errors})
    EXPECT_EQ(oviWaitForEvent(event, 0, &data), OVI_ERR_NOT_FOUND);
  EXPECT_EQ(oviCloseDataStream(stream), OVI_ERR_NOT_FOUND);

  // The system and the interface were shared with the other camera.
  for (const std::uint32_t selector : {OVI_MODULE_SYSTEM, OVI_MODULE_INTERFACE}) {
    std::uint64_t event = 0;
    EXPECT_EQ(oviRegisterEvent(cameras[1], OVI_EVENT_MODULE, &event, selector), OVI_SUCCESS) << selector;
    EXPECT_EQ(oviWaitForEvent(event, 0, &data), OVI_ERR_TIMEOUT);
    EXPECT_EQ(oviUnregisterEvent(event), OVI_SUCCESS);
  }
  EXPECT_EQ(oviCloseDevice(cameras[1]), OVI_SUCCESS);
}

TEST_F(Robustness, AnInterfaceThatIsGivenUpEndsTheWaitsOnIt) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  const std::uint32_t all = info_->deviceCount;
  const std::string id = info_->devices[0].deviceID;
  std::uint64_t camera = 0;
  std::uint64_t event = 0;
  ASSERT_EQ(oviOpenDevice(id.c_str(), &camera, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  ASSERT_EQ(oviRegisterEvent(camera, OVI_EVENT_MODULE, &event, OVI_MODULE_INTERFACE), OVI_SUCCESS);
  ASSERT_EQ(oviCloseDevice(camera), OVI_SUCCESS);
  orders_->startCounting();
  std::thread waiter([&] {
    void* data = nullptr;
    EXPECT_EQ(oviWaitForEvent(event, UINT64_MAX, &data), OVI_ERR_ABORTED);
  });
  while (orders_->calls("EventGetData") == 0)
    std::this_thread::yield();
  ASSERT_EQ(orders_->fail("IFUpdateDeviceList", GC_ERR_IO, 1, 1), 0);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  waiter.join();
  EXPECT_EQ(orders_->calls("EventKill"), 1U) << "it is not the producer's close that ended the wait";
  EXPECT_EQ(orders_->calls("IFClose"), 1U);
  orders_->reset();
  takeLog();
  void* data = nullptr;
  EXPECT_EQ(oviWaitForEvent(event, UINT64_MAX, &data), -10002);
  EXPECT_TRUE(contains(takeLog(), "Failed to get event data! Error: Module is closed, cannot get data (ID: -10002)"));
  EXPECT_EQ(oviUnregisterEvent(event), OVI_SUCCESS);
  expectHealthy(all, id);
}

TEST_F(Robustness, APulledCameraComesBack) {
  ASSERT_EQ(discover(), OVI_SUCCESS);
  const std::uint32_t all = info_->deviceCount;
  const std::string id = info_->devices[0].deviceID;
  std::uint64_t handle = 0;
  ASSERT_EQ(oviOpenDevice(id.c_str(), &handle, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_SUCCESS);
  ASSERT_EQ(orders_->loseDevice(id.c_str()), 0);
  ASSERT_EQ(discover(), OVI_SUCCESS);
  EXPECT_EQ(info_->deviceCount, all - 1);
  EXPECT_EQ(oviCloseDevice(handle), OVI_SUCCESS);
  EXPECT_EQ(oviOpenDevice(id.c_str(), &handle, 1000, OVI_DEVICE_ACCESS_CONTROL), OVI_ERR_NOT_FOUND);
  ASSERT_EQ(orders_->returnDevice(id.c_str()), 0);
  expectHealthy(all, id);
}

}  // namespace discovery_test
