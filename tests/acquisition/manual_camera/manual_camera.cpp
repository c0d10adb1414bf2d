// The manual camera: the GenTL functions that acquisition needs, and nothing that acts by itself.
#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "description.h"
#include "gentl_interface/GenTL.h"
#include "manual_camera.h"

namespace manual {
namespace {

constexpr std::uint64_t kXmlAddress = 0x10000;

struct Event {
  bool isRegistered = false;
  EVENT_TYPE type = EVENT_NEW_BUFFER;
  unsigned kills = 0;
  unsigned waiters = 0;
  std::deque<std::vector<char>> queue;
  std::condition_variable changed;
};

struct Buffer {
  std::vector<std::uint8_t> memory;
  void* userData = nullptr;
  Frame frame;
  std::size_t filled = 0;
  enum State { Announced, Input, Output } state = Announced;
};

struct Stream {
  bool isOpen = false;
  bool isStarted = false;
  std::deque<std::unique_ptr<Buffer>> buffers;
  std::deque<Buffer*> input;
  Event newBuffer;
  std::uint64_t frames = 0;
  std::uint64_t delivered = 0;
  std::uint64_t underruns = 0;
};

struct Failure {
  GC_ERROR code;
  int times;
  int skip;
};

/** A device event on its way: the layout is the producer's own. */
struct DeviceEventData {
  std::int64_t id;
  char value[48];
};

class Producer final : public Script {
 public:
  std::mutex mutex;
  bool isDeviceOpen = false;
  std::array<Stream, kStreams> streams;
  std::map<EVENT_TYPE, Event> deviceEvents;
  std::string fileName = "ManualCamera.cti";
  std::size_t streamPayload = 0;
  bool isCameraRunning = false;
  unsigned stopPolls = 0;
  unsigned stopPollsLeft = 0;
  std::map<BUFFER_INFO_CMD, GC_ERROR> bufferInfoFailures;
  std::map<STREAM_INFO_CMD, GC_ERROR> streamInfoFailures;

  void reset() override {
    const std::lock_guard lock(mutex);
    failures_.clear();
    bufferInfoFailures.clear();
    streamInfoFailures.clear();
    calls_.clear();
    violations_.clear();
    playlist_.clear();
    streamPayload = 0;
    stopPolls = stopPollsLeft = 0;
    isCameraRunning = false;
    fileName = "ManualCamera.cti";
    registers_ = {{kWidth, 8}, {kHeight, 4}, {kPayloadSize, 32}, {kPixelFormat, 0x01080001}, {kPacketSize, 1500}};
  }
  void setFileName(const std::string& name) override {
    locked([&] { fileName = name; });
  }

  bool deliver(unsigned index, const Frame& frame) override {
    const std::lock_guard lock(mutex);
    return deliverLocked(streams[index], frame);
  }
  void play(const std::vector<Frame>& frames) override {
    const std::lock_guard lock(mutex);
    playlist_.assign(frames.begin(), frames.end());
    playLocked();
  }
  std::size_t queued(unsigned stream) override {
    const std::lock_guard lock(mutex);
    return streams[stream].input.size();
  }
  std::size_t announced(unsigned stream) override {
    const std::lock_guard lock(mutex);
    return streams[stream].buffers.size();
  }
  void post(EVENT_TYPE type, std::int64_t id, const std::string& value) override {
    const std::lock_guard lock(mutex);
    Event& event = deviceEvents[type];
    if (event.isRegistered) {
      DeviceEventData data{id, {}};
      value.copy(data.value, sizeof data.value - 1);
      push(event, &data, sizeof data);
    }
  }

