// The blocking scans: how they begin, which images reach the application, and how they end.
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "manual_camera_test.h"

namespace manual {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint64_t kMono8 = 0x01080001;
constexpr std::uint64_t kRGB8 = 0x02180014;

/** What the callback of the running scan got; it stops the scan after stopAfter images. */
struct Received {
  std::vector<int> ok;
  std::vector<std::uint32_t> heights;
  std::size_t stopAfter = SIZE_MAX;
  std::uint64_t device = 0;
};
Received received;

void OVI_CALL receive(std::uint8_t* data, oviImageInfo* info, std::uint8_t ok) {
  EXPECT_NE(data, nullptr);
  received.ok.push_back(ok);
  received.heights.push_back(info->height);
  if (received.ok.size() == received.stopAfter) {
    EXPECT_EQ(oviScanImgStop(received.device), OVI_SUCCESS);
  }
}

class ScanTest : public ManualCameraTest {
 protected:
  void SetUp() override {
    ManualCameraTest::SetUp();
    received = {};
    received.device = device();
    setScan(1, 0);
  }

  /** Settings of the scans; a short time-out, so that a scan without images ends. */
  void setScan(std::uint8_t filterDriver, std::uint8_t scanFlag) {
    oviImageInfo nothing{};
    ASSERT_EQ(oviSetImageParameter(device(), &nothing, 50, filterDriver, scanFlag), OVI_SUCCESS);
  }

  /** Runs work and returns what it wrote to standard output, but for the log. */
  template<class Work>
  static std::string printed(Work&& work) {
    testing::internal::CaptureStdout();
    work();
    const std::string all = testing::internal::GetCapturedStdout();
    std::string kept;
    for (std::size_t begin = 0; begin < all.size();) {
      const std::size_t end = std::min(all.find('\n', begin), all.size());
      const std::string line = all.substr(begin, end - begin);
      kept += line.find("[OVI::") == std::string::npos && line.find("@") == std::string::npos ? line + "\n" : "";
      begin = end + 1;
    }
    return kept;
  }
};

TEST_F(ScanTest, RefuseWhatMakesNoScan) {
  struct Case {
    oviScanCallback callback;
    std::int32_t number;
    std::uint32_t mode;
    std::int32_t minutes;
    const char* text;
  };
  const Case cases[] = {
      {nullptr, 1, 1, 1, "Callback function or mode is not valid!\n"},
      {receive, 1, 0, 1, "Callback function or mode is not valid!\n"},
      {receive, 1, 3, 1, "Callback function or mode is not valid!\n"},
      {receive, 1, 4, 1, "Callback function or mode is not valid!\n"},
      {receive, 1, 7, 1, "Callback function or mode is not valid!\n"},
      {receive, 1, 9, 1, "Callback function or mode is not valid!\n"},
      {receive, 0, 1, 1, "Image number is not valid!\n"},
      {receive, -1, 5, 1, "Image number is not valid!\n"},
      {receive, 1, 2, 0, "Minutes is not valid!\n"},
      {receive, 1, 6, -1, "Minutes is not valid!\n"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(printed([&] {
                EXPECT_EQ(oviScanImg(device(), each.callback, each.number, each.mode, each.minutes),
                          OVI_ERR_INVALID_PARAMETER);
              }),
              each.text);
  }
  EXPECT_THAT(script().takeCalls(), IsEmpty());
}

TEST_F(ScanTest, GiveBackWhatWasSetUpWhenAStepFails) {
  struct Case {
    const char* function;
    int skip;
    const char* producer;
    oviErr result;
    const char* text;
  };
  const Case cases[] = {
      {"DevOpenDataStream", 0, "x.cti", OVI_ERR_IO, "Cannot create data stream!\n"},
      {"DSAllocAndAnnounceBuffer", 0, "x.cti", OVI_ERR_IO, "Cannot create data stream!\n"},
      {"GCWritePort", 1, "gevtls2i.cti", OVI_ERR_IO, "Cannot enable filter driver!\n"},
      {"GCRegisterEvent", 0, "x.cti", OVI_ERR_IO, "Cannot register event!\n"},
      {"GCReadPort", 1, "x.cti", OVI_ERR_IO, "Cannot get height from camera!\n"},
      {"GCReadPort", 2, "x.cti", OVI_ERR_IO, "Cannot get width from camera!\n"},
      {"GCWritePort", 1, "x.cti", OVI_ERR_IO, "Cannot start acquisition!\n"},
  };
  std::int64_t width = 0;
  ASSERT_EQ(oviGetFeatureInt(device(), "Width", &width, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  for (const Case& each : cases) {
    SCOPED_TRACE(each.text);
    script().reset();
    script().setFileName(each.producer);
    script().fail(each.function, GC_ERR_IO, each.function == std::string("GCWritePort") ? 1 : -1, each.skip);
    EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImg(device(), receive, 1, 1, 0), each.result); }), each.text);
    script().reset();
    std::uint64_t stream = 0;
    EXPECT_EQ(oviCreateDataStream(device(), 0, &stream, 0, 1), OVI_SUCCESS) << "the stream is free again";
    oviCloseDataStream(stream);
    EXPECT_EQ(script().getRegister(kParamsLocked), 0U);
  }
  EXPECT_THAT(received.ok, IsEmpty());
}

