// Blocking scans.
#include "acquisition/scan.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::whenInitialized;

oviErr OVI_CALL oviScanImg(uint64_t deviceHandle, oviScanCallback callback, int32_t imageNumber, uint32_t mode,
                           int32_t minutes) {
  return whenInitialized("OVI::oviScanImg",
                         [&] { return OVI::oviScanImg(deviceHandle, callback, imageNumber, mode, minutes); });
}

oviErr OVI_CALL oviScanImgStop(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviScanImgStop", [&] { return OVI::oviScanImgStop(deviceHandle); });
}

oviErr OVI_CALL oviScanImage(uint64_t deviceHandle, uint8_t* destination) {
  return whenInitialized("OVI::oviScanImage", [&] { return OVI::oviScanImage(deviceHandle, destination); });
}

oviErr OVI_CALL oviScanImageCont(uint64_t deviceHandle, uint32_t phase, uint64_t* stream, uint64_t* event,
                                 oviNewBufferEventData* record) {
  return whenInitialized("OVI::oviScanImageCont",
                         [&] { return OVI::oviScanImageCont(deviceHandle, phase, stream, event, record); });
}

oviErr OVI_CALL oviScanStreamImage(uint64_t deviceHandle, uint32_t streamCount, uint8_t* const* destinations,
                                   oviImageInfo* infos) {
  return whenInitialized("OVI::oviScanStreamImage",
                         [&] { return OVI::oviScanStreamImage(deviceHandle, streamCount, destinations, infos); });
}

oviErr OVI_CALL oviGetLastImageInfo(oviImageInfo* info) {
  return whenInitialized("OVI::oviGetLastImageInfo", [&] { return OVI::oviGetLastImageInfo(info); });
}
