// The way of an image: its record, answers that are missing, incomplete frames, the way back.
#include <cstring>
#include <set>

#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::Not;
using testing::StartsWith;

class ImagesTest : public ManualCameraTest {
 protected:
  void SetUp() override {
    ManualCameraTest::SetUp();
    stream_ = openStream(0, 2);
    start();
    takeLog();
  }

  Stream stream_;
};

TEST_F(ImagesTest, DescribeTheImage) {
  struct Case {
    std::uint64_t format;
    std::size_t width;
    std::uint32_t linePitch;
    std::uint32_t channels;
  };
  const Case cases[] = {
      {0x01080001, 8, 8, 1},
      {0x010C0047, 1000, 1500, 1},
      {0x010A0046, 7, 8, 1},
      {0x01100003, 1000, 2000, 1},
      {0x01100005, 10, 20, 1},
      {0x01100007, 10, 20, 1},
      {0x02180014, 1000, 3000, 3},
      {0x02200017, 10, 40, 4},
      {0x02200016, 10, 40, 4},
      {0x02300018, 10, 60, 3},
      {0x01080008, 9, 9, 3},
      {0, 10, 0, 1},
      {0x010500FF, 10, 10, 3},
      {0x010E0104, 4, 7, 3},
      {0x02400000, 16777219, 134217760, 3},  // In single precision.
  };
  std::uint64_t frame = 0;
  for (const Case& each : cases) {
    SCOPED_TRACE(each.format);
    const oviNewBufferEventData* image = take(stream_, {each.width, 2, each.format, 5, 11});
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->linePitch, each.linePitch);
    EXPECT_EQ(image->channels, each.channels);
    EXPECT_EQ(image->width, each.width);
    EXPECT_EQ(image->height, 2U);
    EXPECT_EQ(image->pixelFormat, each.format);
    EXPECT_EQ(image->frameID, frame++);
    EXPECT_EQ(image->event.kind, static_cast<std::uint32_t>(OVI_EVENT_NEW_BUFFER));
    EXPECT_EQ(image->event.moduleHandle, stream_.handle);
    EXPECT_EQ(image->event.moduleSelector, static_cast<std::uint32_t>(OVI_MODULE_DATA_STREAM));
    EXPECT_EQ(image->event.valueSize, 11U);
    EXPECT_EQ(static_cast<const std::uint8_t*>(image->event.value)[0], each.width == 0 ? 0 : 5);
    EXPECT_EQ(image->timestampMs, image->timestampNs / 1000000);
    // The event data are the producer's: its buffer handle, and the record itself as the private pointer.
    ASSERT_EQ(image->event.eventDataSize, sizeof(EVENT_NEW_BUFFER_DATA));
    EXPECT_EQ(image->rawEventData, image->event.eventData);
    EVENT_NEW_BUFFER_DATA data{};
    std::memcpy(&data, image->rawEventData, sizeof data);
    EXPECT_EQ(data.pUserPointer, image);
    EXPECT_EQ(image->event.eventID, reinterpret_cast<std::uintptr_t>(data.BufferHandle));
    EXPECT_EQ(oviReleaseImage(stream_.handle, const_cast<oviNewBufferEventData*>(image)), OVI_SUCCESS);
  }
}

