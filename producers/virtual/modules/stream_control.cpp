// Starting, stopping and closing a data stream.
#include "modules/data_stream.h"
#include "modules/device.h"

namespace vcam {

void DataStream::start(ACQ_START_FLAGS flags, std::uint64_t count) {
  const std::lock_guard control(controlMutex_);
  if (flags != ACQ_START_FLAGS_DEFAULT) {
    fail(GC_ERR_NOT_IMPLEMENTED, "no start flag ", flags);
  }
  if (count == 0) {
    fail(GC_ERR_INVALID_PARAMETER, "zero buffers to acquire");
  }
  device_.requireConnection();
  {
    const std::lock_guard lock(mutex_);
    if (grabbing_) {
      fail(GC_ERR_RESOURCE_IN_USE, "the acquisition is running already");
    }
    if (announced_.size() < session_.options.minimumBuffers) {
      fail(GC_ERR_INVALID_BUFFER, announced_.size(), " buffers are announced, at least ",
           session_.options.minimumBuffers, " are needed");
    }
  }
  if (engine_.joinable()) {
    engine_.join();
  }
  bool restarted = false;  // after an end by its count, without the stop that belongs to it
  {
    const std::lock_guard lock(mutex_);
    stopping_ = false;
    fast_ = false;
    discardTo_ = nullptr;
    delivered_ = 0;
    toDeliver_ = count;
    packetsReceived_ = 0;
    packetsLost_ = 0;
    framesLost_ = 0;
    grabbing_ = true;
    restarted = std::exchange(stopPending_, true);
  }
  if (!restarted) {
    device_.streamStarted();
  }
  device_.camera().startStream(index_);
  try {
    engine_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    stopEngine();
    fail(GC_ERR_RESOURCE_EXHAUSTED, "no thread for the acquisition");
  }
  fireModuleEvent(kAcquisitionStarted, {});
}

void DataStream::stop(ACQ_STOP_FLAGS flags) {
  const std::lock_guard control(controlMutex_);
  if (flags != ACQ_STOP_FLAGS_DEFAULT && flags != ACQ_STOP_FLAGS_KILL) {
    fail(GC_ERR_NOT_IMPLEMENTED, "no stop flag ", flags);
  }
  // A fill is never cut in two: the camera copies a frame in one go. What hangs ends with either flag.
  if (!stopEngine()) {
    fail(GC_ERR_RESOURCE_IN_USE, "the acquisition is not running");
  }
  fireModuleEvent(kAcquisitionStopped, {});
}

bool DataStream::stopEngine() {
  {
    const std::lock_guard lock(mutex_);
    if (!std::exchange(stopPending_, false)) {
      return false;
    }
    stopping_ = true;
    engineWake_.notify_all();
  }
  device_.camera().stopStream(index_);
  if (engine_.joinable()) {
    engine_.join();
  }
  device_.streamEnded();
  return true;
}

void DataStream::endCalls() {
  const std::lock_guard lock(mutex_);
  stopping_ = true;
  engineWake_.notify_all();
}

void DataStream::closeChildren() {
  {
    const std::lock_guard control(controlMutex_);
    stopEngine();
    if (engine_.joinable()) {
      engine_.join();
    }
  }
  flush(ACQ_QUEUE_ALL_DISCARD);
  std::vector<void*> handles;
  {
    const std::lock_guard lock(mutex_);
    for (const auto& buffer : announced_) {
      handles.push_back(buffer->handle());
    }
  }
  for (void* buffer : handles) {
    revoke(buffer, nullptr, nullptr);
  }
}

std::unique_ptr<Module> DataStream::detach() {
  return device_.take(*this);
}

}  // namespace vcam
