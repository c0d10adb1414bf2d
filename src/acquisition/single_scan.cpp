// Scans of single images: in one call, in three calls, and of several streams at once.
#include <iostream>
#include <vector>

#include "acquisition/acquisition_control.h"
#include "acquisition/events.h"
#include "acquisition/scan.h"
#include "acquisition/statistics.h"
#include "acquisition/streams.h"
#include "core/log.h"
#include "image_geometry.h"
#include "scan_state.h"
#include "scan_steps.h"

namespace OVI {

namespace {

constexpr std::uint32_t kBuffers = 5;

void printStartFailure() {
  std::cout << "Error starting acquisition." << std::endl;
}

/** A stream with its event, ready for the start. What was set up when a step fails is given back. */
oviErr openForScan(std::uint64_t deviceHandle, std::uint32_t streamIndex, std::uint64_t& stream, std::uint64_t& event) {
  oviErr result = OVI::oviCreateDataStream(deviceHandle, streamIndex, &stream, kBuffers, 0);
  if (result == OVI_SUCCESS) {
    result = applyFilterDriver(scanFamilyOf(deviceHandle), stream);
  }
  if (result == OVI_SUCCESS) {
    result = OVI::oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM);
  }
  if (result != OVI_SUCCESS && stream != 0) {
    OVI::oviCloseDataStream(stream);
  }
  return result;
}

/** Takes images until one has the expected height. @return whether the scan ends here, acquisition left running */
bool takeMatchingImage(const ScanFamily& family, std::uint64_t stream, std::uint64_t event, std::int64_t height,
                       std::uint8_t* destination, oviNewBufferEventData& record, StepResults& failure,
                       bool& isFetched) {
  constexpr const char* kSite = "OVI::oviScanImage";
  const int limit = ScanState::instance().scanFlag ? 5 : 1;
  for (int attempt = 0; attempt < limit && height != 0; attempt += attempt == 0 ? 1 : 2) {
    const oviErr fetched = nextImage(event, record);
    if (fetched != OVI_SUCCESS) {
      printStartFailure();
      failure.add(fetched);
      isFetched = false;
      return false;
    }
    logImage(kSite, "", record);
    copyImage(record, destination);
    ScanState::instance().setLastImage(imageInfoOf(record));
    const oviErr refreshed = refreshStatistics(family, stream);
    if (refreshed != OVI_SUCCESS) {
      failure.add(refreshed);
      return true;
    }
    if (height == -1 || height == record.height) {
      break;
    }
  }
  return false;
}

// The three calls of oviScanImageCont.

oviErr beginContinued(std::uint64_t deviceHandle, std::uint64_t* stream, std::uint64_t* event) {
  oviErr result = OVI::oviCreateDataStream(deviceHandle, 0, stream, kBuffers, 0);
  if (result != OVI_SUCCESS) {
    return result;
  }
  result = applyFilterDriver(scanFamilyOf(deviceHandle), *stream);
  if (result != OVI_SUCCESS) {
    return result;
  }
  result = OVI::oviRegisterEvent(*stream, OVI_EVENT_NEW_BUFFER, event, OVI_MODULE_DATA_STREAM);
  if (result != OVI_SUCCESS) {
    OVI::oviCloseDataStream(*stream);
    return result;
  }
  std::int64_t height = -1;
  result = expectedHeight("OVI::oviScanImageCont", deviceHandle, height);
  ScanState::instance().expectedHeight = height;
  return result;
}

void releaseMarked(const char* marker, std::uint64_t stream, oviNewBufferEventData& record) {
  constexpr const char* kSite = "OVI::oviScanImageCont";
  OVI_LOG_DEBUG(kSite) << marker;
  if (OVI::oviReleaseImage(stream, &record) != OVI_SUCCESS) {
    OVI_LOG_DEBUG(kSite) << "error release";
  }
}

oviErr takeContinued(std::uint64_t deviceHandle, std::uint64_t stream, std::uint64_t event,
                     oviNewBufferEventData& record) {
  constexpr const char* kSite = "OVI::oviScanImageCont";
  ScanState& scan = ScanState::instance();
  const oviErr started = OVI::oviStartAcquisition(deviceHandle, kEndlessAcquisition);
  if (started != OVI_SUCCESS) {
    return started;
  }
  releaseMarked("release1", stream, record);
  oviErr fetched = nextImage(event, record);
  if (scan.scanFlag) {
    OVI_LOG_DEBUG(kSite) << "retry";
    if (record.height != scan.expectedHeight) {
      releaseMarked("release2", stream, record);
      fetched = nextImage(event, record);
    }
    logImage(kSite, "first retry ", record);
    if (record.height != scan.expectedHeight) {
      releaseMarked("release3", stream, record);
      fetched = nextImage(event, record);
    }
  }
  logImage(kSite, "", record);
  if (fetched != OVI_SUCCESS) {
    printStartFailure();
  } else {
    scan.setLastImage(imageInfoOf(record));
    const oviErr refreshed = refreshStatistics(scanFamilyOf(deviceHandle), stream);
    if (refreshed != OVI_SUCCESS) {
      return refreshed;
    }
  }
  const oviErr stopped = OVI::oviStopAcquisition(deviceHandle);
  return fetched != OVI_SUCCESS ? fetched : stopped;
}

oviErr endContinued(std::uint64_t stream, std::uint64_t event, oviNewBufferEventData& record) {
  StepResults failure;
  failure.add(OVI::oviReleaseImage(stream, &record));
  failure.add(OVI::oviUnregisterEvent(event));
  failure.add(OVI::oviCloseDataStream(stream));
  return failure.result();
}

}  // namespace