  void fail(const std::string& function, GC_ERROR code, int times, int skip) override {
    locked([&] { failures_[function] = {code, times, skip}; });
  }
  void failBufferInfo(BUFFER_INFO_CMD command, GC_ERROR code) override {
    locked([&] { bufferInfoFailures[command] = code; });
  }
  void failStreamInfo(STREAM_INFO_CMD command, GC_ERROR code) override {
    locked([&] { streamInfoFailures[command] = code; });
  }
  std::uint32_t getRegister(std::uint32_t address) override {
    const std::lock_guard lock(mutex);
    return registers_[address];
  }
  void setRegister(std::uint32_t address, std::uint32_t value) override {
    locked([&] { registers_[address] = value; });
  }
  void setStreamPayload(std::size_t size) override {
    locked([&] { streamPayload = size; });
  }
  void setStopPolls(unsigned polls) override {
    locked([&] { stopPolls = polls; });
  }
  std::vector<std::string> takeCalls() override {
    const std::lock_guard lock(mutex);
    return std::exchange(calls_, {});
  }
  void hold(const std::string& function) override {
    locked([&] { toHold_ = function; });
    letGo_.notify_all();
  }
  bool holds() override {
    const std::lock_guard lock(mutex);
    return holds_;
  }
  unsigned waiting() override {
    const std::lock_guard lock(mutex);
    unsigned waiters = 0;
    for (const Stream& stream : streams) {
      waiters += stream.newBuffer.waiters;
    }
    for (const auto& [type, event] : deviceEvents) {
      waiters += event.waiters;
    }
    return waiters;
  }
  std::vector<std::string> violations() override {
    const std::lock_guard lock(mutex);
    return violations_;
  }

  /** The failure that is ordered for the call, or success. The lock is held, but for as long as the call is. */
  GC_ERROR ordered(std::unique_lock<std::mutex>& lock, const char* function) {
    if (toHold_ == function && !std::exchange(holds_, true)) {
      letGo_.wait(lock, [&] { return toHold_.empty(); });
      holds_ = false;
    }
    const auto found = failures_.find(function);
    if (found == failures_.end() || found->second.times == 0) {
      return GC_ERR_SUCCESS;
    }
    if (found->second.skip > 0) {
      --found->second.skip;
      return GC_ERR_SUCCESS;
    }
    if (found->second.times > 0) {
      --found->second.times;
    }
    return found->second.code;
  }
  bool holdsLocked() const { return holds_; }
  void call(const std::string& text) { calls_.push_back(text); }
  void violate(const std::string& text) { violations_.push_back(text); }

  unsigned indexOf(const Stream& stream) const { return static_cast<unsigned>(&stream - streams.data()); }

  void push(Event& event, const void* data, std::size_t size) {
    const auto* bytes = static_cast<const char*>(data);
    event.queue.emplace_back(bytes, bytes + size);
    event.changed.notify_one();
  }

  bool deliverLocked(Stream& stream, const Frame& frame) {
    if (!stream.isOpen || !stream.isStarted) {
      return false;
    }
    ++stream.frames;
    if (stream.input.empty()) {
      ++stream.underruns;
      return false;
    }
    Buffer* buffer = stream.input.front();
    stream.input.pop_front();
    buffer->state = Buffer::Output;
    buffer->frame = frame;
    if (frame.frameId == UINT64_MAX) {
      buffer->frame.frameId = stream.frames - 1;
    }
    fill(*buffer);
    ++stream.delivered;
    if (stream.newBuffer.isRegistered) {
      const EVENT_NEW_BUFFER_DATA data{buffer, buffer->userData};
      push(stream.newBuffer, &data, sizeof data);
    }
    return true;
  }

  void playLocked() {
    while (isCameraRunning && !playlist_.empty() && !streams[0].input.empty() && streams[0].isStarted) {
      deliverLocked(streams[0], playlist_.front());
      playlist_.pop_front();
    }
  }

  void readRegister(std::uint64_t address, std::uint8_t* out, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      const std::uint64_t at = address + i;
      if (at >= kXmlAddress && at - kXmlAddress < kDescription.size()) {
        out[i] = static_cast<std::uint8_t>(kDescription[at - kXmlAddress]);
      } else {
        out[i] = static_cast<std::uint8_t>(registers_[static_cast<std::uint32_t>(at & ~3U)] >> (8 * (at & 3)));
      }
    }
    if (address == kStop && stopPollsLeft > 0 && --stopPollsLeft == 0) {
      registers_[kStop] = 0;
    }
  }

