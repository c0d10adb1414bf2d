// Buffers, queues and acquisition.
#include "consumer.h"

#include <array>
#include <cstring>
#include <set>

namespace producer_test {

class StreamTest : public ProducerTest {
 protected:
  // Buffers in the order in which the new-buffer event hands them out.
  std::vector<Handle> fetchAll() {
    std::vector<Handle> fetched;
    while (const auto data = next(0)) {
      fetched.push_back(data->buffer);
    }
    return fetched;
  }
  void expectQueued(const std::vector<Handle>& buffers, const std::vector<std::uint64_t>& queued) {
    for (std::size_t i = 0; i < buffers.size(); ++i) {
      EXPECT_EQ(bufferInfo(buffers[i], 5), queued[i]) << "buffer " << i;
    }
  }
};

TEST_F(StreamTest, AnnouncedMemoryIsCheckedAndComesBack) {
  openStream();
  alignas(64) std::array<char, 4096> memory{};
  int user = 0;
  Handle first = nullptr;
  Handle second = nullptr;
  ASSERT_EQ(g.DSAnnounceBuffer(stream, memory.data(), 1024, &user, &first), kSuccess);
  EXPECT_EQ(g.DSAnnounceBuffer(stream, memory.data(), 512, &user, &second), kResourceInUse);
  EXPECT_EQ(g.DSAnnounceBuffer(stream, memory.data() + 1024 + 1, 512, &user, &second), kInvalidBuffer);
  EXPECT_EQ(g.DSAnnounceBuffer(stream, nullptr, 512, &user, &second), kInvalidParameter);
  EXPECT_EQ(g.DSAnnounceBuffer(stream, memory.data() + 2048, 0, &user, &second), kInvalidParameter);
  EXPECT_EQ(g.DSAllocAndAnnounceBuffer(stream, 0, &user, &second), kInvalidParameter);
  ASSERT_EQ(g.DSAnnounceBuffer(stream, memory.data() + 2048, 1024, nullptr, &second), kSuccess);
  EXPECT_EQ(bufferInfo(first, 0), reinterpret_cast<std::uintptr_t>(memory.data()));
  EXPECT_EQ(bufferInfo(first, 1), 1024U);
  EXPECT_EQ(bufferInfo(first, 2), reinterpret_cast<std::uintptr_t>(&user));
  EXPECT_EQ(streamInfo(3), 2U);

  Handle listed = nullptr;
  EXPECT_EQ(g.DSGetBufferID(stream, 1, &listed), kSuccess);
  EXPECT_EQ(listed, second);
  EXPECT_EQ(g.DSGetBufferID(stream, 2, &listed), kInvalidIndex);
  void* base = nullptr;
  void* priv = nullptr;
  // NOLINTNEXTLINE(performance-no-int-to-ptr)
  auto** const stray = reinterpret_cast<void**>(~std::uintptr_t{0});
  EXPECT_EQ(g.DSRevokeBuffer(stream, first, stray, &priv), kInvalidParameter);
  EXPECT_EQ(g.DSRevokeBuffer(stream, first, &base, stray), kInvalidParameter);
  ASSERT_EQ(g.DSRevokeBuffer(stream, first, &base, &priv), kSuccess);
  EXPECT_EQ(base, memory.data());
  EXPECT_EQ(priv, &user);
  EXPECT_EQ(g.DSGetBufferID(stream, 0, &listed), kSuccess) << "the gap closes";
  EXPECT_EQ(listed, second);
  EXPECT_EQ(g.DSRevokeBuffer(stream, first, nullptr, nullptr), kInvalidHandle);
  ASSERT_EQ(g.DSRevokeBuffer(stream, second, nullptr, nullptr), kSuccess);

  Handle own = nullptr;
  ASSERT_EQ(g.DSAllocAndAnnounceBuffer(stream, 100, &user, &own), kSuccess);
  EXPECT_EQ(bufferInfo(own, 0) % streamInfo(13), 0U);
  base = &base;
  ASSERT_EQ(g.DSRevokeBuffer(stream, own, &base, &priv), kSuccess);
  EXPECT_EQ(base, nullptr) << "memory of the producer is not handed out";
  EXPECT_EQ(priv, &user);
}

TEST_F(StreamTest, QueuedBuffersAreHeldAndUnfilledOnesTellLittle) {
  openStream();
  const std::vector<Handle> buffers = announce(2, false);
  EXPECT_EQ(g.DSQueueBuffer(stream, buffers[0]), kSuccess);
  EXPECT_EQ(g.DSQueueBuffer(stream, buffers[0]), kResourceInUse);
  EXPECT_EQ(g.DSRevokeBuffer(stream, buffers[0], nullptr, nullptr), kBusy);
  expectQueued(buffers, {1, 0});
  EXPECT_EQ(streamInfo(4), 1U);
  EXPECT_EQ(bufferInfo(buffers[0], 4), 0U);
  EXPECT_EQ(bufferInfo(buffers[0], 9), 0U);
  EXPECT_EQ(ask(g.DSGetBufferInfo, stream, buffers[0], 8).type, kString);
  EXPECT_EQ(ask(g.DSGetBufferInfo, stream, buffers[0], 10).error, kNotAvailable);
  EXPECT_EQ(ask(g.DSGetBufferInfo, stream, buffers[0], 31).error, kNotImplemented);
  std::size_t count = 0;
  EXPECT_EQ(g.DSGetBufferChunkData(stream, buffers[0], nullptr, &count), kNoData);
  std::uint32_t parts = 0;
  EXPECT_EQ(g.DSGetNumBufferParts(stream, buffers[0], &parts), kNoData);

  // A buffer of another stream is none of this one's.
  ASSERT_EQ(g.TLClose(tl), kSuccess);
  tl = interface = device = nullptr;
  openDevice("VC-1024D");
  openStream(0);
  const Handle here = announce(1, false).front();
  const Handle firstStream = stream;
  openStream(1);
  EXPECT_EQ(g.DSQueueBuffer(stream, here), kInvalidHandle);
  EXPECT_EQ(g.DSRevokeBuffer(stream, here, nullptr, nullptr), kInvalidHandle);
  EXPECT_EQ(g.DSQueueBuffer(firstStream, here), kSuccess);
}

TEST_F(StreamTest, FlushOperationsMoveBuffersAsTheTableSays) {
  openStream();
  const std::vector<Handle> b = announce(3, false);
  const auto arrange = [&] {
    // One in the input pool, one in the output queue, one announced only.
    ASSERT_EQ(g.DSFlushQueue(stream, 4), kSuccess);
    ASSERT_EQ(g.DSQueueBuffer(stream, b[1]), kSuccess);
    ASSERT_EQ(g.DSFlushQueue(stream, 0), kSuccess);
    ASSERT_EQ(g.DSQueueBuffer(stream, b[0]), kSuccess);
    ASSERT_EQ(streamInfo(4), 1U);
    ASSERT_EQ(streamInfo(5), 1U);
    expectQueued(b, {1, 1, 0});
  };
  struct Case {
    std::int32_t operation;
    std::uint64_t input;
    std::uint64_t output;
    std::vector<std::uint64_t> queued;
  };
  for (const Case& expected : std::vector<Case>{{0, 0, 2, {1, 1, 0}},
                                                {1, 1, 0, {1, 0, 0}},
                                                {2, 3, 0, {1, 1, 1}},
                                                {3, 2, 1, {1, 1, 1}},
                                                {4, 0, 0, {0, 0, 0}}}) {
    SCOPED_TRACE(testing::Message() << "operation " << expected.operation);
    arrange();
    EXPECT_EQ(g.DSFlushQueue(stream, expected.operation), kSuccess);
    EXPECT_EQ(streamInfo(4), expected.input);
    EXPECT_EQ(streamInfo(5), expected.output);
    EXPECT_EQ(ask(g.EventGetInfo, newBuffer, 1).number(), expected.output);
    expectQueued(b, expected.queued);
    EXPECT_EQ(streamInfo(3), 3U) << "a flush never revokes";
  }
  for (const std::int32_t operation : {-1, 5, 1000}) {
    EXPECT_EQ(g.DSFlushQueue(stream, operation), kNotImplemented);
  }

  // What a flush delivers comes in order and says that it holds nothing new.
  arrange();
  ASSERT_EQ(g.DSFlushQueue(stream, 0), kSuccess);
  const std::vector<Handle> fetched = fetchAll();
  EXPECT_EQ(fetched, (std::vector<Handle>{b[1], b[0]}));
  EXPECT_EQ(bufferInfo(b[0], 4), 0U);
  expectQueued(b, {0, 0, 0});
  arrange();
  EXPECT_EQ(g.EventFlush(newBuffer), kSuccess) << "is the same as discarding the output";
  EXPECT_EQ(streamInfo(5), 0U);
  expectQueued(b, {1, 0, 0});
  arrange();
  EXPECT_EQ(g.GCUnregisterEvent(stream, kNewBuffer), kSuccess);
  EXPECT_EQ(streamInfo(4), 1U);
  expectQueued(b, {1, 0, 0});
}

TEST_F(StreamTest, StartAndStopFollowTheRules) {
  openDevice("VC-320HS");
  openStream();
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kResourceInUse);
  EXPECT_EQ(g.DSStartAcquisition(stream, 0, 1), kInvalidBuffer) << "no buffers yet";
  announce(4);
  EXPECT_EQ(g.DSStartAcquisition(stream, 1, 1), kNotImplemented);
  EXPECT_EQ(g.DSStartAcquisition(stream, 0, 0), kInvalidParameter);
  EXPECT_EQ(streamInfo(8), 0U);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  EXPECT_EQ(g.DSStartAcquisition(stream, 0, 1), kResourceInUse);
  EXPECT_EQ(streamInfo(8), 1U);
  EXPECT_EQ(g.DSStopAcquisition(stream, 2), kNotImplemented);
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  EXPECT_EQ(streamInfo(8), 0U);
  EXPECT_EQ(streamInfo(4), 4U) << "buffers stay where they are";
  EXPECT_EQ(g.DSStopAcquisition(stream, 1), kResourceInUse);

