// Images that the tool saves: right in every pixel, none left out, whatever the pixel format.
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <nlohmann/json.hpp>

#include "png_file.h"
#include "tool_run.h"

namespace tool_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

// Saved files by the frame ID in their names.
std::map<std::uint64_t, std::filesystem::path> savedFrames(const std::filesystem::path& folder) {
  std::map<std::uint64_t, std::filesystem::path> frames;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    frames[std::stoull(name.substr(name.find('-') + 1))] = entry.path();
  }
  return frames;
}

void expectNoGap(const std::map<std::uint64_t, std::filesystem::path>& frames, std::size_t count) {
  ASSERT_EQ(frames.size(), count);
  EXPECT_EQ(frames.rbegin()->first - frames.begin()->first + 1, count);
}

// The strip along the top of the camera's chart: 32 cells, the lowest bit of the frame ID first.
std::uint64_t frameInStrip(const PngFile& picture) {
  const std::uint32_t cell = std::clamp(picture.width / 64, 4U, 16U);
  std::uint64_t id = 0;
  for (std::uint32_t bit = 0; bit < 32; ++bit)
    if (picture.level(bit * cell + cell / 2, cell / 2) > 127)
      id |= std::uint64_t{1} << bit;
  return id;
}

TEST(Images, SpellTheFrameIDsOfTheirNamesWithoutAGap) {
  struct Case {
    const char* camera;
    const char* format;
  };
  for (const Case& one : {Case{"Mono", "Mono8"}, Case{"Mono", "Mono12p"}, Case{"Colour", "RGB8"},
                          Case{"Colour", "BGRa8"}, Case{"Colour", "BayerRG8"}, Case{"BigEndian", "Mono8"}}) {
    SCOPED_TRACE(std::string(one.camera) + " " + one.format);
    const std::filesystem::path folder = freshFolder("pictures");
    const Outcome run = ovi({"stream", "--camera", one.camera, "--set", std::string("PixelFormat=") + one.format,
                             "--set", "Width=320", "--set", "Height=240", "--frames", "20", "--save", "png"});
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_THAT(run.err, HasSubstr("every image arrived whole"));
    const auto frames = savedFrames(folder);
    expectNoGap(frames, 20);
    for (const auto& [id, file] : frames) {
      EXPECT_THAT(run.out, HasSubstr(file.string()));
      EXPECT_THAT(file.string(), HasSubstr(one.format));
      EXPECT_EQ(frameInStrip(readPng(file)), id) << file;
    }
  }
}

struct Format {
  const char* camera;
  const char* name;
  std::uint32_t channels;
  std::uint32_t bits;
  double step;  // of the format's own depth, in units of 255
};

constexpr std::array kFormats = {
    Format{"Mono", "Mono8", 1, 8, 0},      Format{"Mono", "Mono10", 1, 16, 0.5},  Format{"Mono", "Mono12", 1, 16, 0.5},
    Format{"Mono", "Mono16", 1, 16, 0.5},  Format{"Mono", "Mono10p", 1, 16, 0.5}, Format{"Mono", "Mono12p", 1, 16, 0.5},
    Format{"Colour", "RGB8", 3, 8, 0},     Format{"Colour", "BGR8", 3, 8, 0},     Format{"Colour", "BGRa8", 4, 8, 0},
    Format{"Colour", "RGBa8", 4, 8, 0},    Format{"Colour", "BayerGR8", 3, 8, 0}, Format{"Colour", "BayerRG8", 3, 8, 0},
    Format{"Colour", "BayerGB8", 3, 8, 0}, Format{"Colour", "BayerBG8", 3, 8, 0}};

std::filesystem::path oneFrame(const Format& format, const std::string& pattern) {
  const std::filesystem::path folder = freshFolder("pictures");
  const Outcome run = ovi({"stream", "--camera", format.camera, "--frames", "1", "--save", "png", "--to", "pictures",
                           "--set", std::string("PixelFormat=") + format.name, "--set", "TestPattern=" + pattern,
                           "--set", "Width=256", "--set", "Height=64"});
  EXPECT_EQ(run.code, 0) << run.err;
  const auto frames = savedFrames(folder);
  return frames.empty() ? std::filesystem::path() : frames.begin()->second;
}

bool cameraHas(const Format& format) {
  static std::map<std::string, std::string> formats;
  std::string& known = formats[format.camera];
  if (known.empty())
    known = ovi({"features", "--camera", format.camera, "--json", "PixelFormat"}).out;
  return known.find("\"" + std::string(format.name) + "\"") != std::string::npos;
}

