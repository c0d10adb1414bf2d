// Where a stream finds its announced buffers again, by the producer's handle or by the library's.
#include "gentl/buffer_table.h"

namespace GenTLCpp {

AnnouncedBuffer& BufferTable::add(BUFFER_HANDLE native, void* userData) {
  const std::lock_guard lock(mutex_);
  if (free_.empty()) {
    free_.push_back(&buffers_.emplace_back());
  }
  AnnouncedBuffer& buffer = *free_.back();
  buffer.userData = userData;
  buffer.deliveredSize = 0;
  buffer.unfilledSize = 0;
  buffer.native = native;
  byNative_.insert(keyOf(native), buffer);
  free_.pop_back();
  return buffer;
}

void BufferTable::setHandle(AnnouncedBuffer& buffer, std::uint64_t handle) {
  const std::lock_guard lock(mutex_);
  buffer.handle = handle;
  byHandle_.insert(handle, buffer);
}

void BufferTable::remove(BUFFER_HANDLE native) {
  const std::lock_guard lock(mutex_);
  if (AnnouncedBuffer* buffer = byNative_.find(keyOf(native))) {
    byNative_.erase(keyOf(native));
    byHandle_.erase(buffer->handle);
    buffer->native = nullptr;
    buffer->handle = 0;
    free_.push_back(buffer);
  }
}

}  // namespace GenTLCpp
