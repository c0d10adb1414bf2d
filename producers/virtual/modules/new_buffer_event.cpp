// The event of new buffers: buffers leave the stream's output queue through it.
#include <cstring>

#include "modules/data_stream.h"

namespace vcam {

void* DataStream::registerEvent(EVENT_TYPE type) {
  if (type != EVENT_NEW_BUFFER) {
    return Module::registerEvent(type);
  }
  auto event = std::make_unique<NewBufferEvent>(*this);
  NewBufferEvent& added = *event;
  void* const eventHandle = events().add(std::move(event));
  added.attach();
  return eventHandle;
}

NewBufferEvent::NewBufferEvent(DataStream& stream) : Event(EVENT_NEW_BUFFER, stream.mutex_), stream_(stream) {}

NewBufferEvent::~NewBufferEvent() {
  const std::lock_guard lock(stream_.mutex_);
  if (stream_.event_ == this) {
    stream_.event_ = nullptr;
  }
}

void NewBufferEvent::attach() {
  const std::lock_guard lock(stream_.mutex_);
  stream_.event_ = this;
  // Buffers that were filled before somebody listened are not lost.
  firedBefore_ = stream_.fired_ - stream_.output_.size();
}

void NewBufferEvent::popLocked(void* target) {
  Buffer& buffer = *stream_.output_.pop();
  stream_.toAnnounced(buffer);
  if (target != nullptr) {
    const EVENT_NEW_BUFFER_DATA data = {buffer.handle(), buffer.userPointer()};
    std::memcpy(target, &data, sizeof(data));
  }
}

Info NewBufferEvent::dataInfo(std::span<const std::byte> entry, EVENT_DATA_INFO_CMD command) const {
  EVENT_NEW_BUFFER_DATA data{};
  if (entry.size() < sizeof(data)) {
    fail(GC_ERR_INVALID_PARAMETER, "the data are not an entry of this event");
  }
  std::memcpy(&data, entry.data(), sizeof(data));
  switch (command) {
    case EVENT_DATA_ID:
      return Info::pointer(data.BufferHandle);
    case EVENT_DATA_VALUE:
      return Info::pointer(data.pUserPointer);
    case EVENT_DATA_NUMID:
      fail(GC_ERR_NOT_AVAILABLE, "a new buffer has no event number");
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "event data have no info ", command);
  }
}

}  // namespace vcam
