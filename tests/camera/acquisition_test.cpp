// Frames in time: modes, triggers, events, counters, timers, the sequencer, chunks, parts and streams.
#include <gtest/gtest.h>

#include <thread>

#include "remote.h"

namespace vcam::test {
namespace {

constexpr std::uint64_t kMs = 1000000;

TEST(Acquisition, ModesDeliverTheirNumberOfFramesWithRisingIds) {
  for (const std::uint64_t firstId : {0U, 1U}) {
    Configuration configuration;
    configuration.firstFrameId = firstId;
    Remote camera(smallModel(), configuration);
    for (const auto& [mode, count] : {std::pair{0, 1U}, std::pair{1, 3U}}) {
      camera.set("AcquisitionMode", mode);
      if (mode == 1) {
        camera.set("AcquisitionFrameCount", count);
      }
      camera.start();
      FramePlan plan;
      std::uint64_t last = 0;
      for (std::uint64_t i = 0; i < count; ++i) {
        ASSERT_EQ(camera.next(plan), FrameWait::Frame);
        EXPECT_EQ(plan.frameId, firstId + i);
        EXPECT_GE(plan.timestampNs, i == 0 ? 0 : last + 5 * kMs) << "200 Hz are 5 ms";
        last = plan.timestampNs;
      }
      EXPECT_EQ(camera.get("AcquisitionActive"), 0) << "it ends by itself";
      EXPECT_EQ(camera.next(plan, 30ms), FrameWait::Timeout);
      camera.stop();
    }
  }
}

TEST(Acquisition, StoppingAStreamEndsItsWaitAndLockedFeaturesStayLocked) {
  Remote camera;
  camera.set("TriggerMode", 1);
  camera.start();
  EXPECT_EQ(camera.trySet("Width", 128), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(camera.trySet("PixelFormat", 0x010C0047), GC_ERR_ACCESS_DENIED);
  EXPECT_EQ(camera.trySet("OffsetX", 0), GC_ERR_SUCCESS) << "moving the window needs no other buffers";
  FrameWait result = FrameWait::Frame;
  std::thread waiter([&] {
    FramePlan plan;
    result = camera->waitForFrame(0, Clock::time_point::max(), plan);
  });
  camera->stopStream(0);
  waiter.join();
  EXPECT_EQ(result, FrameWait::Stopped);
  camera->disconnect();
  EXPECT_EQ(camera.get("TLParamsLocked"), 0);
  EXPECT_EQ(camera.get("AcquisitionActive"), 0);
  EXPECT_EQ(camera.trySet("Width", 128), GC_ERR_SUCCESS);
  EXPECT_EQ(camera.get("PayloadSize"), 128 * 128);
}

TEST(Geometry, LimitsDependOnOneAnother) {
  Remote camera;
  struct Step {
    const char* name;
    std::int64_t value;
    GC_ERROR result;
  };
  for (const Step& s : {Step{"OffsetX", 4, GC_ERR_INVALID_VALUE}, Step{"Width", 200, GC_ERR_SUCCESS},
                        Step{"OffsetX", 56, GC_ERR_SUCCESS}, Step{"OffsetX", 60, GC_ERR_INVALID_VALUE},
                        Step{"Width", 204, GC_ERR_INVALID_VALUE}, Step{"Width", 198, GC_ERR_INVALID_VALUE},
                        Step{"BinningHorizontal", 2, GC_ERR_SUCCESS}, Step{"Height", 0, GC_ERR_INVALID_VALUE},
                        Step{"DecimationVertical", 4, GC_ERR_SUCCESS}, Step{"Height", 34, GC_ERR_INVALID_VALUE}}) {
    EXPECT_EQ(camera.trySet(s.name, s.value), s.result) << s.name << " = " << s.value;
  }
  EXPECT_EQ(camera.get("WidthMax"), 128);
  EXPECT_EQ(camera.get("Width"), 128) << "shrinks with the sensor";
  EXPECT_EQ(camera.get("OffsetX"), 0);
  EXPECT_EQ(camera.get("Height"), 32);
}

TEST(Trigger, OverlapDecidesWhichTriggersAreMissed) {
  struct Case {
    int overlap;
    std::size_t accepted;  // of three at once
  };
  for (const Case& c : {Case{0, 1}, Case{1, 1}, Case{2, 2}}) {
    Remote camera;
    EventLog events(camera.camera());
    camera.set("EventNotification", 1, 4);
    camera.set("TriggerMode", 1);
    camera.set("TriggerOverlap", c.overlap);
    camera.setFloat("ExposureTime", 300000);
    camera.start();
    for (int i = 0; i < 3; ++i) {
      camera.execute("TriggerSoftware");
    }
    EXPECT_EQ(camera.get("TriggersMissed"), 3 - static_cast<std::int64_t>(c.accepted));
    EXPECT_TRUE(events.waitFor(0x9005, 3 - c.accepted));
    std::vector<FramePlan> plans(c.accepted);
    for (FramePlan& plan : plans) {
      ASSERT_EQ(camera.next(plan), FrameWait::Frame);
    }
    if (c.accepted == 2) {
      EXPECT_EQ(plans[1].timestampNs - plans[0].timestampNs, 300 * kMs) << "exposures follow one another";
    }
    FramePlan none;
    EXPECT_EQ(camera.next(none, 20ms), FrameWait::Timeout);
    EXPECT_EQ(events.count(0x9005), 3 - c.accepted);
  }
}

TEST(Trigger, BurstsLinesAndTimersStartFrames) {
  FramePlan plan;
  {
    Remote camera;
    camera.set("TriggerMode", 1, 2);
    camera.set("AcquisitionBurstFrameCount", 4);
    camera.start();
    EXPECT_EQ(camera.next(plan, 20ms), FrameWait::Timeout);
    camera.set("TriggerSelector", 2);
    camera.execute("TriggerSoftware");
    for (int i = 0; i < 4; ++i) {
      EXPECT_EQ(camera.next(plan), FrameWait::Frame) << i;
    }
    EXPECT_EQ(camera.next(plan, 20ms), FrameWait::Timeout);
  }
  {
    Remote camera;
    camera.set("TriggerMode", 1);
    camera.set("TriggerSource", 1);
    camera.start();
    EXPECT_EQ(camera.trySet("TriggerSoftware", 1), GC_ERR_ACCESS_DENIED) << "the source is the line";
    camera.setFloat("LineSignalFrequency", 100);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(camera.next(plan), FrameWait::Frame) << i;
    }
    camera.setFloat("LineSignalFrequency", 0);
  }
  {
    Remote camera;
    camera.set("TriggerMode", 1);
    camera.set("TriggerSource", 2);
    camera.setFloat("TimerDuration", 2000);
    camera.start();
    camera.execute("TimerReset");
    EXPECT_EQ(camera.next(plan), FrameWait::Frame);
    EXPECT_EQ(camera.get("TimerStatus"), 3);
    EXPECT_DOUBLE_EQ(camera.getFloat("TimerValue"), 2000);
  }
}

TEST(Signals, CountersCountAndEndAndCirclesOfThemEnd) {
  Remote camera;
  EventLog events(camera.camera());
  constexpr std::int64_t kMissed = 5;
  constexpr std::int64_t kCounter0End = 9;
  constexpr std::int64_t kCounter1End = 10;
  camera.set("EventNotification", 1, 7);
  camera.set("CounterEventSource", kMissed);
  camera.set("CounterDuration", 2);
  camera.set("TriggerMode", 1);
  for (int i = 0; i < 3; ++i) {
    camera.execute("TriggerSoftware");  // not acquiring: missed
  }
  EXPECT_TRUE(events.waitFor(0x9012, 1));
  EXPECT_EQ(camera.get("CounterValue"), 2);
  EXPECT_EQ(camera.get("CounterStatus"), 2);
  // Each counter's end resets and feeds the other.
  for (std::size_t i = 0; i < 2; ++i) {
    camera.set("CounterDuration", 1, i);
    camera.set("CounterResetSource", i == 0 ? kCounter1End : kCounter0End, i);
  }
  camera.set("CounterEventSource", kCounter0End, 1);
  camera.execute("CounterReset");
  camera.execute("TriggerSoftware");
  EXPECT_TRUE(events.waitFor(0x9012, 2));
}

TEST(Events, CarryTimeStampAndFrameIdInTheCamerasByteOrder) {
  for (const bool bigEndian : {false, true}) {
    CameraModel model = smallModel();
    model.bigEndian = bigEndian;
    Remote camera(model);
    EventLog events(camera.camera());
    camera.execute("TestEventGenerate");
    camera.set("EventNotification", 1, 3);
    camera.start();
    FramePlan plan;
    for (int i = 0; i < 3; ++i) {
      ASSERT_EQ(camera.next(plan), FrameWait::Frame);
    }
    ASSERT_TRUE(events.waitFor(0x9004, 2));
    EXPECT_EQ(events.count(0x9FFF), 0U) << "its notification is off";
    const std::vector<std::byte> data = events.data(0x9004, 1);
    ASSERT_EQ(data.size(), 16U);
    std::uint64_t frameId = 0;
    for (std::size_t i = 0; i < 8; ++i) {
      frameId |= std::to_integer<std::uint64_t>(data[8 + i]) << 8 * (bigEndian ? 7 - i : i);
    }
    EXPECT_EQ(frameId, 1U);
  }
}

TEST(Sequencer, SetsFollowTheirPaths) {
  Remote camera;
  camera.set("SequencerConfigurationMode", 1);
  for (const std::int64_t set : {0, 1}) {
    camera.setFloat("ExposureTime", 100.0 * static_cast<double>(set + 1));
    camera.set("SequencerSetSelector", set);
    camera.execute("SequencerSetSave");
    camera.set("SequencerSetNext", 1 - set, static_cast<std::size_t>(set) * 2);
    camera.set("SequencerTriggerSource", 3, static_cast<std::size_t>(set) * 2);
  }
  EXPECT_EQ(camera.trySet("SequencerMode", 1), GC_ERR_ACCESS_DENIED) << "while it is configured";
  camera.set("SequencerConfigurationMode", 0);
  camera.set("SequencerMode", 1);
  camera.start();
  for (int i = 0; i < 6; ++i) {
    FramePlan plan;
    ASSERT_EQ(camera.next(plan), FrameWait::Frame);
    EXPECT_DOUBLE_EQ(plan.exposureTime, i % 2 == 0 ? 100 : 200);
    EXPECT_EQ(plan.sequencerSet, static_cast<std::uint32_t>(i % 2));
  }
}

TEST(Chunks, LieBehindTheImageWithIdAndLength) {
  Remote camera;
  camera.set("ChunkModeActive", 1);
  for (std::size_t i = 0; i < 7; ++i) {
    camera.set("ChunkEnable", 1, i);
  }
  camera.setFloat("Gain", 6);
  camera.start();
  FramePlan plan;
  ASSERT_EQ(camera.next(plan), FrameWait::Frame);
  ASSERT_EQ(camera.next(plan), FrameWait::Frame);
  EXPECT_EQ(static_cast<std::int64_t>(plan.payloadSize), camera.get("PayloadSize"));
  const std::vector<std::byte> buffer = camera.picture(plan);
  const auto number = [&](std::size_t at, std::size_t size, bool big) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value |= std::to_integer<std::uint64_t>(buffer[at + i]) << 8 * (big ? size - 1 - i : i);
    }
    return value;
  };
  // Walked from the end, as a consumer without the list of chunks does.
  std::map<std::uint64_t, std::pair<std::size_t, std::size_t>> found;
  for (std::size_t end = buffer.size(); end > 0;) {
    ASSERT_GE(end, 8U);
    const std::uint64_t length = number(end - 4, 4, true);
    ASSERT_LE(length + 8, end);
    found[number(end - 8, 4, true)] = {end - 8 - length, length};
    end -= 8 + length;
  }
  ASSERT_EQ(found.size(), 8U);
  EXPECT_EQ(found[1], (std::pair<std::size_t, std::size_t>{0, 256 * 128}));
  EXPECT_EQ(number(found[2].first, 8, false), plan.timestampNs);
  EXPECT_EQ(number(found[3].first, 8, false), 1U);
  EXPECT_DOUBLE_EQ(std::bit_cast<double>(number(found[4].first, 8, false)), 1000);
  EXPECT_DOUBLE_EQ(std::bit_cast<double>(number(found[5].first, 8, false)), 6);
  EXPECT_EQ(number(found[6].first, 4, false), 2U) << "line 1 is high while the camera acquires";
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 0; i < plan.imageSize; ++i) {
    crc ^= std::to_integer<std::uint32_t>(buffer[i]);
    for (int bit = 0; bit < 8; ++bit) {
      crc = crc >> 1 ^ ((crc & 1) != 0 ? 0xEDB88320U : 0);
    }
  }
  EXPECT_EQ(number(found[8].first, 4, false), ~crc);
  ASSERT_EQ(plan.chunkCount, found.size());
  for (std::size_t i = 0; i < plan.chunkCount; ++i) {
    EXPECT_EQ(found[plan.chunks[i].id], (std::pair{plan.chunks[i].offset, plan.chunks[i].length}));
  }
}

