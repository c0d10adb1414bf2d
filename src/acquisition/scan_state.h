// What the scan helpers remember for the process: settings, the last image and the requests to stop.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>

#include "ovi/ovi.h"

namespace OVI {

/** Any thread. Settings are read when they are needed, so a change reaches a scan that runs. */
class ScanState {
 public:
  static ScanState& instance();

  std::atomic<bool> filterDriver{true};
  std::atomic<std::uint64_t> imageTimeout{3000};  // Milliseconds, for one image.
  std::atomic<bool> scanFlag{false};              // Images of another height than the camera's are taken again.
  std::atomic<std::int64_t> expectedHeight{-1};   // -1 when the camera did not tell.

  oviImageInfo lastImage() const;
  void setLastImage(const oviImageInfo& image);

  void setLastStatistics(const oviAcquistionStatistics& statistics);

  void setStop(std::uint64_t deviceHandle, bool stop);
  bool isStopped(std::uint64_t deviceHandle) const;

 private:
  ScanState() = default;

  mutable std::mutex recordMutex_;
  oviImageInfo lastImage_{};
  oviAcquistionStatistics lastStatistics_{};

  mutable std::mutex stopMutex_;
  std::map<std::uint64_t, bool> stops_;
};

}  // namespace OVI