oviErr oviScanImage(std::uint64_t deviceHandle, std::uint8_t* destination) {
  if (destination == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::uint64_t stream = 0;
  std::uint64_t event = 0;
  const oviErr opened = openForScan(deviceHandle, 0, stream, event);
  if (opened != OVI_SUCCESS) {
    return opened;
  }
  StepResults failure;
  failure.add(OVI::oviStartAcquisition(deviceHandle, kEndlessAcquisition));
  bool isFetched = failure.result() == OVI_SUCCESS;
  oviNewBufferEventData record{};
  if (isFetched) {
    std::int64_t height = -1;
    expectedHeight("OVI::oviScanImage", deviceHandle, height);
    if (takeMatchingImage(scanFamilyOf(deviceHandle), stream, event, height, destination, record, failure, isFetched)) {
      OVI::oviCloseDataStream(stream);
      return failure.result();
    }
  }
  if (isFetched) {
    failure.add(OVI::oviReleaseImage(stream, &record));
  }
  const oviErr stopped = OVI::oviStopAcquisition(deviceHandle);
  if (stopped == OVI_SUCCESS) {
    std::cout << "Acquisition is stopped!." << std::endl;
  }
  failure.add(stopped);
  failure.add(OVI::oviUnregisterEvent(event));
  failure.add(OVI::oviCloseDataStream(stream));
  return failure.result();
}

oviErr oviScanImageCont(std::uint64_t deviceHandle, std::uint32_t phase, std::uint64_t* stream, std::uint64_t* event,
                        oviNewBufferEventData* record) {
  constexpr std::uint32_t kBegin = 0;
  constexpr std::uint32_t kTake = 1;
  constexpr std::uint32_t kEnd = 2;
  if (phase > kEnd) {
    return OVI_SUCCESS;
  }
  if (stream == nullptr || event == nullptr || (phase != kBegin && record == nullptr)) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  if (phase == kBegin) {
    return beginContinued(deviceHandle, stream, event);
  }
  return phase == kTake ? takeContinued(deviceHandle, *stream, *event, *record)
                        : endContinued(*stream, *event, *record);
}

oviErr oviScanStreamImage(std::uint64_t deviceHandle, std::uint32_t streamCount, std::uint8_t* const* destinations,
                          oviImageInfo* infos) {
  constexpr const char* kSite = "OVI::oviScanStreamImage";
  struct Opened {
    std::uint64_t stream = 0;
    std::uint64_t event = 0;
  };
  if (streamCount == 0) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  StepResults failure;
  std::vector<Opened> opened;
  while (opened.size() < streamCount && failure.result() == OVI_SUCCESS) {
    Opened next;
    const oviErr result = openForScan(deviceHandle, static_cast<std::uint32_t>(opened.size()), next.stream, next.event);
    failure.add(result);
    if (result == OVI_SUCCESS) {
      opened.push_back(next);
    }
  }
  if (failure.result() == OVI_SUCCESS) {
    failure.add(OVI::oviStartAcquisition(deviceHandle, kEndlessAcquisition));
    bool isEveryImageThere = true;
    for (std::size_t i = 0; i < opened.size() && failure.result() == OVI_SUCCESS; ++i) {
      oviNewBufferEventData record{};
      if (nextImage(opened[i].event, record) != OVI_SUCCESS || record.event.value == nullptr) {
        isEveryImageThere = false;
        continue;
      }
      logImage(kSite, "", record);
      copyImage(record, destinations != nullptr ? destinations[i] : nullptr);
      const oviImageInfo info = imageInfoOf(record);
      ScanState::instance().setLastImage(info);
      if (infos != nullptr) {
        infos[i] = info;
      }
      failure.add(OVI::oviReleaseImage(opened[i].stream, &record));
    }
    if (!isEveryImageThere) {
      OVI_LOG_ERROR(kSite) << "There was an error during image scan of multiple streams, not all images were recorded!";
      failure.add(OVI_ERR_NO_IMAGE_DATA_AVAILABLE);
    }
    failure.add(OVI::oviStopAcquisition(deviceHandle));
  }
  for (const Opened& each : opened) {
    failure.add(OVI::oviUnregisterEvent(each.event));
    failure.add(OVI::oviCloseDataStream(each.stream));
  }
  return failure.result();
}

}  // namespace OVI
