// The orders by which tests make the producer misbehave do what their header says, and nothing once withdrawn.
#include "consumer.h"

#include <chrono>
#include <cstring>
#include <thread>

namespace producer_test {

class HostilityTest : public ProducerTest {};

TEST_F(HostilityTest, CallsFailByOrder) {
  openSystem();
  std::uint32_t count = 0;
  ASSERT_EQ(orders().fail("TLGetNumInterfaces", -1010, 2, 2), 0);
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
  count = 99;
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kIo);
  EXPECT_EQ(count, 99U);
  EXPECT_FALSE(lastErrorText().empty());
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kIo);
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
  EXPECT_EQ(orders().fail("NoSuchFunction", -1010, 1, 1), -1);
  EXPECT_EQ(orders().fail("TLOpen", 0, 1, 1), -1);
  EXPECT_EQ(orders().fail(nullptr, -1010, 1, 1), -1);
  ASSERT_EQ(orders().fail("TLGetNumInterfaces", -10077, 1, UINT64_MAX), 0);
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), -10077);
  orders().reset();
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
}

TEST_F(HostilityTest, CallsAreCountedAndHeld) {
  openSystem();
  orders().startCounting();
  std::uint32_t count = 0;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess);
  }
  EXPECT_EQ(orders().calls("TLGetNumInterfaces"), 3U);
  EXPECT_EQ(orders().calls("DSClose"), 0U);
  ASSERT_EQ(orders().block("TLGetNumInterfaces", 1, 1), 0);
  Error result = kError;
  std::thread held([&] { result = g.TLGetNumInterfaces(tl, &count); });
  while (orders().blocked() == 0) {
    std::this_thread::yield();
  }
  EXPECT_EQ(g.TLGetNumInterfaces(tl, &count), kSuccess) << "other calls go on";
  EXPECT_EQ(orders().release("TLGetNumInterfaces"), 0);
  held.join();
  EXPECT_EQ(result, kSuccess);
  EXPECT_EQ(orders().blocked(), 0U);
}

TEST_F(HostilityTest, AnswersAreSpoiled) {
  openSystem();
  std::int32_t type = 0;
  const std::string path = ask(g.TLGetInfo, tl, 6).bytes;
  const auto get = [&](std::string& buffer) {
    std::size_t size = buffer.size();
    EXPECT_EQ(g.TLGetInfo(tl, 6, &type, buffer.data(), &size), kSuccess);
    return size;
  };
  std::string buffer(2048, '#');
  ASSERT_EQ(orders().spoilText("TLGetInfo", 6, OVI_VIRTUAL_TEXT_UNTERMINATED, 1), 0);
  EXPECT_EQ(get(buffer), path.size());
  EXPECT_EQ(buffer.substr(0, path.size() + 1), path + '#');
  ASSERT_EQ(orders().spoilText("TLGetInfo", -1, OVI_VIRTUAL_TEXT_EMPTY, 1), 0);
  EXPECT_EQ(get(buffer), 1U);
  EXPECT_EQ(buffer[0], '\0');
  ASSERT_EQ(orders().spoilText("TLGetInfo", 6, OVI_VIRTUAL_TEXT_FULL, 1), 0);
  EXPECT_EQ(get(buffer), buffer.size());
  EXPECT_EQ(buffer.find('\0'), std::string::npos);
  ASSERT_EQ(orders().spoilType("TLGetInfo", 6, 8, 1), 0);
  get(buffer);
  EXPECT_EQ(type, 8);
  EXPECT_EQ(get(buffer), path.size() + 1);
  EXPECT_EQ(type, kString);
}

TEST_F(HostilityTest, PortReadsComeShort) {
  openDevice();
  const std::uint64_t address = remote->address("Width");
  ASSERT_EQ(orders().shortReads(1, 1, 1), 0);
  std::uint32_t value = 0;
  std::size_t size = 4;
  EXPECT_EQ(g.GCReadPort(port, address, &value, &size), kSuccess);
  EXPECT_EQ(size, 3U);
  size = 4;
  EXPECT_EQ(g.GCReadPort(port, address, &value, &size), kSuccess);
  EXPECT_EQ(size, 4U);
}

