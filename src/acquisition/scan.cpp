// The blocking scan with a callback: images by number or by time, with an optional check of the test pattern.
#include "acquisition/scan.h"

#include <algorithm>
#include <iostream>
#include <string>

#include "acquisition/acquisition_control.h"
#include "acquisition/events.h"
#include "acquisition/streams.h"
#include "core/log.h"
#include "features/typed_access.h"
#include "image_geometry.h"
#include "pattern_check.h"
#include "platform/platform.h"
#include "scan_state.h"
#include "scan_steps.h"

namespace OVI {

namespace {

constexpr std::uint32_t kByNumber = 1;
constexpr std::uint32_t kByTime = 2;
constexpr std::uint32_t kCheckPattern = 4;

/** By number or by time, not both; the check goes with either. */
constexpr bool isValidMode(std::uint32_t mode) noexcept {
  return ((mode - 1) & ~5U) == 0;
}

constexpr bool hasTestPattern(std::uint32_t pixelFormat) noexcept {
  constexpr std::uint32_t kFormats[] = {kMono8, kRGB8, kBGR8, kRGBa8, kBGRa8};
  return std::ranges::find(kFormats, pixelFormat) != std::end(kFormats);
}

/** One run of oviScanImg: what it was asked for, and what it has set up so far. */
class CallbackScan {
 public:
  CallbackScan(std::uint64_t deviceHandle, oviScanCallback callback, std::int32_t imageNumber, std::uint32_t mode,
               std::int32_t minutes)
      : device_(deviceHandle),
        callback_(callback),
        imageNumber_(imageNumber),
        mode_(mode),
        minutes_(minutes) {}

  oviErr run() {
    oviErr result = checkArguments();
    if (result == OVI_SUCCESS) {
      result = setUp();
    }
    if (!message_.empty()) {
      return stopAndCleanUp(message_, result, kPrintMessage | steps_, stream_, event_, device_);
    }
    result = takeImages();
    const std::uint32_t print = message_.empty() ? 0U : static_cast<std::uint32_t>(kPrintMessage);
    return stopAndCleanUp(message_, result, print | kStopAndWait | steps_, stream_, event_, device_);
  }

 private:
  /** What follows on an image. */
  enum class Next { Image, End };

  bool asks(std::uint32_t bit) const noexcept { return (mode_ & bit) != 0; }

  oviErr failed(oviErr result, const char* message) {
    if (result != OVI_SUCCESS) {
      message_ = message;
    }
    return result;
  }

  oviErr checkArguments() {
    if (callback_ == nullptr || !isValidMode(mode_)) {
      return failed(OVI_ERR_INVALID_PARAMETER, "Callback function or mode is not valid!");
    }
    if (asks(kByNumber) && imageNumber_ <= 0) {
      return failed(OVI_ERR_INVALID_PARAMETER, "Image number is not valid!");
    }
    if (asks(kByTime) && minutes_ <= 0) {
      return failed(OVI_ERR_INVALID_PARAMETER, "Minutes is not valid!");
    }
    return OVI_SUCCESS;
  }

  oviErr setUp() {
    oviErr result = OVI::oviCreateDataStream(device_, 0, &stream_, 1, 0);
    steps_ |= stream_ != 0 ? kCloseStream : 0U;
    if (failed(result, "Cannot create data stream!") != OVI_SUCCESS) {
      return result;
    }
    family_ = scanFamilyOf(device_);
    result = applyFilterDriver(family_, stream_);
    if (failed(result, "Cannot enable filter driver!") != OVI_SUCCESS) {
      return result;
    }
    result = OVI::oviRegisterEvent(stream_, OVI_EVENT_NEW_BUFFER, &event_, OVI_MODULE_DATA_STREAM);
    if (failed(result, "Cannot register event!") != OVI_SUCCESS) {
      return result;
    }
    steps_ |= kUnregisterEvent;
    result = OVI::oviGetFeatureInt(device_, "Height", &height_, OVI_MODULE_REMOTE_DEVICE);
    if (failed(result, "Cannot get height from camera!") != OVI_SUCCESS) {
      return result;
    }
    result = OVI::oviGetFeatureInt(device_, "Width", &width_, OVI_MODULE_REMOTE_DEVICE);
    if (failed(result, "Cannot get width from camera!") != OVI_SUCCESS) {
      return result;
    }
    result = OVI::oviStartAcquisition(device_, kEndlessAcquisition);
    if (result != OVI_SUCCESS) {
      OVI::oviStopAcquisition(device_);  // The stream runs and the parameters are locked, whatever the camera does.
    }
    return failed(result, "Cannot start acquisition!");
  }

