// Statistics, image parameters, packet size and maintenance mode.
#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::StartsWith;

class ParametersTest : public ManualCameraTest {};

TEST_F(ParametersTest, StatisticsDependOnTheProducer) {
  const Stream stream = openStream();
  for (const std::uint32_t address : {kPaketLoss, kPaketsReceived, kFrameLoss}) {
    script().setRegister(address, address);
  }
  struct Case {
    const char* producer;
    std::int64_t loss, received, frames;
  };
  const Case cases[] = {{"x.cti", -1, -1, -1},
                        {"gevtls2i.cti", -1, -1, -1},
                        {"lsgentlgevkithara64.cti", kPaketLoss, kPaketsReceived, kFrameLoss}};
  for (const Case& each : cases) {
    SCOPED_TRACE(each.producer);
    script().setFileName(each.producer);
    oviAcquistionStatistics statistics{};
    EXPECT_EQ(oviGetAcquisitionStatistics(stream.handle, &statistics), OVI_SUCCESS);
    EXPECT_EQ(statistics.packetLoss, each.loss);
    EXPECT_EQ(statistics.packetsReceived, each.received);
    EXPECT_EQ(statistics.frameLoss, each.frames);
  }
  oviAcquistionStatistics statistics{};
  script().failStreamInfo(STREAM_INFO_NUM_UNDERRUN, GC_ERR_IO);
  EXPECT_EQ(oviGetAcquisitionStatistics(stream.handle, &statistics), OVI_ERR_IO);
  EXPECT_THAT(takeLog(), Contains(StartsWith("1 Failed request acquisition statistics. Error: ")));
  EXPECT_EQ(oviGetAcquisitionStatistics(0xDEAD, &statistics), OVI_ERR_NOT_FOUND);
  EXPECT_THAT(takeLog(), Contains("1 Failed to get stream from handle!"));
  EXPECT_EQ(oviGetAcquisitionStatistics(stream.handle, nullptr), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(ParametersTest, SetTheImageFormatInOneCall) {
  struct Case {
    oviImageInfo image;
    std::uint32_t format, width, height;  // Afterwards; they are Mono8, 8 and 4 before.
    const char* failing;
    int skip;
    oviErr result;
  };
  constexpr std::uint32_t kMono8Code = 0x01080001;
  const Case cases[] = {
      {{16, 12, 0, 0, 0x0230001B}, 0x0230001B, 16, 12, "", 0, OVI_SUCCESS},
      {{0, 0, 0, 0, 0x01100007}, 0x02180014, 8, 4, "", 0, OVI_SUCCESS},  // Mono16 becomes RGB8.
      {{0, 6, 0, 0, 0}, kMono8Code, 8, 6, "", 0, OVI_SUCCESS},
      {{0, 0, 0, 0, 0}, kMono8Code, 8, 4, "", 0, OVI_SUCCESS},
      {{16, 12, 0, 0, 0x02180014}, 0x02180014, 8, 4, "GCWritePort", 1, OVI_ERR_IO},  // The width fails.
  };
  for (const Case& each : cases) {
    script().reset();
    script().fail(each.failing, GC_ERR_IO, -1, each.skip);
    oviImageInfo image = each.image;
    EXPECT_EQ(oviSetImageParameter(device(), &image, 0, 1, 0), each.result);
    EXPECT_EQ(script().getRegister(kPixelFormat), each.format);
    EXPECT_EQ(script().getRegister(kWidth), each.width);
    EXPECT_EQ(script().getRegister(kHeight), each.height);
  }
  EXPECT_EQ(oviSetImageParameter(device(), nullptr, 0, 1, 0), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(ParametersTest, MaintenanceMode) {
  struct Case {
    std::uint8_t enable;
    std::uint64_t address;
    std::uint32_t value;
    std::uint64_t written;
    std::uint32_t word;
  };
  const Case cases[] = {{1, UINT64_MAX, UINT32_MAX, kMaintenance, 0x2A00},
                        {0, UINT64_MAX, UINT32_MAX, kMaintenance, 0},
                        {1, 0x300, 0x12345678, 0x300, 0x12345678},
                        {0, 0x300, 0x12345678, 0x300, 0}};
  for (const Case& each : cases) {
    EXPECT_EQ(oviSetMaintenanceMode(device(), each.enable, each.address, each.value), OVI_SUCCESS);
    EXPECT_EQ(script().getRegister(static_cast<std::uint32_t>(each.written)), each.word);
  }
  std::uint8_t enabled = 7;
  EXPECT_EQ(oviGetMaintenanceMode(device(), &enabled), OVI_SUCCESS);
  EXPECT_EQ(enabled, 0);
  script().setRegister(kMaintenance, 0x01000000);
  EXPECT_EQ(oviGetMaintenanceMode(device(), &enabled), OVI_SUCCESS);
  EXPECT_EQ(enabled, 1);
  EXPECT_EQ(oviGetMaintenanceMode(device(), nullptr), OVI_ERR_INVALID_PARAMETER);

  script().fail("GCWritePort", GC_ERR_IO, 1);
  EXPECT_EQ(oviSetMaintenanceMode(device(), 1, UINT64_MAX, UINT32_MAX), OVI_SUCCESS) << "the second write does it";
  script().fail("GCReadPort", GC_ERR_IO);
  enabled = 7;
  EXPECT_EQ(oviGetMaintenanceMode(device(), &enabled), OVI_ERR_IO);
  EXPECT_EQ(enabled, 7);
}

TEST_F(ParametersTest, RaiseThePacketSizeToItsMaximum) {
  EXPECT_EQ(oviSetDeviceMaxPacketSize(device()), OVI_SUCCESS);
  EXPECT_EQ(script().getRegister(kPacketSize), 9000U);
  script().fail("GCWritePort", GC_ERR_IO);
  EXPECT_EQ(oviSetDeviceMaxPacketSize(device()), OVI_SUCCESS) << "nothing to write any more";
  script().setRegister(kPacketSize, 1500);
  EXPECT_EQ(oviSetDeviceMaxPacketSize(device()), OVI_ERR_IO);
  std::int64_t size = 0;
  EXPECT_EQ(oviGetImageSize(device(), &size), OVI_SUCCESS);
  EXPECT_EQ(size, 32);
  EXPECT_EQ(oviGetImageSize(device(), nullptr), OVI_ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace manual