  // With a count the engine stops by itself, and the stop that belongs to the start is still answered.
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 2), kSuccess);
  startCamera();
  ASSERT_TRUE(next());
  ASSERT_TRUE(next());
  EXPECT_FALSE(next(100));
  EXPECT_EQ(streamInfo(8), 0U);
  EXPECT_EQ(streamInfo(1), 2U);
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kResourceInUse);
  stopCamera();
}

TEST_F(StreamTest, FramesCarryWhatTheCameraSays) {
  openStream();
  const std::vector<Handle> buffers = announce(4);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  startCamera();
  std::uint64_t lastId = 0;
  std::uint64_t lastTime = 0;
  for (int i = 0; i < 6; ++i) {
    const auto data = next();
    ASSERT_TRUE(data);
    const Handle buffer = data->buffer;
    EXPECT_EQ(bufferInfo(buffer, 2), reinterpret_cast<std::uintptr_t>(data->user));
    EXPECT_EQ(bufferInfo(buffer, 4), 1U);
    EXPECT_EQ(bufferInfo(buffer, 5), 0U);
    EXPECT_EQ(bufferInfo(buffer, 7), 0U);
    EXPECT_EQ(bufferInfo(buffer, 10), remote->get("Width"));
    EXPECT_EQ(bufferInfo(buffer, 11), remote->get("Height"));
    EXPECT_EQ(bufferInfo(buffer, 22), remote->get("Height"));
    EXPECT_EQ(bufferInfo(buffer, 9), remote->get("PayloadSize"));
    EXPECT_EQ(bufferInfo(buffer, 27), remote->get("PayloadSize"));
    EXPECT_EQ(bufferInfo(buffer, 17), 1U);
    EXPECT_EQ(bufferInfo(buffer, 19), 1U) << "an image";
    EXPECT_EQ(bufferInfo(buffer, 20), 0x01080001U) << "Mono8";
    EXPECT_EQ(bufferInfo(buffer, 21), 4U);
    EXPECT_EQ(bufferInfo(buffer, 26), 1U);
    EXPECT_EQ(bufferInfo(buffer, 30), 0U);
    EXPECT_EQ(ask(g.DSGetBufferInfo, stream, buffer, 25).error, kNotAvailable);
    const std::uint64_t id = bufferInfo(buffer, 16);
    const std::uint64_t time = bufferInfo(buffer, 28);
    if (i != 0) {
      EXPECT_EQ(id, lastId + 1);
      EXPECT_GT(time, lastTime);
    }
    const std::uint64_t frequency = ask(g.DevGetInfo, device, 9).number();
    EXPECT_NEAR(static_cast<double>(bufferInfo(buffer, 3)) / static_cast<double>(frequency),
                static_cast<double>(time) / 1e9, 1e-6);
    lastId = id;
    lastTime = time;
    ASSERT_EQ(g.DSQueueBuffer(stream, buffer), kSuccess);
    EXPECT_EQ(bufferInfo(buffer, 5), 1U);
  }
  stopCamera();
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
}

