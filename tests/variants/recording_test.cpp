// Recording images and reading them back, through the library.
#include <ovi_virtual/recording.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "variant_fixture.h"

namespace variants_test {

namespace {

constexpr std::uint32_t kMono8 = 0x01080001;
constexpr std::uint32_t kRgb8 = 0x02180014;
constexpr std::size_t kPixels = 320 * 240;

/** What the library makes of a producer's status. */
std::int32_t coded(std::int32_t status) {
  return static_cast<std::int32_t>(0xF1000000U - static_cast<std::uint32_t>(status));
}

}  // namespace

class RecordingTest : public VariantTest {
 protected:
  void openCamera(const std::string& text = "") {
    settings(text);
    use(kRecording);
    open("KV032003");
    ASSERT_TRUE(oviNimboIsRecordingAvailable(device));
    openStream(8);
  }

  /** Records while that many images are taken, and keeps these by their frame IDs. */
  std::map<std::uint64_t, std::string> record(std::size_t images) {
    std::map<std::uint64_t, std::string> taken;
    EXPECT_EQ(oviNimboStartRecording(device), 0);
    start();
    while (taken.size() < images && !HasFailure()) {
      oviNewBufferEventData image = next();
      taken[image.frameID].assign(static_cast<const char*>(image.event.value), image.event.valueSize);
      release(image);
    }
    stop();
    EXPECT_EQ(oviNimboStopRecording(device), 0);
    return taken;
  }

  OviVirtualRecordsInfo info() {
    OviVirtualRecordsInfo info{};
    EXPECT_EQ(oviNimboGetRecordsInfo(device, &info), 0);
    return info;
  }

  OviVirtualRecordingData data(std::uint32_t index) {
    OviVirtualRecordingData data{};
    EXPECT_EQ(oviNimboGetRecordingData(device, index, &data), 0);
    return data;
  }

