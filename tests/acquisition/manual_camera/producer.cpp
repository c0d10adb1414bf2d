// The script of the manual camera, and what its streams do with it.
#include "producer.h"

#include <algorithm>
#include <utility>

#include "description.h"

namespace manual {

void Producer::reset() {
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

void Producer::setFileName(const std::string& name) {
  locked([&] { fileName = name; });
}

bool Producer::deliver(unsigned index, const Frame& frame) {
  const std::lock_guard lock(mutex);
  return deliverLocked(streams[index], frame);
}

void Producer::play(const std::vector<Frame>& frames) {
  const std::lock_guard lock(mutex);
  playlist_.assign(frames.begin(), frames.end());
  playLocked();
}

std::size_t Producer::queued(unsigned stream) {
  const std::lock_guard lock(mutex);
  return streams[stream].input.size();
}

std::size_t Producer::announced(unsigned stream) {
  const std::lock_guard lock(mutex);
  return streams[stream].buffers.size();
}

void Producer::post(EVENT_TYPE type, std::int64_t id, const std::string& value) {
  const std::lock_guard lock(mutex);
  Event& event = deviceEvents[type];
  if (event.isRegistered) {
    DeviceEventData data{id, {}};
    value.copy(data.value, sizeof data.value - 1);
    push(event, &data, sizeof data);
  }
}

void Producer::fail(const std::string& function, GC_ERROR code, int times, int skip) {
  locked([&] { failures_[function] = {code, times, skip}; });
}

void Producer::failBufferInfo(BUFFER_INFO_CMD command, GC_ERROR code) {
  locked([&] { bufferInfoFailures[command] = code; });
}

void Producer::failStreamInfo(STREAM_INFO_CMD command, GC_ERROR code) {
  locked([&] { streamInfoFailures[command] = code; });
}

std::uint32_t Producer::getRegister(std::uint32_t address) {
  const std::lock_guard lock(mutex);
  return registers_[address];
}

void Producer::setRegister(std::uint32_t address, std::uint32_t value) {
  locked([&] { registers_[address] = value; });
}

void Producer::setStreamPayload(std::size_t size) {
  locked([&] { streamPayload = size; });
}

void Producer::setStopPolls(unsigned polls) {
  locked([&] { stopPolls = polls; });
}

std::vector<std::string> Producer::takeCalls() {
  const std::lock_guard lock(mutex);
  return std::exchange(calls_, {});
}

void Producer::hold(const std::string& function) {
  locked([&] { toHold_ = function; });
  letGo_.notify_all();
}

bool Producer::holds() {
  const std::lock_guard lock(mutex);
  return holds_;
}

unsigned Producer::waiting() {
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

std::vector<std::string> Producer::violations() {
  const std::lock_guard lock(mutex);
  return violations_;
}

GC_ERROR Producer::ordered(std::unique_lock<std::mutex>& lock, const char* function) {
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

void Producer::push(Event& event, const void* data, std::size_t size) {
  const auto* bytes = static_cast<const char*>(data);
  event.queue.emplace_back(bytes, bytes + size);
  event.changed.notify_one();
}

bool Producer::deliverLocked(Stream& stream, const Frame& frame) {
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

void Producer::playLocked() {
  while (isCameraRunning && !playlist_.empty() && !streams[0].input.empty() && streams[0].isStarted) {
    deliverLocked(streams[0], playlist_.front());
    playlist_.pop_front();
  }
}

void Producer::readRegister(std::uint64_t address, std::uint8_t* out, std::size_t size) {
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

void Producer::writeRegister(std::uint64_t address, std::uint32_t value) {
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

void Producer::fill(Buffer& buffer) {
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

Producer& producer() {
  static Producer instance;
  static const bool isReset = (instance.reset(), true);
  static_cast<void>(isReset);
  return instance;
}

}  // namespace manual