TEST_F(StreamTest, FramesWithoutBufferAreLostAndCounted) {
  openDevice("VC-320HS");
  openStream();
  const std::vector<Handle> buffers = announce(2);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  startCamera();
  while (streamInfo(2) < 5) {
  }
  EXPECT_EQ(streamInfo(1), 2U);
  EXPECT_EQ(streamInfo(5), 2U);
  EXPECT_EQ(streamInfo(6), 2U) << "a frame without a buffer begins no fill";
  const auto first = next();
  ASSERT_TRUE(first);
  const std::uint64_t firstId = bufferInfo(first->buffer, 16);
  ASSERT_EQ(g.DSQueueBuffer(stream, first->buffer), kSuccess);
  const auto second = next();
  const auto third = next();
  ASSERT_TRUE(second && third);
  EXPECT_EQ(bufferInfo(second->buffer, 16), firstId + 1) << "nothing in the output queue is overwritten";
  EXPECT_GE(bufferInfo(third->buffer, 16), firstId + 7) << "acquisition goes on once a buffer is there";
  const std::uint64_t lost = streamInfo(2);
  stopCamera();
  ASSERT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
  EXPECT_EQ(streamInfo(1), 0U) << "counts from the start";
  EXPECT_GE(streamInfo(2), lost) << "counts from the opening";
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
}

