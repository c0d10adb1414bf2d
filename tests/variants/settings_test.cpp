// The settings file and the environment: what they change, and what is said about what they cannot.
#include <png.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "variant_fixture.h"

namespace variants_test {

class SettingsTest : public VariantTest {
 protected:
  /** Loads the plain producer with these settings and returns what it complains about. */
  std::string complaintsAbout(const std::string& text) {
    settings(text);
    testing::internal::CaptureStderr();
    use(kPlain);
    return testing::internal::GetCapturedStderr();
  }
};

TEST_F(SettingsTest, WhatCannotBeUsedIsReportedWithItsLine) {
  const std::string complaints = complaintsAbout(
      "\xEF\xBB\xBF# settings\n"   // 1
      "; more of them\r\n"         // 2
      "FirstFrameId = twelve\n"    // 3
      "FirstFrameID = 12\n"        // 4
      "[Producer]\n"               // 5
      "MinimumBuffers = 65\n"      // 6
      "SpeedMode = yes\n"          // 7
      "Images = no/such/folder\n"  // 8
      "nonsense\n"                 // 9
      "[Camera KV999999]\n"        // 10
      "Plugged = 0\n"              // 11
      "[Camera KV130001]\n"        // 12
      "Plugged = 2\n"              // 13
      "SpeedMode = 1\n"            // 14
      "[Other]\n"                  // 15
      "Key = value\n"              // 16
      "[Producer]\n"               // 17
      "FirmwareApplyMs = -1\n"     // 18
      "  FirstFrameId=  7  \n");   // 19
  const auto line = [&](int number) {
    const std::size_t at = complaints.find("settings.ini:" + std::to_string(number) + ": ");
    return at == std::string::npos ? std::string() : complaints.substr(at, complaints.find('\n', at) - at);
  };
  const std::pair<int, const char*> expected[] = {
      {3, "FirstFrameId must be a number from 0 to 4294967295, not \"twelve\"; the default is used"},
      {4, "unknown key \"FirstFrameID\""},
      {6, "MinimumBuffers must be a number from 1 to 64, not \"65\""},
      {7, "SpeedMode must be 0 or 1, not \"yes\""},
      {8, "Images must be a folder that exists"},
      {9, "\"nonsense\" is neither"},
      {11, "no camera has the serial number \"KV999999\""},
      {13, "Plugged must be 0 or 1"},
      {14, "unknown key \"SpeedMode\""},
      {16, "unknown section [Other]"},
      {18, "FirmwareApplyMs must be"},
  };
  for (const auto& [number, text] : expected) {
    EXPECT_NE(line(number).find(text), std::string::npos) << number << ": " << line(number);
  }
  for (const int number : {1, 2, 5, 10, 12, 15, 17, 19}) {
    EXPECT_EQ(line(number), "");
  }
  EXPECT_NE(complaints.find("OVI_VIRTUAL_BUFFER_ALIGNMENT must be a power of two from 1 to 4096, not \"48\""),
            std::string::npos);
  // The cameras start all the same, with what was right.
  EXPECT_EQ(found->deviceCount, 7U);
  open("KV130001");
  openStream();
  EXPECT_EQ(integer(stream, "StreamBufferAlignment", OVI_MODULE_DATA_STREAM), 16);
  start();
  oviNewBufferEventData image = next();
  EXPECT_EQ(image.frameID, 7U);
  release(image);
  stop();
}

TEST_F(SettingsTest, TheEnvironmentWinsOverTheFile) {
  complaintsAbout("MinimumBuffers = 5\n");
  open("KV130001");
  openStream();
  EXPECT_EQ(integer(stream, "StreamAnnounceBufferMinimum", OVI_MODULE_DATA_STREAM), 3);
}

TEST_F(SettingsTest, CamerasAreChosen) {
  complaintsAbout(
      "[Camera KV130001]\nPlugged = 0\n"
      "[Camera KV120002]\nVendor = Unheard Of\n"
      "[Camera OB000008]\nVendor = Tattile\nUserName = At the gate\n");
  EXPECT_FALSE(isListed("KV130001"));
  EXPECT_FALSE(isListed("KV120002")) << "the library does not serve such a vendor";
  const auto* const other =
      std::find_if(found->devices, found->devices + found->deviceCount,
                   [](const oviDeviceInfo& info) { return info.vendor == std::string("Tattile"); });
  ASSERT_NE(other, found->devices + found->deviceCount);
  EXPECT_STREQ(other->userDefinedName, "At the gate");
  EXPECT_STREQ(other->displayName, "Tattile Observer 1");
}

TEST_F(SettingsTest, SpeedModeCanBeTheDefault) {
  complaintsAbout("SpeedMode = 1\n");
  open("KV120002");
  EXPECT_EQ(boolean(device, "SpeedMode", OVI_MODULE_REMOTE_DEVICE), true);
}

TEST_F(SettingsTest, CamerasShowThePicturesOfAFolder) {
  std::filesystem::create_directories("pictures");
  constexpr std::uint32_t kSide = 64;
  const std::uint8_t colours[2][3] = {{250, 120, 30}, {20, 60, 200}};
  for (const int number : {0, 1}) {
    std::vector<std::uint8_t> pixels;
    for (std::uint32_t i = 0; i < kSide * kSide; ++i) {
      pixels.insert(pixels.end(), std::begin(colours[number]), std::end(colours[number]));
    }
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = kSide;
    png.height = kSide;
    png.format = PNG_FORMAT_RGB;
    const std::string name = "pictures/" + std::to_string(number) + ".png";
    ASSERT_NE(png_image_write_to_file(&png, name.c_str(), 0, pixels.data(), 0, nullptr), 0);
  }
  EXPECT_EQ(complaintsAbout("Images = pictures\n").find("Images must"), std::string::npos);
  open("KV120002");
  ASSERT_EQ(oviSetFeatureOnModule(device, "TestPattern", "ImageFolder", OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  ASSERT_EQ(oviSetFeatureOnModule(device, "PixelFormat", "RGB8", OVI_MODULE_REMOTE_DEVICE), OVI_SUCCESS);
  openStream();
  start();
  for (int i = 0; i < 3; ++i) {
    oviNewBufferEventData image = next();
    const auto* const middle = static_cast<const std::uint8_t*>(image.event.value) +
                               std::size_t{image.linePitch} * (image.height / 2) + std::size_t{image.width / 2} * 3;
    const std::uint8_t* const colour = colours[image.frameID % 2];
    for (int c = 0; c < 3; ++c) {
      EXPECT_NEAR(middle[c], colour[c], 1) << "frame " << image.frameID << ", component " << c;
    }
    release(image);
  }
  stop();
}

}  // namespace variants_test
