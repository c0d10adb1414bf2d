// The camera's own time stamps of images, in this machine's time.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "ovi/ovi.hpp"

namespace tool {

/// Has a camera send its time stamp with every image, as a chunk behind the pixels, and knows how the camera's clock
/// and this machine's belong together. The camera's settings are put back at the end. One thread at a time.
class CameraTime {
 public:
  using Clock = std::chrono::steady_clock;

  /// Throws ToolError for a camera that sends no time stamps, or whose clock cannot be read.
  explicit CameraTime(const ovi::Device& device);
  ~CameraTime();
  CameraTime(const CameraTime&) = delete;
  CameraTime& operator=(const CameraTime&) = delete;

  /// When the camera took its time stamp of the image; nothing when the image carries none. Compares the clocks again
  /// once a second, because they drift apart.
  std::optional<Clock::time_point> of(const ovi::Image& image);

 private:
  /// The features that read a camera's clock.
  struct Features {
    const char* latch;
    const char* value;
    const char* frequency;  ///< null: nanoseconds
  };
  static constexpr Features kFeatures[] = {
      {"TimestampLatch", "TimestampLatchValue", nullptr},
      {"TimestampLatch", "Timestamp", nullptr},
      {"GevTimestampControlLatch", "GevTimestampValue", "GevTimestampTickFrequency"}};

  /// One moment on both clocks.
  struct Moment {
    Clock::time_point here;
    std::uint64_t ticks = 0;
    Clock::duration uncertainty{};
  };

  void switchOn();
  void putBack();
  std::optional<Moment> compare(const Features& features) const;
  void chooseClock();
  std::optional<Clock::time_point> hereAt(std::uint64_t ticks) const;

  const ovi::Device& device_;
  std::string wasActive_;
  std::string wasSelected_;
  std::string wasEnabled_;
  const Features* features_ = nullptr;
  double nanosecondsATick_ = 1;
  Moment moment_;
};

}  // namespace tool
