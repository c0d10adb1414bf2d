// Start, stop and abort of a device's acquisition.
#include "acquisition/acquisition_control.h"

#include <chrono>
#include <iostream>
#include <memory>
#include <thread>
#include <vector>

#include "acquisition/events.h"
#include "acquisition/streams.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/result.h"
#include "features/typed_access.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "stream_text.h"

namespace OVI {

namespace {

/** The two ways to end an acquisition. */
struct Ending {
  const char* site;
  const char* command;
  ACQ_STOP_FLAGS stopFlags;
};
constexpr Ending kStop{"OVI::oviStopAcquisition", "AcquisitionStop", ACQ_STOP_FLAGS_DEFAULT};
constexpr Ending kAbort{"OVI::oviAbortAcquisition", "AcquisitionAbort", ACQ_STOP_FLAGS_KILL};

/** The handles of the device's streams; a device without streams has none, which is no failure. */
oviErr listStreams(const char* site, std::uint64_t deviceHandle, std::vector<std::uint64_t>& out) {
  std::shared_ptr<GenTLCpp::Device> device;
  const oviErr result = lookupModule(deviceHandle, device);
  if (result != OVI_SUCCESS) {
    OVI_LOG_ERROR(site) << "There seem to be no data streams available for acquisition with this device!";
    return result;
  }
  HandleRegistry::instance().listRelated(deviceHandle, ModuleKind::DataStream, out);
  return OVI_SUCCESS;
}

oviErr startStream(GenTLCpp::DataStream& stream, std::uint32_t imageCount) {
  constexpr const char* kSite = "OVI::oviStartAcquisition";
  // Counts with the highest bit set become very large ones, as if they were signed.
  const std::uint64_t count = imageCount == kEndlessAcquisition
                                  ? GENTL_INFINITE
                                  : static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(imageCount)});
  return guardedWithFixedText(kSite, "Failed to start acquisition on stream!", [&] {
    const GenTLCpp::DataStream::Use use(stream);
    const GC_ERROR status = stream.startAcquisition(ACQ_START_FLAGS_DEFAULT, count);
    if (status != GC_ERR_SUCCESS) {
      OVI_LOG_ERROR(kSite) << "Failed to start acquisition for data stream: [" << stream.id() << "]";
    }
    return mapGenTLError(status);
  });
}

oviErr unlockParameters(std::uint64_t deviceHandle, const Ending& ending, oviErr result) {
  oviErr written = result;
  const oviErr caught =
      guardedWithFixedText(ending.site, "Failed to disable feature TLParamsLocked after acquisition!", [&] {
        std::int64_t locked = 1;
        OVI::oviGetFeatureInt(deviceHandle, "TLParamsLocked", &locked, OVI_MODULE_REMOTE_DEVICE);
        if (locked != 0) {
          written = OVI::oviSetFeatureInt(deviceHandle, "TLParamsLocked", 0, OVI_MODULE_REMOTE_DEVICE);
        }
        return OVI_SUCCESS;
      });
  return caught != OVI_SUCCESS ? caught : written;
}

void stopStream(GenTLCpp::DataStream& stream, const Ending& ending, oviErr& result) {
  const oviErr stopped = guardedWithFixedText(ending.site, "Failed to stop acquisition on stream!", [&] {
    const GenTLCpp::DataStream::Use use(stream);
    const GC_ERROR status = stream.stopAcquisition(ending.stopFlags);
    if (status != GC_ERR_SUCCESS) {
      OVI_LOG_ERROR(ending.site) << "Failed to stop acquisition for data stream: [" << stream.id() << "]";
    }
    return mapGenTLError(status);
  });
  if (stopped != OVI_SUCCESS) {
    result = stopped;
  }
}

/** Gives every buffer back to the input pool, so that the next start needs no work on them. */
void flushToInput(GenTLCpp::DataStream& stream, const Ending& ending, oviErr& result) {
  const auto prefix = [&](LogRecord& record) {
    record << "Error during flush of queues for data stream: [" << stream.id() << "] Error: ";
  };
  const oviErr flushed = guarded(ending.site, Severity::Warning, prefix, [&] {
    const GenTLCpp::DataStream::Use use(stream);
    const GC_ERROR status = stream.flushQueue(ACQ_QUEUE_ALL_TO_INPUT);
    if (status != GC_ERR_SUCCESS) {
      OVI_LOG_WARNING(ending.site) << "Error during flush of queues for data stream: [" << stream.id()
                                   << "] Error: " << status;
    }
    return mapGenTLError(status);
  });
  if (flushed != OVI_SUCCESS) {
    result = flushed;
  }
}

