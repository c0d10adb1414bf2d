// The way of a filled buffer from the producer to its record, and back to the producer.
#include "image_wait.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>

#include "acquisition/events.h"
#include "core/handle_registry.h"
#include "core/log.h"
#include "core/result.h"
#include "event_record.h"
#include "gentl/buffer.h"
#include "gentl/data_stream.h"
#include "gentl/exceptions.h"
#include "gentl/guard.h"
#include "gentl/module_lookup.h"
#include "image_geometry.h"
#include "image_record.h"
#include "platform/platform.h"

namespace OVI {

namespace {

using GenTLCpp::AnnouncedBuffer;
using GenTLCpp::Buffer;
using GenTLCpp::DataStream;
using GenTLCpp::Event;
using GenTLCpp::NewBufferEvent;

constexpr const char* kSite = "OVI::oviWaitForEvent";
constexpr const char* kReleaseSite = "OVI::oviReleaseImage";

/** What a producer tells about a filled buffer. */
struct BufferInfos {
  std::uint64_t base = 0;
  std::uint64_t frameId = 0;
  std::uint64_t pixelFormat = 0;
  std::uint64_t height = 0;
  std::uint64_t width = 0;
  std::uint64_t sizeFilled = 0;
  std::uint64_t size = 0;
};

/** One question. Without the needed answers there is no image; the others stay zero when the producer has none. */
struct InfoRule {
  BUFFER_INFO_CMD command;
  std::uint64_t BufferInfos::*answer;
  bool needed;
};
constexpr InfoRule kInfoRules[] = {
    {BUFFER_INFO_BASE, &BufferInfos::base, true},
    {BUFFER_INFO_FRAMEID, &BufferInfos::frameId, false},
    {BUFFER_INFO_PIXELFORMAT, &BufferInfos::pixelFormat, true},
    {BUFFER_INFO_HEIGHT, &BufferInfos::height, true},
    {BUFFER_INFO_WIDTH, &BufferInfos::width, true},
    {BUFFER_INFO_SIZE_FILLED, &BufferInfos::sizeFilled, false},
    {BUFFER_INFO_SIZE, &BufferInfos::size, false},
};

/** @throws GenTLException when the buffer is not complete */
BufferInfos askInfos(const DataStream& stream, BUFFER_HANDLE buffer) {
  BufferInfos infos;
  DS_HANDLE handle = stream.getHandle();
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  for (const InfoRule& rule : kInfoRules) {
    // The producer writes where the answer belongs: to copy it from elsewhere would be to wait for it.
    std::uint64_t& answer = infos.*rule.answer;
    std::size_t size = sizeof answer;
    const GC_ERROR status = stream.getBufferInfo(handle, buffer, rule.command, &type, &answer, &size);
    if (!GenTLCpp::isFailure(status)) {
      continue;
    }
    if (rule.needed || !isNoValue(status)) {
      GenTLCpp::checkGenTLError(status);
    }
    answer = 0;
  }
  return infos;
}

/** What is told of an image besides. */
struct Arrival {
  void* eventData = nullptr;
  std::uint64_t eventId = 0;
  std::uint64_t moduleHandle = 0;
  std::uint64_t nanoseconds = 0;
};

/** All of the record but the buffer's handle. */
void fillRecord(oviNewBufferEventData& record, const BufferInfos& infos, const Arrival& arrival) noexcept {
  constexpr std::uint64_t kNanosecondsPerMillisecond = 1000000;
  record.event.kind = OVI_EVENT_NEW_BUFFER;
  record.event.reserved0 = 0;
  record.event.moduleHandle = arrival.moduleHandle;
  record.event.moduleSelector = OVI_MODULE_DATA_STREAM;
  record.event.reserved1 = 0;
  record.event.eventData = arrival.eventData;
  record.event.eventDataSize = sizeof(EVENT_NEW_BUFFER_DATA);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): the producer tells it as a number.
  record.event.value = reinterpret_cast<void*>(static_cast<std::uintptr_t>(infos.base));
  // No producer has filled more than there is, whatever it says.
  record.event.valueSize = infos.size != 0 ? std::min(infos.sizeFilled, infos.size) : infos.sizeFilled;
  record.event.eventID = arrival.eventId;
  record.frameID = infos.frameId;
  record.rawEventData = arrival.eventData;
  record.timestampMs = arrival.nanoseconds / kNanosecondsPerMillisecond;
  record.timestampNs = arrival.nanoseconds;
  record.width = static_cast<std::uint32_t>(infos.width);
  record.height = static_cast<std::uint32_t>(infos.height);
  record.pixelFormat = static_cast<std::uint32_t>(infos.pixelFormat);
  record.linePitch = linePitchOf(record.pixelFormat, record.width);
  record.channels = channelsOf(record.pixelFormat);
  record.reserved = 0;
}

/** Why an image is incomplete, and why its buffer could not be filled again, if so. */
struct Incompleteness {
  std::string infoFailure;
  std::string queueFailure;
};

/** How a delivery ended; what is to be logged is told after the stay with the event. */
struct Delivery {
  oviErr result = OVI_SUCCESS;
  oviNewBufferEventData* record = nullptr;
  std::unique_ptr<Incompleteness> incomplete;
};

/** An image that cannot be described never reaches the application: its buffer is filled again. */
void queueAgain(DataStream& stream, BUFFER_HANDLE buffer, Incompleteness& incomplete) {
  try {
    GenTLCpp::checkGenTLError(stream.queueBuffer(buffer));
  } catch (const GenTLCpp::GenTLException& error) {
    incomplete.queueFailure = error.what();
  }
}

/** Only the thread that has the buffer adds to its sums. */
void add(std::atomic<std::uint64_t>& sum, std::uint64_t bytes) noexcept {
  sum.store(sum.load(std::memory_order_relaxed) + bytes, std::memory_order_relaxed);
}

void deliver(const Event& event, DataStream& stream, const EVENT_NEW_BUFFER_DATA& data, oviNewBufferEventData* copy,
             Delivery& delivery) {
  AnnouncedBuffer* buffer = stream.buffers().findNative(data.BufferHandle);
  if (buffer == nullptr) {
    delivery.result = OVI_ERR_NOT_FOUND;
    return;
  }
  auto* record = static_cast<oviNewBufferEventData*>(buffer->userData.load(std::memory_order_relaxed));
  if (record == nullptr) {
    return;
  }
  Arrival arrival;
  arrival.eventData = keepEventData(*record, data);
  arrival.eventId = eventIdOf(event, &data, sizeof data);
  arrival.moduleHandle = recordOf(event).moduleHandle();
  try {
    const BufferInfos infos = askInfos(stream, data.BufferHandle);
    arrival.nanoseconds = platform::monotonicNanoseconds();
    fillRecord(*record, infos, arrival);
    if (copy != nullptr) {
      // Filled as well: reading back what was written this moment would be to wait for it.
      copy->bufferHandle = record->bufferHandle;
      fillRecord(*copy, infos, arrival);
    }
    add(buffer->deliveredSize, infos.size);
    add(buffer->unfilledSize, infos.size - std::min(infos.sizeFilled, infos.size));
    delivery.record = record;
  } catch (const GenTLCpp::GenTLException& error) {
    delivery.result = OVI_ERR_INVALID_BUFFER;
    delivery.incomplete = std::make_unique<Incompleteness>();
    delivery.incomplete->infoFailure = error.what();
    queueAgain(stream, data.BufferHandle, *delivery.incomplete);
  }
}

/** The producer's handle of a buffer: nearly always one of the stream. */
oviErr findBuffer(DataStream* stream, std::uint64_t handle, BUFFER_HANDLE& out) {
  if (const AnnouncedBuffer* known = stream != nullptr ? stream->buffers().findHandle(handle) : nullptr) {
    out = known->native.load(std::memory_order_relaxed);
  }
  if (out != nullptr) {
    return OVI_SUCCESS;
  }
  std::shared_ptr<Buffer> buffer;
  const oviErr result = lookupModule(handle, buffer);
  out = buffer != nullptr ? buffer->getRawHandle() : nullptr;
  return result;
}

void logFailure(const Delivery& delivery) {
  if (delivery.incomplete == nullptr) {
    OVI_LOG_ERROR(kSite) << "Failed to get buffer from native buffer handle!";
    return;
  }
  OVI_LOG_ERROR(kSite) << "Failed to get buffer information! Buffer is not complete and will be queued again. Error: "
                       << delivery.incomplete->infoFailure;
  if (!delivery.incomplete->queueFailure.empty()) {
    OVI_LOG_ERROR(kSite) << "Error queueing buffer: " << delivery.incomplete->queueFailure;
  }
}

/** Apart from the way of the images, which would set up each record that it might have to log. */
void logRelease(const std::string& text) {
  OVI_LOG_ERROR(kReleaseSite) << text;
}

}  // namespace

