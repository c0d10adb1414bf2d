// The record of a registered event, with the data and the text that it points at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "gentl/event.h"
#include "ovi/ovi.h"

namespace OVI {

/** Belongs to its event and goes with it. */
class EventRecord {
 public:
  /** @param dataSize  the most that the event's data ever take */
  EventRecord(std::uint32_t kind, std::uint64_t moduleHandle, std::uint32_t moduleSelector, std::size_t dataSize);
  EventRecord(const EventRecord&) = delete;
  EventRecord& operator=(const EventRecord&) = delete;

  /** What the application sees. One thread at a time may wait for the event and read it. */
  oviEventData* data() noexcept { return &record_; }
  std::uint64_t moduleHandle() const noexcept { return moduleHandle_; }
  std::size_t dataSize() const noexcept { return eventData_.size(); }

  /** Takes over what an event brought. */
  void fill(const void* eventData, std::size_t size, std::uint64_t eventId, std::string value);

 private:
  const std::uint64_t moduleHandle_;  // The application can write to the record; this stays.
  std::mutex mutex_;
  std::vector<char> eventData_;
  std::string value_;
  oviEventData record_{};
};

/** The record that registration attached to the event. */
EventRecord& recordOf(const GenTLCpp::Event& event) noexcept;

/** The event's ID: a number as it is, a text read as a hexadecimal number, 0 when the producer tells none. */
std::uint64_t eventIdOf(const GenTLCpp::Event& event, const void* data, std::size_t size) noexcept;

/** The event's value as text; empty when it has none. @throws GenTLException */
std::string eventValueOf(const GenTLCpp::Event& event, const void* data, std::size_t size);

/** Whether a status says that there is no such value, and not that something went wrong. */
constexpr bool isNoValue(GC_ERROR status) noexcept {
  return status == GC_ERR_NOT_IMPLEMENTED || status == GC_ERR_NOT_AVAILABLE || status == GC_ERR_NO_DATA ||
         status == GC_ERR_INVALID_PARAMETER;
}

}  // namespace OVI
