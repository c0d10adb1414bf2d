// Start, stop and abort of a device's acquisition.
#pragma once

#include <cstdint>
#include <string>

#include "ovi/ovi.h"

namespace OVI {

/** An image count that means acquisition without end. */
inline constexpr std::uint32_t kEndlessAcquisition = 0xFFFFFFFF;

oviErr oviStartAcquisition(std::uint64_t deviceHandle, std::uint32_t imageCount);
oviErr oviStopAcquisition(std::uint64_t deviceHandle);
oviErr oviAbortAcquisition(std::uint64_t deviceHandle);

/** The steps of stopAndCleanUp, a bit each; they run in this order. */
enum CleanUpStep : std::uint32_t {
  kPrintMessage = 1,
  kStopAndWait = 2,
  kUnregisterEvent = 4,
  kCloseStream = 8,
};

/** Ends a scan: prints its message, stops the camera and waits until it says so, gives event and stream back.
 * @return resultCode, unless the wait for the camera's stop failed */
oviErr stopAndCleanUp(std::string& message, oviErr resultCode, std::uint32_t steps, std::uint64_t streamHandle,
                      std::uint64_t eventHandle, std::uint64_t deviceHandle);

}  // namespace OVI
