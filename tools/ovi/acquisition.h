// Images from one camera for a command: stream, start, what came and what was lost, stop.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "ovi/ovi.hpp"

namespace tool {

/// What happened to the images of one acquisition.
struct Ledger {
  std::uint64_t delivered = 0;
  std::uint64_t lost = 0;        ///< frame IDs that never came
  std::uint64_t incomplete = 0;  ///< came without all of their data
  std::uint64_t underruns = 0;   ///< no buffer was free for them, as the producer counts
  std::uint64_t bytes = 0;
  double seconds = 0;
  bool timedOut = false;

  double framesPerSecond() const { return seconds > 0 ? static_cast<double>(delivered) / seconds : 0.0; }
};

struct AcquisitionOptions {
  std::uint64_t frames = 0;  ///< 0: until interrupted
  double seconds = 0;        ///< 0: without limit
  std::uint32_t buffers = 16;
  std::chrono::milliseconds timeout{3000};
};

/// Takes images until enough came, the time is over, no image came within the time-out, or the user interrupts. The
/// camera is stopped and everything closed on every way out.
/// @param take  called with each image and the ledger so far
Ledger acquire(const ovi::Device& device, const AcquisitionOptions& options,
               const std::function<void(const ovi::Image&, const Ledger&)>& take);

/// Why no image comes, in words, as far as the camera's features tell.
std::string silenceReason(const ovi::Device& device);

}  // namespace tool
