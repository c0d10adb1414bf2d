// Keeps the images that cameras deliver, and hands them out again.
#pragma once

#include <ovi_virtual/recording.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "camera/frame_plan.h"

namespace vcam {

class Recorder {
 public:
  explicit Recorder(std::uint64_t capacity) : capacity_(capacity) {}

  // What a payload takes in whole blocks.
  static std::uint64_t blocksFor(std::size_t bytes) {
    constexpr std::uint64_t kBlock = 4096;
    return (bytes + kBlock - 1) / kBlock * kBlock;
  }

  // An image was delivered. Costs one load unless a recording is under way.
  void offer(const std::string& deviceId, const FramePlan& plan, std::span<const std::byte> payload) {
    if (isRecording_.load(std::memory_order_relaxed)) {
      take(deviceId, plan, payload);
    }
  }

  void start();
  void stop();
  void setFrameRate(std::uint32_t framesPerSecond);
  void setRgbConversion(bool enabled);

  OviVirtualRecordsInfo info();
  void open();
  void close();
  void clear();
  OviVirtualRecordingData data(std::uint32_t index);
  void select(std::uint32_t index);
  // Fills the record and returns the image's reference.
  std::uint64_t read(OviVirtualRecordedImage& out);
  void free(std::uint64_t reference);

 private:
  using Pixels = std::shared_ptr<const std::vector<std::byte>>;

  struct Image {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t pixelFormat = 0;
    std::uint64_t frameId = 0;
    std::uint64_t timestampNs = 0;
    Pixels pixels;
  };

  struct Recording {
    std::string deviceId;
    std::size_t stream = 0;
    std::uint32_t frameRate = 0;
    bool truncated = false;
    std::uint64_t bytes = 0;
    std::vector<Image> images;
  };

  void take(const std::string& deviceId, const FramePlan& plan, std::span<const std::byte> payload);
  const Recording& find(std::uint32_t index) const;

  const std::uint64_t capacity_;
  std::atomic<bool> isRecording_{false};

  std::mutex mutex_;  // guards all below
  std::optional<Recording> current_;
  std::uint64_t nextDueNs_ = 0;
  std::vector<Recording> finished_;
  std::uint64_t used_ = 0;
  std::uint32_t frameRate_ = 0;
  bool rgbConversion_ = false;
  bool isOpen_ = false;
  std::uint32_t selected_ = 0;
  std::uint32_t nextImage_ = 0;
  std::map<std::uint64_t, Pixels> lent_;
  std::uint64_t lastReference_ = 0;
};

}  // namespace vcam