oviErr waitForImage(Event& event, std::uint64_t timeout, oviNewBufferEventData*& outRecord,
                    oviNewBufferEventData* outCopy) {
  NewBufferEvent* newBuffer = event.asNewBufferEvent();
  if (newBuffer == nullptr) {
    OVI_LOG_ERROR(kSite) << "Could not wait for this event, the event type didn't match the expected EVENT_NEW_BUFFER "
                            "type!";
    return OVI_ERR_UNKNOWN;
  }
  Delivery delivery;
  try {
    const Event::Stay stay(event, timeout);
    const EVENT_NEW_BUFFER_DATA data = newBuffer->waitForBuffer(stay, timeout);
    deliver(event, static_cast<DataStream&>(*event.getParent()), data, outCopy, delivery);
  } catch (const GenTLCpp::TimeoutException& error) {
    OVI_LOG_DEBUG(kSite) << "Timeout waiting for new buffer event! Error: " << error.what();
    return mapGenTLError(error.code());
  } catch (const GenTLCpp::AbortException& error) {
    OVI_LOG_DEBUG(kSite) << "Info: New buffer event was aborted (this is not an error)! Message: " << error.what();
    return mapGenTLError(error.code());
  } catch (const GenTLCpp::GenTLException& error) {
    OVI_LOG_WARNING(kSite) << "Failed getting new buffer event data! Error: " << error.what();
    return mapGenTLError(error.code());
  }
  if (delivery.result != OVI_SUCCESS) {
    logFailure(delivery);
  }
  outRecord = delivery.record;
  return delivery.result;
}

oviErr oviReleaseImage(std::uint64_t streamHandle, oviNewBufferEventData* record) {
  if (streamHandle == 0 || record == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  Hold hold;
  auto* const stream = holdModule<DataStream>(streamHandle, hold);
  if (stream == nullptr) {
    logRelease("Failed to release image. Unknown stream.");
  }
  BUFFER_HANDLE buffer = nullptr;
  const oviErr result = findBuffer(stream, record->bufferHandle, buffer);
  if (result != OVI_SUCCESS) {
    logRelease("Failed to release image. Unknown buffer.");
  }
  if (stream == nullptr || buffer == nullptr) {
    return result;  // Of the buffer alone: an unknown stream is in the log only.
  }
  return guarded(kReleaseSite, Severity::Error, "Failed to queue buffer. Error: ", [&] {
    const GC_ERROR status = stream->queueBufferHeld(buffer);
    if (status != GC_ERR_SUCCESS) {
      logRelease("Failed to queue buffer. Error: " + std::to_string(status));
    }
    return mapGenTLError(status);
  });
}

}  // namespace OVI
