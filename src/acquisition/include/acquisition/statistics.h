// Stream statistics, the image format of a camera, its packet size and its maintenance mode.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviGetAcquisitionStatistics(std::uint64_t streamHandle, oviAcquistionStatistics* statistics);
std::uint32_t oviBitsPerPixelFromFormat(std::uint32_t pixelFormat) noexcept;
oviErr oviSetImageParameter(std::uint64_t deviceHandle, oviImageInfo* image, std::int64_t timeout,
                            std::uint8_t filterDriver, std::uint8_t scanFlag);
oviErr oviSetDeviceMaxPacketSize(std::uint64_t deviceHandle);
oviErr oviGetMaintenanceMode(std::uint64_t deviceHandle, std::uint8_t* enabled);
oviErr oviSetMaintenanceMode(std::uint64_t deviceHandle, std::uint8_t enable, std::uint64_t address,
                             std::uint32_t value);

}  // namespace OVI
