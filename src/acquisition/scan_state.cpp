// What the scan helpers remember for the process: settings, the last image and the requests to stop.
#include "scan_state.h"

namespace OVI {

ScanState& ScanState::instance() {
  static ScanState& state = *new ScanState;  // Threads that outlive main may still ask it.
  return state;
}

oviImageInfo ScanState::lastImage() const {
  const std::lock_guard lock(recordMutex_);
  return lastImage_;
}

void ScanState::setLastImage(const oviImageInfo& image) {
  const std::lock_guard lock(recordMutex_);
  lastImage_ = image;
}

void ScanState::setLastStatistics(const oviAcquistionStatistics& statistics) {
  const std::lock_guard lock(recordMutex_);
  lastStatistics_ = statistics;
}

void ScanState::setStop(std::uint64_t deviceHandle, bool stop) {
  const std::lock_guard lock(stopMutex_);
  stops_[deviceHandle] = stop;
}

bool ScanState::isStopped(std::uint64_t deviceHandle) const {
  const std::lock_guard lock(stopMutex_);
  const auto found = stops_.find(deviceHandle);
  return found != stops_.end() && found->second;
}

}  // namespace OVI
