// What the scan helpers have in common.
#include "scan_steps.h"

#include <cstring>

#include "acquisition/events.h"
#include "acquisition/statistics.h"
#include "core/log.h"
#include "features/typed_access.h"
#include "gentl/producer_family.h"
#include "scan_state.h"

namespace OVI {

ScanFamily scanFamilyOf(std::uint64_t deviceHandle) {
  ScanFamily family;
  OVI::oviIsUsingS2iTL(deviceHandle, &family.isS2i);
  OVI::oviIsUsingKitharaTL(deviceHandle, &family.isKithara);
  return family;
}

oviErr applyFilterDriver(const ScanFamily& family, std::uint64_t streamHandle) {
  return family.isS2i ? OVI::oviSetFeatureBool(streamHandle, "EnableFilterDriver", ScanState::instance().filterDriver,
                                               OVI_MODULE_DATA_STREAM)
                      : OVI_SUCCESS;
}

oviErr nextImage(std::uint64_t eventHandle, oviNewBufferEventData& record) {
  return OVI::oviGetNextImage(eventHandle, &record, ScanState::instance().imageTimeout);
}

oviErr expectedHeight(const char* site, std::uint64_t deviceHandle, std::int64_t& outHeight) {
  const oviErr result = OVI::oviGetFeatureInt(deviceHandle, "Height", &outHeight, OVI_MODULE_REMOTE_DEVICE);
  if (result == OVI_SUCCESS) {
    OVI_LOG_DEBUG(site) << "Expected image height from camera is: " << outHeight;
  } else {
    OVI_LOG_WARNING(site) << "Could not get Height feature from camera!";
    outHeight = -1;
  }
  return result;
}

void copyImage(const oviNewBufferEventData& record, std::uint8_t* destination) noexcept {
  if (record.event.value != nullptr && destination != nullptr) {
    std::memcpy(destination, record.event.value, record.event.valueSize);
  }
}

void logImage(const char* site, const char* prefix, const oviNewBufferEventData& record) {
  OVI_LOG_DEBUG(site) << prefix << "Got new image! Image info [Width: " << record.width << "][Height: " << record.height
                      << "][PixelFormat: " << record.pixelFormat << "]";
}

oviErr refreshStatistics(const ScanFamily& family, std::uint64_t streamHandle) {
  if (!family.isKithara) {
    return OVI_SUCCESS;
  }
  oviAcquistionStatistics statistics{};
  const oviErr result = OVI::oviGetAcquisitionStatistics(streamHandle, &statistics);
  ScanState::instance().setLastStatistics(statistics);
  return result;
}

}  // namespace OVI
