// Who waits for an event inside a producer, so that others can end these waits and know when they are over.
#include "gentl/wait_gate.h"

namespace GenTLCpp {

void WaitGate::leaveEnded() noexcept {
  // Notified under the lock: whoever drains may destroy the gate as soon as it can see that all have left.
  const std::lock_guard lock(mutex_);
  if (--ended_ == 0) {
    left_.notify_all();
  }
}

bool WaitGate::abortIsMine(Ticket ticket, const Kill& kill) {
  {
    const std::lock_guard lock(mutex_);
    const bool wasOwed = owed_ != 0;
    if (wasOwed) {
      --owed_;
    }
    if (ticketOf(state_.load(std::memory_order_acquire)) != ticket || !wasOwed) {
      return true;
    }
    if (owed_ >= ended_) {
      return false;
    }
    ++owed_;
  }
  send(kill);
  return false;
}

void WaitGate::send(const Kill& kill) {
  if (!kill()) {
    const std::lock_guard lock(mutex_);
    owed_ -= owed_ != 0 ? 1U : 0U;
  }
}

std::uint32_t WaitGate::end(const Kill& kill, std::uint64_t flags) {
  std::uint32_t waiters = 0;
  {
    const std::lock_guard lock(mutex_);
    std::uint64_t state = state_.load(std::memory_order_relaxed);
    std::uint64_t ended = 0;
    do {
      // The count of endings may wrap into the flag's bit: it is cut there, like a ticket.
      ended = ticketOf(state + kEnding) | (state & kShut) | flags;
    } while (!state_.compare_exchange_weak(state, ended, std::memory_order_acq_rel, std::memory_order_relaxed));
    waiters = static_cast<std::uint32_t>(state & kWaiters);
    ended_ += waiters;
    owed_ += waiters;
  }
  for (std::uint32_t i = 0; i < waiters; ++i) {
    send(kill);
  }
  return waiters;
}

bool WaitGate::drain(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  return left_.wait_for(lock, limit, [this] { return ended_ == 0; });
}

}  // namespace GenTLCpp
