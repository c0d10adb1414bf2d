// The C++ layer: what it closes, what it throws, and whom it calls, on the virtual cameras.
#include <algorithm>
#include <atomic>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>

#include "gtest/gtest.h"
#include "ovi/ovi.hpp"

namespace {

using std::chrono_literals::operator""ms;

class Wrapper : public testing::Test {
 protected:
  std::string camera(const char* serial) const {
    for (const ovi::DeviceInfo& info : library_.devices())
      if (std::string(info.serialNumber) == serial)
        return info.deviceID;
    throw std::runtime_error("there is no camera of that serial number");
  }

  ovi::Library library_{ovi::LogLevel::kNone};
  std::vector<ovi::DeviceInfo> cameras_ = library_.discover(100ms);
};

/** The code that leaves a call, OVI_SUCCESS when none does. */
template<class Call>
std::error_code codeOf(Call&& call) {
  try {
    call();
  } catch (const ovi::Error& error) {
    return error.code();
  }
  return {};
}

TEST_F(Wrapper, ErrorsNameTheCallAndTheThing) {
  try {
    const ovi::Device device("no such camera");
    FAIL();
  } catch (const ovi::Error& error) {
    EXPECT_EQ(error.code(), ovi::Errc::kNotFound);
    EXPECT_STREQ(error.what(), "oviOpenDevice(no such camera): NotFound");
  }
  const ovi::Device device(camera("KV032003"));
  EXPECT_EQ(codeOf([&] { device["NoSuchFeature"].set(1); }), ovi::Errc::kNotFound);
  EXPECT_EQ(codeOf([&] { device.openStream(4, 7); }), ovi::Errc::kInvalidParameter);
  const std::error_code twice = codeOf([&] { const ovi::Device again(camera("KV032003")); });
  EXPECT_EQ(twice, ovi::Errc::kResourceInUse);
  EXPECT_EQ(twice.message(), "Resource in use");
  EXPECT_EQ(ovi::makeErrorCode(OVI_ERR_HYPERVISOR_NOT_DISABLED).message(), "Hyper-v not disabled");
  EXPECT_EQ(ovi::makeErrorCode(-10001).message(), "error -10001");
}

TEST_F(Wrapper, ExceptionsOfCallbacksReachTheCaller) {
  int calls = 0;
  const auto stop = [&](const auto&) -> bool {
    ++calls;
    throw std::runtime_error("mine");
  };
  EXPECT_THROW(static_cast<void>(library_.discover(100ms, stop)), std::runtime_error);
  EXPECT_EQ(calls, 1) << "it is not asked again";
  const ovi::Device device(camera("KV032003"));
  EXPECT_THROW(device.upload("upload.bin", "UserSet1", 1000ms, stop), std::runtime_error);
  EXPECT_EQ(calls, 2);
  EXPECT_NO_THROW(device.upload("upload.bin", "UserSet1", 1000ms)) << "the camera's file was closed";
}

TEST_F(Wrapper, OwnersThatMovedCloseNothing) {
  std::optional<ovi::Device> first(camera("KV032003"));
  std::optional<ovi::Stream> stream(first->openStream(4));
  ovi::Stream stream2 = std::move(*stream);
  stream.reset();
  std::optional<ovi::Acquisition> acquisition(first->acquire());
  ovi::Acquisition acquisition2 = std::move(*acquisition);
  acquisition.reset();
  ovi::Device second = std::move(*first);
  first.reset();
  std::optional<ovi::Image> image(stream2.next());
  const ovi::Image image2 = std::move(*image);
  image.reset();
  EXPECT_EQ(image2.size(), 320U * 240U);
  acquisition2.stop();
  EXPECT_NO_THROW(acquisition2.stop()) << "a second time does nothing";
}

TEST_F(Wrapper, ImagesAreARange) {
  const ovi::Device device(camera("KV032003"));
  const ovi::Stream stream = device.openStream(4);
  EXPECT_EQ(codeOf([&] { stream.images(1, 0ms).begin(); }), ovi::Errc::kTimeout) << "nothing was started";
  const ovi::Acquisition acquisition = device.acquire();
  std::vector<ovi::Image> kept;
  for (ovi::Image& image : stream.images(4))
    kept.push_back(std::move(image));
  ASSERT_EQ(kept.size(), 4U);
  EXPECT_EQ(kept.back().frameID(), kept.front().frameID() + 3);
  EXPECT_EQ(codeOf([&] { stream.next(50ms); }), ovi::Errc::kTimeout) << "all buffers are with the application";
  kept.clear();
  EXPECT_NO_THROW(stream.next());
  std::size_t taken = 0;
  for (const ovi::Image& image : stream.images(1000)) {
    EXPECT_NE(image.data(), nullptr);
    if (++taken == 3)
      device.stop();
    if (taken == 3)
      stream.event().kill();
  }
  EXPECT_EQ(taken, 3U) << "an ended wait ends the loop";
}

TEST_F(Wrapper, FeaturesHaveTypes) {
  const ovi::Device device(camera("KV032003"));
  device["Width"].set(std::size_t{160});
  EXPECT_EQ(device["Width"].get<int>(), 160);
  device["ExposureTime"].set(100.0F);
  EXPECT_DOUBLE_EQ(device["ExposureTime"].get<double>(), 100.0);
  device["ReverseX"].set(true);
  EXPECT_TRUE(device["ReverseX"].get<bool>());
  device["TriggerMode"].set(std::string_view("On"));
  EXPECT_EQ(device["TriggerMode"].get<std::string>(), "On");
  EXPECT_FALSE(device["NoSuchFeature"].exists());

  const std::vector<ovi::TreeFeature> tree = device.features();
  const auto width = std::find_if(tree.begin(), tree.end(),
                                  [](const ovi::TreeFeature& node) { return node.feature.name() == "Width"; });
  ASSERT_NE(width, tree.end());
  EXPECT_EQ(width->depth, 1U);
  EXPECT_EQ(tree.front().depth, 0U);
}

TEST_F(Wrapper, ScansCallAFunctionOfAnyKind) {
  const ovi::Device device(camera("KV032003"));
  std::size_t images = 0;
  ovi::scanImages(device, 3, [&](const std::uint8_t* pixels, const ovi::ImageInfo& info, bool ok) {
    images += pixels != nullptr && ok && info.width == 320 ? 1U : 0U;
  });
  EXPECT_EQ(images, 3U);
  EXPECT_THROW(ovi::scanMinutes(device, 1, [](auto&&...) { throw std::runtime_error("mine"); }), std::runtime_error)
      << "it ends the scan";
  std::vector<std::uint8_t> pixels(device.imageSize());
  EXPECT_EQ(ovi::scanImage(device, pixels.data()).height, 240U);
  EXPECT_EQ(codeOf([&] { ovi::scanStreams(device, 0, nullptr); }), ovi::Errc::kInvalidParameter);
}

TEST_F(Wrapper, TheRestOfTheInterfaceIsThere) {
  const ovi::Device device(camera("KV032003"));
  EXPECT_EQ(std::string(device["PixelFormat"].entry().stringValue), device["PixelFormat"].asString());
  EXPECT_EQ(codeOf([&] { device["PixelFormat"].entry("NoSuchFormat"); }), ovi::Errc::kNotFound);
  EXPECT_EQ(device["Width"].accessMode(), static_cast<std::uint32_t>(OVI_ACCESS_READ_WRITE));
  EXPECT_TRUE(device.isLittleEndian());
  EXPECT_FALSE(device.usesKitharaProducer());
  EXPECT_FALSE(ovi::Recorder(device).isAvailable());
  EXPECT_STRNE(device.streamInfo(0).id, "");
  std::uint32_t bytes = 0;
  device.readMemory(0x10830, reinterpret_cast<std::uint8_t*>(&bytes), sizeof(bytes));
  EXPECT_EQ(std::stoul(device.readRegister("x10830"), nullptr, 16), bytes);
  const oviTLProducerInfos info = library_.producerInfo(library_.producers().front());
  EXPECT_STRNE(info.displayName, "");
  library_.setFeatureCachingDisabled(true);
  EXPECT_TRUE(library_.isFeatureCachingDisabled());
  library_.setFeatureCachingDisabled(false);
}

TEST_F(Wrapper, AWatchEndsWithItsLastCall) {
  const ovi::Device device(camera("KV032003"));
  std::promise<void> entered;
  std::promise<void> leave;
  std::atomic<bool> finished{false};
  std::atomic<int> calls{0};
  std::optional<ovi::FeatureWatch> watch(device.watch("ExposureTime", [&](const char*) {
    if (++calls == 1) {
      entered.set_value();
      leave.get_future().wait();
      finished = true;
    }
  }));
  std::thread writer([&] { device["ExposureTime"].set(200.0); });
  entered.get_future().wait();
  std::promise<void> destroying;
  std::thread destroyer([&] {
    destroying.set_value();
    watch.reset();
    EXPECT_TRUE(finished) << "the function was still running";
  });
  destroying.get_future().wait();
  leave.set_value();
  destroyer.join();
  writer.join();
  const int before = calls;
  device["ExposureTime"].set(300.0);
  EXPECT_EQ(calls, before);

  // The function may set the feature that it is told about.
  std::atomic<int> nested{0};
  const ovi::FeatureWatch again = device.watch("ExposureTime", [&](const char* name) {
    if (++nested == 1)
      device[name].set(500.0);
  });
  device["ExposureTime"].set(400.0);
  EXPECT_GE(nested, 2);
  EXPECT_DOUBLE_EQ(device["ExposureTime"].asFloat(), 500.0);
}

}  // namespace