TEST_F(StreamTest, HandlingModesChooseWhichFrameIsKept) {
  openDevice("VC-320HS");
  openStream();
  announce(3);
  const Registers registers(stream);
  for (const char* mode : {"OldestFirstOverwrite", "NewestOnly"}) {
    SCOPED_TRACE(mode);
    ASSERT_EQ(registers.set("StreamBufferHandlingMode", registers.entry("StreamBufferHandlingMode", mode)), kSuccess);
    ASSERT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
    const std::uint64_t startedBefore = streamInfo(6);
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, kInfinite), kSuccess);
    EXPECT_EQ(registers.set("StreamBufferHandlingMode", 0), kAccessDenied) << "not while it runs";
    startCamera();
    while (streamInfo(6) < startedBefore + 20) {
    }
    stopCamera();
    ASSERT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
    std::vector<std::uint64_t> ids;
    for (const Handle buffer : fetchAll()) {
      ids.push_back(bufferInfo(buffer, 16));
    }
    const bool newest = std::string_view(mode) == "NewestOnly";
    ASSERT_EQ(ids.size(), newest ? 1U : 3U);
    EXPECT_GE(ids.back(), 18U);
    for (std::size_t i = 1; i < ids.size(); ++i) {
      EXPECT_EQ(ids[i], ids[i - 1] + 1);
    }
  }
}

