// Where a stream finds its announced buffers again, by the producer's handle or by the library's.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

#include "core/key_index.h"
#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

/** What is known of an announced buffer. Its memory is used again after the buffer was removed, and never given back
 * before the table goes: whoever still reads it then reads another buffer's, at worst. */
struct AnnouncedBuffer {
  std::atomic<BUFFER_HANDLE> native{nullptr};
  std::atomic<std::uint64_t> handle{0};
  std::atomic<void*> userData{nullptr};
  /** Sums over all deliveries: of the buffer's size, and of the bytes that were not filled. */
  std::atomic<std::uint64_t> deliveredSize{0};
  std::atomic<std::uint64_t> unfilledSize{0};
};

/** Any thread. Finding takes no lock: it is on the way of every image. */
class BufferTable {
 public:
  AnnouncedBuffer& add(BUFFER_HANDLE native, void* userData);
  /** Makes the buffer known by the handle that the library issued for it. */
  void setHandle(AnnouncedBuffer& buffer, std::uint64_t handle);
  void remove(BUFFER_HANDLE native);

  /** The buffer, or null. */
  AnnouncedBuffer* findNative(BUFFER_HANDLE native) const noexcept {
    AnnouncedBuffer* const buffer = byNative_.find(keyOf(native));
    return buffer != nullptr && buffer->native.load(std::memory_order_acquire) == native ? buffer : nullptr;
  }
  AnnouncedBuffer* findHandle(std::uint64_t handle) const noexcept {
    AnnouncedBuffer* const buffer = byHandle_.find(handle);
    return buffer != nullptr && buffer->handle.load(std::memory_order_acquire) == handle ? buffer : nullptr;
  }

 private:
  static std::uint64_t keyOf(BUFFER_HANDLE native) noexcept {
    return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(native));
  }

  std::mutex mutex_;
  std::deque<AnnouncedBuffer> buffers_;
  std::vector<AnnouncedBuffer*> free_;
  OVI::KeyIndex<AnnouncedBuffer> byNative_;
  OVI::KeyIndex<AnnouncedBuffer> byHandle_;
};

}  // namespace GenTLCpp