TEST_F(ScanTest, DeliverTheImagesThatWereAskedFor) {
  const Frame good{8, 4, kMono8, 7};
  const auto counting = [&](std::initializer_list<int> counters) {
    std::vector<Frame> frames;
    for (const int counter : counters) {
      frames.push_back({8, 4, kMono8, static_cast<std::uint8_t>(counter)});
    }
    return frames;
  };
  Frame bad = good;
  bad.badByte = 31;
  Frame late = good;
  late.frameId = 5;
  Frame small = good;
  small.height = 3;
  Frame thin = good;
  thin.filled = 31;
  struct Case {
    const char* name;
    const char* producer;
    std::vector<Frame> frames;
    std::int32_t number;
    std::uint32_t mode;
    std::uint8_t scanFlag;
    std::size_t stopAfter;
    oviErr result;
    std::vector<int> ok;
    const char* text;
  };
  const std::vector<Frame> smalls(6, small);
  const std::size_t never = SIZE_MAX;
  const Case cases[] = {
      {"two of three", "x.cti", {3, bad}, 2, 1, 0, never, OVI_SUCCESS, {1, 1}, ""},
      {"by time, stopped", "x.cti", {5, good}, 0, 2, 0, 3, OVI_SUCCESS, {1, 1, 1}, ""},
      {"no more images", "x.cti", {1, good}, 2, 1, 0, never, OVI_ERR_TIMEOUT, {1}, "Cannot get next image!\n"},
      {"a pattern that counts", "x.cti", counting({254, 255, 0, 2}), 4, 5, 0, never, OVI_SUCCESS, {1, 1, 1, 0}, ""},
      {"the last byte is wrong", "x.cti", {1, bad}, 1, 5, 0, never, OVI_SUCCESS, {0}, ""},
      {"another height", "x.cti", {1, small}, 1, 5, 0, never, OVI_SUCCESS, {0}, ""},
      {"not all filled", "x.cti", {1, thin}, 1, 5, 0, never, OVI_SUCCESS, {0}, ""},
      {"colour", "x.cti", {1, {8, 4, kRGB8, 200}}, 1, 5, 0, never, OVI_SUCCESS, {1}, ""},
      {"no pattern in this format",
       "x.cti",
       {1, {8, 4, 0x02300018}},
       1,
       5,
       0,
       never,
       OVI_ERR_INVALID_VALUE,
       {},
       "Format is not supported!\n"},
      {"a frame is missing", "x.cti", {1, late}, 1, 5, 0, never, OVI_SUCCESS, {1}, "Cannot handle every image!\n"},
      {"which this producer minds",
       "gevtls2i.cti",
       {1, late},
       1,
       5,
       0,
       never,
       OVI_ERR_RESOURCE_EXHAUSTED,
       {},
       "Cannot handle every image!\n"},
      {"frame IDs from 1",
       "lsgentlgevkithara.cti",
       {1, {8, 4, kMono8, 0, SIZE_MAX, SIZE_MAX, 1}},
       1,
       5,
       0,
       never,
       OVI_SUCCESS,
       {1},
       ""},
      {"unchecked frame IDs", "gevtls2i.cti", {1, late}, 1, 1, 0, never, OVI_SUCCESS, {1}, ""},
      {"taken again", "x.cti", {small, small, good}, 1, 1, 1, never, OVI_SUCCESS, {1}, ""},
      {"taken again in vain", "x.cti", smalls, 1, 1, 1, never, OVI_ERR_RESOURCE_IN_USE, {1}, ""},
      {"not when two are wanted", "x.cti", smalls, 2, 1, 1, never, OVI_SUCCESS, {1, 1}, ""},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    script().reset();
    script().setRegister(kPayloadSize, 192);
    script().setFileName(each.producer);
    script().play(each.frames);
    setScan(1, each.scanFlag);
    received = {};
    received.device = device();
    received.stopAfter = each.stopAfter;
    EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImg(device(), receive, each.number, each.mode, 1), each.result); }),
              each.text);
    EXPECT_EQ(received.ok, each.ok);
    const Calls calls = script().takeCalls();
    EXPECT_EQ(calls.back(), "DSClose(0)");
    EXPECT_THAT(calls, Contains("stop"));
    oviImageInfo last{};
    EXPECT_EQ(oviGetLastImageInfo(&last), OVI_SUCCESS);
    EXPECT_EQ(last.height, received.heights.empty() ? last.height : received.heights.back());
  }
}

