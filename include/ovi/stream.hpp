/// @file
/// A data stream in C++, with its images as a range.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "ovi/event.hpp"
#include "ovi/feature.hpp"
#include "ovi/image.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// An open data stream with its buffers and its new-buffer event.
class Stream {
 public:
  /// Opens the stream; a buffer size of 0 lets the library ask the camera.
  Stream(std::uint64_t deviceHandle, std::uint32_t index, std::uint32_t bufferCount, std::uint64_t bufferSize = 0)
      : handle_(open(deviceHandle, index, bufferCount, bufferSize)),
        guard_{handle_},
        event_(handle_, OVI_EVENT_NEW_BUFFER, Module::kDataStream) {}
  /// The other one is not open any more.
  Stream(Stream&&) = default;
  Stream& operator=(Stream&&) = delete;

  std::uint64_t handle() const noexcept { return handle_; }  ///< For calls of the C interface
  const Event& event() const noexcept { return event_; }     ///< That a buffer was filled

  /// The next image. Throws Error with OVI_ERR_TIMEOUT, OVI_ERR_ABORTED, or OVI_ERR_INVALID_BUFFER for an incomplete
  /// one.
  Image next(Milliseconds timeout = Milliseconds(3000)) const {
    std::error_code error;
    oviNewBufferEventData* record = wait(timeout, error);
    if (error)
      throw Error(error.value(), "oviWaitForEvent");
    return {handle_, record};
  }
  /// The next image, or none with the reason in error: Errc::kTimeout, Errc::kInvalidBuffer for an incomplete one,
  /// after both of which one may simply ask again; Errc::kAborted when the wait was ended.
  std::unique_ptr<Image> tryNext(Milliseconds timeout, std::error_code& error) const {
    oviNewBufferEventData* record = wait(timeout, error);
    return error ? nullptr : std::make_unique<Image>(handle_, record);
  }
  /// A feature of the stream, or of a module above it other than the camera.
  Feature feature(std::string name, Module module = Module::kDataStream) const {
    return {handle_, module, std::move(name)};
  }
  /// Counters of images and packets; -1 where the producer has none.
  oviAcquistionStatistics statistics() const {
    oviAcquistionStatistics counters{};
    check(oviGetAcquisitionStatistics(handle_, &counters), "oviGetAcquisitionStatistics");
    return counters;
  }

  /// Images one after the other: `for (ovi::Image& image : stream.images(100))`. Ends early when a wait is ended. A
  /// time-out and an incomplete image throw Error, as in next(); a program that is to go on after them asks tryNext().
  class Images {
   public:
    /// So many images, each within the time.
    Images(const Stream& stream, std::uint64_t count, Milliseconds timeout)
        : stream_(&stream),
          count_(count),
          timeout_(timeout) {}
    struct End {};  ///< Behind the last image
    /// An input iterator: there is one position, that of the latest image.
    class Iterator {
     public:
      /// @cond
      using iterator_category = std::input_iterator_tag;
      using value_type = Image;
      using difference_type = std::ptrdiff_t;
      using pointer = Image*;
      using reference = Image&;

      explicit Iterator(Images& images) : images_(&images) { ++*this; }
      Image& operator*() const { return *images_->current_; }
      Image* operator->() const { return images_->current_.get(); }
      Iterator& operator++() {
        images_->advance();
        return *this;
      }
      void operator++(int) { ++*this; }
      friend bool operator==(const Iterator& at, End /*end*/) { return at.done(); }
      friend bool operator!=(const Iterator& at, End end) { return !(at == end); }
      /// @endcond

     private:
      bool done() const { return images_->current_ == nullptr; }
      Images* images_;
    };
    Iterator begin() { return Iterator(*this); }  ///< Waits for the first image
    End end() const { return {}; }                ///< Behind the last one

   private:
    void advance() {
      current_.reset();
      if (count_ == 0)
        return;
      --count_;
      std::error_code error;
      current_ = stream_->tryNext(timeout_, error);
      if (error && error != Errc::kAborted)
        throw Error(error.value(), "oviWaitForEvent");
    }

    const Stream* stream_;
    std::uint64_t count_;
    Milliseconds timeout_;
    std::unique_ptr<Image> current_;
  };
  /// So many images, each of which must come within the time.
  Images images(std::uint64_t count, Milliseconds timeout = Milliseconds(3000)) const {
    return {*this, count, timeout};
  }

 private:
  // Closes the stream after its event is gone and when registering the event fails.
  struct Guard {
    std::uint64_t handle;
    explicit Guard(std::uint64_t stream) noexcept : handle(stream) {}
    ~Guard() {
      if (handle != 0)
        oviCloseDataStream(handle);
    }
    Guard(Guard&& other) noexcept : handle(std::exchange(other.handle, 0)) {}
    Guard& operator=(Guard&&) = delete;
  };

  static std::uint64_t open(std::uint64_t device, std::uint32_t index, std::uint32_t count, std::uint64_t size) {
    std::uint64_t handle = 0;
    const oviErr code = oviCreateDataStream(device, index, &handle, count, size);
    if (code != OVI_SUCCESS && handle != 0)
      oviCloseDataStream(handle);
    check(code, "oviCreateDataStream");
    return handle;
  }
  oviNewBufferEventData* wait(Milliseconds timeout, std::error_code& error) const {
    void* data = nullptr;
    const oviErr code = oviWaitForEvent(event_.handle(), detail::timeoutValue(timeout), &data);
    error =
        code == OVI_SUCCESS && data == nullptr ? makeErrorCode(OVI_ERR_NO_IMAGE_DATA_AVAILABLE) : makeErrorCode(code);
    return static_cast<oviNewBufferEventData*>(data);
  }

  std::uint64_t handle_;
  Guard guard_;
  Event event_;
};

}  // namespace ovi
