// Many threads at once: queries, streaming and closing under each other's feet.
#include "consumer.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace producer_test {

class ThreadTest : public ProducerTest {};

TEST_F(ThreadTest, QueriesGoOnWhileModulesCloseAndReopen) {
  openDevice("VC-320HS");
  std::atomic<bool> over{false};
  std::atomic<Handle> sharedStream{nullptr};
  std::atomic<Handle> sharedBuffer{nullptr};
  std::atomic<Handle> sharedEvent{nullptr};
  std::atomic<int> unexpected{0};
  const auto accept = [&](Error error, std::initializer_list<Error> fine) {
    if (std::find(fine.begin(), fine.end(), error) == fine.end()) {
      ++unexpected;
    }
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([&] {
      while (!over) {
        std::int32_t type = 0;
        std::uint64_t value = 0;
        std::size_t size = sizeof(value);
        accept(g.DSGetInfo(sharedStream, 4, &type, &value, &size), {kSuccess, kInvalidHandle});
        size = sizeof(value);
        accept(g.DSGetBufferInfo(sharedStream, sharedBuffer, 0, &type, &value, &size), {kSuccess, kInvalidHandle});
        char byte = 0;
        size = 1;
        accept(g.GCReadPort(sharedBuffer, 0x1000000, &byte, &size), {kSuccess, kInvalidHandle, kBusy});
        NewBufferData data{};
        size = sizeof(data);
        const Error error = g.EventGetData(sharedEvent, &data, &size, 1);
        accept(error, {kSuccess, kInvalidHandle, kTimeout, kAbort});
        if (error == kSuccess) {
          accept(g.DSQueueBuffer(sharedStream, data.buffer), {kSuccess, kInvalidHandle, kResourceInUse});
        }
      }
    });
  }
  startCamera();
  for (int round = 0; round < 30; ++round) {
    openStream();
    const std::vector<Handle> buffers = announce(4);
    sharedEvent = newBuffer;
    sharedBuffer = buffers[2];
    sharedStream = stream;
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
    while (streamInfo(1) < 3) {
      std::this_thread::yield();
    }
    if (round % 3 == 0) {
      EXPECT_EQ(g.DSStopAcquisition(stream, round % 2), kSuccess);
    }
    if (round % 3 == 1) {
      EXPECT_EQ(g.GCUnregisterEvent(stream, kNewBuffer), kSuccess);
    }
    ASSERT_EQ(g.DSClose(stream), kSuccess);
  }
  over = true;
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(unexpected, 0);
}

TEST_F(ThreadTest, AllCamerasStreamAtOnceAndTheTreeClosesUnderThem) {
  openSystem();
  std::vector<std::thread> threads;
  std::atomic<std::size_t> streaming{0};
  std::atomic<int> failed{0};
  for (std::uint32_t i = 0; i < 2; ++i) {
    openInterface(i);
    std::uint32_t devices = 0;
    ASSERT_EQ(g.IFGetNumDevices(interface, &devices), kSuccess);
    for (std::uint32_t d = 0; d < devices; ++d) {
      threads.emplace_back([&, handle = interface, d] {
        char id[256];
        std::size_t size = sizeof(id);
        Handle camera = nullptr;
        Handle remotePort = nullptr;
        Handle source = nullptr;
        Handle event = nullptr;
        if (g.IFGetDeviceID(handle, d, id, &size) != kSuccess || g.IFOpenDevice(handle, id, 3, &camera) != kSuccess ||
            g.DevGetPort(camera, &remotePort) != kSuccess) {
          ++failed;
          return;
        }
        const Registers registers(remotePort);
        size = sizeof(id);
        std::int32_t type = 0;
        std::size_t payload = 0;
        std::size_t bytes = sizeof(payload);
        if (g.DevGetDataStreamID(camera, 0, id, &size) != kSuccess ||
            g.DevOpenDataStream(camera, id, &source) != kSuccess ||
            g.GCRegisterEvent(source, kNewBuffer, &event) != kSuccess ||
            g.DSGetInfo(source, 7, &type, &payload, &bytes) != kSuccess) {
          ++failed;
          return;
        }
        for (int b = 0; b < 3; ++b) {
          Handle buffer = nullptr;
          if (g.DSAllocAndAnnounceBuffer(source, payload, nullptr, &buffer) != kSuccess ||
              g.DSQueueBuffer(source, buffer) != kSuccess) {
            ++failed;
          }
        }
        if (g.DSStartAcquisition(source, 0, kInfinite) != kSuccess ||
            registers.set("AcquisitionStart", 1) != kSuccess) {
          ++failed;
        }
        NewBufferData data{};
        bytes = sizeof(data);
        bool first = true;
        while (g.EventGetData(event, &data, &bytes, 5000) == kSuccess) {
          streaming += first ? 1 : 0;
          first = false;
          if (g.DSQueueBuffer(source, data.buffer) != kSuccess) {
            break;
          }
        }
      });
    }
  }
  while (streaming < threads.size() && failed == 0) {
    std::this_thread::yield();
  }
  EXPECT_EQ(g.TLClose(tl), kSuccess);
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(failed, 0);
}

}  // namespace producer_test
