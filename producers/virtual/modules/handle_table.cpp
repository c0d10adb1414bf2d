// The slots of all handles, in memory that is never freed.
#include "modules/handle_table.h"

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <new>

namespace vcam {

std::array<HandleTable::Slot, HandleTable::kCapacity> HandleTable::slots{};

namespace {
std::mutex freeListMutex;
std::uint32_t firstFree = 0;  // 0 is the end of the list: slot 0 is never used
std::uint32_t firstUnused = 1;

// What threads wait on until a slot's state is another. Of C++'s own wait on an atomic, one standard library that we
// build with loses wake-ups. Never destroyed: threads may outlive the library's static objects. In static memory, which
// goes with the library.
struct StateChange {
  std::mutex mutex;
  std::condition_variable happened;
};
StateChange& stateChange() noexcept {
  alignas(StateChange) static std::byte memory[sizeof(StateChange)];
  static StateChange& change = *new (memory) StateChange;
  return change;
}

template<class Predicate>
void waitUntil(Predicate holds) noexcept {
  StateChange& change = stateChange();
  std::unique_lock lock(change.mutex);
  change.happened.wait(lock, holds);
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
  // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number, not an address.
  object.handle_ = reinterpret_cast<void*>(static_cast<std::uintptr_t>(kTag << 56 | std::uint64_t{generation} << 24 |
                                                                       std::uint64_t{index} << 8 | object.kind()));
  slot.object.store(&object, std::memory_order_relaxed);
  slot.kind.store(object.kind(), std::memory_order_relaxed);
  slot.state.fetch_or(kOpen, std::memory_order_release);
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
  const Slot& slot = slots[indexOf(handle)];
  waitUntil([&] { return (slot.state.load(std::memory_order_acquire) & kPins) == 0; });
}

void HandleTable::erase(void* handle) noexcept {
  const auto index = static_cast<std::uint32_t>(indexOf(handle));
  Slot& slot = slots[index];
  slot.object.store(nullptr, std::memory_order_relaxed);
  slot.state.fetch_add(kOneGeneration - kOpen - kClosing, std::memory_order_acq_rel);
  announceState();
  const std::lock_guard lock(freeListMutex);
  slot.nextFree = firstFree;
  firstFree = index;
}

void HandleTable::awaitErased(void* handle) noexcept {
  const auto [slot, generation] = decode(handle, ~std::uint32_t{0});
  if (slot == nullptr) {
    return;
  }
  waitUntil([place = slot, wanted = generation] {
    const std::uint64_t state = place->state.load(std::memory_order_acquire);
    return generationOf(state) != wanted || (state & kOpen) == 0;
  });
}

void HandleTable::announceState() noexcept {
  StateChange& change = stateChange();
  { const std::lock_guard lock(change.mutex); }  // Who is about to wait sees the new state or hears of it.
  change.happened.notify_all();
}

}  // namespace vcam
