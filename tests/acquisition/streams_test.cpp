// Streams and their pools: sizes, failures on the way, rebuilding, closing.
#include <algorithm>
#include <cstring>
#include <set>

#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class StreamsTest : public ManualCameraTest {};

TEST_F(StreamsTest, SizeBuffersByWhoeverKnowsTheSize) {
  struct Case {
    const char* name;
    const char* producer;
    std::uint64_t requested;
    std::size_t streamPayload;
    std::uint32_t cameraPayload;
    GC_ERROR definesFails;
    GC_ERROR portFails;
    oviErr result;
    const char* allocated;  // The call for the one buffer; empty: none.
  };
  const Case cases[] = {
      {"asked for", "x.cti", 100, 64, 32, 0, 0, OVI_SUCCESS, "DSAllocAndAnnounceBuffer(0,100)"},
      {"the camera's", "x.cti", 0, 0, 32, 0, 0, OVI_SUCCESS, "DSAllocAndAnnounceBuffer(0,32)"},
      {"the stream's wins", "x.cti", 0, 64, 32, 0, 0, OVI_SUCCESS, "DSAllocAndAnnounceBuffer(0,64)"},
      {"not implemented by the stream", "x.cti", 0, 64, 32, GC_ERR_NOT_IMPLEMENTED, 0, OVI_SUCCESS,
       "DSAllocAndAnnounceBuffer(0,32)"},
      {"the camera's 0 does not matter", "x.cti", 0, 64, 0, 0, 0, OVI_SUCCESS, "DSAllocAndAnnounceBuffer(0,64)"},
      {"the camera's failure does", "x.cti", 0, 64, 32, 0, GC_ERR_IO, OVI_ERR_IO, ""},
      {"a recording producer's own", "nimbo_producer.cti", 0, 64, 32, 0, 0, OVI_SUCCESS,
       "DSAllocAndAnnounceBuffer(0,4096)"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    script().reset();
    script().setFileName(each.producer);
    script().setRegister(kBufferSize, 4096);
    script().setRegister(kPayloadSize, each.cameraPayload);
    script().setStreamPayload(each.streamPayload);
    script().failStreamInfo(STREAM_INFO_DEFINES_PAYLOADSIZE, each.definesFails);
    std::int64_t known = 0;  // The description is fetched before the port fails.
    ASSERT_EQ(oviGetFeatureInt(device(), "Width", &known, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    if (each.portFails != 0) {
      script().fail("GCReadPort", each.portFails);
    }
    std::uint64_t stream = 0;
    EXPECT_EQ(oviCreateDataStream(device(), 0, &stream, 1, each.requested), each.result);
    EXPECT_NE(stream, 0U) << "the stream keeps its handle";
    const Calls calls = script().takeCalls();
    EXPECT_EQ(calls.empty() ? "" : calls.front(), each.allocated);
    script().fail("GCReadPort", 0, 0);
    EXPECT_EQ(oviCloseDataStream(stream), OVI_SUCCESS);
  }
}

TEST_F(StreamsTest, AdjustPacketsForTheProducersThatNeedIt) {
  struct Case {
    const char* producer;
    std::uint32_t count;
    std::uint32_t packetSize;
    Calls calls;
    std::uint32_t packetSizeAfter;
  };
  const Case cases[] = {
      {"x.cti", 0, 1500, {}, 1500},
      {"gevtls2i.cti", 0, 1500, {}, 9000},  // The command is asked of the stream, which no camera feature is found by.
      {"GEVTLS2I.CTI", 0, 1500, {}, 1500},
      {"my_lsgentlgevkithara_1.cti", 0, 1500, {}, 9000},
      {"nimbo_producer.cti", 0, 9000, {}, 9000},
      {"nimbo_producer.cti", 1, 1500, {"DSAllocAndAnnounceBuffer(0,16)"}, 9000},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.producer);
    script().reset();
    script().setFileName(each.producer);
    script().setRegister(kPacketSize, each.packetSize);
    std::uint64_t stream = 0;
    EXPECT_EQ(oviCreateDataStream(device(), 0, &stream, each.count, 16), OVI_SUCCESS);
    EXPECT_EQ(script().takeCalls(), each.calls);
    EXPECT_EQ(script().getRegister(kPacketSize), each.packetSizeAfter);
    oviCloseDataStream(stream);
  }
}

TEST_F(StreamsTest, KeepWhatSucceededWhenSomethingFails) {
  struct Case {
    const char* function;
    GC_ERROR code;
    int skip;
    oviErr result;
    std::size_t announced;
    const char* log;
  };
  const Case cases[] = {
      {"DevOpenDataStream", GC_ERR_ACCESS_DENIED, 0, OVI_ERR_NO_ACCESS, 0,
       "1 Failed to open data stream id from TL for device! Requested index: [0] Device: [ManualCamera] Error: "},
      {"DevGetNumDataStreams", GC_ERR_IO, 0, OVI_ERR_IO, 0, "1 Failed to open data stream id from TL for device!"},
      {"DSAllocAndAnnounceBuffer", GC_ERR_OUT_OF_MEMORY, 2, OVI_ERR_OUT_OF_MEMORY, 2,
       "1 Failed to create buffer for stream with ID: [Stream0] Error: "},
      {"DSQueueBuffer", GC_ERR_INVALID_BUFFER, 0, OVI_ERR_INVALID_BUFFER, 3, "4 allocate Buffers: [3] Size: [32]"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.function);
    script().reset();
    script().fail(each.function, each.code, -1, each.skip);
    std::uint64_t stream = 0;
    EXPECT_EQ(oviCreateDataStream(device(), 0, &stream, 3, 32), each.result);
    EXPECT_EQ(script().announced(0), each.announced);
    EXPECT_THAT(takeLog(), Contains(HasSubstr(each.log)));
    script().fail(each.function, 0, 0);
    if (stream != 0) {
      oviCloseDataStream(stream);
    }
  }
  std::uint64_t stream = 7;
  EXPECT_EQ(oviCreateDataStream(device(), 0, nullptr, 1, 1), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviCreateDataStream(0xDEAD, 0, &stream, 1, 1), OVI_ERR_NOT_FOUND);
  EXPECT_THAT(takeLog(), Contains("1 Device not found!"));
  EXPECT_NE(oviCreateDataStream(device(), kStreams, &stream, 1, 1), OVI_SUCCESS);
  EXPECT_EQ(stream, 7U);
}

TEST_F(StreamsTest, DescribeTheStreamsOfTheDevice) {
  std::uint32_t count = 0;
  EXPECT_EQ(oviGetNumberOfDataStreams(device(), &count), OVI_SUCCESS);
  EXPECT_EQ(count, kStreams);
  oviDataStreamInfo info;
  std::memset(&info, 'x', sizeof info);
  EXPECT_EQ(oviGetDataStreamInfo(device(), 1, &info), OVI_SUCCESS);
  EXPECT_STREQ(info.id, "Stream1");
  EXPECT_STREQ(info.name, "Stream1");
  EXPECT_EQ(info.index, 1U);
  EXPECT_EQ(oviGetDataStreamInfo(device(), kStreams, &info), OVI_ERR_NOT_FOUND);
  const auto* bytes = reinterpret_cast<const char*>(&info);
  EXPECT_TRUE(std::all_of(bytes, bytes + sizeof info, [](char byte) { return byte == 0; }));
  EXPECT_EQ(oviGetDataStreamInfo(device(), 0, nullptr), OVI_ERR_INVALID_PARAMETER);
  script().fail("DevGetNumDataStreams", GC_ERR_IO);
  EXPECT_EQ(oviGetNumberOfDataStreams(device(), &count), OVI_ERR_IO);
  EXPECT_THAT(takeLog(), Contains(HasSubstr("1 Failed to get the number of data streams for device: [ManualCamera]. "
                                            "Error: ")));
}

TEST_F(StreamsTest, RebuildAPoolWhoseBuffersAreTooSmall) {
  const Stream stream = openStream(0, 3);
  const auto takeAll = [&] {
    std::set<oviNewBufferEventData*> records;
    std::set<std::uint64_t> handles;
    start();
    for (int i = 0; i < 3; ++i) {
      oviNewBufferEventData* record = take(stream);
      records.insert(record);
      handles.insert(record->bufferHandle);
    }
    EXPECT_EQ(oviStopAcquisition(device()), OVI_SUCCESS);
    script().takeCalls();
    return std::pair(records, handles);
  };
  const auto [records, handles] = takeAll();
  EXPECT_EQ(oviCheckAndReallocBuffers(device()), OVI_SUCCESS);
  EXPECT_THAT(script().takeCalls(), IsEmpty()) << "large enough";

  script().setRegister(kPayloadSize, 64);
  takeLog();
  EXPECT_EQ(oviCheckAndReallocBuffers(device()), OVI_SUCCESS);
  EXPECT_THAT(script().takeCalls(), ElementsAre("DSFlushQueue(0,4)", "DSRevokeBuffer(0)", "DSRevokeBuffer(0)",
                                                "DSRevokeBuffer(0)", "DSAllocAndAnnounceBuffer(0,64)",
                                                "DSAllocAndAnnounceBuffer(0,64)", "DSAllocAndAnnounceBuffer(0,64)"));
  EXPECT_THAT(takeLog(),
              Contains("2 Size of allocated buffers is too small for expected PayloadSize, reallocating them."));
  const auto [recordsAfter, handlesAfter] = takeAll();
  EXPECT_EQ(recordsAfter, records);
  for (const std::uint64_t handle : handlesAfter) {
    EXPECT_THAT(handles, Not(Contains(handle)));
  }

  script().setRegister(kPayloadSize, 128);
  script().failBufferInfo(BUFFER_INFO_SIZE, GC_ERR_IO);
  EXPECT_EQ(oviCheckAndReallocBuffers(device()), OVI_ERR_IO);
  EXPECT_THAT(takeLog(), Contains("1 Failed to reallocate buffers as the configuration is changed!"));
  EXPECT_EQ(oviCheckAndReallocBuffers(0xDEAD), OVI_ERR_NOT_FOUND);
}

TEST_F(StreamsTest, CloseWhateverFailsOnTheWay) {
  struct Case {
    const char* function;
    oviErr result;
    Calls calls;
    const char* log;
  };
  const Case cases[] = {
      {"nothing", OVI_SUCCESS, {"DSFlushQueue(0,4)", "DSRevokeBuffer(0)", "DSRevokeBuffer(0)", "DSClose(0)"}, ""},
      {"DSFlushQueue",
       OVI_ERR_BUSY,
       {"DSRevokeBuffer(0)", "DSRevokeBuffer(0)", "DSClose(0)"},
       "2 Error during flush of queues for data stream: [Stream0] Error: -1022"},
      {"DSRevokeBuffer",
       OVI_SUCCESS,
       {"DSFlushQueue(0,4)", "DSClose(0)"},
       "1 Failed to revoke buffer from data stream: Stream ID: [Stream0] Error: "},
      {"DSClose",
       OVI_ERR_BUSY,
       {"DSFlushQueue(0,4)", "DSRevokeBuffer(0)", "DSRevokeBuffer(0)"},
       "1 Data stream close failed: Stream ID: [Stream0] Error: "},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.function);
    script().reset();
    const Stream stream = openStream(0, 2);
    start();
    oviNewBufferEventData* record = take(stream);
    ASSERT_NE(record, nullptr);
    oviStopAcquisition(device());
    script().fail("DSStopAcquisition", 0, 0);
    script().takeCalls();
    takeLog();
    // A flush that fails leaves the buffers queued, so that none could be revoked: here they are all delivered.
    start();
    take(stream);
    take(stream);
    script().takeCalls();
    script().fail(each.function, GC_ERR_BUSY);
    EXPECT_EQ(oviCloseDataStream(stream.handle), each.result);
    EXPECT_EQ(script().takeCalls(), each.calls);
    if (*each.log != '\0') {
      EXPECT_THAT(takeLog(), Contains(HasSubstr(each.log)));
    }
    EXPECT_EQ(record->width, 8U) << "the record outlives its stream";
    void* data = nullptr;
    EXPECT_EQ(oviWaitForEvent(stream.event, 0, &data), OVI_ERR_NOT_FOUND);
    EXPECT_EQ(oviReleaseImage(stream.handle, record), OVI_ERR_NOT_FOUND);
    EXPECT_EQ(oviCloseDataStream(stream.handle), OVI_ERR_NOT_FOUND);
  }
  EXPECT_EQ(oviCloseDataStream(0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviCloseDataStream(device()), OVI_ERR_NOT_FOUND);
  std::uint32_t count = 0;
  EXPECT_EQ(oviGetNumberOfDataStreams(device(), &count), OVI_SUCCESS) << "a device is not taken for a stale stream";
}

}  // namespace
}  // namespace manual
