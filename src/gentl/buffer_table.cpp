// Where a stream finds its announced buffers again, by the producer's handle or by the library's.
#include "gentl/buffer_table.h"

namespace GenTLCpp {

namespace {

std::uint64_t keyOf(BUFFER_HANDLE native) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(native));
}

}  // namespace

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

// While somebody searches, a cell may go to another key, and a buffer's memory to another buffer.

AnnouncedBuffer* BufferTable::findNative(BUFFER_HANDLE native) const noexcept {
  AnnouncedBuffer* buffer = byNative_.find(keyOf(native));
  return buffer != nullptr && buffer->native.load(std::memory_order_acquire) == native ? buffer : nullptr;
}

AnnouncedBuffer* BufferTable::findHandle(std::uint64_t handle) const noexcept {
  AnnouncedBuffer* buffer = byHandle_.find(handle);
  return buffer != nullptr && buffer->handle.load(std::memory_order_acquire) == handle ? buffer : nullptr;
}

}  // namespace GenTLCpp