  void writeRegister(std::uint64_t address, std::uint32_t value) {
    static const std::map<std::uint64_t, const char*> kNames = {
        {kStart, "start"}, {kStop, "stop"}, {kAbort, "abort"}, {kFindMaxPacketSize, "find"}};
    registers_[static_cast<std::uint32_t>(address)] = value;
    if (address == kParamsLocked) {
      call("lock=" + std::to_string(value));
    } else if (address == kFilterDriver) {
      call("filter=" + std::to_string(value));
    }
    const auto command = kNames.find(address);
    if (command == kNames.end()) {
      return;
    }
    call(command->second);
    stopPollsLeft = address == kStop ? stopPolls : 0;
    if (stopPollsLeft == 0) {
      registers_[static_cast<std::uint32_t>(address)] = 0;
    }
    isCameraRunning = address == kStart || (address == kFindMaxPacketSize && isCameraRunning);
    playLocked();
  }

 private:
  template<class Work>
  void locked(Work&& work) {
    const std::lock_guard lock(mutex);
    work();
  }

  static void fill(Buffer& buffer) {
    const Frame& frame = buffer.frame;
    const std::size_t bits = (frame.pixelFormat >> 16) & 0xFF;
    const std::size_t rowBytes = frame.width * bits / 8;
    const std::size_t channels = std::max<std::size_t>(1, bits / 8);
    std::size_t size = std::min(rowBytes * frame.height, buffer.memory.size());
    for (std::size_t i = 0; i < size; ++i) {
      buffer.memory[i] = static_cast<std::uint8_t>(i % rowBytes / channels + frame.counter);
    }
    if (frame.badByte < size) {
      ++buffer.memory[frame.badByte];
    }
    buffer.filled = frame.filled == SIZE_MAX ? size : frame.filled;
  }

