// Takes images by the recording's own frame rate as far as memory goes, and lends them out by reference.
#include "modules/recorder.h"

#include <algorithm>
#include <new>

#include "modules/failure.h"
#include "picture/pixel_format.h"
#include "picture/rgb_conversion.h"

namespace vcam {

namespace {
constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
}

void Recorder::start() {
  const std::lock_guard lock(mutex_);
  if (current_) {
    fail(GC_ERR_RESOURCE_IN_USE, "a recording is under way already");
  }
  current_ = Recording();
  current_->frameRate = frameRate_;
  isRecording_ = true;
}

void Recorder::stop() {
  const std::lock_guard lock(mutex_);
  if (!current_) {
    fail(GC_ERR_RESOURCE_IN_USE, "no recording is under way");
  }
  isRecording_ = false;
  finished_.push_back(std::move(*current_));
  current_.reset();
}

void Recorder::take(const std::string& deviceId, const FramePlan& plan, std::span<const std::byte> payload) {
  const bool parts = plan.partCount != 0;
  Image image{parts ? plan.parts[0].width : plan.width,
              parts ? plan.parts[0].height : plan.height,
              parts ? plan.parts[0].pixelFormat : plan.pixelFormat,
              plan.frameId,
              plan.timestampNs,
              nullptr};
  const std::size_t offset = parts ? plan.parts[0].offset : 0;
  const std::size_t size = parts ? plan.parts[0].size : plan.imageSize;
  if (!plan.imagePresent || plan.incomplete || payload.size() < offset + size) {
    return;
  }
  const std::lock_guard lock(mutex_);
  if (!current_) {
    return;
  }
  if (current_->images.empty()) {
    current_->deviceId = deviceId;
    current_->stream = plan.stream;
    nextDueNs_ = plan.timestampNs;
  }
  if (deviceId != current_->deviceId || plan.stream != current_->stream || plan.timestampNs < nextDueNs_) {
    return;
  }
  if (current_->truncated || size > capacity_ - used_) {
    current_->truncated = true;
    return;
  }
  const auto pixels = payload.subspan(offset, size);
  try {
    image.pixels = std::make_shared<const std::vector<std::byte>>(pixels.begin(), pixels.end());
    current_->images.push_back(std::move(image));
  } catch (const std::bad_alloc&) {
    current_->truncated = true;
    return;
  }
  current_->bytes += size;
  used_ += size;
  if (current_->frameRate != 0) {
    // On a grid of times, so that the rate holds on average and no gap is followed by a burst.
    const std::uint64_t period = kNanosecondsPerSecond / current_->frameRate;
    nextDueNs_ += ((plan.timestampNs - nextDueNs_) / period + 1) * period;
  }
}

void Recorder::setFrameRate(std::uint32_t framesPerSecond) {
  constexpr std::uint32_t kHighest = 100000;
  if (framesPerSecond > kHighest) {
    fail(GC_ERR_INVALID_VALUE, framesPerSecond, " images a second are more than ", kHighest);
  }
  const std::lock_guard lock(mutex_);
  frameRate_ = framesPerSecond;
}

void Recorder::setRgbConversion(bool enabled) {
  const std::lock_guard lock(mutex_);
  rgbConversion_ = enabled;
}

OviVirtualRecordsInfo Recorder::info() {
  const std::lock_guard lock(mutex_);
  OviVirtualRecordsInfo info{};
  info.recordings = static_cast<std::uint32_t>(finished_.size());
  info.isRecording = current_ ? 1 : 0;
  info.isOpen = isOpen_ ? 1 : 0;
  info.frameRate = frameRate_;
  info.rgbConversion = rgbConversion_ ? 1 : 0;
  info.usedBytes = used_;
  info.capacityBytes = capacity_;
  return info;
}

void Recorder::open() {
  const std::lock_guard lock(mutex_);
  if (isOpen_) {
    fail(GC_ERR_RESOURCE_IN_USE, "the recordings are open already");
  }
  isOpen_ = true;
  selected_ = 0;
  nextImage_ = 0;
}

void Recorder::close() {
  const std::lock_guard lock(mutex_);
  if (!isOpen_) {
    fail(GC_ERR_RESOURCE_IN_USE, "the recordings are not open");
  }
  isOpen_ = false;
}

void Recorder::clear() {
  const std::lock_guard lock(mutex_);
  finished_.clear();
  used_ = current_ ? current_->bytes : 0;
  selected_ = 0;
  nextImage_ = 0;
}

const Recorder::Recording& Recorder::find(std::uint32_t index) const {
  if (!isOpen_) {
    fail(GC_ERR_RESOURCE_IN_USE, "the recordings are not open");
  }
  if (index >= finished_.size()) {
    fail(GC_ERR_INVALID_INDEX, "recording ", index, " of ", finished_.size());
  }
  return finished_[index];
}

OviVirtualRecordingData Recorder::data(std::uint32_t index) {
  const std::lock_guard lock(mutex_);
  const Recording& recording = find(index);
  OviVirtualRecordingData data{};
  data.images = static_cast<std::uint32_t>(recording.images.size());
  data.frameRate = recording.frameRate;
  data.isTruncated = recording.truncated ? 1 : 0;
  data.bytes = recording.bytes;
  const std::size_t length = std::min(recording.deviceId.size(), sizeof(data.deviceId) - 1);
  std::copy_n(recording.deviceId.begin(), length, data.deviceId);
  if (!recording.images.empty()) {
    const Image& first = recording.images.front();
    data.width = first.width;
    data.height = first.height;
    data.pixelFormat = first.pixelFormat;
    data.firstTimestampNs = first.timestampNs;
    data.lastTimestampNs = recording.images.back().timestampNs;
  }
  return data;
}

void Recorder::select(std::uint32_t index) {
  const std::lock_guard lock(mutex_);
  find(index);
  selected_ = index;
  nextImage_ = 0;
}

std::uint64_t Recorder::read(OviVirtualRecordedImage& out) {
  Image image;
  std::uint32_t index = out.index;
  bool convert = false;
  {
    const std::lock_guard lock(mutex_);
    const Recording& recording = find(selected_);
    index = index == OVI_VIRTUAL_NEXT_IMAGE ? nextImage_ : index;
    if (index >= recording.images.size()) {
      fail(GC_ERR_NO_DATA, "image ", index, " of ", recording.images.size());
    }
    image = recording.images[index];
    nextImage_ = index + 1;
    convert = rgbConversion_;
  }
  if (convert) {
    const PixelFormat* const from = findPixelFormat(image.pixelFormat);
    if (from == nullptr) {
      fail(GC_ERR_NOT_AVAILABLE, "the image's pixel format cannot be converted");
    }
    image.pixels =
        std::make_shared<const std::vector<std::byte>>(toRgb8(*from, image.width, image.height, *image.pixels));
    image.pixelFormat = findPixelFormat(std::string_view("RGB8"))->code;
  }
  out = {index,         image.width,       image.height,         image.pixelFormat,
         image.frameId, image.timestampNs, image.pixels->size(), image.pixels->data()};
  const std::lock_guard lock(mutex_);
  lent_.emplace(++lastReference_, std::move(image.pixels));
  return lastReference_;
}

void Recorder::free(std::uint64_t reference) {
  const std::lock_guard lock(mutex_);
  if (lent_.erase(reference) == 0) {
    fail(GC_ERR_INVALID_HANDLE, "no image is lent under this reference");
  }
}

}  // namespace vcam
