// Replaces the global allocation functions by counting ones; each block carries its size in front.
#include "allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> count{0};
std::atomic<std::size_t> bytes{0};
constexpr std::size_t kHeader = alignof(std::max_align_t);
static_assert(kHeader >= sizeof(std::size_t));

void* allocate(std::size_t size) {
  void* const block = std::malloc(size + kHeader);
  if (block == nullptr)
    throw std::bad_alloc();
  *static_cast<std::size_t*>(block) = size;
  count.fetch_add(1, std::memory_order_relaxed);
  bytes.fetch_add(size, std::memory_order_relaxed);
  return static_cast<char*>(block) + kHeader;
}

void release(void* data) noexcept {
  if (data == nullptr)
    return;
  void* const block = static_cast<char*>(data) - kHeader;
  bytes.fetch_sub(*static_cast<std::size_t*>(block), std::memory_order_relaxed);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void operator delete(void* data) noexcept {
  release(data);
}
void operator delete[](void* data) noexcept {
  release(data);
}
void operator delete(void* data, std::size_t) noexcept {
  release(data);
}
void operator delete[](void* data, std::size_t) noexcept {
  release(data);
}

namespace bench {

std::size_t allocationCount() {
  return count.load(std::memory_order_relaxed);
}
std::size_t allocatedBytes() {
  return bytes.load(std::memory_order_relaxed);
}

}  // namespace bench
