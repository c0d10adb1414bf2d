// What the feature groups of one camera share: the lock, the registers, the clock, the schedule and the events.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "camera_model.h"
#include "feature_map.h"

namespace vcam {

class CameraCore {
 public:
  CameraCore(CameraModel cameraModel, Configuration configuration)
      : model(std::move(cameraModel)),
        config(std::move(configuration)),
        map(model.bigEndian) {}
  ~CameraCore() { stopSchedule(); }
  CameraCore(const CameraCore&) = delete;
  CameraCore& operator=(const CameraCore&) = delete;

  const CameraModel model;
  const Configuration config;

  // Guards everything below and all feature groups. Take it through CameraLock.
  std::mutex mutex;
  FeatureMap map;
  // Raised by every accepted write, so that what is derived from settings knows when to look again.
  std::uint64_t generation = 1;

  // What began before the clock was last set back has the time 0.
  std::uint64_t ticks(Clock::time_point time) const {
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::max(time, epoch_) - epoch_).count());
  }
  void resetTicks() { epoch_ = Clock::now(); }

  // Runs a function at a time, with the lock held, on a thread that exists from the first such call on.
  void schedule(Clock::time_point time, std::function<void()> happening);

  // Sends an event after the lock is released.
  void emit(std::uint64_t id, std::vector<std::byte> data) { pending_.emplace_back(id, std::move(data)); }

  void setSink(CameraEventSink sink);

 private:
  friend class CameraLock;
  using Events = std::vector<std::pair<std::uint64_t, std::vector<std::byte>>>;

  void deliver(Events& events);
  void runSchedule();
  void stopSchedule();

  Clock::time_point epoch_ = Clock::now();
  Events pending_;
  std::mutex sinkMutex_;
  CameraEventSink sink_;
  std::multimap<Clock::time_point, std::function<void()>> happenings_;
  std::condition_variable scheduleChanged_;
  bool scheduleEnds_ = false;
  std::thread scheduleThread_;
};

// Holds the camera's lock; on release the events that came up meanwhile are delivered.
class CameraLock {
 public:
  explicit CameraLock(CameraCore& core) : core_(core), lock_(core.mutex) {}
  ~CameraLock() { release(); }
  CameraLock(const CameraLock&) = delete;
  CameraLock& operator=(const CameraLock&) = delete;

  std::unique_lock<std::mutex>& lock() { return lock_; }
  void release() {
    if (!lock_.owns_lock()) {
      return;
    }
    if (core_.pending_.empty()) {
      lock_.unlock();
      return;
    }
    CameraCore::Events events;
    events.swap(core_.pending_);
    lock_.unlock();
    core_.deliver(events);
  }
  void acquire() { lock_.lock(); }
  bool hasEvents() const { return !core_.pending_.empty(); }

 private:
  CameraCore& core_;
  std::unique_lock<std::mutex> lock_;
};

}  // namespace vcam
