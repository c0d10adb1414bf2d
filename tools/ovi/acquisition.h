// Images from one camera for a command: stream, start, what came and what was lost, stop.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "module_view.h"
#include "ovi/ovi.hpp"

namespace tool {

/// What happened to the images of one acquisition. Every image that the camera made between the first and the last one
/// delivered is in delivered, incomplete, noBuffer or onTheWay, as its frame IDs tell.
struct Ledger {
  std::uint64_t delivered = 0;
  std::uint64_t incomplete = 0;  ///< came without all of their data
  std::uint64_t lost = 0;        ///< did not come at all
  std::uint64_t late = 0;        ///< delivered, but after one that was made later
  std::uint64_t underruns = 0;   ///< no buffer was free for them, as the producer counts
  std::uint64_t badPattern = 0;  ///< delivered, but not showing the test pattern
  std::uint64_t bytes = 0;
  double seconds = 0;
  double latency = 0;     ///< seconds from an image's time stamp to the program, the mean
  double longestGap = 0;  ///< seconds between two images
  double silence = 0;     ///< seconds from the last image, whole or not, to the end
  bool ofCamera = false;  ///< the time stamps are the camera's; else the library's
  bool timedOut = false;
  bool waiting = false;           ///< no image for half a second
  std::uint64_t notReleased = 0;  ///< delivered, but the producer refused to take their buffers back
  std::string releaseError;       ///< why it refused the first of them
  std::string trigger;            ///< that the camera was waiting for one, as Trigger::reason has it
  std::string failure;            ///< what ended it early; empty when nothing did
  std::string stopError;          ///< why the camera could not be stopped in the end; empty when it could

  double framesPerSecond() const { return seconds > 0 ? static_cast<double>(delivered) / seconds : 0.0; }
  double bytesPerSecond() const { return seconds > 0 ? static_cast<double>(bytes) / seconds : 0.0; }
  std::uint64_t noBuffer() const { return std::min(lost, underruns); }
  std::uint64_t onTheWay() const { return lost - noBuffer(); }
  std::uint64_t made() const { return delivered + incomplete + lost; }
  /// Whether images stopped coming, long before the end for their rate.
  bool fellSilent() const;
};

/// "250.0 frames/s, 19.2 MB/s"
std::string rateText(const Ledger& ledger);
/// "12 us from the library's time stamp"
std::string latencyText(const Ledger& ledger);
/// The losses in numbers.
std::string lossText(const Ledger& ledger);
/// What the ledger means and what to do about it.
std::string verdictText(const Ledger& ledger);
nlohmann::ordered_json ledgerJson(const Ledger& ledger);

struct AcquisitionOptions {
  std::uint64_t frames = 0;  ///< 0: until interrupted
  double seconds = 0;        ///< 0: without limit
  std::uint32_t buffers = 16;
  std::chrono::milliseconds timeout{3000};
  bool patient = false;  ///< waits for triggers without end
};

/// What acquire tells while it is at it, on its own thread.
struct AcquisitionReports {
  std::function<void(const ovi::Image&, Ledger&)> image;  ///< may count what it finds wrong with the image
  std::function<void(const ovi::Stream&, const Ledger&)> progress;
  /// When the camera took its time stamp of an image, where that is known.
  std::function<std::optional<std::chrono::steady_clock::time_point>(const ovi::Image&)> cameraTime;
};

/// Takes images until enough came, the time is over, no image came within the time-out, or the user interrupts. The
/// camera is stopped and everything closed on every way out. Throws ToolError when the camera does not start or a wait
/// fails.
Ledger acquire(const ModuleView& view, const AcquisitionOptions& options, const AcquisitionReports& reports);

/// The trigger that the camera waits for.
struct Trigger {
  std::string text;  ///< "TriggerMode = On, TriggerSource = Line1"; empty when there is none
  std::string cure;  ///< "set TriggerMode=Off"

  /// ": the camera was waiting for a trigger (...)", or nothing.
  std::string reason() const { return text.empty() ? text : ": the camera was waiting for a trigger (" + text + ")"; }
  /// The words of the command to try next.
  std::string next() const { return cure.empty() ? "features Acquisition" : cure; }
};

/// Looks at all of the camera's triggers, and leaves the selector as it was.
Trigger findTrigger(const ModuleView& view);

}  // namespace tool