TEST(Images, HoldThePixelsThatTheCameraMade) {
  std::size_t tried = 0;
  for (const Format& format : kFormats) {
    if (!cameraHas(format))
      continue;
    ++tried;
    SCOPED_TRACE(format.name);
    const std::filesystem::path file = oneFrame(format, "GreyVerticalRamp");
    ASSERT_FALSE(file.empty());
    const PngFile ramp = readPng(file);
    EXPECT_EQ(ramp.width, 256U);
    EXPECT_EQ(ramp.height, 64U);
    EXPECT_EQ(ramp.channels, format.channels);
    EXPECT_EQ(ramp.bits, format.bits);
    // Interpolated pixels of a Bayer format take in their neighbours in the rows above and below.
    const bool bayer = std::string(format.name).find("Bayer") != std::string::npos;
    const double tolerance = bayer ? 1.0 : format.step;
    for (std::uint32_t y = 1; y + 1 < ramp.height; ++y)
      for (std::uint32_t x = 0; x < ramp.width; x += 7)
        for (std::uint32_t channel = 0; channel < std::min(ramp.channels, 3U); ++channel)
          ASSERT_NEAR(ramp.level(x, y, channel), y, tolerance) << x << ", " << y << ", " << channel;
  }
  EXPECT_GE(tried, 10U);
}

TEST(Images, HaveTheirColoursInTheRightOrder) {
  // White, yellow, cyan, green, magenta, red, blue, black: which of red, green and blue are on.
  constexpr std::array<std::array<bool, 3>, 8> kBars = {{{true, true, true},
                                                         {true, true, false},
                                                         {false, true, true},
                                                         {false, true, false},
                                                         {true, false, true},
                                                         {true, false, false},
                                                         {false, false, true},
                                                         {false, false, false}}};
  for (const Format& format : kFormats) {
    if (format.channels < 3 || !cameraHas(format))
      continue;
    SCOPED_TRACE(format.name);
    const PngFile picture = readPng(oneFrame(format, "ColorBar"));
    for (std::uint32_t bar = 0; bar < kBars.size(); ++bar)
      for (std::uint32_t channel = 0; channel < 3; ++channel)
        EXPECT_EQ(picture.level(bar * 32 + 16, 32, channel) > 127, kBars.at(bar).at(channel)) << bar << ", " << channel;
  }
}

TEST(Images, AreSavedAsTheBytesThatCameToo) {
  const Outcome run =
      ovi(words("grab --camera Mono -o one.raw --set Width=64 --set Height=32 --set "
                "TestPattern=GreyHorizontalRamp --json"));
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(nlohmann::json::parse(run.out)["pixelFormat"], "Mono8");
  const std::string bytes = readText("one.raw");
  ASSERT_EQ(bytes.size(), 64U * 32U);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    ASSERT_EQ(static_cast<unsigned char>(bytes[i]), i % 64);
}

TEST(Images, AreCountedAndChecked) {
  const Outcome json = ovi(words("stream --json --camera Mono --frames 30 --check-pattern"));
  ASSERT_EQ(json.code, 0) << json.err;
  const nlohmann::json summary = nlohmann::json::parse(json.out);
  EXPECT_EQ(summary["frames"], 30);
  EXPECT_EQ(summary["badPattern"], 0);
  EXPECT_EQ(summary["lost"], 0);
  EXPECT_GT(summary["framesPerSecond"].get<double>(), 1.0);

  // A frame needs about the frame period from the start of its exposure to its arrival.
  const Outcome timed =
      ovi(words("stream --json --camera Mono --frames 5 --camera-time --set AcquisitionFrameRate=20"));
  ASSERT_EQ(timed.code, 0) << timed.err;
  EXPECT_EQ(nlohmann::json::parse(timed.out)["latencyFrom"], "camera");
  EXPECT_GT(nlohmann::json::parse(timed.out)["latencySeconds"].get<double>(), 0.001);
  EXPECT_EQ(summary["latencyFrom"], "library");

  const Outcome several = ovi(words("stream --camera Mono --camera Colour --frames 5 --json"));
  ASSERT_EQ(several.code, 0) << several.err;
  const nlohmann::json summaries = nlohmann::json::parse(several.out);
  ASSERT_EQ(summaries.size(), 2U);
  EXPECT_EQ(summaries[1]["frames"], 5);
  EXPECT_NE(summaries[0]["camera"], summaries[1]["camera"]);

  // The scan has a single buffer: at a high rate a slow build misses images, and the pattern with them.
  const Outcome scan = ovi(words("scan --camera Mono --set AcquisitionFrameRate=5 --images 5 --check-pattern --json"));
  EXPECT_EQ(scan.code, 0) << scan.err;
  EXPECT_EQ(nlohmann::json::parse(scan.out)["bad"], 0);

  const Outcome bench = ovi(words("bench --camera Mono --seconds 0.5 --json --set SpeedMode=on"));
  EXPECT_EQ(bench.code, 0) << bench.err;
  EXPECT_GT(nlohmann::json::parse(bench.out)["images"].get<int>(), 0);
  EXPECT_GT(nlohmann::json::parse(bench.out)["producerTakeMicroseconds"].get<double>(), 0) << "without the library";
}

