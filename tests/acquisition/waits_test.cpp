// Waits that other threads end: at once, in every interleaving, and without a kill too many.
#include <atomic>
#include <chrono>
#include <random>
#include <thread>

#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::Each;
using testing::IsEmpty;
using testing::Not;

constexpr unsigned kWaiters = 3;

constexpr const char* kLostWithTheCamera[] = {"GCReadPort",     "GCWritePort",       "EventGetData",
                                              "EventKill",      "DSGetBufferInfo",   "DSQueueBuffer",
                                              "DSRevokeBuffer", "DSStopAcquisition", "DSFlushQueue"};

class WaitsTest : public ManualCameraTest {
 public:
  using End = void (WaitsTest::*)(const Stream&);
  void stop(const Stream& /*stream*/) { EXPECT_EQ(oviStopAcquisition(device()), OVI_SUCCESS); }
  void abort(const Stream& /*stream*/) { EXPECT_EQ(oviAbortAcquisition(device()), OVI_SUCCESS); }
  void kill(const Stream& stream) { EXPECT_EQ(oviEventKill(stream.event), OVI_SUCCESS); }
  void unregister(const Stream& stream) { EXPECT_EQ(oviUnregisterEvent(stream.event), OVI_SUCCESS); }
  void closeStream(const Stream& stream) { EXPECT_EQ(oviCloseDataStream(stream.handle), OVI_SUCCESS); }
  void closeCamera(const Stream& /*stream*/) { closeDevice(); }
  void closeLibrary(const Stream& /*stream*/) { EXPECT_EQ(oviClose(), OVI_SUCCESS); }

  /** Starts threads that wait for ever and returns when they all do. */
  std::vector<std::thread> startWaiters(std::uint64_t event, std::vector<oviErr>& results) {
    results.assign(kWaiters, 1);
    std::vector<std::thread> waiters;
    for (unsigned i = 0; i < kWaiters; ++i) {
      waiters.emplace_back([event, &result = results[i]] {
        void* data = nullptr;
        result = oviWaitForEvent(event, UINT64_MAX, &data);
      });
    }
    while (script().waiting() < kWaiters) {
      std::this_thread::yield();
    }
    return waiters;
  }
};

TEST_F(WaitsTest, EndWithWhateverEndsThem) {
  struct Case {
    const char* name;
    End end;
  };
  const Case cases[] = {{"stop", &WaitsTest::stop},
                        {"abort", &WaitsTest::abort},
                        {"kill", &WaitsTest::kill},
                        {"unregister", &WaitsTest::unregister},
                        {"close stream", &WaitsTest::closeStream},
                        {"close device", &WaitsTest::closeCamera},
                        {"close library", &WaitsTest::closeLibrary}};
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    const Stream stream = openStream();
    start();
    std::vector<oviErr> results;
    std::vector<std::thread> waiters = startWaiters(stream.event, results);
    (this->*each.end)(stream);
    for (std::thread& waiter : waiters) {
      waiter.join();
    }
    EXPECT_THAT(results, Each(OVI_ERR_ABORTED));
    EXPECT_THAT(script().violations(), IsEmpty());
    // Back to an open device.
    if (each.name == std::string("close library")) {
      forgetDevice();
      TearDown();
      SetUp();
    } else if (each.name == std::string("close device")) {
      open();
    } else {
      oviStopAcquisition(device());
      oviCloseDataStream(stream.handle);
    }
  }
}

TEST_F(WaitsTest, NobodyIsKilledWhoDoesNotWait) {
  const Stream stream = openStream();
  for (int i = 0; i < 3; ++i) {
    start();
    take(stream);
    script().takeCalls();
    EXPECT_EQ(oviStopAcquisition(device()), OVI_SUCCESS);
    EXPECT_THAT(script().takeCalls(), Not(Contains("EventKill")));
  }
  start();
  EXPECT_NE(take(stream), nullptr);
}

TEST_F(WaitsTest, AKillOfTheApplicationEndsTheNextWaitWhenAnImageCameFirst) {
  const Stream stream = openStream(0, 8);
  start();
  script().holdBufferInfos(true);
  std::vector<oviErr> results;
  std::thread waiter([&] {
    while (results.empty() || results.back() == OVI_SUCCESS) {
      oviNewBufferEventData image{};
      results.push_back(oviGetNextImage(stream.event, &image, 5000));
    }
  });
  script().deliver(0, {});
  while (script().held() == 0) {
    std::this_thread::yield();
  }
  kill(stream);  // the waiter has its image already, and does not know yet
  script().holdBufferInfos(false);
  waiter.join();
  EXPECT_THAT(results, testing::ElementsAre(OVI_SUCCESS, OVI_ERR_ABORTED));
}

