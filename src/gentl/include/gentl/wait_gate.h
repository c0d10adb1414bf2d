// Who waits for an event inside a producer, so that others can end these waits and know when they are over.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

namespace GenTLCpp {

/** How long whoever ends waits waits for them to be over. */
inline constexpr std::chrono::seconds kPatience{2};

/**
 * Counts the threads that wait for one event.
 *
 * A producer's kill ends one wait, or the next one when nobody waits. So a kill that an ending sent to a thread and
 * that the thread did not need, because data came first, would hit a later wait, which nobody wanted to end. The gate
 * sends one kill to each thread that waits, remembers the kills that no wait has met yet, and lets a later wait that
 * meets one go on. Kills of the application are counted apart: one that came first to a thread which an ending reached
 * as well is used up there, and none is ever taken for a left-over, whatever the producer did with the others. Some
 * producers remember one kill only: a thread that meets a kill of the application sends one on to the others.
 *
 * Coming and going cost one atomic exchange each and take no lock, unless somebody ends waits at that moment.
 */
class WaitGate {
 public:
  /** Sends one kill. @return whether the producer took it */
  using Kill = std::function<bool()>;
  using Ticket = std::uint64_t;

  enum class Entry { In, Shut, TimedOut };

  /**
   * Who comes while the gate is held waits for at most its time-out.
   *
   * @param timeout  milliseconds, GENTL_INFINITE for ever; less by what was spent before the gate
   * @return whether the thread is in; only then the ticket is to be given back
   */
  Entry enter(Ticket& ticket, std::uint64_t& timeout) noexcept {
    std::uint64_t state = state_.load(std::memory_order_relaxed);
    do {
      while ((state & (kShut | kHeld)) != 0) {
        if ((state & kShut) != 0) {
          return Entry::Shut;
        }
        if (!waitUntilLetIn(timeout)) {
          return Entry::TimedOut;
        }
        state = state_.load(std::memory_order_relaxed);
      }
    } while (!state_.compare_exchange_weak(state, state + 1, std::memory_order_acq_rel, std::memory_order_relaxed));
    ticket = ticketOf(state);
    return Entry::In;
  }
  void leave(Ticket ticket) noexcept {
    std::uint64_t state = state_.load(std::memory_order_relaxed);
    while (ticketOf(state) == ticket) {
      if (state_.compare_exchange_weak(state, state - 1, std::memory_order_acq_rel, std::memory_order_relaxed)) {
        return;
      }
    }
    leaveEnded();
  }

  /** A call about the event that is no wait. Whoever drains the gate waits for its end as well. */
  class Call {
   public:
    explicit Call(WaitGate& gate) noexcept : gate_(gate.beginCall() ? &gate : nullptr) {}
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    ~Call() {
      if (gate_ != nullptr) {
        gate_->endCall();
      }
    }
    /** @return false when the gate is shut, and the call must not be made */
    explicit operator bool() const noexcept { return gate_ != nullptr; }

   private:
    WaitGate* gate_;
  };

  /** For the application, within a call: ends the waits that are under way, or else the next. */
  void killWaits(const Kill& kill);

  /** Who comes waits until it is let in, its time is over, or the gate is shut; as often to be let in as to be held. */
  void hold() noexcept;
  void letIn() noexcept;

  /** Asked by a wait that the producer aborted: whether the abort was meant for it. If not, the wait goes on.
   * @param kill  sends one more kill, for a thread whose kill this wait has met */
  bool abortIsMine(Ticket ticket, const Kill& kill);

  /** Ends the waits that are under way; later ones are not touched. @return how many kills were sent */
  std::uint32_t endWaits(const Kill& kill) { return end(kill, 0); }
  /** The same, and nobody gets in any more. */
  std::uint32_t shut(const Kill& kill) { return end(kill, kShut); }

  /** Waits until every thread whose wait was ended has left, or until the time is over. A producer may have lost a
   * kill: some end one wait however many kills they were sent. So kills are sent again to who does not leave.
   * @return whether they all left */
  bool drain(const Kill& kill, std::chrono::milliseconds limit);

 private:
  // The state: whether the gate is shut or who comes is held, the number of endings so far, and how many wait since the
  // last of them.
  static constexpr std::uint64_t kShut = std::uint64_t{1} << 63;
  static constexpr std::uint64_t kHeld = std::uint64_t{1} << 62;
  static constexpr std::uint64_t kEnding = std::uint64_t{1} << 32;
  static constexpr std::uint64_t kWaiters = kEnding - 1;

  static Ticket ticketOf(std::uint64_t state) noexcept { return state & ~(kShut | kHeld | kWaiters); }
  bool waitUntilLetIn(std::uint64_t& timeout) noexcept;
  void leaveEnded() noexcept;
  bool beginCall() noexcept;
  void endCall() noexcept;
  std::uint32_t end(const Kill& kill, std::uint64_t flags);
  void send(const Kill& kill);

  std::atomic<std::uint64_t> state_{0};

  std::mutex mutex_;
  std::condition_variable left_;
  std::condition_variable letIn_;
  std::uint32_t holds_ = 0;
  std::uint32_t ended_ = 0;        // Threads whose wait was ended and that have not left yet.
  std::uint32_t calls_ = 0;        // Under way.
  std::uint32_t owed_ = 0;         // Kills that endings sent and that no wait has met yet.
  std::uint32_t asked_ = 0;        // Kills of the application that no wait has met yet.
  std::uint32_t askedBefore_ = 0;  // The same, from before the last ending.
};

}  // namespace GenTLCpp
