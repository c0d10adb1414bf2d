// The buffers of a stream: how many bytes they need, and their way into the producer and out of it.
#include "buffer_pool.h"

#include <cstddef>
#include <memory>

#include "acquisition/statistics.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/result.h"
#include "features/typed_access.h"
#include "gentl/buffer.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "gentl/producer_family.h"
#include "image_record.h"
#include "stream_text.h"

namespace OVI {

namespace {

using GenTLCpp::Buffer;
using GenTLCpp::DataStream;

/** What the stream itself says; 0 when it does not define the size. */
std::uint64_t payloadSizeOfStream(const DataStream& stream) {
  try {
    const DataStream::Use use(stream);
    return stream.definesPayloadSize() ? stream.getPayloadSize() : 0;
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_DEBUG("OVI::getPayloadSize") << "The stream does not define its payload size: " << error.what();
    return 0;
  }
}

oviErr getPayloadSize(std::uint64_t& outSize, const DataStream& stream, std::uint64_t deviceHandle) {
  const std::uint64_t ofStream = payloadSizeOfStream(stream);
  std::int64_t ofDevice = 0;
  const oviErr result = OVI::oviGetFeatureInt(deviceHandle, "PayloadSize", &ofDevice, OVI_MODULE_REMOTE_DEVICE);
  if (result != OVI_SUCCESS || ofDevice <= 0) {
    OVI_LOG_ERROR("OVI::getPayloadSize") << "Failed to get PayloadSize feature from device! Error: " << result;
    ofDevice = 0;
  }
  outSize = ofStream != 0 ? ofStream : static_cast<std::uint64_t>(ofDevice);
  return result;
}

oviErr getBufferSize(std::uint64_t streamHandle, std::uint64_t& outSize) {
  outSize = 0;
  std::shared_ptr<DataStream> stream;
  const oviErr found = lookupModule(streamHandle, stream);
  if (found != OVI_SUCCESS) {
    return found;
  }
  const std::uint64_t deviceHandle = HandleRegistry::instance().handleOf(stream->getParent().get());
  bool isNimbo = false;
  if (OVI::oviIsUsingNimboTL(deviceHandle, &isNimbo) == OVI_SUCCESS && isNimbo) {
    std::int64_t size = 0;
    if (OVI::oviGetFeatureInt(streamHandle, "BufferSize", &size, OVI_MODULE_DATA_STREAM) == OVI_SUCCESS && size > 0) {
      outSize = static_cast<std::uint64_t>(size);
    }
  }
  return outSize != 0 ? OVI_SUCCESS : getPayloadSize(outSize, *stream, deviceHandle);
}

oviErr allocateBuffers(DataStream& stream, std::uint64_t streamHandle, std::uint32_t count, std::uint64_t size,
                       const BufferRecords& records) {
  constexpr const char* kSite = "OVI::allocateBuffers";
  OVI_LOG_INFO(kSite) << "allocate Buffers: [" << count << "] Size: [" << size << "]";
  const auto failed = [&](LogRecord& record) {
    record << "Failed to create buffer for stream with ID: [" << stream.id() << "] Error: ";
  };
  oviErr result = OVI_SUCCESS;
  return guarded(kSite, Severity::Error, failed, [&] {
    const DataStream::Use use(stream);
    for (std::uint32_t i = 0; i < count; ++i) {
      oviNewBufferEventData* record = i < records.size() ? records[i] : createImageRecord();
      const std::shared_ptr<Buffer> buffer = stream.allocAndAnnounceBuffer(size, record);
      if (buffer == nullptr) {
        OVI_LOG_ERROR(kSite) << "Failed to create buffer for stream with ID: [" << stream.id()
                             << "] Error: Buffer object was NULL";
        continue;
      }
      std::uint64_t bufferHandle = 0;
      const oviErr entered =
          HandleRegistry::instance().registerOwned(streamHandle, buffer, ModuleKind::Buffer, bufferHandle);
      if (entered != OVI_SUCCESS) {
        return entered;  // The stream was closed meanwhile, and its buffers went with it.
      }
      stream.buffers().setHandle(buffer->announced(), bufferHandle);
      setBufferHandle(*record, bufferHandle);
      result = mapGenTLError(stream.queueBuffer(*buffer, false));
    }
    return result;
  });
}

/** Sets packets as large as they may be, for the producers that gain by it. */
oviErr afterBufferCreation(std::uint64_t streamHandle) {
  std::shared_ptr<DataStream> stream;
  const oviErr found = lookupModule(streamHandle, stream);
  if (found != OVI_SUCCESS) {
    return found;
  }
  const std::uint64_t deviceHandle = HandleRegistry::instance().handleOf(stream->getParent().get());
  if (deviceHandle == 0) {
    return OVI_ERR_NOT_FOUND;
  }
  bool isS2i = false;
  bool isKithara = false;
  bool isNimbo = false;
  OVI::oviIsUsingS2iTL(deviceHandle, &isS2i);
  OVI::oviIsUsingKitharaTL(deviceHandle, &isKithara);
  OVI::oviIsUsingNimboTL(deviceHandle, &isNimbo);
  if (isS2i) {
    OVI::oviExecuteCommand(streamHandle, "FindMaxPacketSize", OVI_MODULE_REMOTE_DEVICE);
  }
  if (!isS2i && !isKithara && !isNimbo) {
    return OVI_SUCCESS;
  }
  const oviErr result = OVI::oviSetDeviceMaxPacketSize(deviceHandle);
  if (result != OVI_SUCCESS) {
    OVI_LOG_WARNING("OVI::afterBufferCreation") << "Failed to set max packet size! Error: " << result;
  }
  return result;
}

oviErr discardQueues(DataStream& stream) {
  constexpr const char* kSite = "OVI::removeAllBuffersFromStream";
  try {
    const GC_ERROR status = stream.flushQueue(ACQ_QUEUE_ALL_DISCARD);
    if (status != GC_ERR_SUCCESS) {
      OVI_LOG_WARNING(kSite) << "Error during flush of queues for data stream: [" << stream.id()
                             << "] Error: " << status;
    }
    return mapGenTLError(status);
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_WARNING(kSite) << "Failed to flush queues on data stream! Error: [" << error.code() << "] " << error.what();
    return mapGenTLError(error.code());
  }
}

}  // namespace

oviErr createBuffers(std::uint64_t streamHandle, std::uint32_t count, std::uint64_t size,
                     const BufferRecords& records) {
  std::shared_ptr<DataStream> stream;
  oviErr result = lookupModule(streamHandle, stream);
  if (result != OVI_SUCCESS) {
    return result;
  }
  if (size == 0) {
    result = getBufferSize(streamHandle, size);
    if (result != OVI_SUCCESS) {
      return result;
    }
  }
  result = allocateBuffers(*stream, streamHandle, count, size, records);
  if (result == OVI_SUCCESS) {
    afterBufferCreation(streamHandle);
  }
  return result;
}

oviErr checkBufferSizeAndRecreate(std::uint64_t streamHandle) {
  std::uint64_t needed = 0;
  const oviErr sized = getBufferSize(streamHandle, needed);
  if (sized != OVI_SUCCESS || needed == 0) {
    return sized;
  }
  std::vector<std::uint64_t> buffers;
  HandleRegistry::instance().listRelated(streamHandle, ModuleKind::Buffer, buffers);
  if (buffers.empty()) {
    return OVI_SUCCESS;
  }
  // All buffers of a pool are of one size, so the first one tells.
  std::shared_ptr<Buffer> first;
  const oviErr found = lookupModule(buffers.front(), first);
  if (found != OVI_SUCCESS || first->getSize() >= needed) {
    return found;
  }
  OVI_LOG_WARNING("OVI::checkBufferSizeAndRecreate")
      << "Size of allocated buffers is too small for expected PayloadSize, reallocating them.";
  BufferRecords records;
  removeAllBuffersFromStream(streamHandle, records);
  return createBuffers(streamHandle, static_cast<std::uint32_t>(records.size()), needed, records);
}

oviErr removeAllBuffersFromStream(std::uint64_t streamHandle, BufferRecords& outRecords) {
  std::shared_ptr<DataStream> stream;
  const oviErr found = lookupModule(streamHandle, stream);
  if (found != OVI_SUCCESS) {
    return found;
  }
  const oviErr result = discardQueues(*stream);
  std::vector<std::uint64_t> handles;
  HandleRegistry::instance().listRelated(streamHandle, ModuleKind::Buffer, handles);
  for (const std::uint64_t handle : handles) {
    std::shared_ptr<Buffer> buffer;
    if (lookupModule(handle, buffer) != OVI_SUCCESS) {
      continue;
    }
    try {
      // What the producer gives back says only that there is a record: which one it is, the buffer knows itself.
      if (stream->revokeBuffer(*buffer) != nullptr && buffer->getUserData() != nullptr) {
        HandleRegistry::instance().remove(handle);
        outRecords.push_back(static_cast<oviNewBufferEventData*>(buffer->getUserData()));
      }
    } catch (const GenTLCpp::GenTLException& error) {
      OVI_LOG_ERROR("OVI::removeAllBuffersFromStream")
          << "Failed to revoke buffer from data stream: Stream ID: [" << stream->id() << "] Error: " << error.what();
    }
  }
  return result;
}

}  // namespace OVI
