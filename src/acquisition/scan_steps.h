// What the scan helpers have in common.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/** How the producer of a device wants to be scanned. */
struct ScanFamily {
  bool isS2i = false;
  bool isKithara = false;
};
ScanFamily scanFamilyOf(std::uint64_t deviceHandle);

/** Tells a producer that has a filter driver whether to use it, as the application set it. */
oviErr applyFilterDriver(const ScanFamily& family, std::uint64_t streamHandle);

/** oviGetNextImage with the time that the application set. */
oviErr nextImage(std::uint64_t eventHandle, oviNewBufferEventData& record);

/** The height that images should have; -1, with a warning, when the camera does not tell. */
oviErr expectedHeight(const char* site, std::uint64_t deviceHandle, std::int64_t& outHeight);

/** Copies the filled bytes of an image. */
void copyImage(const oviNewBufferEventData& record, std::uint8_t* destination) noexcept;

/** Logs a taken image at debug severity. */
void logImage(const char* site, const char* prefix, const oviNewBufferEventData& record);

/** Asks the counters of a stream whose producer has packet counters, and keeps them. */
oviErr refreshStatistics(const ScanFamily& family, std::uint64_t streamHandle);

/** The first failure of a sequence of steps that all run. */
class StepResults {
 public:
  void add(oviErr result) noexcept { first_ = first_ == OVI_SUCCESS ? result : first_; }
  oviErr result() const noexcept { return first_; }

 private:
  oviErr first_ = OVI_SUCCESS;
};

}  // namespace OVI
