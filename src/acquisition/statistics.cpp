// Counters of a stream.
#include "acquisition/statistics.h"

#include <cstdint>
#include <memory>

#include "core/handle_registry.h"
#include "core/log.h"
#include "features/typed_access.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "gentl/producer_family.h"

namespace OVI {

namespace {

/** A packet counter that only the Kithara producer has; the names are its own spelling. */
struct PacketCounter {
  const char* feature;
  std::int64_t oviAcquistionStatistics::*field;
};
constexpr PacketCounter kPacketCounters[] = {{"PaketLoss", &oviAcquistionStatistics::packetLoss},
                                             {"PaketsReceived", &oviAcquistionStatistics::packetsReceived},
                                             {"FrameLoss", &oviAcquistionStatistics::frameLoss}};

bool hasPacketCounters(std::uint64_t deviceHandle) {
  bool isS2i = false;
  bool isKithara = false;
  OVI::oviIsUsingS2iTL(deviceHandle, &isS2i);
  OVI::oviIsUsingKitharaTL(deviceHandle, &isKithara);
  return !isS2i && isKithara;
}

}  // namespace

oviErr oviGetAcquisitionStatistics(std::uint64_t streamHandle, oviAcquistionStatistics* statistics) {
  constexpr const char* kSite = "OVI::oviGetAcquisitionStatistics";
  if (statistics == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  *statistics = {};
  std::shared_ptr<GenTLCpp::DataStream> stream;
  const oviErr found = lookupModule(streamHandle, stream);
  if (found != OVI_SUCCESS) {
    OVI_LOG_ERROR(kSite) << "Failed to get stream from handle!";
    return found;
  }
  const std::uint64_t deviceHandle = HandleRegistry::instance().handleOf(stream->getParent().get());
  const bool counted = hasPacketCounters(deviceHandle);
  return guarded(kSite, Severity::Error, "Failed request acquisition statistics. Error: ", [&] {
    const GenTLCpp::DataStream::Use use(*stream);
    for (const PacketCounter& counter : kPacketCounters) {
      std::int64_t& field = statistics->*counter.field;
      if (counted) {
        OVI::oviGetFeatureInt(streamHandle, counter.feature, &field, OVI_MODULE_DATA_STREAM);
      } else {
        field = -1;
      }
    }
    statistics->underruns = static_cast<std::uint64_t>(stream->getNumUnderrun());
    statistics->delivered = static_cast<std::uint64_t>(stream->getNumDelivered());
    return OVI_SUCCESS;
  });
}

}  // namespace OVI
