// Blocking helpers that take images without the application handling streams and events.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviScanImg(std::uint64_t deviceHandle, oviScanCallback callback, std::int32_t imageNumber, std::uint32_t mode,
                  std::int32_t minutes);
oviErr oviScanImgStop(std::uint64_t deviceHandle);
oviErr oviScanImage(std::uint64_t deviceHandle, std::uint8_t* destination);
oviErr oviScanImageCont(std::uint64_t deviceHandle, std::uint32_t phase, std::uint64_t* stream, std::uint64_t* event,
                        oviNewBufferEventData* record);
oviErr oviScanStreamImage(std::uint64_t deviceHandle, std::uint32_t streamCount, std::uint8_t* const* destinations,
                          oviImageInfo* infos);
oviErr oviGetLastImageInfo(oviImageInfo* info);

}  // namespace OVI
