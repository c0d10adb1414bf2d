// The records in which filled buffers reach the application.
#include "image_record.h"

#include <deque>
#include <mutex>

namespace OVI {

namespace {

/** A record with the event data that it points at. The record comes first: applications know its address alone. */
struct ImageRecord {
  oviNewBufferEventData record{};
  EVENT_NEW_BUFFER_DATA eventData{};
};

ImageRecord& recordAround(oviNewBufferEventData& record) noexcept {
  return reinterpret_cast<ImageRecord&>(record);
}

/** All records of the process. Not destroyed at its end either: an application's threads may still read one. */
class RecordStore {
 public:
  oviNewBufferEventData* add() {
    const std::lock_guard lock(mutex_);
    return &records_.emplace_back().record;
  }

 private:
  std::mutex mutex_;
  std::deque<ImageRecord> records_;
};

RecordStore& recordStore() {
  static auto* store = new RecordStore;
  return *store;
}

}  // namespace

oviNewBufferEventData* createImageRecord() {
  return recordStore().add();
}

void setBufferHandle(oviNewBufferEventData& record, std::uint64_t bufferHandle) noexcept {
  record.bufferHandle = bufferHandle;
}

void* keepEventData(oviNewBufferEventData& record, const EVENT_NEW_BUFFER_DATA& data) noexcept {
  ImageRecord& around = recordAround(record);
  around.eventData = data;
  return &around.eventData;
}

}  // namespace OVI
