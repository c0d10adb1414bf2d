// Where a stream finds its announced buffers again, by the producer's handle or by the library's.
#include "gentl/buffer_table.h"

#include <utility>

namespace GenTLCpp {

namespace {

std::uint64_t keyOf(BUFFER_HANDLE native) noexcept {
  return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(native));
}

/** Where the search for a key begins. Handles are addresses or small numbers: only the high bits are well mixed. */
std::size_t startOf(std::uint64_t key) noexcept {
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
  return static_cast<std::size_t>((key * kSpread) >> 32);
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

AnnouncedBuffer* BufferTable::Index::find(std::uint64_t key) const noexcept {
  Cells* cells = current_.load(std::memory_order_acquire);
  if (cells == nullptr) {
    return nullptr;
  }
  const Cell* cell = findCell(*cells, key);
  return cell != nullptr ? cell->buffer.load(std::memory_order_acquire) : nullptr;
}

BufferTable::Index::Cell* BufferTable::Index::findCell(Cells& cells, std::uint64_t key) noexcept {
  const std::size_t mask = cells.size() - 1;
  const std::size_t start = startOf(key);
  for (std::size_t i = 0; key != 0 && i <= mask; ++i) {
    Cell& cell = cells[(start + i) & mask];
    const std::uint64_t found = cell.key.load(std::memory_order_acquire);
    if (found == key && cell.buffer.load(std::memory_order_acquire) != nullptr) {
      return &cell;
    }
    if (found == 0) {
      break;
    }
  }
  return nullptr;
}

void BufferTable::Index::insert(std::uint64_t key, AnnouncedBuffer& buffer) {
  if (all_.empty() || 2 * (live_ + 1) > all_.back()->size()) {
    grow();
  }
  place(*all_.back(), key, buffer);
  ++live_;
}

void BufferTable::Index::erase(std::uint64_t key) noexcept {
  if (all_.empty()) {
    return;
  }
  if (Cell* cell = findCell(*all_.back(), key)) {
    cell->buffer.store(nullptr, std::memory_order_release);
    if (--live_ == 0) {  // The pool is gone: searches need not pass what it left behind any more.
      for (Cell& each : *all_.back()) {
        each.key.store(0, std::memory_order_release);
      }
    }
  }
}

void BufferTable::Index::place(Cells& cells, std::uint64_t key, AnnouncedBuffer& buffer) noexcept {
  const std::size_t mask = cells.size() - 1;
  for (std::size_t at = startOf(key);; ++at) {
    Cell& cell = cells[at & mask];
    if (cell.buffer.load(std::memory_order_relaxed) == nullptr) {
      cell.key.store(key, std::memory_order_release);
      cell.buffer.store(&buffer, std::memory_order_release);
      return;
    }
  }
}

void BufferTable::Index::grow() {
  constexpr std::size_t kFirst = 32;
  auto larger = std::make_unique<Cells>(all_.empty() ? kFirst : 2 * all_.back()->size());
  if (!all_.empty()) {
    for (const Cell& cell : *all_.back()) {
      if (AnnouncedBuffer* buffer = cell.buffer.load(std::memory_order_relaxed)) {
        place(*larger, cell.key.load(std::memory_order_relaxed), *buffer);
      }
    }
  }
  all_.push_back(std::move(larger));
  current_.store(all_.back().get(), std::memory_order_release);
}

}  // namespace GenTLCpp
