// Data streams: open, describe, check and close.
#include "acquisition/streams.h"

#include <memory>
#include <string>
#include <vector>

#include "buffer_pool.h"
#include "core/bounded_copy.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/result.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/exceptions.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "stream_text.h"

namespace OVI {

namespace {

using GenTLCpp::DataStream;
using GenTLCpp::Device;

oviErr findDevice(const char* site, std::uint64_t handle, std::shared_ptr<Device>& out) {
  const oviErr result = lookupModule(handle, out);
  if (result != OVI_SUCCESS) {
    OVI_LOG_ERROR(site) << "Device not found!";
  }
  return result;
}

/** What was tried with the device, before the reason why it failed. */
auto deviceFailure(const char* what, const Device& device) {
  return [what, &device](LogRecord& record) { record << what << deviceId(device) << "]. Error: "; };
}

}  // namespace

oviErr oviCreateDataStream(std::uint64_t deviceHandle, std::uint32_t streamIndex, std::uint64_t* streamHandle,
                           std::uint32_t bufferCount, std::uint64_t bufferSize) {
  constexpr const char* kSite = "OVI::oviCreateDataStream";
  if (streamHandle == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<Device> device;
  oviErr result = findDevice(kSite, deviceHandle, device);
  if (result != OVI_SUCCESS) {
    return result;
  }
  const auto failed = [&](LogRecord& record) {
    record << "Failed to open data stream id from TL for device! Requested index: [" << streamIndex << "] Device: ["
           << deviceId(*device) << "] Error: ";
  };
  result = guarded(kSite, Severity::Error, failed, [&]() -> oviErr {
    // Whoever closes the device meets a stream that is open and listed, or none.
    const Device::Use use(*device);
    const std::shared_ptr<DataStream> stream = device->openDataStream(std::size_t{streamIndex});
    if (stream == nullptr) {
      OVI_LOG_ERROR(kSite) << "Failed to open data stream id from TL for device! Requested index: [" << streamIndex
                           << "] Device: [" << deviceId(*device) << "]";
      return OVI_ERR_UNKNOWN;
    }
    return HandleRegistry::instance().registerOwned(deviceHandle, stream, ModuleKind::DataStream, *streamHandle);
  });
  if (result != OVI_SUCCESS) {
    return result;
  }
  OVI_LOG_INFO(kSite) << "Create buffers No: [" << bufferCount << "] Size: [" << bufferSize << "]";
  return createBuffers(*streamHandle, bufferCount, bufferSize, {});
}

oviErr oviCloseDataStream(std::uint64_t streamHandle) {
  constexpr const char* kSite = "OVI::oviCloseDataStream";
  if (streamHandle == 0) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<DataStream> stream;
  oviErr result = lookupModule(streamHandle, stream);
  if (result == OVI_SUCCESS) {
    // A stream that did not close cannot be asked for its ID any more either.
    const auto failed = [id = stream->id()](LogRecord& record) {
      record << "Data stream close failed: Stream ID: [" << id << "] Error: ";
    };
    shutStreamWaits(streamHandle);
    BufferRecords records;  // They outlive the stream: the application may still hold one.
    result = removeAllBuffersFromStream(streamHandle, records);
    const oviErr closed = guarded(kSite, Severity::Error, failed, [&] {
      GenTLCpp::checkGenTLError(stream->close());
      return OVI_SUCCESS;
    });
    if (closed != OVI_SUCCESS) {
      result = closed;
    }
  }
  removeModule<DataStream>(streamHandle);
  return result;
}

oviErr oviGetNumberOfDataStreams(std::uint64_t deviceHandle, std::uint32_t* count) {
  constexpr const char* kSite = "OVI::oviGetNumberOfDataStreams";
  if (count == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::shared_ptr<Device> device;
  const oviErr result = findDevice(kSite, deviceHandle, device);
  if (result != OVI_SUCCESS) {
    return result;
  }
  return guarded(kSite, Severity::Error,
                 deviceFailure("Failed to get the number of data streams for device: [", *device), [&] {
                   *count = static_cast<std::uint32_t>(device->getDataStreamIDs().size());
                   return OVI_SUCCESS;
                 });
}

oviErr oviGetDataStreamInfo(std::uint64_t deviceHandle, std::uint32_t streamIndex, oviDataStreamInfo* info) {
  constexpr const char* kSite = "OVI::oviGetDataStreamInfo";
  if (info == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  *info = {};
  std::shared_ptr<Device> device;
  const oviErr result = findDevice(kSite, deviceHandle, device);
  if (result != OVI_SUCCESS) {
    return result;
  }
  return guarded(kSite, Severity::Error, deviceFailure("Failed to get data stream information for device: [", *device),
                 [&]() -> oviErr {
                   const std::vector<std::string> ids = device->getDataStreamIDs();
                   if (streamIndex >= ids.size()) {
                     return OVI_ERR_NOT_FOUND;
                   }
                   // GenTL knows no other name of a stream than its ID.
                   boundedCopy(info->id, sizeof info->id, ids[streamIndex]);
                   boundedCopy(info->name, sizeof info->name, ids[streamIndex]);
                   info->index = streamIndex;
                   return OVI_SUCCESS;
                 });
}

oviErr oviCheckAndReallocBuffers(std::uint64_t deviceHandle) {
  constexpr const char* kSite = "OVI::oviCheckAndReallocBuffers";
  std::shared_ptr<Device> device;
  oviErr result = findDevice(kSite, deviceHandle, device);
  if (result != OVI_SUCCESS) {
    return result;
  }
  std::vector<std::uint64_t> streams;
  HandleRegistry::instance().listRelated(deviceHandle, ModuleKind::DataStream, streams);
  for (const std::uint64_t handle : streams) {
    std::shared_ptr<DataStream> stream;
    if (lookupModule(handle, stream) == OVI_SUCCESS && stream->isOpen()) {
      result = guardedWithFixedText(kSite, "Failed to reallocate buffers as the configuration is changed!", [&] {
        const DataStream::Use use(*stream);
        return checkBufferSizeAndRecreate(handle);
      });
    }
  }
  return result;
}

}  // namespace OVI