TEST_F(HostilityTest, FramesAreSpoiled) {
  openDevice("VC-320HS");
  openStream();
  announce(8);
  const char* id = deviceId.c_str();
  ASSERT_EQ(orders().spoilFrames(id, OVI_VIRTUAL_FRAME_INCOMPLETE, 1, 1), 0);
  ASSERT_EQ(orders().spoilFrames(id, OVI_VIRTUAL_FRAME_NO_GEOMETRY, 2, 1), 0);
  ASSERT_EQ(orders().spoilFrames(id, OVI_VIRTUAL_FRAME_LATE, 3, 1), 0);
  ASSERT_EQ(orders().spoilFrames(nullptr, OVI_VIRTUAL_FRAME_LOST, 6, 1), 0);
  EXPECT_EQ(orders().spoilFrames(id, 32, 1, 1), -1);
  EXPECT_EQ(orders().spoilFrames("no such device", OVI_VIRTUAL_FRAME_LOST, 1, 1), -1);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 6), kSuccess);
  startCamera();
  std::vector<std::uint64_t> ids;
  for (int i = 0; i < 6; ++i) {
    const auto data = next();
    ASSERT_TRUE(data);
    ids.push_back(bufferInfo(data->buffer, 16));
    EXPECT_EQ(bufferInfo(data->buffer, 7), i == 0 ? 1U : 0U);
    if (i == 0) {
      EXPECT_EQ(bufferInfo(data->buffer, 9), bufferInfo(data->buffer, 27) / 2);
      EXPECT_EQ(bufferInfo(data->buffer, 22), 120U);
    }
    for (const int geometry : {10, 11, 20}) {
      EXPECT_EQ(ask(g.DSGetBufferInfo, stream, data->buffer, geometry).error, i == 1 ? kNotImplemented : kSuccess);
    }
  }
  const std::uint64_t f = ids.front();
  EXPECT_EQ(ids, (std::vector<std::uint64_t>{f, f + 1, f + 3, f + 2, f + 4, f + 6}));
  stopCamera();
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
}

TEST_F(HostilityTest, StuckTransfersEndWithAStopOrAFlush) {
  openDevice("VC-320HS");
  openStream();
  const std::vector<Handle> buffers = announce(2);
  const auto stick = [&] {
    ASSERT_EQ(orders().spoilFrames(nullptr, OVI_VIRTUAL_FRAME_STUCK, 1, 1), 0);
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
    startCamera();
    while (bufferInfo(buffers[0], 6) + bufferInfo(buffers[1], 6) == 0) {
      std::this_thread::yield();
    }
    EXPECT_EQ(streamInfo(4), 2U) << "the one being filled counts";
  };
  // A kill delivers the buffer as far as it is filled.
  stick();
  EXPECT_EQ(g.DSStopAcquisition(stream, 1), kSuccess);
  stopCamera();
  const auto data = next(0);
  ASSERT_TRUE(data);
  EXPECT_EQ(bufferInfo(data->buffer, 7), 1U);
  EXPECT_LT(bufferInfo(data->buffer, 9), bufferInfo(data->buffer, 27));
  EXPECT_EQ(streamInfo(4), 1U);
  ASSERT_EQ(g.DSQueueBuffer(stream, data->buffer), kSuccess);

  // Flushing takes it away from the engine.
  stick();
  EXPECT_EQ(g.DSFlushQueue(stream, 4), kSuccess);
  EXPECT_EQ(streamInfo(4) + streamInfo(5), 0U);
  for (const Handle buffer : buffers) {
    EXPECT_EQ(g.DSRevokeBuffer(stream, buffer, nullptr, nullptr), kSuccess);
  }
  stopCamera();
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);

  // Also when the next transfer begins, and hangs, before the flush has looked again.
  announce(2);
  ASSERT_EQ(remote->set("SpeedMode", 1), kSuccess);
  ASSERT_EQ(orders().spoilFrames(nullptr, OVI_VIRTUAL_FRAME_STUCK, 1, UINT64_MAX), 0);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  startCamera();
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
  }
  EXPECT_EQ(streamInfo(4), 2U);
  stopCamera();
  EXPECT_EQ(g.DSStopAcquisition(stream, 1), kSuccess);
  EXPECT_EQ(remote->set("SpeedMode", 0), kSuccess);
}

