// The recording functions, for devices of producers that have them.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

// All but oviNimboIsRecordingAvailable throw std::runtime_error when the producer lacks the function.
std::int32_t oviNimboStartRecording(std::uint64_t deviceHandle);
std::int32_t oviNimboStopRecording(std::uint64_t deviceHandle);
std::int32_t oviNimboOpenRecordings(std::uint64_t deviceHandle, void* argument);
std::int32_t oviNimboCloseRecordings(std::uint64_t deviceHandle);
std::int32_t oviNimboClearAllRecordings(std::uint64_t deviceHandle);
std::int32_t oviNimboGetRecordingData(std::uint64_t deviceHandle, std::uint32_t index, void* data);
std::int32_t oviNimboSelectRecording(std::uint64_t deviceHandle, std::uint32_t index);
std::uint64_t oviNimboReadRecording(std::uint64_t deviceHandle, void* argument);
std::int32_t oviNimboFreeRecordImage(std::uint64_t deviceHandle, void* image);
bool oviNimboIsRecordingAvailable(std::uint64_t deviceHandle);
std::int32_t oviNimboGetRecordsInfo(std::uint64_t deviceHandle, void* info);
std::int32_t oviNimboSetFrameRate(std::uint64_t deviceHandle, std::uint32_t frameRate);
std::int32_t oviNimboSetRGBConversionEnabled(std::uint64_t deviceHandle, bool enabled);

}  // namespace OVI
