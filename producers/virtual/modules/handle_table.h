// Handles: numbers that name a slot and its generation, never addresses.
//
// A handle that was closed, that belongs to something else or that is a stray pointer is recognised without touching
// memory that may be gone: slots live as long as the producer is loaded, and every reuse of a slot changes its
// generation.
//
// A call that works on an object pins it; a close claims the slot, so that no further call gets in, and waits until the
// pins that are left have gone.
#pragma once

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
  static Object* pin(void* handle, std::uint32_t kinds) noexcept;
  static void unpin(void* handle) noexcept;

  // Whether the handle names an open object of these kinds at this moment.
  static bool isOpen(void* handle, std::uint32_t kinds) noexcept;

  // The open object, without a pin: the caller must know otherwise that it stays.
  static Object* peek(void* handle, std::uint32_t kinds) noexcept;

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
