// Registered events: waiting for them, reading them, and ending waits from another thread.
#include "gentl/event.h"

#include <algorithm>
#include <utility>

#include "gentl/data_stream.h"
#include "gentl/exceptions.h"
#include "gentl/info_query.h"
#include "gentl/trace.h"

namespace GenTLCpp {

std::shared_ptr<Event> makeEvent(std::shared_ptr<BaseModule> module, EVENT_TYPE eventType, EVENT_HANDLE handle) {
  return std::make_shared<Event>(std::move(module), eventType, handle);
}

Event::Event(std::shared_ptr<BaseModule> module, EVENT_TYPE eventType, EVENT_HANDLE handle)
    : BaseModule(handle),
      parent_(std::move(module)),
      eventType_(eventType),
      functions_(parent_->getLibraryHandle()),
      moduleHandle_(parent_->getRawHandle()) {
  traceLine("Event()");
}

Event::~Event() {
  traceLine("~Event()");
  unregister();
}

void Event::requireOpenModule() const {
  if (!isAccessible()) {
    throw ClosedException("Module is closed, cannot get data");
  }
}

std::size_t Event::getData(void* buffer, std::size_t size, std::uint64_t timeout) {
  requireOpenModule();
  const Stay stay(*this, timeout);
  return wait(stay, buffer, size, timeout);
}

std::size_t Event::getData(const Stay& stay, void* buffer, std::size_t size, std::uint64_t timeout) {
  requireOpenModule();
  return wait(stay, buffer, size, timeout);
}

std::uint64_t Event::getDataNumericId(const void* buffer, std::size_t size) const {
  return queryValue<std::uint64_t>([&](INFO_DATATYPE* type, void* value, std::size_t* valueSize) {
    return getDataInfo(buffer, size, EVENT_DATA_NUMID, type, value, valueSize);
  });
}

std::size_t Event::getMaxDataSize() const {
  return queryValue<std::size_t>([&](INFO_DATATYPE* type, void* value, std::size_t* size) {
    return functions_.EventGetInfo(eventHandle(), EVENT_SIZE_MAX, type, value, size);
  });
}

void Event::flush() {
  checkGenTLError(functions_.EventFlush(eventHandle()));
}

void Event::kill() {
  checkGenTLError(functions_.EventKill(eventHandle()));
}

bool Event::killWaits() {
  const WaitGate::Call call(gate_);
  if (!call) {
    return false;
  }
  flush();
  GC_ERROR status = GC_ERR_SUCCESS;
  gate_.killWaits([&] {
    const GC_ERROR one = functions_.EventKill(eventHandle());
    status = one != GC_ERR_SUCCESS ? one : status;
    return one == GC_ERR_SUCCESS;
  });
  checkGenTLError(status);
  return true;
}

bool Event::endWaits() noexcept {
  const WaitGate::Kill kill = [this] { return sendKill(); };
  gate_.endWaits(kill);
  return gate_.drain(kill, kPatience);
}

bool Event::shutWaits() noexcept {
  const WaitGate::Kill kill = [this] { return sendKill(); };
  gate_.shut(kill);
  return gate_.drain(kill, kPatience);
}

bool Event::sendKill() noexcept {
  // Whoever unregisters waits for the waits to be over, but not for ever.
  return !isUnregistered() && functions_.EventKill(eventHandle()) == GC_ERR_SUCCESS;
}

Event::Stay::Stay(Event& event, std::uint64_t& timeout) : gate_(event.gate_) {
  switch (gate_.enter(ticket_, timeout)) {
    case WaitGate::Entry::In:
      return;
    case WaitGate::Entry::Shut:
      throw AbortException("The event is over.");
    case WaitGate::Entry::TimedOut:
      throw TimeoutException("The acquisition was being stopped all the time.");
  }
}

void Event::unregister() noexcept {
  OVI::Hold inside;  // Whoever closes the module waits, or does it in place of this.
  if (parent_->beginUse(inside)) {
    unregisterBeforeClose();
  }
}

void Event::unregisterBeforeClose() noexcept {
  if (!parent_->isClosed() && !unregistered_.exchange(true)) {
    static_cast<void>(functions_.GCUnregisterEvent(moduleHandle_, eventType_));
  }
}

std::size_t Event::wait(const Stay& stay, void* buffer, std::size_t size, std::uint64_t timeout) {
  for (;;) {
    std::size_t written = size;
    const GC_ERROR status = functions_.EventGetData(eventHandle(), buffer, &written, timeout);
    if (status == GC_ERR_ABORT && !gate_.abortIsMine(stay.ticket_, [this] { return sendKill(); })) {
      continue;
    }
    checkGenTLError(status);
    return std::min(written, size);
  }
}

NewBufferEvent::NewBufferEvent(const std::shared_ptr<DataStream>& stream, EVENT_HANDLE handle)
    : Event(stream, EVENT_NEW_BUFFER, handle) {
  traceLine("NewBufferEvent()");
}

NewBufferEvent::~NewBufferEvent() {
  traceLine("~NewBufferEvent()");
}

std::shared_ptr<DataStream> NewBufferEvent::getStream() const {
  return std::static_pointer_cast<DataStream>(getParent());
}

EVENT_NEW_BUFFER_DATA NewBufferEvent::waitForBuffer(std::uint64_t timeout) {
  const Stay stay(*this, timeout);
  return waitForBuffer(stay, timeout);
}

EVENT_NEW_BUFFER_DATA NewBufferEvent::waitForBuffer(const Stay& stay, std::uint64_t timeout) {
  EVENT_NEW_BUFFER_DATA data{};
  wait(stay, &data, sizeof(data), timeout);
  return data;
}

}  // namespace GenTLCpp
