// Streams, acquisition, events, images, image parameters and device modes.
#include "acquisition/acquisition_control.h"
#include "acquisition/events.h"
#include "acquisition/statistics.h"
#include "acquisition/streams.h"
#include "frame.h"
#include "ovi/ovi.h"

using OVI::api::always;
using OVI::api::whenInitialized;

oviErr OVI_CALL oviCreateDataStream(uint64_t deviceHandle, uint32_t streamIndex, uint64_t* streamHandle,
                                    uint32_t bufferCount, uint64_t bufferSize) {
  return whenInitialized("OVI::oviCreateDataStream", [&] {
    return OVI::oviCreateDataStream(deviceHandle, streamIndex, streamHandle, bufferCount, bufferSize);
  });
}

oviErr OVI_CALL oviCloseDataStream(uint64_t streamHandle) {
  return whenInitialized("OVI::oviCloseDataStream", [&] { return OVI::oviCloseDataStream(streamHandle); });
}

oviErr OVI_CALL oviGetNumberOfDataStreams(uint64_t deviceHandle, uint32_t* count) {
  return whenInitialized("OVI::oviGetNumberOfDataStreams",
                         [&] { return OVI::oviGetNumberOfDataStreams(deviceHandle, count); });
}

oviErr OVI_CALL oviGetDataStreamInfo(uint64_t deviceHandle, uint32_t streamIndex, oviDataStreamInfo* info) {
  return whenInitialized("OVI::oviGetDataStreamInfo",
                         [&] { return OVI::oviGetDataStreamInfo(deviceHandle, streamIndex, info); });
}

oviErr OVI_CALL oviCheckAndReallocBuffers(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviCheckAndReallocBuffers",
                         [&] { return OVI::oviCheckAndReallocBuffers(deviceHandle); });
}

oviErr OVI_CALL oviStartAcquisition(uint64_t deviceHandle, uint32_t imageCount) {
  return whenInitialized("OVI::oviStartAcquisition",
                         [&] { return OVI::oviStartAcquisition(deviceHandle, imageCount); });
}

oviErr OVI_CALL oviStopAcquisition(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviStopAcquisition", [&] { return OVI::oviStopAcquisition(deviceHandle); });
}

oviErr OVI_CALL oviAbortAcquisition(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviAbortAcquisition", [&] { return OVI::oviAbortAcquisition(deviceHandle); });
}

oviErr OVI_CALL oviRegisterEvent(uint64_t moduleHandle, uint32_t kind, uint64_t* eventHandle, uint32_t moduleSelector) {
  return whenInitialized("OVI::oviRegisterEvent",
                         [&] { return OVI::oviRegisterEvent(moduleHandle, kind, eventHandle, moduleSelector); });
}

oviErr OVI_CALL oviWaitForEvent(uint64_t eventHandle, uint64_t timeout, void** data) {
  return whenInitialized("OVI::oviWaitForEvent", [&] { return OVI::oviWaitForEvent(eventHandle, timeout, data); });
}

oviErr OVI_CALL oviGetNextImage(uint64_t eventHandle, oviNewBufferEventData* record, uint64_t timeout) {
  return whenInitialized("OVI::oviGetNextImage", [&] { return OVI::oviGetNextImage(eventHandle, record, timeout); });
}

oviErr OVI_CALL oviReleaseImage(uint64_t streamHandle, oviNewBufferEventData* record) {
  return whenInitialized("OVI::oviReleaseImage", [&] { return OVI::oviReleaseImage(streamHandle, record); });
}

oviErr OVI_CALL oviEventKill(uint64_t eventHandle) {
  return whenInitialized("OVI::oviEventKill", [&] { return OVI::oviEventKill(eventHandle); });
}

oviErr OVI_CALL oviUnregisterEvent(uint64_t eventHandle) {
  return whenInitialized("OVI::oviUnregisterEvent", [&] { return OVI::oviUnregisterEvent(eventHandle); });
}

oviErr OVI_CALL oviGetImageSize(uint64_t deviceHandle, int64_t* size) {
  return whenInitialized("OVI::oviGetImageSize", [&] { return OVI::oviGetImageSize(deviceHandle, size); });
}

oviErr OVI_CALL oviGetAcquisitionStatistics(uint64_t streamHandle, oviAcquistionStatistics* statistics) {
  return whenInitialized("OVI::oviGetAcquisitionStatistics",
                         [&] { return OVI::oviGetAcquisitionStatistics(streamHandle, statistics); });
}

uint32_t OVI_CALL oviBitsPerPixelFromFormat(uint32_t pixelFormat) {
  return always("OVI::oviBitsPerPixelFromFormat", [&] { return OVI::oviBitsPerPixelFromFormat(pixelFormat); });
}

oviErr OVI_CALL oviSetImageParameter(uint64_t deviceHandle, oviImageInfo* image, int64_t timeout, uint8_t filterDriver,
                                     uint8_t scanFlag) {
  return whenInitialized("OVI::oviSetImageParameter", [&] {
    return OVI::oviSetImageParameter(deviceHandle, image, timeout, filterDriver, scanFlag);
  });
}

oviErr OVI_CALL oviSetDeviceMaxPacketSize(uint64_t deviceHandle) {
  return whenInitialized("OVI::oviSetDeviceMaxPacketSize",
                         [&] { return OVI::oviSetDeviceMaxPacketSize(deviceHandle); });
}

oviErr OVI_CALL oviGetMaintenanceMode(uint64_t deviceHandle, uint8_t* enabled) {
  return whenInitialized("OVI::oviGetMaintenanceMode",
                         [&] { return OVI::oviGetMaintenanceMode(deviceHandle, enabled); });
}

oviErr OVI_CALL oviSetMaintenanceMode(uint64_t deviceHandle, uint8_t enable, uint64_t address, uint32_t value) {
  return whenInitialized("OVI::oviSetMaintenanceMode",
                         [&] { return OVI::oviSetMaintenanceMode(deviceHandle, enable, address, value); });
}
