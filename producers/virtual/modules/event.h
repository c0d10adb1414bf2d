// Registered events: queues that threads wait on, with waits that can be ended one by one.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

#include "modules/handle_table.h"
#include "modules/info.h"

namespace vcam {

// A wait on a queue. The queue itself belongs to the derived class; every *Locked method runs under the queue's mutex.
class Event : public Object {
 public:
  Event(EVENT_TYPE type, std::mutex& queueMutex) : Object(kEvent), type_(type), mutex_(queueMutex) {}

  EVENT_TYPE type() const { return type_; }

  // Removes the oldest entry and copies it out. Timeout and Abort are normal ends and come back as codes, with a text.
  GC_ERROR getData(void* buffer, std::size_t* size, std::uint64_t timeoutMs);
  void flush();
  // Ends one wait: of a thread that waits now, otherwise the next one.
  void kill();
  // Ends all waits, now and later; the event is about to go.
  void endWaits();

  Info info(EVENT_INFO_CMD command);
  // Takes an entry that getData() handed out apart.
  virtual Info dataInfo(std::span<const std::byte> entry, EVENT_DATA_INFO_CMD command) const = 0;

 protected:
  virtual std::size_t countLocked() const = 0;
  virtual std::uint64_t firedLocked() const = 0;
  virtual std::size_t nextSizeLocked() const = 0;
  // Copies the oldest entry, unless the target is null, and removes it.
  virtual void popLocked(void* target) = 0;
  virtual void clearLocked() = 0;
  virtual std::size_t maximumEntrySize() const = 0;
  virtual std::size_t maximumValueSize() const = 0;

  // To be called after an entry was added.
  void wakeOneLocked() {
    if (waiters_ != 0) {
      wake_.notify_one();
    }
  }

 private:
  EVENT_TYPE type_;
  std::mutex& mutex_;
  std::condition_variable wake_;
  std::uint32_t waiters_ = 0;
  std::uint64_t nextTicket_ = 0;  // of the next thread that begins to wait
  std::uint32_t aimedKills_ = 0;  // each ends one wait with a ticket below killTicket_
  std::uint64_t killTicket_ = 0;
  std::uint64_t kills_ = 0;  // each ends one wait to come
  bool ending_ = false;
};

// One occurrence of anything but a new buffer.
struct Occurrence {
  std::uint64_t number = 0;  // the event number, or the error code
  std::string_view name;     // the feature's name
  std::span<const std::byte> value;
};

// An event with a queue of its own, for all types but new buffers.
class QueuedEvent final : public Event {
 public:
  static constexpr std::size_t kMaximumName = 128;
  static constexpr std::size_t kMaximumValue = 1024;
  // Older entries give way when more than these are waiting.
  static constexpr std::size_t kDepth = 128;

  explicit QueuedEvent(EVENT_TYPE type);

  void push(const Occurrence& occurrence);
  Info dataInfo(std::span<const std::byte> entry, EVENT_DATA_INFO_CMD command) const override;

 private:
  // How an entry begins; the name and the value follow.
  struct Header {
    std::uint32_t magic;
    std::int32_t type;
    std::uint64_t number;
    std::uint32_t nameSize;
    std::uint32_t valueSize;
  };
  using Entry = std::array<std::byte, sizeof(Header) + kMaximumName + kMaximumValue>;

  std::size_t countLocked() const override { return count_; }
  std::uint64_t firedLocked() const override { return fired_; }
  std::size_t nextSizeLocked() const override;
  void popLocked(void* target) override;
  void clearLocked() override { count_ = 0; }
  std::size_t maximumEntrySize() const override { return sizeof(Entry); }
  std::size_t maximumValueSize() const override { return kMaximumValue + 1; }  // A text has a NUL.

  static Header headerOf(const Entry& entry);

  std::mutex queueMutex_;
  std::vector<Entry> ring_;
  std::size_t first_ = 0;
  std::size_t count_ = 0;
  std::uint64_t fired_ = 0;
};

// What a module can register and fire.
class EventSource {
 public:
  EventSource() = default;
  EventSource(const EventSource&) = delete;
  EventSource& operator=(const EventSource&) = delete;
  ~EventSource() = default;

  // Takes the event of a type; at most one of each.
  void* add(std::unique_ptr<Event> event);
  // Ends the event's waits and takes it away.
  void remove(EVENT_TYPE type);
  void removeAll();
  bool has(EVENT_TYPE type);

  // For all types but new buffers; nothing happens when nobody registered the type.
  void fire(EVENT_TYPE type, const Occurrence& occurrence);

 private:
  static constexpr std::size_t kTypes = EVENT_MODULE + 1;

  std::mutex mutex_;
  std::array<std::unique_ptr<Event>, kTypes> events_;
};

}  // namespace vcam
