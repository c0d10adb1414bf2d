// The stream's engine: takes frames as the camera makes them, fills buffers and delivers them.
#include <algorithm>
#include <chrono>

#include "modules/data_stream.h"
#include "modules/device.h"
#include "modules/hostility.h"
#include "modules/recorder.h"

namespace vcam {

namespace {

constexpr std::uint64_t kPayloadTooLarge = 0x9401;

// How often a stuck transfer or a silent camera looks whether the order for it was withdrawn.
constexpr auto kOrderPoll = std::chrono::milliseconds(10);

// Packets that a payload comes in; each has a header of 36 bytes.
std::uint64_t packetsFor(std::size_t bytes, std::uint32_t packetSize) {
  constexpr std::uint32_t kHeader = 36;
  const std::size_t data = packetSize > kHeader ? packetSize - kHeader : 1;
  return (bytes + data - 1) / data;
}

}  // namespace

void DataStream::run() {
  std::unique_lock lock(mutex_);
  while (!stopping_ && grabbing_) {
    lock.unlock();
    const FrameWait outcome = device_.camera().waitForFrame(index_, Clock::now() + std::chrono::hours(1), plan_);
    lock.lock();
    if (outcome == FrameWait::Frame && !stopping_) {
      takeFrame(lock);
    }
  }
  if (late_ != nullptr) {
    deliver(*std::exchange(late_, nullptr));
  }
  grabbing_ = false;
  fast_ = false;
  lock.unlock();
  device_.camera().stopStream(index_);
}

void DataStream::takeFrame(std::unique_lock<std::mutex>& lock) {
  std::uint32_t spoiled = 0;
  if (Hostility::armed()) {
    if (Hostility::instance().isPaused(deviceId_)) {
      if (plan_.speedMode) {
        engineWake_.wait_for(lock, kOrderPoll);  // The next one would come at once.
      }
      return;
    }
    spoiled = Hostility::instance().nextFrame(deviceId_);
    if ((spoiled & OVI_VIRTUAL_FRAME_LOST) != 0) {
      ++framesLost_;
      packetsLost_ += packetsFor(plan_.payloadSize, plan_.packetSize);
      return;
    }
  }
  if (Buffer* buffer = bufferForFrame(lock)) {
    ++started_;
    fill(lock, *buffer, spoiled);
    if (plan_.speedMode && grabbing_ && !stopping_ && !Hostility::armed()) {
      runFast(lock);
    }
  }
}

// A buffer for the frame that has just arrived; null when it is lost.
Buffer* DataStream::bufferForFrame(std::unique_lock<std::mutex>& lock) {
  if (plan_.speedMode) {
    // Such a frame waits for its buffer instead of being lost.
    wantsInput_ = true;
    engineWake_.wait(lock, [this] { return !input_.empty() || stopping_; });
    wantsInput_ = false;
    return stopping_ ? nullptr : input_.pop();
  }
  if (input_.empty() && mode_ != OldestFirst && !output_.empty()) {
    Buffer* const oldest = output_.pop();
    oldest->clearContent();
    return oldest;
  }
  if (input_.empty()) {
    ++underruns_;
    ++framesLost_;
    fireModuleEvent(kFrameLost, {plan_.frameId});
    return nullptr;
  }
  return input_.pop();
}

void DataStream::fill(std::unique_lock<std::mutex>& lock, Buffer& buffer, std::uint32_t spoiled) {
  buffer.setState(BufferState::Filling);
  filling_ = &buffer;
  lock.unlock();
  std::size_t filled = device_.camera().render(plan_, {buffer.base(), buffer.size()});
  if (recorder_ != nullptr && spoiled == 0) {
    recorder_->offer(deviceId_, plan_, {buffer.base(), filled});
  }
  lock.lock();
  bool incomplete = plan_.incomplete || filled < plan_.payloadSize;
  if ((spoiled & (OVI_VIRTUAL_FRAME_INCOMPLETE | OVI_VIRTUAL_FRAME_STUCK)) != 0) {
    filled /= 2;
    incomplete = true;
  }
  if ((spoiled & OVI_VIRTUAL_FRAME_STUCK) != 0) {
    while (!stopping_ && discardTo_ == nullptr && Hostility::armed()) {
      engineWake_.wait_for(lock, kOrderPoll);
    }
  }
  filling_ = nullptr;
  ++fills_;
  if (discardTo_ != nullptr) {
    (this->*std::exchange(discardTo_, nullptr))(buffer);
    fillOver_.notify_all();
    return;
  }
  complete(buffer, filled, incomplete, spoiled);
}

void DataStream::complete(Buffer& buffer, std::size_t filled, bool incomplete, std::uint32_t spoiled) {
  buffer.setContent(plan_, ticksOf(plan_.timestampNs), filled, incomplete, spoiled);
  if (plan_.payloadSize > buffer.size()) {
    const std::string text =
        join("A payload of ", plan_.payloadSize, " bytes does not fit into a buffer of ", buffer.size());
    fireError(GC_ERR_BUFFER_TOO_SMALL, text);
    buffer.fireError(GC_ERR_BUFFER_TOO_SMALL, text);
    buffer.fireModuleEvent(kPayloadTooLarge, {plan_.payloadSize});
  }
  if (mode_ == NewestOnly) {
    drainOutput(&DataStream::toInput);
  }
  if ((spoiled & OVI_VIRTUAL_FRAME_LATE) != 0 && late_ == nullptr) {
    late_ = &buffer;
  } else {
    deliver(buffer);
    if (late_ != nullptr) {
      deliver(*std::exchange(late_, nullptr));
    }
  }
  ++delivered_;
  if (variant_ == Variant::RealTime) {
    countPackets(filled);
  }
  if (delivered_ == toDeliver_) {
    grabbing_ = false;
    fast_ = false;
    engineWake_.notify_all();
  }
}

void DataStream::countPackets(std::size_t filled) {
  const std::uint64_t sent = packetsFor(plan_.payloadSize, plan_.packetSize);
  const std::uint64_t arrived = std::min(sent, packetsFor(filled, plan_.packetSize));
  packetsReceived_ += arrived;
  packetsLost_ += sent - arrived;
}

// Speed mode: from now on whoever queues a buffer fills it on the spot; this thread only waits for the end of that.
void DataStream::runFast(std::unique_lock<std::mutex>& lock) {
  fast_ = true;
  fillFast();
  engineWake_.wait(lock, [this] { return !fast_ || stopping_; });
  fast_ = false;
}

void DataStream::fillFast() {
  // Each buffer once: in some modes a buffer that was not fetched comes straight back into the pool.
  for (std::size_t left = input_.size(); left != 0 && fast_ && !input_.empty(); --left) {
    // Orders for frames are the engine's to carry out.
    if (Hostility::armed() ||
        device_.camera().waitForFrame(index_, Clock::time_point::min(), plan_) != FrameWait::Frame) {
      fast_ = false;
      engineWake_.notify_one();
      return;
    }
    ++started_;
    Buffer& buffer = *input_.pop();
    const std::size_t filled = device_.camera().render(plan_, {buffer.base(), buffer.size()});
    if (recorder_ != nullptr) {
      recorder_->offer(deviceId_, plan_, {buffer.base(), filled});
    }
    complete(buffer, filled, plan_.incomplete || filled < plan_.payloadSize, 0);
    if (!plan_.speedMode) {
      fast_ = false;
      engineWake_.notify_one();
    }
  }
}

std::uint64_t DataStream::ticksOf(std::uint64_t nanoseconds) const {
  constexpr std::uint64_t kNanosecondsPerSecond = 1'000'000'000;
  const std::uint64_t frequency = timestampFrequency_;
  if (frequency == kNanosecondsPerSecond) {
    return nanoseconds;
  }
  return nanoseconds / kNanosecondsPerSecond * frequency +
         nanoseconds % kNanosecondsPerSecond * frequency / kNanosecondsPerSecond;
}

}  // namespace vcam
