// From numbers to objects that others own: searched without a lock while it changes.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "core/hold.h"

namespace OVI {

/** Keys are not 0 and have one object each. One thread at a time changes the index, any number searches it. */
template<class T>
class KeyIndex {
 public:
  /** The object, or null. While the key is taken out, its object may still be found for a moment. */
  T* find(std::uint64_t key) const noexcept {
    Cells* const cells = current_.load(std::memory_order_acquire);
    const Cell* const cell = cells != nullptr ? findCell(*cells, key) : nullptr;
    return cell != nullptr ? cell->object.load(std::memory_order_acquire) : nullptr;
  }

  /** The same, and the object is held. Whoever takes the key out retires the object afterwards. */
  T* find(std::uint64_t key, Hold& hold) const noexcept {
    while (Cells* const cells = current_.load(std::memory_order_acquire)) {
      const Cell* const cell = findCell(*cells, key);
      T* const object = cell != nullptr ? cell->object.load(std::memory_order_acquire) : nullptr;
      if (object == nullptr) {
        break;
      }
      hold.announce(object);
      // An outgrown table shows objects that are gone.
      if (cell->object.load(std::memory_order_seq_cst) == object && cell->key.load(std::memory_order_acquire) == key &&
          current_.load(std::memory_order_acquire) == cells) {
        return object;
      }
    }
    hold.release();
    return nullptr;
  }

  void insert(std::uint64_t key, T& object) {
    if (all_.empty() || 2 * (live_ + 1) > all_.back()->size()) {
      grow();
    }
    place(*all_.back(), key, object);
    ++live_;
  }

  void erase(std::uint64_t key) noexcept {
    Cell* const cell = all_.empty() ? nullptr : findCell(*all_.back(), key);
    if (cell == nullptr) {
      return;
    }
    cell->object.store(nullptr, std::memory_order_seq_cst);
    if (--live_ == 0) {  // Searches need not pass what is left behind any more.
      for (Cell& each : *all_.back()) {
        each.key.store(0, std::memory_order_release);
      }
    }
  }

 private:
  // A cell whose key is 0 was never used and ends a search; one without an object is free but does not end it.
  struct Cell {
    std::atomic<std::uint64_t> key{0};
    std::atomic<T*> object{nullptr};
  };
  using Cells = std::vector<Cell>;  // As many as a power of two.

  /** Where the search for a key begins. Keys are addresses or small numbers: only the high bits are well mixed. */
  static std::size_t startOf(std::uint64_t key) noexcept {
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    return static_cast<std::size_t>((key * kSpread) >> 32);
  }

  static Cell* findCell(Cells& cells, std::uint64_t key) noexcept {
    const std::size_t mask = cells.size() - 1;
    const std::size_t start = startOf(key);
    for (std::size_t i = 0; key != 0 && i <= mask; ++i) {
      Cell& cell = cells[(start + i) & mask];
      const std::uint64_t found = cell.key.load(std::memory_order_acquire);
      if (found == key && cell.object.load(std::memory_order_acquire) != nullptr) {
        return &cell;
      }
      if (found == 0) {
        break;
      }
    }
    return nullptr;
  }

  static void place(Cells& cells, std::uint64_t key, T& object) noexcept {
    const std::size_t mask = cells.size() - 1;
    for (std::size_t at = startOf(key);; ++at) {
      Cell& cell = cells[at & mask];
      if (cell.object.load(std::memory_order_relaxed) == nullptr) {
        cell.key.store(key, std::memory_order_release);
        cell.object.store(&object, std::memory_order_release);
        return;
      }
    }
  }

  void grow() {
    constexpr std::size_t kFirst = 32;
    auto larger = std::make_unique<Cells>(all_.empty() ? kFirst : 2 * all_.back()->size());
    if (!all_.empty()) {
      for (const Cell& cell : *all_.back()) {
        if (T* const object = cell.object.load(std::memory_order_relaxed)) {
          place(*larger, cell.key.load(std::memory_order_relaxed), *object);
        }
      }
    }
    all_.push_back(std::move(larger));
    current_.store(all_.back().get(), std::memory_order_release);
  }

  std::atomic<Cells*> current_{nullptr};
  std::vector<std::unique_ptr<Cells>> all_;  // The outgrown ones too: somebody may be searching them.
  std::size_t live_ = 0;
};

}  // namespace OVI
