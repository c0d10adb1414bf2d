/// @file
/// An image in C++: a filled buffer that goes back by itself.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <utility>

#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// A filled buffer, lent by the stream; given back when it is destroyed. Nothing of it may be asked for after release()
/// or after it was moved from.
class Image {
 public:
  /// Takes over a record of oviWaitForEvent.
  Image(std::uint64_t stream, oviNewBufferEventData* record) noexcept : stream_(stream), record_(record) {}
  ~Image() { release(); }
  /// The other one has nothing to give back any more.
  Image(Image&& other) noexcept : stream_(other.stream_), record_(std::exchange(other.record_, nullptr)) {}
  /// Gives back what was there before.
  Image& operator=(Image&& other) noexcept {
    if (this != &other) {
      release();
      stream_ = other.stream_;
      record_ = std::exchange(other.record_, nullptr);
    }
    return *this;
  }

  /// The pixels.
  const std::uint8_t* data() const noexcept { return static_cast<const std::uint8_t*>(record_->event.value); }
  /// Bytes that are filled.
  std::size_t size() const noexcept { return static_cast<std::size_t>(record_->event.valueSize); }
  std::uint32_t width() const noexcept { return record_->width; }          ///< Pixels
  std::uint32_t height() const noexcept { return record_->height; }        ///< Pixels
  std::uint32_t linePitch() const noexcept { return record_->linePitch; }  ///< Bytes a line
  std::uint32_t channels() const noexcept { return record_->channels; }    ///< 1, 3 or 4
  /// A code of the Pixel Format Naming Convention.
  std::uint32_t pixelFormat() const noexcept { return record_->pixelFormat; }
  /// Bits that a pixel takes.
  std::uint32_t bitsPerPixel() const noexcept { return oviBitsPerPixelFromFormat(record_->pixelFormat); }
  std::uint64_t frameID() const noexcept { return record_->frameID; }  ///< A gap means lost images
  /// When it was delivered, on the library's monotonic clock.
  std::chrono::nanoseconds timestamp() const noexcept {
    return std::chrono::nanoseconds(static_cast<std::int64_t>(record_->timestampNs));
  }
  /// The record of the C interface.
  const oviNewBufferEventData& record() const noexcept { return *record_; }

  /// Gives the buffer back now. @return why the producer refused it, which then has a buffer less; no error when there
  /// was nothing to give back
  std::error_code release() noexcept {
    return record_ == nullptr ? std::error_code()
                              : makeErrorCode(oviReleaseImage(stream_, std::exchange(record_, nullptr)));
  }

 private:
  std::uint64_t stream_;
  oviNewBufferEventData* record_;
};

}  // namespace ovi