TEST_F(ImagesTest, MissingAnswersAreZeroAndFailuresMakeAnImageIncomplete) {
  constexpr GC_ERROR kNone = GC_ERR_NOT_IMPLEMENTED;
  struct Case {
    BUFFER_INFO_CMD info;
    GC_ERROR code;
    bool isDelivered;
  };
  const Case cases[] = {
      {BUFFER_INFO_WIDTH, kNone, false},
      {BUFFER_INFO_HEIGHT, GC_ERR_NOT_AVAILABLE, false},
      {BUFFER_INFO_PIXELFORMAT, kNone, false},
      {BUFFER_INFO_BASE, GC_ERR_NO_DATA, false},
      {BUFFER_INFO_FRAMEID, kNone, true},
      {BUFFER_INFO_FRAMEID, GC_ERR_IO, false},
      {BUFFER_INFO_SIZE_FILLED, GC_ERR_INVALID_PARAMETER, true},
      {BUFFER_INFO_SIZE_FILLED, GC_ERR_ERROR, false},
      {BUFFER_INFO_SIZE, GC_ERR_NO_DATA, true},
      {BUFFER_INFO_SIZE, GC_ERR_INVALID_HANDLE, false},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(testing::Message() << each.info << " " << each.code);
    script().failBufferInfo(each.info, each.code);
    ASSERT_TRUE(script().deliver(0, {8, 4, 0x01080001, 0, 32, SIZE_MAX, 77}));
    EXPECT_EQ(script().queued(0), 1U);
    void* data = nullptr;
    const oviErr result = oviWaitForEvent(stream_.event, 1000, &data);
    EXPECT_EQ(result, each.isDelivered ? OVI_SUCCESS : OVI_ERR_INVALID_BUFFER);
    if (each.isDelivered) {
      auto* image = static_cast<oviNewBufferEventData*>(data);
      EXPECT_EQ(image->frameID, each.info == BUFFER_INFO_FRAMEID ? 0U : 77U);
      EXPECT_EQ(image->event.valueSize, each.info == BUFFER_INFO_SIZE_FILLED ? 0U : 32U);
      EXPECT_EQ(oviReleaseImage(stream_.handle, image), OVI_SUCCESS);
      EXPECT_THAT(takeLog(), Not(Contains(StartsWith("1 "))));
    } else {
      EXPECT_EQ(data, nullptr);
      EXPECT_THAT(takeLog(), Contains(StartsWith("1 Failed to get buffer information! Buffer is not complete and will "
                                                 "be queued again. Error: ")));
    }
    EXPECT_EQ(script().queued(0), 2U) << "queued again either way";
    script().failBufferInfo(each.info, 0);
  }

  script().failBufferInfo(BUFFER_INFO_WIDTH, kNone);
  script().deliver(0, {});
  script().fail("DSQueueBuffer", GC_ERR_IO, 1);
  void* data = nullptr;
  EXPECT_EQ(oviWaitForEvent(stream_.event, 1000, &data), OVI_ERR_INVALID_BUFFER);
  EXPECT_THAT(takeLog(), Contains(StartsWith("1 Error queueing buffer: ")));
}

TEST_F(ImagesTest, AnAnswerCountsWhateverStatusPassesWithIt) {
  for (const GC_ERROR status : {static_cast<GC_ERROR>(GC_ERR_AMBIGUOUS), GC_ERR_CUSTOM_ID - 5, 1}) {
    for (const BUFFER_INFO_CMD info : {BUFFER_INFO_WIDTH, BUFFER_INFO_SIZE_FILLED})
      script().failBufferInfo(info, status);
    oviNewBufferEventData* image = take(stream_, {8, 4, 0x01080001, 0, 20});
    ASSERT_NE(image, nullptr) << status;
    EXPECT_EQ(image->width, 8U) << status;
    EXPECT_EQ(image->event.valueSize, 20U) << status;
    EXPECT_EQ(oviReleaseImage(stream_.handle, image), OVI_SUCCESS);
  }
}

TEST_F(ImagesTest, TheEventIdIsNoReasonToLoseAnImage) {
  script().fail("EventGetDataInfo", GC_ERR_IO);
  const oviNewBufferEventData* image = take(stream_);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->event.eventID, 0U);
}

TEST_F(ImagesTest, NoProducerHasFilledMoreThanTheBuffer) {
  const oviNewBufferEventData* image = take(stream_, {8, 4, 0x01080001, 0, std::size_t{1} << 40});
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->event.valueSize, 32U);
}

