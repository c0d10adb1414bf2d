// The slots of all handles, in memory that is never freed.
#include "modules/handle_table.h"

#include <array>
#include <mutex>

namespace vcam {

namespace {

static_assert(sizeof(void*) == 8, "handles hold a slot, a kind and a generation in 64 bits");

// A handle: 0x5A, generation (32 bits), slot (16 bits), kind (8 bits).
constexpr std::uint64_t kTag = 0x5A;

// A slot's state: generation (32 bits), open, closing, pins (30 bits). Calls with stale handles may add and take away a
// pin at any moment, so the state changes by additions only, never by a plain store.
constexpr std::uint64_t kOneGeneration = std::uint64_t{1} << 32;
constexpr std::uint64_t kOpen = std::uint64_t{1} << 31;
constexpr std::uint64_t kClosing = std::uint64_t{1} << 30;
constexpr std::uint64_t kPins = kClosing - 1;

struct Slot {
  std::atomic<std::uint64_t> state;
  std::atomic<Object*> object;
  std::atomic<std::uint32_t> kind;
  std::uint32_t nextFree;  // of the free list, guarded by its mutex
};

std::array<Slot, HandleTable::kCapacity> slots{};
std::mutex freeListMutex;
std::uint32_t firstFree = 0;  // 0 is the end of the list: slot 0 is never used
std::uint32_t firstUnused = 1;

constexpr std::uint32_t generationOf(std::uint64_t state) {
  return static_cast<std::uint32_t>(state >> 32);
}

void* makeHandle(std::uint32_t generation, std::uint32_t index, std::uint32_t kind) {
  return reinterpret_cast<void*>(
      static_cast<std::uintptr_t>(kTag << 56 | std::uint64_t{generation} << 24 | std::uint64_t{index} << 8 | kind));
}

struct Decoded {
  Slot* slot;
  std::uint32_t generation;
};

// The slot that a handle of one of these kinds names, open or not; null for anything that was never a handle.
Decoded decode(void* handle, std::uint32_t kinds) {
  const std::uint64_t value = reinterpret_cast<std::uintptr_t>(handle);
  const std::uint32_t kind = value & 0xFF;
  if (value >> 56 != kTag || (kind & kinds) == 0) {
    return {nullptr, 0};
  }
  return {&slots[HandleTable::indexOf(handle)], static_cast<std::uint32_t>(value >> 24)};
}

bool isOpenState(std::uint64_t state, std::uint32_t generation) {
  return generationOf(state) == generation && (state & (kOpen | kClosing)) == kOpen;
}

void unpinSlot(Slot& slot) {
  const std::uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
  if ((before & kClosing) != 0 && (before & kPins) == 1) {
    slot.state.notify_all();
  }
}

}  // namespace

void HandleTable::insert(Object& object) {
  std::uint32_t index = 0;
  {
    const std::lock_guard lock(freeListMutex);
    if (firstFree != 0) {
      index = firstFree;
      firstFree = slots[index].nextFree;
    } else if (firstUnused < kCapacity) {
      index = firstUnused++;
    } else {
      fail(GC_ERR_RESOURCE_EXHAUSTED, "more than ", kCapacity - 1, " handles at a time");
    }
  }
  Slot& slot = slots[index];
  const std::uint32_t generation = generationOf(slot.state.load(std::memory_order_relaxed));
  object.handle_ = makeHandle(generation, index, object.kind());
  slot.object.store(&object, std::memory_order_relaxed);
  slot.kind.store(object.kind(), std::memory_order_relaxed);
  slot.state.fetch_or(kOpen, std::memory_order_release);
}

Object* HandleTable::pin(void* handle, std::uint32_t kinds) noexcept {
  const auto [slot, generation] = decode(handle, kinds);
  if (slot == nullptr) {
    return nullptr;
  }
  const std::uint64_t state = slot->state.fetch_add(1, std::memory_order_acq_rel);
  if (!isOpenState(state, generation) || (slot->kind.load(std::memory_order_relaxed) & kinds) == 0) {
    unpinSlot(*slot);
    return nullptr;
  }
  return slot->object.load(std::memory_order_relaxed);
}

void HandleTable::unpin(void* handle) noexcept {
  unpinSlot(slots[indexOf(handle)]);
}

bool HandleTable::isOpen(void* handle, std::uint32_t kinds) noexcept {
  const auto [slot, generation] = decode(handle, kinds);
  return slot != nullptr && isOpenState(slot->state.load(std::memory_order_acquire), generation) &&
         (slot->kind.load(std::memory_order_relaxed) & kinds) != 0;
}

Object* HandleTable::peek(void* handle, std::uint32_t kinds) noexcept {
  return isOpen(handle, kinds) ? slots[indexOf(handle)].object.load(std::memory_order_relaxed) : nullptr;
}

Object* HandleTable::claim(void* handle, std::uint32_t kinds) noexcept {
  const auto [slot, generation] = decode(handle, kinds);
  if (slot == nullptr) {
    return nullptr;
  }
  std::uint64_t state = slot->state.load(std::memory_order_acquire);
  do {
    if (!isOpenState(state, generation) || (slot->kind.load(std::memory_order_relaxed) & kinds) == 0) {
      return nullptr;
    }
  } while (!slot->state.compare_exchange_weak(state, state | kClosing, std::memory_order_acq_rel));
  return slot->object.load(std::memory_order_relaxed);
}

void HandleTable::drain(void* handle) noexcept {
  Slot& slot = slots[indexOf(handle)];
  for (std::uint64_t state = slot.state.load(std::memory_order_acquire); (state & kPins) != 0;
       state = slot.state.load(std::memory_order_acquire)) {
    slot.state.wait(state, std::memory_order_acquire);
  }
}

void HandleTable::erase(void* handle) noexcept {
  const std::uint32_t index = static_cast<std::uint32_t>(indexOf(handle));
  Slot& slot = slots[index];
  slot.object.store(nullptr, std::memory_order_relaxed);
  slot.state.fetch_add(kOneGeneration - kOpen - kClosing, std::memory_order_acq_rel);
  slot.state.notify_all();
  const std::lock_guard lock(freeListMutex);
  slot.nextFree = firstFree;
  firstFree = index;
}

void HandleTable::awaitErased(void* handle) noexcept {
  const auto [slot, generation] = decode(handle, ~std::uint32_t{0});
  if (slot == nullptr) {
    return;
  }
  for (std::uint64_t state = slot->state.load(std::memory_order_acquire);
       generationOf(state) == generation && (state & kOpen) != 0; state = slot->state.load(std::memory_order_acquire)) {
    slot->state.wait(state, std::memory_order_acquire);
  }
}

}  // namespace vcam