  int free(std::uint64_t reference) {
    return oviNimboFreeRecordImage(device, reinterpret_cast<void*>(static_cast<std::uintptr_t>(reference)));
  }
};

TEST_F(RecordingTest, BuffersHoldWholeBlocks) {
  use(kRecording);
  open("KV120002");
  openStream();
  const std::int64_t payload = *integer(device, "PayloadSize", OVI_MODULE_REMOTE_DEVICE);
  const std::int64_t blocks = (payload + 4095) / 4096 * 4096;
  EXPECT_EQ(integer(stream, "BufferSize", OVI_MODULE_DATA_STREAM), blocks);
  ASSERT_EQ(oviSetFeatureInt(device, "Height", 100, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  EXPECT_LT(*integer(stream, "BufferSize", OVI_MODULE_DATA_STREAM), blocks) << "it follows the payload";
  start();
  oviNewBufferEventData image = next();
  EXPECT_EQ(integer(image.bufferHandle, "BufferSize", OVI_MODULE_BUFFER), blocks) << "as the stream asked";
  release(image);
  stop();
}

TEST_F(RecordingTest, ImagesComeBackAsTheyWere) {
  openCamera();
  EXPECT_EQ(info().frameRate, 30U) << "set when the device was opened";
  ASSERT_EQ(oviNimboSetFrameRate(device, 0), 0);
  const auto first = record(10);
  const auto second = record(3);

  OviVirtualRecordsInfo opened{};
  ASSERT_EQ(oviNimboOpenRecordings(device, &opened), 0);
  EXPECT_EQ(opened.recordings, 2U);
  EXPECT_EQ(opened.isOpen, 1U);
  EXPECT_EQ(opened.isRecording, 0U);
  for (const auto& [index, taken] : {std::pair{1U, &second}, {0U, &first}}) {
    SCOPED_TRACE(index);
    const OviVirtualRecordingData about = data(index);
    EXPECT_STREQ(about.deviceId, "VC-KV032003");
    EXPECT_EQ(about.width, 320U);
    EXPECT_EQ(about.height, 240U);
    EXPECT_EQ(about.pixelFormat, kMono8);
    EXPECT_EQ(about.bytes, about.images * kPixels);
    EXPECT_EQ(about.isTruncated, 0U);
    ASSERT_GE(about.images, taken->size());
    ASSERT_EQ(oviNimboSelectRecording(device, index), 0);
    std::size_t matched = 0;
    std::uint64_t lastTimestamp = 0;
    for (std::uint32_t i = 0; i < about.images; ++i) {
      OviVirtualRecordedImage image{};
      image.index = OVI_VIRTUAL_NEXT_IMAGE;
      const std::uint64_t reference = oviNimboReadRecording(device, &image);
      ASSERT_NE(reference, 0U);
      EXPECT_EQ(image.index, i);
      ASSERT_EQ(image.size, kPixels);
      EXPECT_GT(image.timestampNs, lastTimestamp);
      lastTimestamp = image.timestampNs;
      if (const auto original = taken->find(image.frameId); original != taken->end()) {
        EXPECT_EQ(std::memcmp(image.data, original->second.data(), kPixels), 0);
        ++matched;
      }
      EXPECT_EQ(free(reference), 0);
    }
    EXPECT_EQ(matched, taken->size());
    EXPECT_EQ(about.lastTimestampNs, lastTimestamp);
    OviVirtualRecordedImage none{};
    none.index = OVI_VIRTUAL_NEXT_IMAGE;
    EXPECT_EQ(oviNimboReadRecording(device, &none), 0U) << "the recording is over";
  }
  EXPECT_EQ(oviNimboCloseRecordings(device), 0);
}

TEST_F(RecordingTest, ImagesAreConverted) {
  openCamera();
  ASSERT_EQ(oviNimboSetFrameRate(device, 0), 0);
  for (const auto& [format, isDeep] : {std::pair{"Mono8", false}, {"Mono12", true}}) {
    SCOPED_TRACE(format);
    closeStream();
    ASSERT_EQ(oviSetFeatureOnModule(device, "PixelFormat", format, OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
    openStream(8);
    record(1);
    ASSERT_EQ(oviNimboOpenRecordings(device, nullptr), 0);
    OviVirtualRecordedImage plain{};
    OviVirtualRecordedImage colour{};
    ASSERT_EQ(oviNimboSetRGBConversionEnabled(device, false), 0);
    const std::uint64_t plainReference = oviNimboReadRecording(device, &plain);
    ASSERT_EQ(oviNimboSetRGBConversionEnabled(device, true), 0);
    const std::uint64_t colourReference = oviNimboReadRecording(device, &colour);
    ASSERT_NE(plainReference, 0U);
    ASSERT_NE(colourReference, 0U);
    ASSERT_NE(plainReference, colourReference);
    EXPECT_EQ(colour.pixelFormat, kRgb8);
    ASSERT_EQ(plain.size, (isDeep ? 2 : 1) * kPixels);
    ASSERT_EQ(colour.size, 3 * kPixels);
    // Images outlive their recording.
    EXPECT_EQ(oviNimboClearAllRecordings(device), 0);
    EXPECT_EQ(oviNimboCloseRecordings(device), 0);
    const auto* const from = static_cast<const std::uint8_t*>(plain.data);
    const auto* to = static_cast<const std::uint8_t*>(colour.data);
    std::size_t different = 0;
    for (std::size_t i = 0; i < kPixels; ++i, to += 3) {
      const unsigned grey = isDeep ? (from[2 * i] | from[2 * i + 1] << 8) >> 4 : from[i];
      different += to[0] != grey || to[1] != grey || to[2] != grey ? 1 : 0;
    }
    EXPECT_EQ(different, 0U);
    EXPECT_EQ(free(plainReference), 0);
    EXPECT_EQ(free(colourReference), 0);
    EXPECT_EQ(free(colourReference), coded(-1006)) << "given back already";
  }
}

TEST_F(RecordingTest, TheRateOfARecordingIsItsOwn) {
  openCamera();
  ASSERT_EQ(oviNimboSetFrameRate(device, 100), 0);
  record(60);
  ASSERT_EQ(oviNimboOpenRecordings(device, nullptr), 0);
  const OviVirtualRecordingData about = data(0);
  EXPECT_EQ(about.frameRate, 100U);
  ASSERT_GE(about.images, 2U);
  std::uint64_t lastCell = 0;
  for (std::uint32_t i = 0; i < about.images; ++i) {
    OviVirtualRecordedImage image{};
    image.index = i;
    const std::uint64_t reference = oviNimboReadRecording(device, &image);
    ASSERT_NE(reference, 0U);
    const std::uint64_t cell = (image.timestampNs - about.firstTimestampNs) / 10'000'000 + 1;
    EXPECT_GT(cell, lastCell) << "two images in one hundredth of a second";
    lastCell = cell;
    EXPECT_EQ(free(reference), 0);
  }
}

TEST_F(RecordingTest, MemoryEndsARecording) {
  openCamera("RecordingMegabytes = 1\n");
  ASSERT_EQ(oviNimboSetFrameRate(device, 0), 0);
  record(20);
  ASSERT_EQ(oviNimboOpenRecordings(device, nullptr), 0);
  EXPECT_EQ(data(0).images, (1U << 20) / kPixels);
  EXPECT_EQ(data(0).isTruncated, 1U);
  EXPECT_EQ(info().capacityBytes, 1U << 20);
  EXPECT_EQ(oviNimboClearAllRecordings(device), 0);
  EXPECT_EQ(info().usedBytes, 0U);
  EXPECT_EQ(info().recordings, 0U);
}

TEST_F(RecordingTest, WrongCallsAreAnswered) {
  openCamera();
  OviVirtualRecordingData about{};
  OviVirtualRecordedImage image{};
  EXPECT_EQ(oviNimboStopRecording(device), coded(-1004));
  EXPECT_EQ(oviNimboCloseRecordings(device), coded(-1004));
  EXPECT_EQ(oviNimboSelectRecording(device, 0), coded(-1004));
  EXPECT_EQ(oviNimboReadRecording(device, &image), 0U);
  EXPECT_EQ(oviNimboStartRecording(device), 0);
  EXPECT_EQ(oviNimboStartRecording(device), coded(-1004));
  EXPECT_EQ(oviNimboStopRecording(device), 0);
  ASSERT_EQ(oviNimboOpenRecordings(device, nullptr), 0);
  EXPECT_EQ(oviNimboOpenRecordings(device, nullptr), coded(-1004));
  EXPECT_EQ(oviNimboSelectRecording(device, 1), coded(-1017));
  EXPECT_EQ(oviNimboGetRecordingData(device, 1, &about), coded(-1017));
  EXPECT_EQ(oviNimboGetRecordingData(device, 0, nullptr), coded(-1009));
  EXPECT_EQ(oviNimboGetRecordsInfo(device, nullptr), coded(-1009));
  EXPECT_EQ(oviNimboReadRecording(device, &image), 0U) << "the recording is empty";
  EXPECT_EQ(oviNimboReadRecording(device, nullptr), 0U);
  EXPECT_EQ(free(12345), coded(-1006));
  EXPECT_EQ(oviNimboSetFrameRate(device, 100001), coded(-1019));
  ASSERT_EQ(orders().fail("nimboStartRecording", 2, 1, 1), 0);
  EXPECT_EQ(oviNimboStartRecording(device), -251658242);
}

TEST_F(RecordingTest, OtherProducersDoNotRecord) {
  for (const char* const producer : {kPlain, kGigE}) {
    use(producer);
    open("KV032003");
    EXPECT_FALSE(oviNimboIsRecordingAvailable(device));
    EXPECT_THROW(oviNimboStartRecording(device), std::runtime_error);
    openStream();
    EXPECT_EQ(integer(stream, "BufferSize", OVI_MODULE_DATA_STREAM), std::nullopt);
  }
}

}  // namespace variants_test
