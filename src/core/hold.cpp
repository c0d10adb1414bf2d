// Keeping an object alive for the length of a call, without a lock and without counting.
#include "core/hold.h"

#include <algorithm>
#include <bit>
#include <condition_variable>
#include <deque>
#include <mutex>

#include "platform/platform.h"

namespace OVI {

namespace {

using detail::HoldBlock;

/** All blocks, and what waits for somebody to let go. Not destroyed: threads may outlive main. */
struct Holds {
  std::mutex mutex;
  std::deque<HoldBlock> blocks;  // Of threads that are gone, too, until others take them.
  Retired retired;
  std::size_t watchers = 0;
  std::condition_variable released;

  void updateAttention() const noexcept {
    detail::holdSwitches.attention.store(!retired.empty() || watchers != 0, std::memory_order_seq_cst);
  }
};

Holds& holds() noexcept {
  static Holds& all = *new Holds;  // NOLINT(bugprone-unhandled-exception-at-new): without it nothing can go on.
  return all;
}

const bool kOrdersOthers = detail::holdSwitches.ordersOthers = platform::prepareOrdering();

/** The block that this thread takes places in; before it, those that were full. */
thread_local constinit HoldBlock* currentBlock = nullptr;

/** Gives a thread's blocks back at its end. */
struct BlocksOfThread {
  BlocksOfThread() = default;
  BlocksOfThread(const BlocksOfThread&) = delete;
  BlocksOfThread& operator=(const BlocksOfThread&) = delete;
  ~BlocksOfThread() {
    const std::lock_guard lock(holds().mutex);
    for (HoldBlock* block = std::exchange(currentBlock, nullptr); block != nullptr; block = block->previous) {
      block->taken = false;
    }
  }
};

bool isFull(const HoldBlock& block) noexcept {
  return block.used == (std::uint32_t{1} << HoldBlock::kPlaces) - 1;
}

/** A block with room, once the current one is full or there is none. */
HoldBlock* anotherBlock() noexcept {
  for (HoldBlock* block = currentBlock; block != nullptr; block = block->previous) {
    if (!isFull(*block)) {
      return block;
    }
  }
  static thread_local BlocksOfThread atEnd;
  static_cast<void>(&atEnd);
  Holds& all = holds();
  const std::lock_guard lock(all.mutex);
  auto free = std::ranges::find_if(all.blocks, [](const HoldBlock& block) { return !block.taken; });
  HoldBlock& block = free != all.blocks.end() ? *free : all.blocks.emplace_back();
  block.taken = true;
  block.previous = currentBlock;
  currentBlock = &block;
  return &block;
}

/** With the lock held. */
bool isHeld(const Holds& all, const void* object, bool byOthersOnly) noexcept {
  const auto isMine = [](const HoldBlock& block) {
    const HoldBlock* mine = currentBlock;
    while (mine != nullptr && mine != &block) {
      mine = mine->previous;
    }
    return mine != nullptr;
  };
  return std::ranges::any_of(all.blocks, [&](const HoldBlock& block) {
    const bool holds = std::ranges::any_of(
        block.places, [&](const auto& place) { return place.load(std::memory_order_seq_cst) == object; });
    return holds && !(byOthersOnly && isMine(block));
  });
}

/** With the lock held: takes out what nobody holds. */
Retired takeUnheld(Holds& all) noexcept {
  Retired unheld;
  for (auto share = all.retired.begin(); share != all.retired.end();) {
    const auto next = std::next(share);
    if (!isHeld(all, share->get(), false)) {
      unheld.splice(unheld.end(), all.retired, share);
    }
    share = next;
  }
  return unheld;
}

}  // namespace

void Hold::take() noexcept {
  HoldBlock* block = currentBlock;
  if (block == nullptr || isFull(*block)) {
    block = anotherBlock();
  }
  place_ = static_cast<std::uint32_t>(std::countr_one(block->used));
  block->used |= std::uint32_t{1} << place_;
  block_ = block;
}

void Hold::attend(const void* object) noexcept {
  Retired unheld;  // Destroyed without the lock: modules end by calling producers and the library.
  Holds& all = holds();
  const std::lock_guard lock(all.mutex);
  if (all.watchers != 0) {
    all.released.notify_all();
  }
  const bool isRetired = std::ranges::any_of(all.retired, [&](const auto& share) { return share.get() == object; });
  if (isRetired) {
    unheld = takeUnheld(all);
    all.updateAttention();
  }
}

void retire(Retired shares) noexcept {
  if (shares.empty()) {
    return;
  }
  Retired unheld;
  Holds& all = holds();
  const std::lock_guard lock(all.mutex);
  all.retired.splice(all.retired.end(), shares);
  all.updateAttention();
  // From here on every thread either shows what it holds or sees that it has to attend when it lets go.
  platform::orderAllThreads();
  unheld = takeUnheld(all);
  all.updateAttention();
}

bool waitUntilUnused(const void* object, std::chrono::milliseconds limit) noexcept {
  Holds& all = holds();
  std::unique_lock lock(all.mutex);
  ++all.watchers;
  all.updateAttention();
  platform::orderAllThreads();
  const bool isUnused = all.released.wait_for(lock, limit, [&] { return !isHeld(all, object, true); });
  --all.watchers;
  all.updateAttention();
  return isUnused;
}

}  // namespace OVI
