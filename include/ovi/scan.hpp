/// @file
/// Images without streams and events in C++: one call takes them and returns when they are there.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>

#include "ovi/device.hpp"
#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// Size and format of an image.
using ImageInfo = oviImageInfo;

/// Receives each image of a scan, with whether it is well; its pixels go back when it returns.
using ScanFunction = std::function<void(const std::uint8_t* pixels, const ImageInfo& info, bool ok)>;

/// @cond
namespace detail {

// The C callback has no context; it runs on the thread that scans, so each thread has a place of its own.
struct ScanContext {
  const ScanFunction& function;
  std::uint64_t device;
  std::exception_ptr exception;

  static ScanContext*& current() {
    static thread_local ScanContext* context = nullptr;
    return context;
  }
  static void OVI_CALL forward(std::uint8_t* pixels, oviImageInfo* info, std::uint8_t ok) {
    ScanContext* context = current();
    if (context == nullptr || context->exception || !context->function)
      return;
    try {
      context->function(pixels, *info, ok != 0);
    } catch (...) {
      context->exception = std::current_exception();
      oviScanImgStop(context->device);
    }
  }
};

inline void scan(std::uint64_t device, const ScanFunction& function, std::int32_t images, std::uint32_t mode,
                 std::int32_t minutes) {
  ScanContext context{function, device, nullptr};
  ScanContext* const outer = ScanContext::current();
  ScanContext::current() = &context;
  const oviErr code = oviScanImg(device, &ScanContext::forward, images, mode, minutes);
  ScanContext::current() = outer;
  if (context.exception)
    std::rethrow_exception(context.exception);
  check(code, "oviScanImg");
}

}  // namespace detail
/// @endcond

/// Takes so many images. An exception of the function ends the scan and leaves the call.
inline void scanImages(const Device& device, std::int32_t images, const ScanFunction& function,
                       bool checkPattern = false) {
  detail::scan(device.handle(), function, images, OVI_SCAN_IMAGES | (checkPattern ? OVI_SCAN_CHECK_PATTERN : 0), 0);
}
/// Takes images for so many minutes, or until stopScan.
inline void scanMinutes(const Device& device, std::int32_t minutes, const ScanFunction& function,
                        bool checkPattern = false) {
  detail::scan(device.handle(), function, 0, OVI_SCAN_MINUTES | (checkPattern ? OVI_SCAN_CHECK_PATTERN : 0), minutes);
}
/// Ends the scan that is running on the camera, from another thread.
inline void stopScan(const Device& device) {
  check(oviScanImgStop(device.handle()), "oviScanImgStop");
}

/// Takes one image into memory with room for Device::imageSize() bytes, and tells what it is.
inline ImageInfo scanImage(const Device& device, std::uint8_t* pixels) {
  check(oviScanImage(device.handle(), pixels), "oviScanImage");
  ImageInfo info{};
  check(oviGetLastImageInfo(&info), "oviGetLastImageInfo");
  return info;
}

/// Takes one image from each of the camera's first streams. The destinations, null for none, and the infos have an
/// entry for each; infos may be null.
inline void scanStreams(const Device& device, std::uint32_t streams, std::uint8_t* const* destinations,
                        ImageInfo* infos = nullptr) {
  check(oviScanStreamImage(device.handle(), streams, destinations, infos), "oviScanStreamImage");
}

/// What the scans of this process do, see oviSetImageParameter; the camera's format and size unless 0 in the image.
inline void setScan(const Device& device, ImageInfo image, Milliseconds timeout = Milliseconds(0),
                    bool filterDriver = true, bool repeatShortImages = false) {
  check(oviSetImageParameter(device.handle(), &image, timeout.count(), filterDriver ? 1 : 0, repeatShortImages ? 1 : 0),
        "oviSetImageParameter");
}

}  // namespace ovi