  oviErr takeImages() {
    ScanState::instance().setStop(device_, false);
    started_ = platform::monotonicNanoseconds();
    Next next = Next::Image;
    for (imageCount_ = 1; next == Next::Image; ++imageCount_) {
      const oviErr fetched = nextImage(event_, record_);
      if (failed(fetched, "Cannot get next image!") != OVI_SUCCESS) {
        return fetched;
      }
      next = handleImage();
    }
    return result_;
  }

  Next handleImage() {
    if (asks(kCheckPattern) && !isExpectedFrame() && family_.isS2i) {
      return releaseAndEnd(OVI_ERR_RESOURCE_EXHAUSTED);
    }
    if ((asks(kByTime) && isTimeOver()) || ScanState::instance().isStopped(device_)) {
      return releaseAndEnd(OVI_SUCCESS);
    }
    bool isGood = true;
    if (asks(kCheckPattern)) {
      if (!hasTestPattern(record_.pixelFormat)) {
        std::cout << "Format is not supported!" << std::endl;
        return releaseAndEnd(OVI_ERR_INVALID_VALUE);
      }
      isGood = checkPattern();
    }
    if (isToBeTakenAgain()) {
      result_ = OVI::oviReleaseImage(stream_, &record_);
      if (result_ != OVI_SUCCESS) {
        return Next::End;
      }
      // The last one goes to the application although it is released already.
      constexpr std::int64_t kRetries = 3;
      if (imageCount_ <= kRetries) {
        return Next::Image;
      }
    }
    return deliver(isGood);
  }

  Next deliver(bool isGood) {
    oviImageInfo info = imageInfoOf(record_);
    ScanState::instance().setLastImage(info);
    try {
      callback_(static_cast<std::uint8_t*>(record_.event.value), &info, isGood ? 1 : 0);
    } catch (...) {
      OVI_LOG_ERROR("OVI::oviScanImg") << "The application's callback has thrown an exception.";
      return releaseAndEnd(OVI_ERR_UNKNOWN);
    }
    result_ = OVI::oviReleaseImage(stream_, &record_);
    const bool isLast = asks(kByNumber) && imageCount_ >= imageNumber_;
    return result_ != OVI_SUCCESS || isLast ? Next::End : Next::Image;
  }

  Next releaseAndEnd(oviErr result) {
    OVI::oviReleaseImage(stream_, &record_);
    result_ = result;
    return Next::End;
  }

  bool isExpectedFrame() const {
    const std::uint64_t expected = record_.frameID + (family_.isS2i || family_.isKithara ? 0 : 1);
    if (expected == static_cast<std::uint64_t>(imageCount_)) {
      return true;
    }
    std::cout << "Cannot handle every image!" << std::endl;
    return false;
  }

  bool isTimeOver() const {
    constexpr std::uint64_t kNanosecondsPerMinute = 60000000000;
    return (platform::monotonicNanoseconds() - started_) / kNanosecondsPerMinute >=
           static_cast<std::uint64_t>(minutes_);
  }

  bool checkPattern() {
    const PatternImage image{static_cast<const std::uint8_t*>(record_.event.value), record_.event.valueSize,
                             record_.width, record_.height, record_.channels};
    if (imageCount_ != 1) {
      ++patternCounter_;
    } else if (image.data != nullptr && image.size != 0) {
      patternCounter_ = image.data[0];
    }
    const bool isWhole = record_.width == width_ && record_.height == height_;
    return matchesTestPattern(image, patternCounter_, patternBands()) && isWhole;
  }

  bool isToBeTakenAgain() const {
    return mode_ == kByNumber && imageNumber_ == 1 && ScanState::instance().scanFlag && record_.height != height_;
  }

  const std::uint64_t device_;
  const oviScanCallback callback_;
  const std::int32_t imageNumber_;
  const std::uint32_t mode_;
  const std::int32_t minutes_;

  ScanFamily family_;
  std::uint64_t stream_ = 0;
  std::uint64_t event_ = 0;
  std::uint32_t steps_ = 0;  // Of what is to be cleaned up.
  std::int64_t width_ = 0;
  std::int64_t height_ = 0;
  std::uint64_t started_ = 0;

  std::int64_t imageCount_ = 0;
  std::uint8_t patternCounter_ = 0;
  oviNewBufferEventData record_{};
  oviErr result_ = OVI_SUCCESS;
  std::string message_;
};

}  // namespace

oviErr oviScanImg(std::uint64_t deviceHandle, oviScanCallback callback, std::int32_t imageNumber, std::uint32_t mode,
                  std::int32_t minutes) {
  return CallbackScan(deviceHandle, callback, imageNumber, mode, minutes).run();
}

oviErr oviScanImgStop(std::uint64_t deviceHandle) {
  ScanState::instance().setStop(deviceHandle, true);
  return OVI_SUCCESS;
}

oviErr oviGetLastImageInfo(oviImageInfo* info) {
  if (info == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  *info = ScanState::instance().lastImage();
  return OVI_SUCCESS;
}

}  // namespace OVI
