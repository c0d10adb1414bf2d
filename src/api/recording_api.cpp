// The recording functions. An exception about a function that the producer lacks leaves them.
#include "frame.h"
#include "gentl/recording.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;
using OVI::api::whenInitializedUncaught;

int32_t OVI_CALL oviNimboStartRecording(uint64_t deviceHandle) {
  return whenInitializedUncaught([&] { return OVI::oviNimboStartRecording(deviceHandle); });
}

int32_t OVI_CALL oviNimboStopRecording(uint64_t deviceHandle) {
  return whenInitializedUncaught([&] { return OVI::oviNimboStopRecording(deviceHandle); });
}

int32_t OVI_CALL oviNimboOpenRecordings(uint64_t deviceHandle, void* argument) {
  return whenInitializedUncaught([&] { return OVI::oviNimboOpenRecordings(deviceHandle, argument); });
}

int32_t OVI_CALL oviNimboCloseRecordings(uint64_t deviceHandle) {
  return whenInitializedUncaught([&] { return OVI::oviNimboCloseRecordings(deviceHandle); });
}

int32_t OVI_CALL oviNimboClearAllRecordings(uint64_t deviceHandle) {
  return whenInitializedUncaught([&] { return OVI::oviNimboClearAllRecordings(deviceHandle); });
}

int32_t OVI_CALL oviNimboGetRecordingData(uint64_t deviceHandle, uint32_t index, void* data) {
  return whenInitializedUncaught([&] { return OVI::oviNimboGetRecordingData(deviceHandle, index, data); });
}

int32_t OVI_CALL oviNimboSelectRecording(uint64_t deviceHandle, uint32_t index) {
  return whenInitializedUncaught([&] { return OVI::oviNimboSelectRecording(deviceHandle, index); });
}

uint64_t OVI_CALL oviNimboReadRecording(uint64_t deviceHandle, void* argument) {
  return whenInitializedUncaught([&] { return OVI::oviNimboReadRecording(deviceHandle, argument); }, std::uint64_t{0});
}

int32_t OVI_CALL oviNimboFreeRecordImage(uint64_t deviceHandle, void* image) {
  return whenInitializedUncaught([&] { return OVI::oviNimboFreeRecordImage(deviceHandle, image); });
}

bool OVI_CALL oviNimboIsRecordingAvailable(uint64_t deviceHandle) {
  return whenInitialized(
      "OVI::oviNimboIsRecordingAvailable", [&] { return OVI::oviNimboIsRecordingAvailable(deviceHandle); }, false);
}

int32_t OVI_CALL oviNimboGetRecordsInfo(uint64_t deviceHandle, void* info) {
  return whenInitializedUncaught([&] { return OVI::oviNimboGetRecordsInfo(deviceHandle, info); });
}

int32_t OVI_CALL oviNimboSetFrameRate(uint64_t deviceHandle, uint32_t frameRate) {
  return whenInitializedUncaught([&] { return OVI::oviNimboSetFrameRate(deviceHandle, frameRate); });
}

int32_t OVI_CALL oviNimboSetRGBConversionEnabled(uint64_t deviceHandle, bool enabled) {
  return whenInitializedUncaught([&] { return OVI::oviNimboSetRGBConversionEnabled(deviceHandle, enabled); });
}