oviErr endAcquisition(std::uint64_t deviceHandle, const Ending& ending) {
  std::vector<std::uint64_t> streams;
  oviErr result = listStreams(ending.site, deviceHandle, streams);
  if (result != OVI_SUCCESS) {
    return result;
  }
  result = OVI::oviExecuteCommand(deviceHandle, ending.command, OVI_MODULE_REMOTE_DEVICE);
  result = unlockParameters(deviceHandle, ending, result);
  for (const std::uint64_t handle : streams) {
    std::shared_ptr<GenTLCpp::DataStream> stream;
    if (lookupModule(handle, stream) != OVI_SUCCESS) {
      OVI_LOG_ERROR(ending.site) << "Data stream module not found!";
      result = OVI_ERR_NOT_FOUND;
      continue;
    }
    if (stream->isOpen()) {
      stopStream(*stream, ending, result);
    }
    const StreamPause pause(handle);
    flushToInput(*stream, ending, result);
  }
  return result;
}

/** Waits until the camera reports the end of its stop command, about a second at most. */
oviErr waitForStop(std::uint64_t deviceHandle, oviErr result) {
  constexpr int kRounds = 100;
  bool active = true;
  for (int round = 1; active; ++round) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    if (round == kRounds) {
      std::cout << "Timeout AcquisitionStop" << std::endl;
      return OVI_ERR_TIMEOUT;
    }
    if (OVI::oviIsCommandActive(deviceHandle, "AcquisitionStop", &active, OVI_MODULE_REMOTE_DEVICE) != OVI_SUCCESS) {
      std::cout << "Cannot get status of AcquisitionStop" << std::endl;
      return OVI_ERR_INVALID_VALUE;
    }
  }
  return result;
}

}  // namespace

oviErr oviStartAcquisition(std::uint64_t deviceHandle, std::uint32_t imageCount) {
  constexpr const char* kSite = "OVI::oviStartAcquisition";
  std::vector<std::uint64_t> streams;
  const oviErr listed = listStreams(kSite, deviceHandle, streams);
  if (listed != OVI_SUCCESS) {
    return listed;
  }
  // The streams come first, so that no frame arrives before there is a buffer for it.
  oviErr started = OVI_SUCCESS;
  for (const std::uint64_t handle : streams) {
    std::shared_ptr<GenTLCpp::DataStream> stream;
    if (started == OVI_SUCCESS && lookupModule(handle, stream) == OVI_SUCCESS && stream->isOpen()) {
      started = startStream(*stream, imageCount);
    }
  }
  guardedWithFixedText(kSite, "Failed to enable feature TLParamsLocked before acquisition!", [&] {
    std::int64_t locked = 0;
    OVI::oviGetFeatureInt(deviceHandle, "TLParamsLocked", &locked, OVI_MODULE_REMOTE_DEVICE);
    return locked == 0 ? OVI::oviSetFeatureInt(deviceHandle, "TLParamsLocked", 1, OVI_MODULE_REMOTE_DEVICE)
                       : OVI_SUCCESS;
  });
  // The camera's command decides: a stream that did not start is in the log, not in the result.
  return OVI::oviExecuteCommand(deviceHandle, "AcquisitionStart", OVI_MODULE_REMOTE_DEVICE);
}

oviErr oviStopAcquisition(std::uint64_t deviceHandle) {
  return endAcquisition(deviceHandle, kStop);
}

oviErr oviAbortAcquisition(std::uint64_t deviceHandle) {
  return endAcquisition(deviceHandle, kAbort);
}

oviErr stopAndCleanUp(std::string& message, oviErr resultCode, std::uint32_t steps, std::uint64_t streamHandle,
                      std::uint64_t eventHandle, std::uint64_t deviceHandle) {
  if ((steps & kPrintMessage) != 0) {
    std::cout << message << std::endl;
  }
  if ((steps & kStopAndWait) != 0) {
    OVI::oviStopAcquisition(deviceHandle);
    resultCode = waitForStop(deviceHandle, resultCode);
  }
  if ((steps & kUnregisterEvent) != 0) {
    OVI::oviUnregisterEvent(eventHandle);
  }
  if ((steps & kCloseStream) != 0) {
    OVI::oviCloseDataStream(streamHandle);
  }
  message.clear();
  return resultCode;
}

}  // namespace OVI