TEST_F(WaitsTest, AKillThatItsWaiterDidNotNeedHitsNobodyElse) {
  const Stream stream = openStream(0, 8);
  for (int round = 0; round < 200; ++round) {
    start();
    std::atomic<bool> isOver{false};
    std::thread waiter([&] {
      while (!isOver) {
        oviNewBufferEventData image{};
        if (oviGetNextImage(stream.event, &image, 50) == OVI_SUCCESS) {
          oviReleaseImage(stream.handle, &image);
        }
      }
    });
    // The stop comes while a frame may be on its way.
    script().deliver(0, {});
    while (script().waiting() == 0) {
      std::this_thread::yield();
    }
    std::thread feeder([&] { script().deliver(0, {}); });
    isOver = true;
    oviStopAcquisition(device());
    feeder.join();
    waiter.join();
    // Whatever happened: what the next wait meets is no left-over kill.
    start();
    script().deliver(0, {});
    void* data = nullptr;
    oviErr result = oviWaitForEvent(stream.event, 1000, &data);
    ASSERT_EQ(result, OVI_SUCCESS) << "round " << round;
    oviReleaseImage(stream.handle, static_cast<oviNewBufferEventData*>(data));
    oviStopAcquisition(device());
  }
}

// Threads that take images while others do everything at random that may be done at any time.
TEST_F(WaitsTest, SurviveEverythingAtOnce) {
  constexpr auto kDuration = std::chrono::seconds(3);
  std::atomic<std::uint64_t> events[kStreams]{};
  std::atomic<std::uint64_t> streams[kStreams]{};
  std::atomic<std::uint64_t> deviceHandle{device()};
  std::atomic<bool> isOver{false};
  std::atomic<unsigned> images{0};

  std::vector<std::thread> threads;
  for (unsigned s = 0; s < kStreams; ++s) {
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&, s] {
        while (!isOver) {
          oviNewBufferEventData image{};
          if (oviGetNextImage(events[s], &image, 20) == OVI_SUCCESS) {
            ++images;
            oviReleaseImage(streams[s], &image);
          }
        }
      });
    }
    threads.emplace_back([&, s] {
      while (!isOver) {
        script().deliver(s, {});
        std::this_thread::sleep_for(std::chrono::microseconds(100));
      }
    });
  }
  std::mt19937 random(4711);
  const auto end = std::chrono::steady_clock::now() + kDuration;
  unsigned closings = 0;
  while (std::chrono::steady_clock::now() < end) {
    const unsigned s = random() % kStreams;
    if (streams[s] == 0) {
      const Stream stream = openStream(s, 4);
      streams[s] = stream.handle;
      events[s] = stream.event;
      oviStartAcquisition(deviceHandle, 0xFFFFFFFF);
    }
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
    switch (random() % 8) {
      case 0:
        EXPECT_NE(oviStopAcquisition(deviceHandle), OVI_ERR_NOT_FOUND);
        oviStartAcquisition(deviceHandle, 0xFFFFFFFF);
        break;
      case 1:
        oviAbortAcquisition(deviceHandle);
        oviStartAcquisition(deviceHandle, 0xFFFFFFFF);
        break;
      case 2:
        EXPECT_EQ(oviEventKill(events[s]), OVI_SUCCESS);
        break;
      case 3: {
        std::uint64_t event = 0;
        EXPECT_EQ(oviUnregisterEvent(events[s]), OVI_SUCCESS);
        EXPECT_EQ(oviRegisterEvent(streams[s], 0, &event, 5), OVI_SUCCESS);
        events[s] = event;
        break;
      }
      case 4:
        EXPECT_EQ(oviCloseDataStream(streams[s]), OVI_SUCCESS);
        streams[s] = 0;
        break;
      case 5:
      case 6: {
        // Half of the times the camera is gone before it is closed, and nothing works any more.
        const GC_ERROR code = random() % 2 != 0 ? GC_ERR_IO : GC_ERR_SUCCESS;
        for (const char* function : kLostWithTheCamera) {
          script().fail(function, code);
        }
        if (code != GC_ERR_SUCCESS) {
          EXPECT_NE(oviStopAcquisition(deviceHandle), OVI_SUCCESS);
        }
        closeDevice();
        for (const char* function : kLostWithTheCamera) {
          script().fail(function, GC_ERR_SUCCESS);
        }
        open();
        deviceHandle = device();
        for (auto& stream : streams) {
          stream = 0;
        }
        ++closings;
        break;
      }
      default:
        break;
    }
  }
  isOver = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_GT(images, 100U);
  EXPECT_GT(closings, 10U);
}

}  // namespace
}  // namespace manual
