// A data stream of a device, and the operations on its buffers.
#include "gentl/data_stream.h"

#include <cstdio>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>

#include "gentl/buffer.h"
#include "gentl/event.h"
#include "gentl/info_query.h"

namespace GenTLCpp {

namespace {

constexpr ModuleTexts kStreamTexts = {"Device is closed, cannot access DataStream",
                                      "Data stream is closed, cannot return handle"};

std::int64_t signedCounter(std::uint64_t value) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
  if (value > static_cast<std::uint64_t>(kMax)) {
    throw std::runtime_error("Value " + std::to_string(value) + " exceeds max (" + std::to_string(kMax) + ")");
  }
  return static_cast<std::int64_t>(value);
}

}  // namespace

DataStream::DataStream(const std::shared_ptr<Device>& device, LibraryHandle library, DS_HANDLE handle, std::string id)
    : OpenModule(device, library, handle, kStreamTexts),
      id_(std::move(id)) {
  traceLine("DataStream()");
}

DataStream::~DataStream() {
  traceLine("~DataStream()");
  close();
}

GC_ERROR DataStream::closeModule() {
  if (!isClosed()) {
    traceLine("DSClose()");
  }
  return OpenModule::closeModule();
}

std::shared_ptr<Buffer> DataStream::allocAndAnnounceBuffer(std::size_t size, void* userData) {
  BUFFER_HANDLE buffer = nullptr;
  checkGenTLError(functions().DSAllocAndAnnounceBuffer(getHandle(), size, userData, &buffer));
  return buffer != nullptr ? std::make_shared<Buffer>(sharedAs<DataStream>(), buffers_.add(buffer, userData)) : nullptr;
}

void* DataStream::revokeBuffer(const Buffer& buffer) {
  void* memory = nullptr;
  void* userData = nullptr;
  checkGenTLError(functions().DSRevokeBuffer(getHandle(), buffer.getRawHandle(), &memory, &userData));
  buffers_.remove(buffer.getRawHandle());
  return userData;
}

GC_ERROR DataStream::queueBuffer(const Buffer& buffer, bool clearFirst) {
  if (clearFirst) {
    void* base = buffer.getBase();
    const std::size_t size = buffer.getSize();
    if (base != nullptr) {
      std::puts("clearing buffer");
      std::memset(base, 0, size);
    }
  }
  return queueBuffer(buffer.getRawHandle());
}

GC_ERROR DataStream::queueBuffer(BUFFER_HANDLE buffer) {
  return functions().DSQueueBuffer(getHandle(), buffer);
}

bool DataStream::shutUses() noexcept {
  return BaseModule::shutUses() && OVI::waitUntilUnused(static_cast<const BaseModule*>(this), kPatience);
}

GC_ERROR DataStream::flushQueue(ACQ_QUEUE_TYPE operation) {
  return functions().DSFlushQueue(getHandle(), operation);
}

GC_ERROR DataStream::startAcquisition(ACQ_START_FLAGS flags, std::uint64_t count) {
  return functions().DSStartAcquisition(getHandle(), flags, count);
}

GC_ERROR DataStream::stopAcquisition(ACQ_STOP_FLAGS flags) {
  return functions().DSStopAcquisition(getHandle(), flags);
}

std::string DataStream::getInfoString(STREAM_INFO_CMD cmd) const {
  DS_HANDLE handle = getHandle();
  return queryText([&](INFO_DATATYPE* type, char* buffer, std::size_t* size) {
    return functions().DSGetInfo(handle, cmd, type, buffer, size);
  });
}

template<class T>
T DataStream::getInfoValue(STREAM_INFO_CMD cmd) const {
  DS_HANDLE handle = getHandle();
  return queryValue<T>([&](INFO_DATATYPE* type, void* value, std::size_t* size) {
    return functions().DSGetInfo(handle, cmd, type, value, size);
  });
}

std::int64_t DataStream::getNumDelivered() const {
  return signedCounter(getInfoValue<std::uint64_t>(STREAM_INFO_NUM_DELIVERED));
}

std::int64_t DataStream::getNumUnderrun() const {
  return signedCounter(getInfoValue<std::uint64_t>(STREAM_INFO_NUM_UNDERRUN));
}

std::uint64_t DataStream::getPayloadSize() const {
  return getInfoValue<std::uint64_t>(STREAM_INFO_PAYLOAD_SIZE);
}

bool DataStream::definesPayloadSize() const {
  return getInfoValue<bool8_t>(STREAM_INFO_DEFINES_PAYLOADSIZE) != 0;
}

std::shared_ptr<NewBufferEvent> DataStream::registerNewBufferEvent() {
  EVENT_HANDLE event = registerEventHandle(EVENT_NEW_BUFFER);
  return event != nullptr ? std::make_shared<NewBufferEvent>(sharedAs<DataStream>(), event) : nullptr;
}

Buffer::Buffer(std::shared_ptr<DataStream> stream, AnnouncedBuffer& announced)
    : BaseModule(announced.native),
      parent_(std::move(stream)),
      announced_(announced),
      userData_(announced.userData) {
  traceLine("Buffer()");
}

Buffer::~Buffer() {
  traceLine("~Buffer()");
  close();
}

}  // namespace GenTLCpp