  std::map<std::string, Failure> failures_;
  std::vector<std::string> calls_;
  std::vector<std::string> violations_;
  std::deque<Frame> playlist_;
  std::string toHold_;
  bool holds_ = false;
  std::condition_variable letGo_;
  std::map<std::uint32_t, std::uint32_t> registers_;
};

Producer& producer() {
  static Producer instance;
  static const bool isReset = (instance.reset(), true);
  static_cast<void>(isReset);
  return instance;
}

// Handles of the modules that have no state of their own.
char systemHandle, interfaceHandle, deviceHandle, remoteHandle;

GC_ERROR text(const std::string& value, INFO_DATATYPE* type, void* out, std::size_t* size) {
  if (type != nullptr) {
    *type = INFO_DATATYPE_STRING;
  }
  if (out != nullptr && *size < value.size() + 1) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  *size = value.size() + 1;
  if (out != nullptr) {
    std::memcpy(out, value.c_str(), value.size() + 1);
  }
  return GC_ERR_SUCCESS;
}

template<class T>
GC_ERROR number(T value, INFO_DATATYPE kind, INFO_DATATYPE* type, void* out, std::size_t* size) {
  *type = kind;
  if (out != nullptr && *size < sizeof value) {
    return GC_ERR_BUFFER_TOO_SMALL;
  }
  *size = sizeof value;
  if (out != nullptr) {
    std::memcpy(out, &value, sizeof value);
  }
  return GC_ERR_SUCCESS;
}

/** The open stream behind a handle; a closed one is a violation. The lock is held. */
Stream* streamOf(DS_HANDLE handle, const char* function) {
  for (Stream& stream : producer().streams) {
    if (&stream == handle && stream.isOpen && producer().isDeviceOpen) {
      return &stream;
    }
  }
  producer().violate(std::string(function) + " on a closed stream");
  return nullptr;
}

Buffer* bufferOf(Stream& stream, BUFFER_HANDLE handle) {
  for (const auto& buffer : stream.buffers) {
    if (buffer.get() == handle) {
      return buffer.get();
    }
  }
  return nullptr;
}

/** Calls work(producer) under the lock, unless a failure is ordered. */
template<class Work>
GC_ERROR run(const char* function, Work&& work) {
  Producer& p = producer();
  std::unique_lock lock(p.mutex);
  const GC_ERROR ordered = p.ordered(lock, function);
  return ordered != GC_ERR_SUCCESS ? ordered : work(p);
}

/** The same for an open stream. A call that is ordered to fail may come at any time. */
template<class Work>
GC_ERROR runStream(const char* function, DS_HANDLE handle, Work&& work) {
  return run(function, [&](Producer& p) -> GC_ERROR {
    Stream* stream = streamOf(handle, function);
    return stream != nullptr ? work(p, *stream) : static_cast<GC_ERROR>(GC_ERR_INVALID_HANDLE);
  });
}

std::string named(const char* function, unsigned stream, std::int64_t argument) {
  return std::string(function) + "(" + std::to_string(stream) + "," + std::to_string(argument) + ")";
}

/** What a consumer must not do while a call is under way, or a wait. */
void closes(const char* what, bool isWaitedFor) {
  if (isWaitedFor || producer().holdsLocked()) {
    producer().violate(std::string(what) + (isWaitedFor ? " under a wait" : " under a call"));
  }
}

void endRegistration(Event& event, const char* what) {
  closes(what, event.waiters != 0);
  event.isRegistered = false;
  event.queue.clear();
  event.kills = 0;
  event.changed.notify_all();
}

void closeStream(Stream& stream, const char* what) {
  endRegistration(stream.newBuffer, what);
  stream.isOpen = stream.isStarted = false;
  stream.input.clear();
  stream.buffers.clear();
}

Event* eventOf(EVENTSRC_HANDLE module, EVENT_TYPE type) {
  Producer& p = producer();
  for (Stream& stream : p.streams) {
    if (&stream == module && type == EVENT_NEW_BUFFER) {
      return &stream.newBuffer;
    }
  }
  return module == &deviceHandle && type != EVENT_NEW_BUFFER ? &p.deviceEvents[type] : nullptr;
}

/** The buffers whose events are still queued go back to being announced only. */
void discardOutput(Stream& stream) {
  for (const auto& buffer : stream.buffers) {
    if (buffer->state == Buffer::Output) {
      buffer->state = Buffer::Announced;
    }
  }
  stream.newBuffer.queue.clear();
}

}  // namespace
}  // namespace manual

using namespace manual;  // NOLINT: the C functions below are all of this file.