TEST_F(ScanTest, WaitForTheCamerasStop) {
  script().play({{}});
  script().setStopPolls(3);
  EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImg(device(), receive, 1, 1, 0), OVI_SUCCESS); }), "");
  script().reset();
  script().play({{}});
  script().setStopPolls(1000);
  EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImg(device(), receive, 1, 1, 0), OVI_ERR_TIMEOUT); }),
            "Timeout AcquisitionStop\n");
}

TEST_F(ScanTest, ACallbackThatThrowsEndsTheScanAsAnyOther) {
  script().play({{}});
  script().takeCalls();
  const auto throwing = [](std::uint8_t*, oviImageInfo*, std::uint8_t) { throw std::runtime_error("not my image"); };
  EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImg(device(), throwing, 1, 1, 0), OVI_ERR_UNKNOWN); }), "");
  EXPECT_THAT(script().takeCalls(), Contains("DSClose(0)"));
}

TEST_F(ScanTest, TheFilterDriverIsForOneProducer) {
  script().setFileName("gevtls2i.cti");
  script().setRegister(kPacketSize, 9000);
  for (const std::uint8_t enabled : {std::uint8_t{1}, std::uint8_t{0}}) {
    setScan(enabled, 0);
    script().setRegister(kFilterDriver, 7);
    script().play({{}});
    EXPECT_EQ(oviScanImg(device(), receive, 1, 1, 0), OVI_SUCCESS);
    EXPECT_EQ(script().getRegister(kFilterDriver), enabled);
  }
}