#ifndef _WIN32
TEST(Images, ThatAreLostAreToldApart) {
  // What is ordered of the virtual camera is never freed; a sanitizer calls it lost once the producer is unloaded.
  const Environment noLeaks("ASAN_OPTIONS", "detect_leaks=0");
  struct Case {
    const char* order;  // what happens to the third image
    const char* counted;
    const char* verdict;
  };
  for (const Case& one :
       {Case{"frames 8", "lostOnTheWay", "never arrived"}, Case{"frames 1", "incomplete", "arrived without all data"},
        Case{"frames 2", "incomplete", "arrived without all data"},
        Case{"frames 4", "late", "came after one that was made later"}}) {
    SCOPED_TRACE(one.order);
    const Environment order("OVI_TEST_ORDER", one.order);
    const Outcome run = ovi(words("stream -c 1 --frames 8 --json --producer " HOSTILE_DIR "/Hostile.cti"));
    ASSERT_EQ(run.code, 0) << run.err;
    const nlohmann::json summary = nlohmann::json::parse(run.out);
    for (const char* count : {"lostOnTheWay", "incomplete", "late", "withoutBuffer"})
      EXPECT_EQ(summary[count], std::string(count) == one.counted ? 1 : 0) << count;
    EXPECT_EQ(summary["frames"], 8);
    EXPECT_EQ(summary["verdict"].get<std::string>().find(std::string("1 image ") + one.verdict), 0U) << summary;
  }
  {
    const Environment order("OVI_TEST_ORDER", "allframes 2");
    const Outcome never = ovi(words("stream -c 1 -n 3 --image-timeout 500 --producer " HOSTILE_DIR "/Hostile.cti"));
    EXPECT_EQ(never.code, 1);
    EXPECT_THAT(never.err, HasSubstr("no further whole image came within 500 ms"));
  }
  {
    const Environment order("OVI_TEST_ORDER", "fail DSStartAcquisition -1010");
    for (const char* command : {"stream -n 3", "grab", "bench"}) {
      const Outcome refused = ovi(words(std::string(command) + " -c 1 --producer " HOSTILE_DIR "/Hostile.cti"));
      EXPECT_EQ(refused.code, 1) << command;
      EXPECT_THAT(refused.err,
                  AllOf(HasSubstr("refused to start the stream: GC_ERR_IO (-1010), \"DSStartAcquisition: "),
                        HasSubstr("cable"), HasSubstr("try: ovi check " HOSTILE_DIR "/Hostile.cti")));
    }
  }
  {
    const Environment order("OVI_TEST_ORDER", "fail DSQueueBuffer -1010 25");
    const Outcome run = ovi(words("stream -c 1 -n 12 --buffers 20 --json --producer " HOSTILE_DIR "/Hostile.cti"));
    const nlohmann::json summary = nlohmann::json::parse(run.out);
    EXPECT_EQ(summary["frames"], 12);
    EXPECT_EQ(summary["notReleased"], 8) << "of 12, whose first four went back";
    EXPECT_THAT(summary["verdict"].get<std::string>(), HasSubstr("refused to take 8 buffers back (IO"));
  }
  const Environment order("OVI_TEST_ORDER", "fail DSStopAcquisition -1010");
  const Outcome gone = ovi(words("stream -c 1 --frames 3 --producer " HOSTILE_DIR "/Hostile.cti"));
  EXPECT_EQ(gone.code, 1);
  EXPECT_THAT(gone.err, AllOf(HasSubstr("could not be stopped (IO"), HasSubstr("could not be stopped: IO")));
}
#endif

TEST(Images, ThatDoNotComeAreExplained) {
  for (const char* command : {"grab -o none.png", "stream --frames 1 --image-timeout 600", "stream --seconds 0.3",
                              "scan --images 1", "bench --seconds 0.3"}) {
    std::vector<std::string> arguments = words(command);
    for (const char* word : {"--camera", "Mono", "--set", "TriggerMode=On"})
      arguments.emplace_back(word);
    const Outcome run = ovi(arguments);
    EXPECT_EQ(run.code, 1) << command;
    EXPECT_THAT(run.err, AllOf(HasSubstr("trigger"), HasSubstr("TriggerMode = On"), HasSubstr("set TriggerMode=Off")));
  }
  // Each of several cameras has its own reason; so has one that falls silent after some images.
  const Outcome both = ovi(words("stream -c Mono -c Colour --seconds 0.3 --json --set TriggerMode=On"));
  for (const nlohmann::json& summary : nlohmann::json::parse(both.out))
    EXPECT_THAT(summary["verdict"].get<std::string>(),
                HasSubstr("no image came: the camera was waiting for a trigger"));
  const Outcome other =
      ovi(words("stream -c Mono --seconds 0.3 --set TriggerSelector=AcquisitionStart --set TriggerMode=On --set "
                "TriggerSelector=FrameStart"));
  EXPECT_THAT(other.err, AllOf(HasSubstr("TriggerSelector = AcquisitionStart, TriggerMode = On"),
                               HasSubstr("set TriggerSelector=AcquisitionStart TriggerMode=Off")));
}

}  // namespace
}  // namespace tool_test