TEST_F(HostilityTest, CamerasFallSilentAndSpeakAgain) {
  openDevice("VC-320HS");
  openStream();
  announce(4);
  for (const std::uint64_t speedMode : {0, 1}) {
    ASSERT_EQ(remote->set("SpeedMode", speedMode), kSuccess);
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
    startCamera();
    ASSERT_TRUE(next());
    ASSERT_EQ(orders().pauseFrames(speedMode == 0 ? deviceId.c_str() : nullptr, 1), 0);
    ASSERT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
    EXPECT_FALSE(next(50));
    ASSERT_EQ(orders().pauseFrames(deviceId.c_str(), 0), 0);
    EXPECT_TRUE(next());
    // Frames are spoiled in speed mode as well.
    ASSERT_EQ(orders().spoilFrames(deviceId.c_str(), 16, 1, 1), 0);
    ASSERT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
    while (next(50)) {
    }
    orders().reset();
    EXPECT_TRUE(next()) << "what hung goes on";
    stopCamera();
    EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
    ASSERT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
  }
  EXPECT_EQ(remote->set("SpeedMode", 0), kSuccess);
}

TEST_F(HostilityTest, LostDevicesStayLostUntilReopened) {
  openDevice("VC-320HS");
  openStream();
  announce(4);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  startCamera();
  ASSERT_TRUE(next());
  ASSERT_EQ(orders().loseDevice(deviceId.c_str()), 0);
  EXPECT_EQ(orders().loseDevice("no such device"), -1);
  std::uint32_t value = 0;
  std::size_t size = 4;
  const std::uint64_t address = remote->address("Width");
  EXPECT_EQ(g.GCReadPort(port, address, &value, &size), kIo);
  EXPECT_EQ(ask(g.DevGetInfo, device, 5).number(), 3U);
  while (next(100)) {
  }
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  EXPECT_EQ(g.DSStartAcquisition(stream, 0, 1), kIo);
  ASSERT_EQ(orders().returnDevice(deviceId.c_str()), 0);
  size = 4;
  EXPECT_EQ(g.GCReadPort(port, address, &value, &size), kIo) << "the old connection does not come back";
  ASSERT_EQ(g.DevClose(device), kSuccess);
  ASSERT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), 4, &device), kSuccess);
  ASSERT_EQ(g.DevGetPort(device, &port), kSuccess);
  size = 4;
  EXPECT_EQ(g.GCReadPort(port, address, &value, &size), kSuccess);

  // An order is also given, and holds, while the producer is not initialised.
  ASSERT_EQ(g.GCCloseLib(), kSuccess);
  ASSERT_EQ(orders().loseDevice(deviceId.c_str()), 0);
  ASSERT_EQ(g.GCInitLib(), kSuccess);
  tl = interface = device = stream = nullptr;
  openInterface();
  EXPECT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), 4, &device), kInvalidId);
  orders().reset();
  EXPECT_EQ(g.IFOpenDevice(interface, deviceId.c_str(), 4, &device), kSuccess);
}

TEST_F(HostilityTest, CommandsStayBusyForAWhile) {
  openDevice();
  ASSERT_EQ(orders().busyCommands(deviceId.c_str(), 2), 0);
  ASSERT_EQ(remote->set("AcquisitionStop", 1), kSuccess);
  EXPECT_NE(remote->get("AcquisitionStop"), 0U);
  EXPECT_NE(remote->get("AcquisitionStop"), 0U);
  EXPECT_EQ(remote->get("AcquisitionStop"), 0U);
}

}  // namespace producer_test
