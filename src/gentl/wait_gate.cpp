// Who waits for an event inside a producer, so that others can end these waits and know when they are over.
#include "gentl/wait_gate.h"

#include <algorithm>
#include <utility>

namespace GenTLCpp {

namespace {

/** How long a wait may take to end before its kill counts as lost. */
constexpr std::chrono::milliseconds kKillAgain{100};

/** Longer ones, of more than 30 years, count as endless: a clock could not tell their end. */
constexpr std::uint64_t kLongestTimeout = 1'000'000'000'000;

/** @return whether there was one left */
bool takeOne(std::uint32_t& count) noexcept {
  const bool isThere = count != 0;
  count -= isThere ? 1U : 0U;
  return isThere;
}

}  // namespace

void WaitGate::leaveEnded() noexcept {
  // Notified under the lock: whoever drains may destroy the gate as soon as it can see that all have left.
  const std::lock_guard lock(mutex_);
  if (--ended_ == 0) {
    left_.notify_all();
  }
}

void WaitGate::hold() noexcept {
  const std::lock_guard lock(mutex_);
  ++holds_;
  state_.fetch_or(kHeld, std::memory_order_acq_rel);
}

void WaitGate::letIn() noexcept {
  const std::lock_guard lock(mutex_);
  if (--holds_ == 0) {
    state_.fetch_and(~kHeld, std::memory_order_acq_rel);
    letIn_.notify_all();
  }
}

/** @return whether it is worth to look at the gate again before the time-out is over */
bool WaitGate::waitUntilLetIn(std::uint64_t& timeout) noexcept {
  std::unique_lock lock(mutex_);
  const auto isOver = [this] {
    const std::uint64_t state = state_.load(std::memory_order_acquire);
    return (state & kHeld) == 0 || (state & kShut) != 0;
  };
  if (timeout > kLongestTimeout) {
    letIn_.wait(lock, isOver);
    return true;
  }
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
  if (!letIn_.wait_until(lock, end, isOver)) {
    return false;
  }
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
  timeout = static_cast<std::uint64_t>(std::max<std::int64_t>(left, 0));
  return true;
}

bool WaitGate::beginCall() noexcept {
  const std::lock_guard lock(mutex_);
  const bool isOpen = (state_.load(std::memory_order_relaxed) & kShut) == 0;
  calls_ += isOpen ? 1U : 0U;
  return isOpen;
}

void WaitGate::endCall() noexcept {
  const std::lock_guard lock(mutex_);
  if (--calls_ == 0) {
    left_.notify_all();
  }
}

void WaitGate::killWaits(const Kill& kill) {
  std::uint32_t kills = 0;
  {
    const std::lock_guard lock(mutex_);
    kills = std::max(static_cast<std::uint32_t>(state_.load(std::memory_order_acquire) & kWaiters), 1U);
    asked_ += kills;
  }
  for (std::uint32_t i = 0; i < kills; ++i) {
    if (!kill()) {
      const std::lock_guard lock(mutex_);
      static_cast<void>(takeOne(asked_) || takeOne(askedBefore_));
    }
  }
}

bool WaitGate::abortIsMine(Ticket ticket, const Kill& kill) {
  bool isMine = true;
  {
    const std::lock_guard lock(mutex_);
    const std::uint64_t state = state_.load(std::memory_order_acquire);
    // A wait that was ended leaves the kills which came after its end to those that they are for.
    if (ticketOf(state) != ticket) {
      static_cast<void>(takeOne(askedBefore_) || takeOne(owed_) || takeOne(asked_));
      return true;
    }
    if (takeOne(asked_) || takeOne(askedBefore_)) {
      // The next one that the same kill was for gets it from here, should the producer have forgotten it.
      if (asked_ == 0 || (state & kWaiters) < 2) {
        return true;
      }
    } else {
      isMine = !takeOne(owed_);
      if (isMine || owed_ >= ended_) {
        return isMine;
      }
    }
    ++owed_;
  }
  send(kill);
  return isMine;
}

void WaitGate::send(const Kill& kill) {
  if (!kill()) {
    const std::lock_guard lock(mutex_);
    takeOne(owed_);
  }
}

std::uint32_t WaitGate::end(const Kill& kill, std::uint64_t flags) {
  const Call call(*this);
  if (!call) {
    return 0;  // Whoever shut the gate has ended all waits.
  }
  std::uint32_t waiters = 0;
  {
    const std::lock_guard lock(mutex_);
    std::uint64_t state = state_.load(std::memory_order_relaxed);
    std::uint64_t ended = 0;
    do {
      // The count of endings may wrap into the flags' bits: it is cut there, like a ticket.
      ended = ticketOf(state + kEnding) | (state & (kShut | kHeld)) | flags;
    } while (!state_.compare_exchange_weak(state, ended, std::memory_order_acq_rel, std::memory_order_relaxed));
    waiters = static_cast<std::uint32_t>(state & kWaiters);
    ended_ += waiters;
    owed_ += waiters;
    askedBefore_ += std::exchange(asked_, 0);
  }
  letIn_.notify_all();
  for (std::uint32_t i = 0; i < waiters; ++i) {
    send(kill);
  }
  return waiters;
}

bool WaitGate::drain(const Kill& kill, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  std::unique_lock lock(mutex_);
  const auto haveLeft = [this] { return ended_ == 0 && calls_ == 0; };
  while (!left_.wait_until(lock, std::min(end, std::chrono::steady_clock::now() + kKillAgain), haveLeft)) {
    if (std::chrono::steady_clock::now() >= end) {
      return false;
    }
    if (ended_ == 0) {
      continue;
    }
    ++owed_;
    ++calls_;
    lock.unlock();
    send(kill);
    lock.lock();
    --calls_;
    left_.notify_all();  // Others may drain as well.
  }
  return true;
}

}  // namespace GenTLCpp