TEST_F(ImagesTest, FailingWaitsLeaveTheOutputAlone) {
  struct Case {
    GC_ERROR code;
    oviErr result;
    const char* log;
  };
  const Case cases[] = {
      {0, OVI_ERR_TIMEOUT, "8 Timeout waiting for new buffer event! Error: "},
      {GC_ERR_ABORT, OVI_ERR_ABORTED, "8 Info: New buffer event was aborted (this is not an error)! Message: "},
      {GC_ERR_IO, OVI_ERR_IO, "2 Failed getting new buffer event data! Error: "},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.log);
    script().fail("EventGetData", each.code, each.code != 0 ? 2 : 0);
    int untouched = 0;
    void* data = &untouched;
    EXPECT_EQ(oviWaitForEvent(stream_.event, 0, &data), each.result);
    EXPECT_EQ(data, &untouched);
    EXPECT_THAT(takeLog(), Contains(StartsWith(each.log)));
    oviNewBufferEventData copy;
    std::memset(&copy, 'x', sizeof copy);
    EXPECT_EQ(oviGetNextImage(stream_.event, &copy, 0), each.result);
    EXPECT_EQ(copy.bufferHandle, 0U) << "cleared first";
  }
  void* data = nullptr;
  oviNewBufferEventData copy{};
  EXPECT_EQ(oviWaitForEvent(0, 0, &data), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviWaitForEvent(stream_.event, 0, nullptr), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetNextImage(stream_.event, nullptr, 0), OVI_ERR_INVALID_PARAMETER);
  EXPECT_EQ(oviGetNextImage(stream_.handle, &copy, 0), OVI_ERR_NOT_FOUND) << "a stream is no event";
  EXPECT_EQ(oviWaitForEvent(stream_.handle, 0, &data), OVI_ERR_NOT_FOUND);
  EXPECT_THAT(takeLog(), Contains("1 Could not find event object for provided handle!"));
}

TEST_F(ImagesTest, ReleaseBuffersByTheirHandle) {
  script().deliver(0, {});
  oviNewBufferEventData copy{};
  ASSERT_EQ(oviGetNextImage(stream_.event, &copy, 1000), OVI_SUCCESS);
  EXPECT_EQ(copy.width, 8U);
  EXPECT_EQ(script().queued(0), 1U);
  oviNewBufferEventData unknown{};
  unknown.bufferHandle = stream_.handle;
  struct Case {
    const char* name;
    std::uint64_t stream;
    oviNewBufferEventData* record;
    oviErr result;
    std::size_t queued;
    const char* log;
  };
  const Case cases[] = {
      {"no stream", 0, &copy, OVI_ERR_INVALID_PARAMETER, 1, ""},
      {"no record", stream_.handle, nullptr, OVI_ERR_INVALID_PARAMETER, 1, ""},
      {"unknown stream", stream_.event, &copy, OVI_SUCCESS, 1, "1 Failed to release image. Unknown stream."},
      {"unknown buffer", stream_.handle, &unknown, OVI_ERR_NOT_FOUND, 1, "1 Failed to release image. Unknown buffer."},
      {"once", stream_.handle, &copy, OVI_SUCCESS, 2, ""},
      {"twice", stream_.handle, &copy, OVI_ERR_RESOURCE_IN_USE, 2, "1 Failed to queue buffer. Error: -1004"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    takeLog();
    EXPECT_EQ(oviReleaseImage(each.stream, each.record), each.result);
    EXPECT_EQ(script().queued(0), each.queued);
    expectLogged(each.log);
  }
}

TEST_F(ImagesTest, TheStatisticsCountWhatWasLost) {
  take(stream_);
  take(stream_);
  EXPECT_FALSE(script().deliver(0, {})) << "no buffer left";
  oviAcquistionStatistics statistics{};
  EXPECT_EQ(oviGetAcquisitionStatistics(stream_.handle, &statistics), OVI_SUCCESS);
  EXPECT_EQ(statistics.delivered, 2U);
  EXPECT_EQ(statistics.underruns, 1U);
}

}  // namespace
}  // namespace manual
