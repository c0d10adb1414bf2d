// The library with one variant of the virtual camera behind it.
#pragma once

#include <gtest/gtest.h>
#include <ovi/ovi.h>
#include <ovi_virtual/hostility.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace variants_test {

constexpr const char* kGigE = VARIANTS_DIR "/gige/gevtls2i.cti";
constexpr const char* kRealTime = VARIANTS_DIR "/realtime/virtual_lsgentlgevkithara.cti";
constexpr const char* kRecording = VARIANTS_DIR "/recording/nimbo_producer.cti";
constexpr const char* kPlain = PLAIN_DIR "/VirtualCamera.cti";

class VariantTest : public testing::Test {
 protected:
  VariantTest();
  ~VariantTest() override;

  /** Writes the producer's settings file, which counts from the next use() on. */
  static void settings(const std::string& text);
  /** Initialises the library anew over a producer and looks for its devices. */
  void use(const std::string& producer);
  void discover();
  bool isListed(const std::string& serial) const;
  void open(const std::string& serial);
  void closeDevice();
  void openStream(std::uint32_t buffers = 5);
  void start();
  void stop();
  void closeStream();
  /** The next image; it must come. Give it back with release(). */
  oviNewBufferEventData next();
  void release(oviNewBufferEventData& image) { EXPECT_EQ(oviReleaseImage(stream, &image), OVI_SUCCESS); }

  /** A feature's value, nothing when it cannot be read. */
  static std::optional<std::int64_t> integer(std::uint64_t handle, const char* name, std::uint32_t selector);
  static std::optional<bool> boolean(std::uint64_t handle, const char* name, std::uint32_t selector);

  const OviVirtualHostility& orders() const { return *orders_; }

  std::uint64_t device = 0;
  std::uint64_t stream = 0;
  std::uint64_t event = 0;
  std::unique_ptr<oviDiscoveryInfo> found = std::make_unique<oviDiscoveryInfo>();

 private:
  void leave();

  std::string folder_;
  void* library_ = nullptr;
  const OviVirtualHostility* orders_ = nullptr;
};

}  // namespace variants_test
