// Data streams and their buffer pools: open, size, rebuild, close.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

oviErr oviCreateDataStream(std::uint64_t deviceHandle, std::uint32_t streamIndex, std::uint64_t* streamHandle,
                           std::uint32_t bufferCount, std::uint64_t bufferSize);
oviErr oviCloseDataStream(std::uint64_t streamHandle);
oviErr oviGetNumberOfDataStreams(std::uint64_t deviceHandle, std::uint32_t* count);
oviErr oviGetDataStreamInfo(std::uint64_t deviceHandle, std::uint32_t streamIndex, oviDataStreamInfo* info);
oviErr oviCheckAndReallocBuffers(std::uint64_t deviceHandle);

}  // namespace OVI