TEST_F(ScanTest, OneImageInOneCall) {
  Frame small;
  small.height = 2;
  const Frame whole{8, 4, kMono8, 3};
  struct Case {
    const char* name;
    std::vector<Frame> frames;
    std::uint8_t scanFlag;
    std::uint32_t height;
    oviErr result;
    int lastByte;
    const char* text;
  };
  const Case cases[] = {
      {"whole", {whole}, 0, 4, OVI_SUCCESS, 10, "Acquisition is stopped!.\n"},
      {"too small, once", {small, whole}, 0, 4, OVI_SUCCESS, 0xEE, "Acquisition is stopped!.\n"},
      {"again", {small, small, whole}, 1, 4, OVI_SUCCESS, 10, "Acquisition is stopped!.\n"},
      {"three at most", {small, small, small, whole}, 1, 4, OVI_SUCCESS, 0xEE, "Acquisition is stopped!.\n"},
      {"none", {}, 0, 4, OVI_ERR_TIMEOUT, 0xEE, "Error starting acquisition.\nAcquisition is stopped!.\n"},
      {"no height", {whole}, 0, 0, OVI_ERR_NOT_FOUND, 0xEE, "Acquisition is stopped!.\n"},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.name);
    script().reset();
    script().setRegister(kHeight, each.height);
    script().play(each.frames);
    setScan(1, each.scanFlag);
    std::vector<std::uint8_t> image(32, 0xEE);
    EXPECT_EQ(printed([&] { EXPECT_EQ(oviScanImage(device(), image.data()), each.result); }), each.text);
    EXPECT_EQ(image.back(), each.lastByte);
    EXPECT_EQ(script().takeCalls().back(), "DSClose(0)");
  }
  EXPECT_EQ(oviScanImage(device(), nullptr), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(ScanTest, OneImageInThreeCalls) {
  Frame small;
  small.height = 2;
  for (const std::uint8_t scanFlag : {std::uint8_t{0}, std::uint8_t{1}}) {
    SCOPED_TRACE(testing::Message() << int{scanFlag});
    script().reset();
    setScan(1, scanFlag);
    std::uint64_t stream = 0;
    std::uint64_t event = 0;
    oviNewBufferEventData record{};
    ASSERT_EQ(oviScanImageCont(device(), 0, &stream, &event, &record), OVI_SUCCESS);
    EXPECT_THAT(takeLog(), Contains("8 Expected image height from camera is: 4"));
    for (int image = 0; image < 2; ++image) {
      script().play({small, small, {}});
      EXPECT_EQ(oviScanImageCont(device(), 1, &stream, &event, &record), OVI_SUCCESS);
      EXPECT_EQ(record.height, scanFlag != 0 ? 4U : 2U) << "the third one is whole";
      script().play({});
    }
    EXPECT_THAT(takeLog(), Contains("8 release3").Times(scanFlag != 0 ? 2 : 0));
    // The stop has queued the image's buffer again, which the camera minds.
    EXPECT_EQ(oviScanImageCont(device(), 2, &stream, &event, &record), OVI_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(script().takeCalls().back(), "DSClose(0)");
  }
  EXPECT_EQ(oviScanImageCont(device(), 3, nullptr, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(oviScanImageCont(device(), 0, nullptr, nullptr, nullptr), OVI_ERR_INVALID_PARAMETER);
}

TEST_F(ScanTest, OneImageOfEveryStream) {
  std::vector<std::uint8_t> first(32, 0xEE);
  std::vector<std::uint8_t> second(32, 0xEE);
  std::uint8_t* const destinations[] = {first.data(), second.data()};
  oviImageInfo infos[2]{};
  // Stream 1 is fed by hand, once it runs.
  const auto feed = [&](bool isFed) {
    return std::thread([this, isFed] {
      while (isFed && !script().deliver(1, {8, 4, kMono8, 9})) {
        std::this_thread::yield();
      }
    });
  };
  for (const bool isFed : {true, false}) {
    script().reset();
    takeLog();
    script().play({{8, 4, kMono8, 3}});
    std::fill(second.begin(), second.end(), std::uint8_t{0xEE});
    std::thread feeder = feed(isFed);
    EXPECT_EQ(oviScanStreamImage(device(), 2, destinations, infos),
              isFed ? OVI_SUCCESS : OVI_ERR_NO_IMAGE_DATA_AVAILABLE);
    feeder.join();
    EXPECT_EQ(first.back(), 10);
    EXPECT_EQ(second.back(), isFed ? 16 : 0xEE);
    EXPECT_EQ(infos[0].width, 8U);
    EXPECT_THAT(script().takeCalls(), Contains("DSClose(1)"));
    EXPECT_THAT(takeLog(),
                Contains("1 There was an error during image scan of multiple streams, not all images were recorded!")
                    .Times(isFed ? 0 : 1));
  }
  script().play({{8, 4, kMono8, 3}});
  EXPECT_EQ(oviScanStreamImage(device(), 1, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(oviScanStreamImage(device(), 0, destinations, infos), OVI_ERR_INVALID_PARAMETER);
  EXPECT_NE(oviScanStreamImage(device(), kStreams + 1, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(oviGetLastImageInfo(nullptr), OVI_ERR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace manual
