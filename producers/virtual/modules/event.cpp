// Waiting, killing and the entries of queued events.
#include "modules/event.h"

#include <algorithm>
#include <cstring>

#include "modules/last_error.h"

namespace vcam {

namespace {

constexpr std::uint32_t kEntryMagic = 0x564D4345;

// Time-outs beyond this never end in practice and would overflow a time point.
constexpr std::uint64_t kLongestTimeoutMs = std::uint64_t{1000} * 60 * 60 * 24 * 365;

}  // namespace

GC_ERROR Event::getData(void* buffer, std::size_t* size, std::uint64_t timeoutMs) {
  require(size, "the size");
  requireIfGiven(buffer, "the buffer");
  std::unique_lock lock(mutex_);
  if (!ending_ && kills_ == 0 && countLocked() == 0 && timeoutMs != 0) {
    const std::uint64_t ticket = nextTicket_++;
    const auto aimedAtMe = [&] { return aimedKills_ != 0 && ticket < killTicket_; };
    const auto over = [&] { return ending_ || aimedAtMe() || countLocked() != 0; };
    ++waiters_;
    if (timeoutMs >= kLongestTimeoutMs) {
      wake_.wait(lock, over);
    } else {
      wake_.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), over);
    }
    --waiters_;
    if (!ending_ && aimedAtMe()) {
      --aimedKills_;
      if (countLocked() != 0) {
        wakeOneLocked();
      }
      return rememberError(GC_ERR_ABORT, "EventGetData", "the wait was ended by EventKill");
    }
  }
  if (ending_) {
    return rememberError(GC_ERR_ABORT, "EventGetData", "the event was unregistered");
  }
  if (kills_ != 0) {
    --kills_;
    return rememberError(GC_ERR_ABORT, "EventGetData", "the wait was ended by EventKill");
  }
  if (countLocked() == 0) {
    return rememberError(GC_ERR_TIMEOUT, "EventGetData", "no entry came in time");
  }
  const std::size_t bytes = nextSizeLocked();
  if (buffer != nullptr && *size < bytes) {
    return rememberError(GC_ERR_BUFFER_TOO_SMALL, "EventGetData", "the buffer is smaller than the entry");
  }
  popLocked(buffer);
  *size = bytes;
  return GC_ERR_SUCCESS;
}

void Event::flush() {
  const std::lock_guard lock(mutex_);
  clearLocked();
}

void Event::kill() {
  const std::lock_guard lock(mutex_);
  if (aimedKills_ < waiters_) {
    ++aimedKills_;
    killTicket_ = nextTicket_;
    wake_.notify_all();
  } else {
    ++kills_;
  }
}

void Event::endWaits() {
  const std::lock_guard lock(mutex_);
  ending_ = true;
  wake_.notify_all();
}

Info Event::info(EVENT_INFO_CMD command) {
  const std::lock_guard lock(mutex_);
  switch (command) {
    case EVENT_EVENT_TYPE:
      return Info::int32(type_);
    case EVENT_NUM_IN_QUEUE:
      return Info::size(countLocked());
    case EVENT_NUM_FIRED:
      return Info::uint64(firedLocked());
    case EVENT_SIZE_MAX:
      return Info::size(maximumEntrySize());
    case EVENT_INFO_DATA_SIZE_MAX:
      return Info::size(maximumValueSize());
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "an event has no info ", command);
  }
}

QueuedEvent::QueuedEvent(EVENT_TYPE type) : Event(type, queueMutex_), ring_(kDepth) {}

void QueuedEvent::push(const Occurrence& occurrence) {
  const std::string_view name = occurrence.name.substr(0, kMaximumName);
  const auto value = occurrence.value.first(std::min(occurrence.value.size(), kMaximumValue));
  const Header header = {kEntryMagic, type(), occurrence.number, static_cast<std::uint32_t>(name.size()),
                         static_cast<std::uint32_t>(value.size())};
  const std::lock_guard lock(queueMutex_);
  if (count_ == kDepth) {
    first_ = (first_ + 1) % kDepth;
    --count_;
  }
  std::byte* to = ring_[(first_ + count_) % kDepth].data();
  std::memcpy(to, &header, sizeof(header));
  std::copy_n(reinterpret_cast<const std::byte*>(name.data()), name.size(), to + sizeof(header));
  std::ranges::copy(value, to + sizeof(header) + name.size());
  ++count_;
  ++fired_;
  wakeOneLocked();
}

