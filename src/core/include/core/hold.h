// Keeping an object alive for the length of a call, without a lock and without counting.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <utility>

namespace OVI {

namespace detail {

/** What a thread uses at this moment, several at once when calls nest. Only that thread writes to it. */
struct alignas(64) HoldBlock {
  static constexpr std::size_t kPlaces = 8;
  std::array<std::atomic<const void*>, kPlaces> places{};
  std::uint32_t used = 0;  // A bit for each place.
  HoldBlock* previous = nullptr;
  bool taken = false;
};

struct alignas(64) HoldSwitches {
  /** Whether others can make the system order this thread's memory accesses; if not, it orders them itself. */
  bool ordersOthers = false;
  /** Whether somebody wants to know what is let go. */
  std::atomic<bool> attention{false};
};
inline HoldSwitches holdSwitches;

}  // namespace detail

/**
 * A thread's announcement that it uses an object, which others may put out of reach at any moment. An object that its
 * owners drop with `retire` lives on while it is held, and is destroyed by whoever lets go of it last.
 *
 * Holding costs two plain writes and takes no lock; it may last as long as a producer call does. A hold stays on its
 * thread.
 */
class Hold {
 public:
  Hold() noexcept = default;
  Hold(Hold&& other) noexcept : block_(std::exchange(other.block_, nullptr)), place_(other.place_) {}
  Hold& operator=(Hold&& other) noexcept {
    if (this != &other) {
      release();
      block_ = std::exchange(other.block_, nullptr);
      place_ = other.place_;
    }
    return *this;
  }
  ~Hold() { release(); }

  /** Announces the object. It is safe to use if, after this, it can still be reached the way that it was found. */
  void announce(const void* object) noexcept {
    if (block_ == nullptr) {
      take();
    }
    write(object);
  }

  /** Holds what a place points at, null when that is nothing. Whoever empties the place retires the object then. */
  template<class T>
  T* of(const std::atomic<T*>& place) noexcept {
    T* object = place.load(std::memory_order_acquire);
    while (object != nullptr) {
      announce(object);
      T* const after = place.load(std::memory_order_seq_cst);
      if (after == object) {
        return object;
      }
      object = after;
    }
    release();
    return nullptr;
  }

  void release() noexcept {
    if (block_ == nullptr) {
      return;
    }
    const void* const object = block_->places[place_].load(std::memory_order_relaxed);
    write(nullptr);
    block_->used &= ~(std::uint32_t{1} << place_);
    block_ = nullptr;
    if (detail::holdSwitches.attention.load(std::memory_order_seq_cst)) {
      attend(object);
    }
  }

 private:
  /** What this thread reads next comes after the write, as others see it. */
  void write(const void* object) noexcept {
    std::atomic<const void*>& place = block_->places[place_];
    if (detail::holdSwitches.ordersOthers) {
      place.store(object, std::memory_order_release);
      std::atomic_signal_fence(std::memory_order_seq_cst);
    } else {
      place.exchange(object, std::memory_order_seq_cst);
    }
  }
  void take() noexcept;
  static void attend(const void* object) noexcept;

  detail::HoldBlock* block_ = nullptr;
  std::uint32_t place_ = 0;
};

/** Shares of objects that nobody can find any more. An object is held under the address that its share gives. */
using Retired = std::list<std::shared_ptr<const void>>;

/** Gives the shares up: at once, in their order, unless some thread holds the object; then when the last one lets go.
 */
void retire(Retired shares) noexcept;
template<class T>
void retire(std::shared_ptr<T> share) {
  if (share != nullptr) {
    Retired shares;
    shares.push_back(std::move(share));
    retire(std::move(shares));
  }
}

/** Waits until no other thread holds the object, or until the time is over. @return whether nobody does */
bool waitUntilUnused(const void* object, std::chrono::milliseconds limit) noexcept;

/** A door that many pass at once and that somebody shuts in the end, who then waits for those that are inside. */
class UseGate {
 public:
  /** @return whether the gate is open; then the caller is inside until it lets go of the hold */
  bool enter(Hold& hold) const noexcept {
    hold.announce(this);
    if (isOpen()) {
      return true;
    }
    hold.release();
    return false;
  }
  bool isOpen() const noexcept { return !shut_.load(std::memory_order_seq_cst); }
  /** Nobody enters any more. @return whether those that were inside have left in time */
  bool shut(std::chrono::milliseconds limit) noexcept {
    shut_.store(true, std::memory_order_seq_cst);
    return waitUntilUnused(this, limit);
  }

 private:
  std::atomic<bool> shut_{false};
};

}  // namespace OVI