TEST(Parts, OfAMultiPartFrameDoNotOverlap) {
  CameraModel model = smallModel();
  model.components = true;
  Remote camera(model);
  EXPECT_EQ(camera.trySet("ComponentEnable", 0, 0), GC_ERR_INVALID_VALUE);
  camera.set("Width", 52);
  camera.set("Height", 2);
  camera.set("ComponentEnable", 1, 1);
  camera.set("ComponentEnable", 1, 2);
  camera.start();
  FramePlan plan;
  ASSERT_EQ(camera.next(plan), FrameWait::Frame);
  ASSERT_EQ(plan.payloadType, PAYLOAD_TYPE_MULTI_PART);
  ASSERT_EQ(plan.partCount, 3U);
  const std::vector<std::byte> buffer = camera.picture(plan);
  EXPECT_EQ(plan.parts[0].size, 104U);
  EXPECT_EQ(plan.parts[1].offset, 104U);
  EXPECT_EQ(plan.parts[1].size, 208U);
  EXPECT_EQ(plan.parts[1].pixelFormat, 0x011000B8U);
  EXPECT_EQ(plan.parts[2].offset, 312U);
  EXPECT_EQ(buffer.size(), 416U);
  // Range is column + line + frame ID in the upper byte, confidence line + frame ID.
  EXPECT_EQ(std::to_integer<unsigned>(buffer[104 + 2 * 52 + 2 * 9 + 1]), 10U);
  EXPECT_EQ(std::to_integer<unsigned>(buffer[312 + 52]), 1U);
}