extern "C" {

GC_IMPORT_EXPORT Script* manualCameraScript() {
  return &producer();
}

GC_ERROR GCInitLib() {
  return GC_ERR_SUCCESS;
}
GC_ERROR GCCloseLib() {
  return GC_ERR_SUCCESS;
}
GC_ERROR GCGetInfo(TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return TLGetInfo(nullptr, cmd, type, buf, size);
}
GC_ERROR GCGetLastError(GC_ERROR* code, char* out, size_t* size) {
  *code = GC_ERR_SUCCESS;
  return text("manual", nullptr, out, size);
}

// ---- Port

GC_ERROR GCReadPort(PORT_HANDLE, uint64_t address, void* buf, size_t* size) {
  return run("GCReadPort", [&](Producer& p) {
    p.readRegister(address, static_cast<std::uint8_t*>(buf), *size);
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCWritePort(PORT_HANDLE, uint64_t address, const void* buf, size_t* size) {
  return run("GCWritePort", [&](Producer& p) {
    std::uint32_t value = 0;
    std::memcpy(&value, buf, std::min(*size, sizeof value));
    p.writeRegister(address, value);
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCGetNumPortURLs(PORT_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR GCGetPortURLInfo(PORT_HANDLE, uint32_t, URL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  if (cmd != URL_INFO_URL) {
    return GC_ERR_NOT_IMPLEMENTED;
  }
  std::array<char, 64> url{};
  std::snprintf(url.data(), url.size(), "local:manual.xml;%x;%zx", static_cast<unsigned>(kXmlAddress),
                kDescription.size());
  return text(url.data(), type, buf, size);
}
GC_ERROR GCGetPortInfo(PORT_HANDLE, PORT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return cmd == PORT_INFO_BIG_ENDIAN ? number(bool8_t{0}, INFO_DATATYPE_BOOL8, type, buf, size)
                                     : text("Device", type, buf, size);
}

// ---- Events

GC_ERROR GCRegisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE type, EVENT_HANDLE* out) {
  return run("GCRegisterEvent", [&](Producer& p) -> GC_ERROR {
    Event* event = eventOf(module, type);
    if (event == nullptr) {
      return GC_ERR_NOT_IMPLEMENTED;
    }
    if (event->isRegistered) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    event->isRegistered = true;
    event->type = type;
    *out = event;
    p.call("GCRegisterEvent(" + std::to_string(type) + ")");
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR GCUnregisterEvent(EVENTSRC_HANDLE module, EVENT_TYPE type) {
  return run("GCUnregisterEvent", [&](Producer& p) -> GC_ERROR {
    Event* event = eventOf(module, type);
    if (event == nullptr || !event->isRegistered) {
      p.violate("GCUnregisterEvent of nothing");
      return GC_ERR_NOT_INITIALIZED;
    }
    p.call("GCUnregisterEvent(" + std::to_string(type) + ")");
    endRegistration(*event, "GCUnregisterEvent");
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR EventGetData(EVENT_HANDLE handle, void* buf, size_t* size, uint64_t timeoutMs) {
  Producer& p = producer();
  std::unique_lock lock(p.mutex);
  const GC_ERROR ordered = p.ordered(lock, "EventGetData");
  if (ordered != GC_ERR_SUCCESS) {
    return ordered;
  }
  auto& event = *static_cast<Event*>(handle);
  if (!event.isRegistered) {
    p.violate("EventGetData on an event that is not registered");
    return GC_ERR_INVALID_HANDLE;
  }
  const auto isOver = [&] { return event.kills != 0 || !event.queue.empty() || !event.isRegistered; };
  ++event.waiters;
  if (timeoutMs == GENTL_INFINITE) {
    event.changed.wait(lock, isOver);
  } else {
    event.changed.wait_until(lock, std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs), isOver);
  }
  --event.waiters;
  if (!event.isRegistered || event.kills != 0) {
    event.kills -= event.kills != 0 ? 1 : 0;
    return GC_ERR_ABORT;
  }
  if (event.queue.empty()) {
    return GC_ERR_TIMEOUT;
  }
  const std::vector<char> data = std::move(event.queue.front());
  event.queue.pop_front();
  if (event.type == EVENT_NEW_BUFFER) {
    EVENT_NEW_BUFFER_DATA buffer{};
    std::memcpy(&buffer, data.data(), sizeof buffer);
    static_cast<Buffer*>(buffer.BufferHandle)->state = Buffer::Announced;
  }
  *size = std::min(*size, data.size());
  std::memcpy(buf, data.data(), *size);
  return GC_ERR_SUCCESS;
}
GC_ERROR EventGetDataInfo(EVENT_HANDLE handle, const void* in, size_t, EVENT_DATA_INFO_CMD cmd, INFO_DATATYPE* type,
                          void* out, size_t* outSize) {
  return run("EventGetDataInfo", [&](Producer& p) -> GC_ERROR {
    const auto& event = *static_cast<Event*>(handle);
    if (!event.isRegistered) {
      p.violate("EventGetDataInfo on an event that is not registered");
      return GC_ERR_INVALID_HANDLE;
    }
    if (event.type == EVENT_NEW_BUFFER) {
      EVENT_NEW_BUFFER_DATA data{};
      std::memcpy(&data, in, sizeof data);
      return cmd == EVENT_DATA_ID ? number(data.BufferHandle, INFO_DATATYPE_PTR, type, out, outSize)
                                  : static_cast<GC_ERROR>(GC_ERR_NOT_AVAILABLE);
    }
    DeviceEventData data{};
    std::memcpy(&data, in, sizeof data);
    if (cmd == EVENT_DATA_VALUE) {
      return text(data.value, type, out, outSize);
    }
    if (event.type == EVENT_ERROR) {
      return number(static_cast<std::int32_t>(data.id), INFO_DATATYPE_INT32, type, out, outSize);
    }
    std::array<char, 32> digits{};
    std::snprintf(digits.data(), digits.size(), "%04llX", static_cast<unsigned long long>(data.id));
    return text(digits.data(), type, out, outSize);
  });
}
GC_ERROR EventGetInfo(EVENT_HANDLE handle, EVENT_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return run("EventGetInfo", [&](Producer&) -> GC_ERROR {
    const bool isImage = static_cast<Event*>(handle)->type == EVENT_NEW_BUFFER;
    return cmd == EVENT_SIZE_MAX ? number(isImage ? sizeof(EVENT_NEW_BUFFER_DATA) : sizeof(DeviceEventData),
                                          INFO_DATATYPE_SIZET, type, buf, size)
                                 : static_cast<GC_ERROR>(GC_ERR_NOT_AVAILABLE);
  });
}
GC_ERROR EventFlush(EVENT_HANDLE handle) {
  return run("EventFlush", [&](Producer& p) {
    p.call("EventFlush");
    for (Stream& stream : p.streams) {
      if (&stream.newBuffer == handle) {
        discardOutput(stream);
      }
    }
    static_cast<Event*>(handle)->queue.clear();
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR EventKill(EVENT_HANDLE handle) {
  return run("EventKill", [&](Producer& p) {
    p.call("EventKill");
    auto& event = *static_cast<Event*>(handle);
    ++event.kills;
    event.changed.notify_one();
    return GC_ERR_SUCCESS;
  });
}

// ---- System, interface, device

GC_ERROR TLOpen(TL_HANDLE* out) {
  *out = &systemHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLClose(TL_HANDLE) {
  return GC_ERR_SUCCESS;
}
GC_ERROR TLGetInfo(TL_HANDLE, TL_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  Producer& p = producer();
  const std::lock_guard lock(p.mutex);
  return text(cmd == TL_INFO_PATHNAME ? "/somewhere/" + p.fileName : p.fileName, type, buf, size);
}
GC_ERROR TLGetNumInterfaces(TL_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLGetInterfaceID(TL_HANDLE, uint32_t, char* id, size_t* size) {
  return text("ManualInterface", nullptr, id, size);
}
GC_ERROR TLGetInterfaceInfo(TL_HANDLE, const char*, INTERFACE_INFO_CMD, INFO_DATATYPE* type, void* buf, size_t* size) {
  return text("ManualInterface", type, buf, size);
}
GC_ERROR TLOpenInterface(TL_HANDLE, const char*, IF_HANDLE* out) {
  *out = &interfaceHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR TLUpdateInterfaceList(TL_HANDLE, bool8_t* changed, uint64_t) {
  if (changed != nullptr) {
    *changed = 0;
  }
  return GC_ERR_SUCCESS;
}
GC_ERROR IFClose(IF_HANDLE) {
  return GC_ERR_SUCCESS;
}
GC_ERROR IFGetInfo(IF_HANDLE, INTERFACE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return TLGetInterfaceInfo(nullptr, nullptr, cmd, type, buf, size);
}
GC_ERROR IFGetNumDevices(IF_HANDLE, uint32_t* count) {
  *count = 1;
  return GC_ERR_SUCCESS;
}
GC_ERROR IFGetDeviceID(IF_HANDLE, uint32_t, char* id, size_t* size) {
  return text(kDeviceId, nullptr, id, size);
}
GC_ERROR IFUpdateDeviceList(IF_HANDLE, bool8_t* changed, uint64_t) {
  return TLUpdateInterfaceList(nullptr, changed, 0);
}
GC_ERROR IFGetDeviceInfo(IF_HANDLE, const char*, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return cmd == DEVICE_INFO_ACCESS_STATUS
             ? number(std::int32_t{DEVICE_ACCESS_STATUS_READWRITE}, INFO_DATATYPE_INT32, type, buf, size)
             : text(cmd == DEVICE_INFO_VENDOR ? "Kestrova" : kDeviceId, type, buf, size);
}
GC_ERROR IFOpenDevice(IF_HANDLE, const char*, DEVICE_ACCESS_FLAGS, DEV_HANDLE* out) {
  return run("IFOpenDevice", [&](Producer& p) -> GC_ERROR {
    if (p.isDeviceOpen) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    p.isDeviceOpen = true;
    *out = &deviceHandle;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevGetPort(DEV_HANDLE, PORT_HANDLE* out) {
  *out = &remoteHandle;
  return GC_ERR_SUCCESS;
}
GC_ERROR DevGetInfo(DEV_HANDLE, DEVICE_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return IFGetDeviceInfo(nullptr, nullptr, cmd, type, buf, size);
}
GC_ERROR DevGetNumDataStreams(DEV_HANDLE, uint32_t* count) {
  return run("DevGetNumDataStreams", [&](Producer&) {
    *count = kStreams;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevGetDataStreamID(DEV_HANDLE, uint32_t index, char* id, size_t* size) {
  return text("Stream" + std::to_string(index), nullptr, id, size);
}
GC_ERROR DevOpenDataStream(DEV_HANDLE, const char* id, DS_HANDLE* out) {
  return run("DevOpenDataStream", [&](Producer& p) -> GC_ERROR {
    Stream& stream = p.streams[std::string(id) == "Stream1" ? 1 : 0];
    if (stream.isOpen) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    stream.isOpen = true;
    stream.frames = stream.delivered = stream.underruns = 0;
    *out = &stream;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DevClose(DEV_HANDLE) {
  return run("DevClose", [&](Producer& p) {
    p.call("DevClose");
    for (Stream& stream : p.streams) {
      closeStream(stream, "DevClose");
    }
    for (auto& [type, event] : p.deviceEvents) {
      endRegistration(event, "DevClose");
    }
    p.isDeviceOpen = false;
    return GC_ERR_SUCCESS;
  });
}

// ---- Data stream

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE ds, size_t bytes, void* priv, BUFFER_HANDLE* out) {
  return runStream("DSAllocAndAnnounceBuffer", ds, [&](Producer& p, Stream& stream) {
    auto buffer = std::make_unique<Buffer>();
    buffer->memory.resize(bytes);
    buffer->userData = priv;
    *out = buffer.get();
    stream.buffers.push_back(std::move(buffer));
    p.call(named("DSAllocAndAnnounceBuffer", p.indexOf(stream), static_cast<std::int64_t>(bytes)));
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSRevokeBuffer(DS_HANDLE ds, BUFFER_HANDLE handle, void** memoryOut, void** privOut) {
  return runStream("DSRevokeBuffer", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    if (buffer->state != Buffer::Announced) {
      return GC_ERR_BUSY;
    }
    p.call("DSRevokeBuffer(" + std::to_string(p.indexOf(stream)) + ")");
    if (memoryOut != nullptr) {
      *memoryOut = nullptr;
    }
    if (privOut != nullptr) {
      *privOut = buffer->userData;
    }
    std::erase_if(stream.buffers, [&](const auto& each) { return each.get() == buffer; });
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSQueueBuffer(DS_HANDLE ds, BUFFER_HANDLE handle) {
  return runStream("DSQueueBuffer", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    if (buffer->state != Buffer::Announced) {
      return GC_ERR_RESOURCE_IN_USE;
    }
    buffer->state = Buffer::Input;
    stream.input.push_back(buffer);
    p.playLocked();
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSFlushQueue(DS_HANDLE ds, ACQ_QUEUE_TYPE operation) {
  return runStream("DSFlushQueue", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSFlushQueue", p.indexOf(stream), operation));
    stream.input.clear();
    stream.newBuffer.queue.clear();
    for (const auto& buffer : stream.buffers) {
      buffer->state = operation == ACQ_QUEUE_ALL_TO_INPUT ? Buffer::Input : Buffer::Announced;
      if (buffer->state == Buffer::Input) {
        stream.input.push_back(buffer.get());
      }
    }
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSStartAcquisition(DS_HANDLE ds, ACQ_START_FLAGS, uint64_t count) {
  return runStream("DSStartAcquisition", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSStartAcquisition", p.indexOf(stream), static_cast<std::int64_t>(count)));
    stream.isStarted = true;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSStopAcquisition(DS_HANDLE ds, ACQ_STOP_FLAGS flags) {
  return runStream("DSStopAcquisition", ds, [&](Producer& p, Stream& stream) {
    p.call(named("DSStopAcquisition", p.indexOf(stream), flags));
    stream.isStarted = false;
    return GC_ERR_SUCCESS;
  });
}
GC_ERROR DSGetInfo(DS_HANDLE ds, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return runStream("DSGetInfo", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    const auto failure = p.streamInfoFailures.find(cmd);
    if (failure != p.streamInfoFailures.end() && failure->second != GC_ERR_SUCCESS) {
      return failure->second;
    }
    switch (cmd) {
      case STREAM_INFO_ID:
        return text("Stream" + std::to_string(p.indexOf(stream)), type, buf, size);
      case STREAM_INFO_NUM_DELIVERED:
        return number(stream.delivered, INFO_DATATYPE_UINT64, type, buf, size);
      case STREAM_INFO_NUM_UNDERRUN:
        return number(stream.underruns, INFO_DATATYPE_UINT64, type, buf, size);
      case STREAM_INFO_DEFINES_PAYLOADSIZE:
        return number(static_cast<bool8_t>(p.streamPayload != 0), INFO_DATATYPE_BOOL8, type, buf, size);
      case STREAM_INFO_PAYLOAD_SIZE:
        return number(p.streamPayload, INFO_DATATYPE_SIZET, type, buf, size);
      default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
  });
}
GC_ERROR DSGetBufferInfo(DS_HANDLE ds, BUFFER_HANDLE handle, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type, void* buf,
                         size_t* size) {
  return runStream("DSGetBufferInfo", ds, [&](Producer& p, Stream& stream) -> GC_ERROR {
    const Buffer* buffer = bufferOf(stream, handle);
    if (buffer == nullptr) {
      return GC_ERR_INVALID_HANDLE;
    }
    const auto failure = p.bufferInfoFailures.find(cmd);
    if (failure != p.bufferInfoFailures.end() && failure->second != GC_ERR_SUCCESS) {
      return failure->second;
    }
    switch (cmd) {
      case BUFFER_INFO_BASE:
        return number(static_cast<const void*>(buffer->memory.data()), INFO_DATATYPE_PTR, type, buf, size);
      case BUFFER_INFO_SIZE:
        return number(buffer->memory.size(), INFO_DATATYPE_SIZET, type, buf, size);
      case BUFFER_INFO_SIZE_FILLED:
        return number(buffer->filled, INFO_DATATYPE_SIZET, type, buf, size);
      case BUFFER_INFO_WIDTH:
        return number(buffer->frame.width, INFO_DATATYPE_SIZET, type, buf, size);
      case BUFFER_INFO_HEIGHT:
        return number(buffer->frame.height, INFO_DATATYPE_SIZET, type, buf, size);
      case BUFFER_INFO_PIXELFORMAT:
        return number(buffer->frame.pixelFormat, INFO_DATATYPE_UINT64, type, buf, size);
      case BUFFER_INFO_FRAMEID:
        return number(buffer->frame.frameId, INFO_DATATYPE_UINT64, type, buf, size);
      default:
        return GC_ERR_NOT_IMPLEMENTED;
    }
  });
}
GC_ERROR DSClose(DS_HANDLE ds) {
  return runStream("DSClose", ds, [&](Producer& p, Stream& stream) {
    p.call("DSClose(" + std::to_string(p.indexOf(stream)) + ")");
    closeStream(stream, "DSClose");
    return GC_ERR_SUCCESS;
  });
}

}  // extern "C"
