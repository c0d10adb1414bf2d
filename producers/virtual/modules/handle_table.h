// Handles: numbers that name a slot and its generation, never addresses.
//
// A handle that was closed, that belongs to something else or that is a stray pointer is recognised without touching
// memory that may be gone: slots live as long as the producer is loaded, and every reuse of a slot changes its
// generation.
//
// A call that works on an object pins it; a close claims the slot, so that no further call gets in, and waits until the
// pins that are left have gone.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include "modules/failure.h"

namespace vcam {

// Bits, so that a look-up may accept several kinds.
enum Kind : std::uint32_t {
  kSystem = 1,
  kInterface = 2,
  kDevice = 4,
  kRemoteDevice = 8,
  kStream = 16,
  kBuffer = 32,
  kEvent = 64,
};
constexpr std::uint32_t kModules = kSystem | kInterface | kDevice | kStream | kBuffer;
constexpr std::uint32_t kPorts = kModules | kRemoteDevice;

// What a handle can name.
class Object {
 public:
  explicit Object(Kind kind) : kind_(kind) {}
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  virtual ~Object() = default;

  Kind kind() const { return kind_; }
  void* handle() const { return handle_; }

 private:
  friend class HandleTable;
  Kind kind_;
  void* handle_ = nullptr;
};

class HandleTable {
 public:
  static constexpr std::size_t kCapacity = 65536;

  // Gives the object its handle.
  static void insert(Object& object);

  // The object, kept from being closed until unpin(); null when the handle names none of these kinds.
  static Object* pin(void* handle, std::uint32_t kinds) noexcept {
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
  static void unpin(void* handle) noexcept { unpinSlot(slots[indexOf(handle)]); }

  // Whether the handle names an open object of these kinds at this moment.
  static bool isOpen(void* handle, std::uint32_t kinds) noexcept {
    const auto [slot, generation] = decode(handle, kinds);
    return slot != nullptr && isOpenState(slot->state.load(std::memory_order_acquire), generation) &&
           (slot->kind.load(std::memory_order_relaxed) & kinds) != 0;
  }

  // The open object, without a pin: the caller must know otherwise that it stays.
  static Object* peek(void* handle, std::uint32_t kinds) noexcept {
    return isOpen(handle, kinds) ? slots[indexOf(handle)].object.load(std::memory_order_relaxed) : nullptr;
  }

  // Begins a close: from here on no call gets in. Null when the handle names none of these kinds or is being closed.
  static Object* claim(void* handle, std::uint32_t kinds) noexcept;

  // Waits until the calls that are inside a claimed object have left.
  static void drain(void* handle) noexcept;

  // Ends a close: the handle is stale from here on.
  static void erase(void* handle) noexcept;

  // Waits until somebody else's close has erased the handle.
  static void awaitErased(void* handle) noexcept;

  // The slot's number, for tables that run beside this one.
  static std::size_t indexOf(void* handle) noexcept { return (reinterpret_cast<std::uintptr_t>(handle) >> 8) & 0xFFFF; }

 private:
  static_assert(sizeof(void*) == 8, "handles hold a slot, a kind and a generation in 64 bits");

  // A handle: 0x5A, generation (32 bits), slot (16 bits), kind (8 bits).
  static constexpr std::uint64_t kTag = 0x5A;

  // A slot's state: generation (32 bits), open, closing, pins (30 bits). Calls with stale handles may add and take away
  // a pin at any moment, so the state changes by additions only, never by a plain store.
  static constexpr std::uint64_t kOneGeneration = std::uint64_t{1} << 32;
  static constexpr std::uint64_t kOpen = std::uint64_t{1} << 31;
  static constexpr std::uint64_t kClosing = std::uint64_t{1} << 30;
  static constexpr std::uint64_t kPins = kClosing - 1;

  struct Slot {
    std::atomic<std::uint64_t> state;
    std::atomic<Object*> object;
    std::atomic<std::uint32_t> kind;
    std::uint32_t nextFree;  // of the free list, guarded by its mutex
  };
  struct Decoded {
    Slot* slot;
    std::uint32_t generation;
  };

  // The slot that a handle of one of these kinds names, open or not; null for anything that was never a handle.
  static Decoded decode(void* handle, std::uint32_t kinds) noexcept {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const std::uint32_t kind = value & 0xFF;
    if (value >> 56 != kTag || (kind & kinds) == 0) {
      return {nullptr, 0};
    }
    return {&slots[indexOf(handle)], static_cast<std::uint32_t>(value >> 24)};
  }
  static constexpr std::uint32_t generationOf(std::uint64_t state) noexcept {
    return static_cast<std::uint32_t>(state >> 32);
  }
  static bool isOpenState(std::uint64_t state, std::uint32_t generation) noexcept {
    return generationOf(state) == generation && (state & (kOpen | kClosing)) == kOpen;
  }
  // To be called after a state has changed that others may wait for.
  static void announceState() noexcept;
  static void unpinSlot(Slot& slot) noexcept {
    const std::uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
    if ((before & kClosing) != 0 && (before & kPins) == 1) {
      announceState();
    }
  }

  static std::array<Slot, kCapacity> slots;
};

// A pinned object for the length of a call.
template<class T>
class Pin {
 public:
  Pin(void* handle, std::uint32_t kinds, const char* what) : object_(HandleTable::pin(handle, kinds)) {
    if (object_ == nullptr) {
      fail(GC_ERR_INVALID_HANDLE, "not the handle of an open ", what);
    }
  }
  Pin(const Pin&) = delete;
  Pin& operator=(const Pin&) = delete;
  ~Pin() { HandleTable::unpin(object_->handle()); }

  T* operator->() const { return static_cast<T*>(object_); }
  T& operator*() const { return *static_cast<T*>(object_); }

 private:
  Object* object_;
};

}  // namespace vcam