TEST(Picture, FollowsExposureGainAndTheLookUpTable) {
  Remote camera;
  FramePlan plan;
  const auto brightness = [&] {
    camera.start();
    EXPECT_EQ(camera.next(plan), FrameWait::Frame);
    const std::vector<std::byte> image = camera.picture(plan);
    camera.stop();
    camera->stopStream(0);
    double sum = 0;
    for (std::size_t i = image.size() / 3; i < image.size(); ++i) {
      sum += std::to_integer<int>(image[i]);
    }
    return sum;
  };
  const double normal = brightness();
  camera.setFloat("ExposureTime", 500);
  const double half = brightness();
  EXPECT_NEAR(half / normal, 0.5, 0.02);
  camera.setFloat("Gain", 6.0206);
  EXPECT_NEAR(brightness() / normal, 1, 0.02);
  std::vector<std::byte> table(1024);
  ASSERT_EQ(camera.write("LUTValueAll", table), GC_ERR_SUCCESS);
  EXPECT_EQ(camera.get("LUTValue", 255), 0);
  camera.set("LUTEnable", 1);
  EXPECT_LT(brightness(), normal / 4) << "all that is left is the burned-in stamp";
}

TEST(Streams, TheSecondShowsTheNegativeOfTheSameFrames) {
  CameraModel model = smallModel();
  model.streams = 2;
  Remote camera(model);
  camera.set("TriggerMode", 1);
  camera.start(2);
  camera.execute("TriggerSoftware");
  FramePlan first;
  FramePlan second;
  ASSERT_EQ(camera.next(second, 10s, 1), FrameWait::Frame);
  ASSERT_EQ(camera.next(first), FrameWait::Frame);
  EXPECT_EQ(first.frameId, second.frameId);
  EXPECT_EQ(first.timestampNs, second.timestampNs);
  const auto positive = camera.picture(first);
  const auto negative = camera.picture(second);
  EXPECT_EQ(positive.back(), ~negative.back());
}

TEST(SpeedMode, WritesNothingButTheFrameId) {
  Remote camera;
  camera.set("ChunkModeActive", 1);
  camera.set("SpeedMode", 1);
  camera.start();
  FramePlan plan;
  std::vector<std::byte> buffer(camera->payloadSize(0), std::byte{0xEE});
  for (unsigned i = 0; i < 300; ++i) {
    ASSERT_EQ(camera.next(plan), FrameWait::Frame);
    ASSERT_EQ(camera->render(plan, buffer), buffer.size());
    ASSERT_EQ(std::to_integer<unsigned>(buffer[0]) | std::to_integer<unsigned>(buffer[1]) << 8, i);
  }
  EXPECT_EQ(buffer[8], std::byte{0xEE});
  EXPECT_EQ(plan.chunkCount, 0U) << "what is not written is not described";
}

}  // namespace
}  // namespace vcam::test