TEST_F(StreamTest, TooSmallBuffersComeBackIncompleteAndAnErrorIsSent) {
  openDevice("VC-320HS");
  openStream();
  Handle errorEvent = nullptr;
  ASSERT_EQ(g.GCRegisterEvent(stream, kErrorEvent, &errorEvent), kSuccess);
  Handle buffer = nullptr;
  ASSERT_EQ(g.DSAllocAndAnnounceBuffer(stream, 1000, nullptr, &buffer), kSuccess);
  ASSERT_EQ(g.DSQueueBuffer(stream, buffer), kSuccess);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 1), kSuccess);
  startCamera();
  ASSERT_TRUE(next());
  EXPECT_EQ(bufferInfo(buffer, 7), 1U);
  EXPECT_EQ(bufferInfo(buffer, 29), 1U);
  EXPECT_EQ(bufferInfo(buffer, 9), 1000U);
  EXPECT_EQ(bufferInfo(buffer, 27), remote->get("PayloadSize"));
  EXPECT_EQ(bufferInfo(buffer, 22), 1000U / 320U);
  std::array<char, 2048> data{};
  std::size_t size = data.size();
  ASSERT_EQ(g.EventGetData(errorEvent, data.data(), &size, 1000), kSuccess);
  const Answer id = ask(g.EventGetDataInfo, errorEvent, static_cast<const void*>(data.data()), size, 0);
  EXPECT_EQ(id.type, kInt32);
  EXPECT_EQ(static_cast<Error>(id.number()), kBufferTooSmall);
  const Answer text = ask(g.EventGetDataInfo, errorEvent, static_cast<const void*>(data.data()), size, 1);
  EXPECT_EQ(text.type, kString);
  EXPECT_NE(text.bytes.find("1000"), std::string::npos);
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
}

TEST_F(StreamTest, ChunksAreListedWhereTheyLie) {
  openStream();
  ASSERT_EQ(remote->set("ChunkModeActive", 1), kSuccess);
  for (const char* chunk : {"Timestamp", "FrameID", "ExposureTime", "CRC"}) {
    ASSERT_EQ(remote->set("ChunkSelector", remote->entry("ChunkSelector", chunk)), kSuccess);
    ASSERT_EQ(remote->set("ChunkEnable", 1), kSuccess);
  }
  announce(3);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 1), kSuccess);
  startCamera();
  const auto data = next();
  ASSERT_TRUE(data);
  EXPECT_EQ(bufferInfo(data->buffer, 30), 1U);
  EXPECT_NE(bufferInfo(data->buffer, 24), 0U);
  std::size_t count = 99;
  ASSERT_EQ(g.DSGetBufferChunkData(stream, data->buffer, nullptr, &count), kSuccess);
  ASSERT_GT(count, 1U);
  EXPECT_LE(count, streamInfo(11));
  std::vector<ChunkEntry> chunks(count);
  std::size_t room = count - 1;
  EXPECT_EQ(g.DSGetBufferChunkData(stream, data->buffer, chunks.data(), &room), kBufferTooSmall);
  room = count;
  ASSERT_EQ(g.DSGetBufferChunkData(stream, data->buffer, chunks.data(), &room), kSuccess);
  // Each chunk is followed by its ID and its length, big-endian.
  const auto* base = reinterpret_cast<const unsigned char*>(static_cast<std::uintptr_t>(bufferInfo(data->buffer, 0)));
  const auto word = [](const unsigned char* at) {
    return std::uint64_t{at[0]} << 24 | std::uint64_t{at[1]} << 16 | std::uint64_t{at[2]} << 8 | at[3];
  };
  std::set<std::uint64_t> ids;
  for (const ChunkEntry& chunk : chunks) {
    const std::size_t end = static_cast<std::size_t>(chunk.offset) + chunk.length;
    ASSERT_LE(end + 8, bufferInfo(data->buffer, 9));
    EXPECT_EQ(word(base + end), chunk.id);
    EXPECT_EQ(word(base + end + 4), chunk.length);
    EXPECT_TRUE(ids.insert(chunk.id).second);
  }
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  EXPECT_EQ(remote->set("AcquisitionStop", 1), kSuccess);
  EXPECT_EQ(remote->set("ChunkModeActive", 0), kSuccess);
}

