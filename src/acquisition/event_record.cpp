// The record of a registered event, with the data and the text that it points at.
#include "event_record.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "core/bounded_copy.h"
#include "gentl/exceptions.h"

namespace OVI {

namespace {

constexpr std::size_t kLargestValue = std::size_t{16} << 20;

template<class T>
std::uint64_t numberAs(const void* bytes) noexcept {
  T value{};
  std::memcpy(&value, bytes, sizeof value);
  return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

}  // namespace

EventRecord::EventRecord(std::uint32_t kind, std::uint64_t moduleHandle, std::uint32_t moduleSelector,
                         std::size_t dataSize)
    : moduleHandle_(moduleHandle),
      eventData_(dataSize) {
  record_.kind = kind;
  record_.moduleHandle = moduleHandle;
  record_.moduleSelector = moduleSelector;
  record_.eventData = eventData_.data();
  record_.eventDataSize = eventData_.size();
}

void EventRecord::fill(const void* eventData, std::size_t size, std::uint64_t eventId, std::string value) {
  const std::lock_guard lock(mutex_);
  std::copy_n(static_cast<const char*>(eventData), std::min(size, eventData_.size()), eventData_.begin());
  value_ = std::move(value);
  record_.value = value_.data();
  record_.valueSize = value_.size();
  record_.eventID = eventId;
}

EventRecord& recordOf(const GenTLCpp::Event& event) noexcept {
  return *static_cast<EventRecord*>(event.attachment());
}

std::uint64_t eventIdOf(const GenTLCpp::Event& event, const void* data, std::size_t size) noexcept {
  std::array<char, 64> id{};
  std::size_t idSize = id.size();
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  if (GenTLCpp::isFailure(event.getDataInfo(data, size, EVENT_DATA_ID, &type, id.data(), &idSize))) {
    return 0;
  }
  switch (type) {
    case INFO_DATATYPE_STRING:
      id.back() = '\0';
      return std::strtoull(id.data(), nullptr, 16);
    case INFO_DATATYPE_INT16:
      return numberAs<std::int16_t>(id.data());
    case INFO_DATATYPE_INT32:
      return numberAs<std::int32_t>(id.data());
    default:
      return numberAs<std::int64_t>(id.data());  // What a shorter number leaves of the eight bytes is zero.
  }
}

std::string eventValueOf(const GenTLCpp::Event& event, const void* data, std::size_t size) {
  std::size_t valueSize = 0;
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  GC_ERROR status = event.getDataInfo(data, size, EVENT_DATA_VALUE, &type, nullptr, &valueSize);
  std::string value;
  if (!GenTLCpp::isFailure(status)) {
    value.resize(std::min(valueSize, kLargestValue));
    valueSize = value.size();
    status = event.getDataInfo(data, size, EVENT_DATA_VALUE, &type, value.data(), &valueSize);
  }
  if (isNoValue(status)) {
    return {};
  }
  GenTLCpp::checkGenTLError(status);
  value.resize(boundedText(value.data(), value.size()).size());
  return value;
}

}  // namespace OVI
