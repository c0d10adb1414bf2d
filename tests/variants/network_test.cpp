// What the library does for the producers of network cameras, and what it leaves alone for others.
#include "variant_fixture.h"

namespace variants_test {

namespace {

/** The time-outs of the control channel as they are while a file is transferred. */
struct SeenTimeouts {
  std::uint64_t device = 0;
  std::int64_t acknowledge = -1;
  std::int64_t heartbeat = -1;
};

std::uint8_t lookAtTimeouts(const oviFileTransferProgress* progress, void* context) {
  auto& seen = *static_cast<SeenTimeouts*>(context);
  if (progress->status == 1) {
    oviGetFeatureInt(seen.device, "GVCPAckTimeout", &seen.acknowledge, OVI_MODULE_LOCAL_DEVICE);
    oviGetFeatureInt(seen.device, "HeartbeatTimeout", &seen.heartbeat, OVI_MODULE_LOCAL_DEVICE);
  }
  return 1;
}

}  // namespace

class NetworkTest : public VariantTest {
 protected:
  SeenTimeouts transferFile(std::uint64_t timeout) {
    SeenTimeouts seen{device};
    EXPECT_EQ(oviFileUploadFromDevice(device, "firmware.bin", "Firmware", timeout, lookAtTimeouts, &seen), OVI_SUCCESS);
    return seen;
  }
  std::optional<std::int64_t> local(const char* name) { return integer(device, name, OVI_MODULE_LOCAL_DEVICE); }
  std::optional<std::int64_t> packetSize() { return integer(device, "GevSCPSPacketSize", OVI_MODULE_REMOTE_DEVICE); }
};

TEST_F(NetworkTest, DevicesOfOtherSubnetsAreListedWhenAskedFor) {
  use(kGigE);
  EXPECT_EQ(found->deviceCount, 6U);
  EXPECT_FALSE(isListed("KV064007"));
  std::uint64_t handle = 0;
  EXPECT_EQ(oviOpenDevice("VC-KV064007", &handle, 1000, 3), OVI_ERR_NOT_FOUND);
  oviSetIgnoreSubnetEnabled(1);
  discover();
  EXPECT_EQ(found->deviceCount, 7U);
  EXPECT_TRUE(isListed("KV064007"));
  oviSetIgnoreSubnetEnabled(0);
  discover();
  EXPECT_EQ(found->deviceCount, 6U);
}

TEST_F(NetworkTest, OnlyOneFamilyIsToldAboutSubnets) {
  settings("[Camera KV130001]\nForeignSubnet = 1\n");
  oviSetIgnoreSubnetEnabled(1);
  use(kRealTime);
  EXPECT_FALSE(isListed("KV130001"));
  EXPECT_EQ(found->deviceCount, 6U);
}

TEST_F(NetworkTest, OpeningLengthensTheAcknowledge) {
  use(kGigE);
  open("KV130001");
  EXPECT_EQ(local("GVCPAckTimeout"), 2000);
  EXPECT_EQ(local("HeartbeatTimeout"), 3000);
  EXPECT_NE(oviSetFeatureInt(device, "GVCPAckTimeout", 9, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
  EXPECT_NE(oviSetFeatureInt(device, "HeartbeatTimeout", 600001, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
  EXPECT_EQ(local("GVCPAckTimeout"), 2000);
}

TEST_F(NetworkTest, TransfersHaveTimeoutsOfTheirOwn) {
  use(kGigE);
  open("KV130001");
  ASSERT_EQ(oviSetFeatureInt(device, "GVCPAckTimeout", 700, OVI_MODULE_LOCAL_DEVICE), OVI_SUCCESS);
  SeenTimeouts seen = transferFile(7000);
  EXPECT_EQ(seen.acknowledge, 2000);
  EXPECT_EQ(seen.heartbeat, 7000);
  seen = transferFile(100);
  EXPECT_EQ(seen.heartbeat, 500) << "the smallest there is";
  EXPECT_EQ(local("GVCPAckTimeout"), 700);
  EXPECT_EQ(local("HeartbeatTimeout"), 3000);
}

TEST_F(NetworkTest, TransfersOfTheRealTimeFamilyHaveALongerAcknowledge) {
  use(kRealTime);
  open("KV130001");
  EXPECT_EQ(local("GVCPAckTimeout"), 500) << "opening does not touch it here";
  const SeenTimeouts seen = transferFile(7000);
  EXPECT_EQ(seen.acknowledge, 5000);
  EXPECT_EQ(seen.heartbeat, -1) << "there is no such feature";
  EXPECT_EQ(local("GVCPAckTimeout"), 500);
}

TEST_F(NetworkTest, StreamsUseTheLargestPackets) {
  for (const auto& [producer, expected] :
       {std::pair{kGigE, 9000}, {kRealTime, 9000}, {kRecording, 9000}, {kPlain, 1500}}) {
    SCOPED_TRACE(producer);
    use(producer);
    open("KV032003");
    EXPECT_EQ(packetSize(), 1500);
    openStream();
    EXPECT_EQ(packetSize(), expected);
    EXPECT_EQ(oviExecuteCommand(device, "FindMaxPacketSize", OVI_MODULE_REMOTE_DEVICE),
              producer == kGigE ? OVI_SUCCESS : OVI_ERR_NOT_FOUND);
  }
}

TEST_F(NetworkTest, TheNetworkLimitsPackets) {
  for (const auto& [text, expected] : {std::pair{"", 8164}, {"NetworkPacketSize = 4002\n", 4000}}) {
    SCOPED_TRACE(text);
    settings(text);
    use(kGigE);
    open("KV032003");
    ASSERT_EQ(oviExecuteCommand(device, "FindMaxPacketSize", OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    EXPECT_EQ(packetSize(), expected);
    EXPECT_NE(oviSetFeatureInt(device, "GevSCPSPacketSize", expected + 4, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    ASSERT_EQ(oviSetFeatureInt(device, "GevSCPSPacketSize", 576, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    openStream();
    EXPECT_EQ(packetSize(), expected) << "no larger packet arrives";
  }
}

TEST_F(NetworkTest, ScansChooseTheFilterDriver) {
  use(kGigE);
  open("KV032003");
  for (const bool wanted : {true, false, true}) {
    oviImageInfo unchanged{};
    ASSERT_EQ(oviSetImageParameter(device, &unchanged, 5000, wanted ? 1 : 0, 0), OVI_SUCCESS);
    oviNewBufferEventData record{};
    ASSERT_EQ(oviScanImageCont(device, 0, &stream, &event, &record), OVI_SUCCESS);
    EXPECT_EQ(boolean(stream, "EnableFilterDriver", OVI_MODULE_DATA_STREAM), wanted);
    ASSERT_EQ(oviScanImageCont(device, 1, &stream, &event, &record), OVI_SUCCESS);
    // The stop in phase 1 has taken the image back already, so phase 2 may say that it cannot be given back.
    oviScanImageCont(device, 2, &stream, &event, &record);
    EXPECT_EQ(integer(stream, "PayloadSize", OVI_MODULE_DATA_STREAM), std::nullopt) << "the stream is closed";
  }
  openStream();
  start();
  EXPECT_NE(oviSetFeatureBool(stream, "EnableFilterDriver", true, OVI_MODULE_DATA_STREAM), OVI_SUCCESS)
      << "a driver cannot change under a stream";
  stop();
}

TEST_F(NetworkTest, FramesAreCountedFromTheFamilysFirstNumber) {
  for (const auto& [producer, first] : {std::pair{kGigE, 1U}, {kRealTime, 1U}, {kPlain, 0U}}) {
    SCOPED_TRACE(producer);
    use(producer);
    open("KV032003");
    openStream();
    start();
    oviNewBufferEventData image = next();
    EXPECT_EQ(image.frameID, first);
    release(image);
    stop();
  }
}

TEST_F(NetworkTest, PacketsAndFramesAreCounted) {
  use(kRealTime);
  open("KV032003");
  openStream();
  constexpr std::int64_t kPerFrame = (320 * 240 + 8963) / 8964;  // packets of 9000 bytes, 36 of them header
  std::uint64_t before = 0;  // underruns are counted from the opening of the stream, lost frames from the start
  for (const bool losing : {false, true}) {
    ASSERT_EQ(orders().spoilFrames("VC-KV032003", OVI_VIRTUAL_FRAME_LOST, 2, losing ? 1 : 0), 0);
    start();
    for (std::uint64_t last = 0, i = 0; i < 6; ++i) {
      oviNewBufferEventData image = next();
      EXPECT_GT(image.frameID, last);
      EXPECT_FALSE(losing && image.frameID == 2);
      last = image.frameID;
      release(image);
    }
    stop();
    oviAcquistionStatistics statistics{};
    ASSERT_EQ(oviGetAcquisitionStatistics(stream, &statistics), OVI_SUCCESS);
    EXPECT_GE(statistics.delivered, 6U);
    EXPECT_EQ(statistics.packetsReceived, static_cast<std::int64_t>(statistics.delivered) * kPerFrame);
    EXPECT_EQ(statistics.packetLoss, losing ? kPerFrame : 0);
    EXPECT_EQ(statistics.frameLoss, static_cast<std::int64_t>(statistics.underruns - before) + (losing ? 1 : 0));
    before = statistics.underruns;
    orders().reset();
  }
}

TEST_F(NetworkTest, OtherFamiliesCountNoPackets) {
  use(kGigE);
  open("KV032003");
  openStream();
  oviAcquistionStatistics statistics{};
  ASSERT_EQ(oviGetAcquisitionStatistics(stream, &statistics), OVI_SUCCESS);
  EXPECT_EQ(statistics.packetsReceived, -1);
  EXPECT_EQ(statistics.packetLoss, -1);
  EXPECT_EQ(statistics.frameLoss, -1);
}

TEST_F(NetworkTest, CamerasOfOneMakerNeedShortInterrupts) {
  constexpr const char* kFeature = "EnableKitharaIncreasedInterruptInterval";
  settings("[Camera KV130001]\nVendor = MIKROTRON and Mikrotron GmbH\n");
  use(kRealTime);
  open("KV032003");
  EXPECT_EQ(boolean(device, kFeature, OVI_MODULE_SYSTEM), true);
  open("KV130001");
  EXPECT_EQ(boolean(device, kFeature, OVI_MODULE_SYSTEM), false);
}

}  // namespace variants_test
