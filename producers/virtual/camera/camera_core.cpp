// The schedule thread and the delivery of events.
#include "camera_core.h"

namespace vcam {

void CameraCore::schedule(Clock::time_point time, std::function<void()> happening) {
  happenings_.emplace(time, std::move(happening));
  if (!scheduleThread_.joinable()) {
    scheduleThread_ = std::thread([this] { runSchedule(); });
  }
  scheduleChanged_.notify_one();
}

void CameraCore::setSink(CameraEventSink sink) {
  const std::lock_guard lock(sinkMutex_);
  sink_ = std::move(sink);
}

void CameraCore::deliver(Events& events) {
  const std::lock_guard lock(sinkMutex_);
  for (const auto& [id, data] : events) {
    if (sink_) {
      sink_(id, data);
    }
  }
}

void CameraCore::runSchedule() {
  CameraLock guard(*this);
  while (!scheduleEnds_) {
    if (happenings_.empty()) {
      scheduleChanged_.wait(guard.lock());
    } else if (const auto next = happenings_.begin()->first; Clock::now() < next) {
      scheduleChanged_.wait_until(guard.lock(), next);
    } else {
      auto node = happenings_.extract(happenings_.begin());
      node.mapped()();
      // Others get their turn even when happenings follow one another closely.
      guard.release();
      guard.acquire();
    }
  }
}

void CameraCore::stopSchedule() {
  {
    const std::lock_guard lock(mutex);
    scheduleEnds_ = true;
  }
  scheduleChanged_.notify_one();
  if (scheduleThread_.joinable()) {
    scheduleThread_.join();
  }
}

}  // namespace vcam