TEST_F(StreamTest, MultiPartPayloadsDescribeTheirParts) {
  openDevice("VC-640X");
  openStream();
  for (const char* component : {"Range", "Confidence"}) {
    ASSERT_EQ(remote->set("ComponentSelector", remote->entry("ComponentSelector", component)), kSuccess);
    ASSERT_EQ(remote->set("ComponentEnable", 1), kSuccess);
  }
  announce(3);
  ASSERT_EQ(g.DSStartAcquisition(stream, 0, 1), kSuccess);
  startCamera();
  const auto data = next();
  ASSERT_TRUE(data);
  ASSERT_EQ(bufferInfo(data->buffer, 19), 10U);
  EXPECT_EQ(bufferInfo(data->buffer, 17), 0U);
  for (const int command : {10, 11, 12, 13, 14, 20, 21, 22}) {
    EXPECT_EQ(ask(g.DSGetBufferInfo, stream, data->buffer, command).error, kNoData) << command;
  }
  std::uint32_t parts = 0;
  ASSERT_EQ(g.DSGetNumBufferParts(stream, data->buffer, &parts), kSuccess);
  ASSERT_GE(parts, 2U);
  const std::uint64_t base = bufferInfo(data->buffer, 0);
  const std::uint64_t filled = bufferInfo(data->buffer, 9);
  std::uint64_t end = base;
  for (std::uint32_t part = 0; part < parts; ++part) {
    const auto info = [&](int command) { return ask(g.DSGetBufferPartInfo, stream, data->buffer, part, command); };
    EXPECT_EQ(info(0).type, kPointer);
    EXPECT_GE(info(0).number(), end);
    end = info(0).number() + info(1).number();
    EXPECT_LE(end, base + filled);
    EXPECT_EQ(info(2).type, kSize);
    EXPECT_EQ(info(3).type, kUint64);
    EXPECT_EQ(info(4).number(), 4U);
    const std::uint64_t bits = info(3).number() >> 16 & 0xFF;
    EXPECT_EQ(info(5).number() * info(6).number() * bits / 8, info(1).number());
    EXPECT_EQ(info(14).error, kNotImplemented);
  }
  EXPECT_EQ(ask(g.DSGetBufferPartInfo, stream, data->buffer, parts, 0).error, kInvalidIndex);
  EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
}

TEST_F(StreamTest, TwoStreamsRunSideBySide) {
  openDevice("VC-1024D");
  std::uint32_t count = 0;
  ASSERT_EQ(g.DevGetNumDataStreams(device, &count), kSuccess);
  ASSERT_EQ(count, 2U);
  std::array<Handle, 2> streams{};
  std::array<Handle, 2> events{};
  for (std::uint32_t i = 0; i < 2; ++i) {
    openStream(i);
    streams[i] = stream;
    events[i] = newBuffer;
    EXPECT_EQ(streamInfo(9), 1U) << "one feature cannot speak for two streams";
    announce(3);
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, 3), kSuccess);
  }
  startCamera();
  for (std::uint32_t i = 0; i < 2; ++i) {
    stream = streams[i];
    newBuffer = events[i];
    for (int frame = 0; frame < 3; ++frame) {
      EXPECT_TRUE(next()) << "stream " << i;
    }
    EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
  }
}

TEST_F(StreamTest, SpeedModeFillsAsFastAsBuffersComeBack) {
  openDevice("VC-320HS");
  openStream();
  ASSERT_EQ(remote->set("SpeedMode", 1), kSuccess);
  announce(4);
  for (const std::uint64_t count : {std::uint64_t{1000}, kInfinite}) {
    ASSERT_EQ(g.DSStartAcquisition(stream, 0, count), kSuccess);
    startCamera();
    std::uint64_t expected = 0;
    for (int i = 0; i < 1000; ++i) {
      const auto data = next();
      ASSERT_TRUE(data) << "after " << i;
      const std::uint64_t id = bufferInfo(data->buffer, 16);
      if (i != 0) {
        ASSERT_EQ(id, expected);
      }
      std::uint64_t written = 0;
      std::memcpy(&written, reinterpret_cast<const void*>(static_cast<std::uintptr_t>(bufferInfo(data->buffer, 0))), 8);
      ASSERT_EQ(written, id);
      expected = id + 1;
      ASSERT_EQ(g.DSQueueBuffer(stream, data->buffer), kSuccess);
    }
    EXPECT_EQ(streamInfo(2), 0U) << "no frame is lost for want of a buffer";
    stopCamera();
    EXPECT_EQ(g.DSStopAcquisition(stream, 0), kSuccess);
    ASSERT_EQ(g.DSFlushQueue(stream, 2), kSuccess);
  }
  EXPECT_EQ(remote->set("SpeedMode", 0), kSuccess);
}

}  // namespace producer_test
