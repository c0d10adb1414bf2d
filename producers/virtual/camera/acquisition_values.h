// The values of the enumerations that the acquisition has as features and obeys.
#pragma once

#include <array>
#include <cstdint>

#include "signal.h"

namespace vcam {

struct TriggerSource {
  const char* name;
  Signal signal;
};
// The values of TriggerSource; the first is the command.
constexpr std::array<TriggerSource, 6> kTriggerSources{{{"Software", Signal::Off},
                                                        {"Line0", Signal::Line0},
                                                        {"Timer0End", Signal::Timer0End},
                                                        {"Timer1End", Signal::Timer1End},
                                                        {"Counter0End", Signal::Counter0End},
                                                        {"Counter1End", Signal::Counter1End}}};

enum TriggerOverlap : std::uint8_t { kOverlapOff, kOverlapReadOut, kOverlapPreviousFrame };
enum AcquisitionMode : std::uint8_t { kSingleFrame, kMultiFrame, kContinuous };

}  // namespace vcam