QueuedEvent::Header QueuedEvent::headerOf(const Entry& entry) {
  Header header{};
  std::memcpy(&header, entry.data(), sizeof(header));
  return header;
}

std::size_t QueuedEvent::nextSizeLocked() const {
  const Header header = headerOf(ring_[first_]);
  return sizeof(header) + header.nameSize + header.valueSize;
}

void QueuedEvent::popLocked(void* target) {
  if (target != nullptr) {
    std::memcpy(target, ring_[first_].data(), nextSizeLocked());
  }
  first_ = (first_ + 1) % kDepth;
  --count_;
}

Info QueuedEvent::dataInfo(std::span<const std::byte> entry, EVENT_DATA_INFO_CMD command) const {
  Header header{};
  if (entry.size() >= sizeof(header)) {
    std::memcpy(&header, entry.data(), sizeof(header));
  }
  if (header.magic != kEntryMagic || header.type != type() ||
      entry.size() - sizeof(header) < std::uint64_t{header.nameSize} + header.valueSize) {
    fail(GC_ERR_INVALID_PARAMETER, "the data are not an entry of this event");
  }
  const auto* text = reinterpret_cast<const char*>(entry.data() + sizeof(header));
  const std::string name(text, header.nameSize);
  const std::string value(text + header.nameSize, header.valueSize);
  const bool isError = type() == EVENT_ERROR;
  const bool isFeature = type() == EVENT_FEATURE_INVALIDATE || type() == EVENT_FEATURE_CHANGE;
  switch (command) {
    case EVENT_DATA_ID: {
      if (isError) {
        return Info::int32(static_cast<std::int32_t>(header.number));
      }
      if (isFeature) {
        return Info::text(name);
      }
      const std::string digits = hexadecimal(header.number, 4);
      return Info::text(digits.size() % 2 == 0 ? digits : "0" + digits);
    }
    case EVENT_DATA_VALUE:
      if (type() == EVENT_FEATURE_INVALIDATE) {
        fail(GC_ERR_NOT_AVAILABLE, "an invalidation carries no value");
      }
      return isError || isFeature ? Info::text(value) : Info::bytes(value);
    case EVENT_DATA_NUMID:
      if (isFeature) {
        fail(GC_ERR_NOT_AVAILABLE, "a feature has no number");
      }
      return Info::uint64(header.number);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "event data have no info ", command);
  }
}

void* EventSource::add(std::unique_ptr<Event> event) {
  const std::lock_guard lock(mutex_);
  auto& place = events_[static_cast<std::size_t>(event->type())];
  if (place) {
    fail(GC_ERR_RESOURCE_IN_USE, "event type ", event->type(), " is already registered on this module");
  }
  HandleTable::insert(*event);
  place = std::move(event);
  return place->handle();
}

void EventSource::remove(EVENT_TYPE type) {
  std::unique_ptr<Event> event;
  if (type >= 0 && type < static_cast<EVENT_TYPE>(kTypes)) {
    const std::lock_guard lock(mutex_);
    event = std::move(events_[static_cast<std::size_t>(type)]);
  }
  if (!event) {
    fail(GC_ERR_NOT_INITIALIZED, "event type ", type, " is not registered on this module");
  }
  HandleTable::claim(event->handle(), kEvent);
  event->endWaits();
  HandleTable::drain(event->handle());
  event->flush();
  HandleTable::erase(event->handle());
}

void EventSource::removeAll() {
  for (EVENT_TYPE type = 0; type < static_cast<EVENT_TYPE>(kTypes); ++type) {
    if (has(type)) {
      remove(type);
    }
  }
}

bool EventSource::has(EVENT_TYPE type) {
  const std::lock_guard lock(mutex_);
  return events_[static_cast<std::size_t>(type)] != nullptr;
}

void EventSource::fire(EVENT_TYPE type, const Occurrence& occurrence) {
  const std::lock_guard lock(mutex_);
  if (auto* event = static_cast<QueuedEvent*>(events_[static_cast<std::size_t>(type)].get())) {
    event->push(occurrence);
  }
}

}  // namespace vcam
