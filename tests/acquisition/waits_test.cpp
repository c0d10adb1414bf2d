// Waits that other threads end: at once, in every interleaving, and without a kill too many.
#include <atomic>
#include <chrono>
#include <random>
#include <shared_mutex>
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

  /** After an end, which may have closed the device or everything. */
  void backToAnOpenDevice(End end, const Stream& stream) {
    if (end == &WaitsTest::closeLibrary) {
      forgetDevice();
      TearDown();
      SetUp();
    } else if (end == &WaitsTest::closeCamera) {
      open();
    } else {
      oviStopAcquisition(device());
      oviCloseDataStream(stream.handle);
    }
  }

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
    backToAnOpenDevice(each.end, stream);
  }
}

// Whatever an application does with a stream while another thread closes it, nothing is closed under the producer.
TEST_F(WaitsTest, NothingIsClosedUnderACall) {
  struct Case {
    const char* function;  // Held while something is closed.
    void (*call)(std::uint64_t device, const Stream& stream);
    std::vector<End> ends;
  };
  const End ofStream = &WaitsTest::closeStream;
  const End ofCamera = &WaitsTest::closeCamera;
  const End ofLibrary = &WaitsTest::closeLibrary;
  const auto registerAndWait = [](std::uint64_t /*device*/, const Stream& stream) {
    std::uint64_t event = 0;
    void* data = nullptr;
    oviUnregisterEvent(stream.event);
    if (oviRegisterEvent(stream.handle, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM) == OVI_SUCCESS) {
      EXPECT_NE(oviWaitForEvent(event, UINT64_MAX, &data), OVI_SUCCESS);
    }
  };
  const auto registerOnDevice = [](std::uint64_t device, const Stream& /*stream*/) {
    std::uint64_t event = 0;
    void* data = nullptr;
    if (oviRegisterEvent(device, OVI_EVENT_MODULE, &event, OVI_MODULE_LOCAL_DEVICE) == OVI_SUCCESS) {
      EXPECT_NE(oviWaitForEvent(event, UINT64_MAX, &data), OVI_SUCCESS);
    }
  };
  const auto start = [](std::uint64_t device, const Stream& /*stream*/) { oviStartAcquisition(device, 1); };
  const auto stop = [](std::uint64_t device, const Stream& /*stream*/) { oviStopAcquisition(device); };
  const auto kill = [](std::uint64_t /*device*/, const Stream& stream) { oviEventKill(stream.event); };
  const auto unregister = [](std::uint64_t /*device*/, const Stream& stream) { oviUnregisterEvent(stream.event); };
  const auto count = [](std::uint64_t /*device*/, const Stream& stream) {
    oviAcquistionStatistics statistics{};
    oviGetAcquisitionStatistics(stream.handle, &statistics);
  };
  const auto reallocate = [](std::uint64_t device, const Stream& /*stream*/) { oviCheckAndReallocBuffers(device); };
  const auto create = [](std::uint64_t device, const Stream& /*stream*/) {
    std::uint64_t stream = 0;
    oviCreateDataStream(device, 1, &stream, 2, 0);
  };
  const std::vector<End> all = {ofStream, ofCamera, ofLibrary};
  const Case cases[] = {{"EventFlush", kill, {&WaitsTest::unregister, ofStream, ofCamera}},
                        {"EventKill", kill, {&WaitsTest::unregister, ofStream, ofLibrary}},
                        {"GCRegisterEvent", registerAndWait, all},
                        {"GCRegisterEvent", registerOnDevice, {ofCamera, ofLibrary}},
                        {"GCUnregisterEvent", unregister, all},
                        {"DSStartAcquisition", start, all},
                        {"DSStopAcquisition", stop, all},
                        {"DSFlushQueue", stop, all},
                        {"DSGetInfo", count, all},
                        {"DSGetInfo", reallocate, all},
                        {"DSAllocAndAnnounceBuffer", reallocate, all},
                        {"DevOpenDataStream", create, {ofCamera, ofLibrary}}};
  for (const Case& each : cases) {
    for (const End end : each.ends) {
      SCOPED_TRACE(each.function);
      const Stream stream = openStream();
      script().setRegister(kPayloadSize, script().getRegister(kPayloadSize) + 1);
      script().hold(each.function);
      std::thread caller(each.call, device(), stream);
      while (!script().holds()) {
        std::this_thread::yield();
      }
      // Whoever closes has time enough to do so, were the call in nobody's way.
      std::thread closer([&] { (this->*end)(stream); });
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      script().hold("");
      closer.join();
      caller.join();
      EXPECT_THAT(script().violations(), IsEmpty());
      backToAnOpenDevice(end, stream);
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

// An image lies ready while the stop is held at the very call that takes it back.
TEST_F(WaitsTest, AStopGivesNobodyAnImageThatItTakesBack) {
  const Stream stream = openStream();
  start();
  EXPECT_TRUE(script().deliver(0, {}));
  script().hold("DSFlushQueue");
  std::thread stopper([&] { stop(stream); });
  while (!script().holds()) {
    std::this_thread::yield();
  }
  oviNewBufferEventData image{};
  for (const std::uint64_t timeout : {0U, 30U}) {
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(oviGetNextImage(stream.event, &image, timeout), OVI_ERR_TIMEOUT);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(timeout));
  }
  EXPECT_TRUE(script().holds());
  oviErr result = OVI_SUCCESS;
  std::thread waiter([&] { result = oviGetNextImage(stream.event, &image, UINT64_MAX); });
  script().hold("");
  stopper.join();
  start();
  Frame next;
  next.frameId = 77;
  EXPECT_TRUE(script().deliver(0, next));
  waiter.join();
  EXPECT_EQ(result, OVI_SUCCESS);
  EXPECT_EQ(image.frameID, 77U);
}

TEST_F(WaitsTest, AKillOfTheApplicationEndsTheNextWaitWhenAnImageCameFirst) {
  const Stream stream = openStream(0, 8);
  start();
  script().hold("DSGetBufferInfo");
  std::vector<oviErr> results;
  std::thread waiter([&] {
    while (results.empty() || results.back() == OVI_SUCCESS) {
      oviNewBufferEventData image{};
      results.push_back(oviGetNextImage(stream.event, &image, 5000));
    }
  });
  script().deliver(0, {});
  while (!script().holds()) {
    std::this_thread::yield();
  }
  kill(stream);  // the waiter has its image already, and does not know yet
  script().hold("");
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
  constexpr auto kLongest = std::chrono::seconds(60);  // on a machine that does much else
  constexpr unsigned kImages = 100;
  constexpr unsigned kClosings = 10;
  std::atomic<std::uint64_t> events[kStreams]{};
  std::atomic<std::uint64_t> streams[kStreams]{};
  std::atomic<std::uint64_t> deviceHandle{device()};
  std::atomic<bool> isOver{false};
  std::atomic<unsigned> images{0};
  // A stop gives all buffers back. Releasing one of them after the next start would hand out the same buffer twice.
  std::shared_mutex acquisition;
  std::atomic<unsigned> stops{0};
  const auto restart = [&](oviErr (*call)(std::uint64_t)) {
    const std::unique_lock lock(acquisition);
    ++stops;
    const oviErr result = call(deviceHandle);
    ++stops;  // For who has begun to wait while it was under way.
    oviStartAcquisition(deviceHandle, 0xFFFFFFFF);
    return result;
  };

  std::vector<std::thread> threads;
  for (unsigned s = 0; s < kStreams; ++s) {
    for (int i = 0; i < 2; ++i) {
      threads.emplace_back([&, s] {
        while (!isOver) {
          const unsigned before = stops;
          oviNewBufferEventData image{};
          if (oviGetNextImage(events[s], &image, 20) == OVI_SUCCESS) {
            ++images;
            const std::shared_lock lock(acquisition);
            if (before == stops) {
              oviReleaseImage(streams[s], &image);
            }
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
  const auto begin = std::chrono::steady_clock::now();
  unsigned closings = 0;
  const auto isEnough = [&] {
    const auto passed = std::chrono::steady_clock::now() - begin;
    return passed >= kLongest || (passed >= kDuration && images > kImages && closings > kClosings);
  };
  while (!isEnough()) {
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
        EXPECT_NE(restart(oviStopAcquisition), OVI_ERR_NOT_FOUND);
        break;
      case 1:
        restart(oviAbortAcquisition);
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
  EXPECT_GT(images, kImages);
  EXPECT_GT(closings, kClosings);
}

}  // namespace
}  // namespace manual
