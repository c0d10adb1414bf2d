// What happens inside a camera and may be counted, timed, sent as an event, or start something.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace vcam {

class Feature;

enum class Signal : std::uint8_t {
  Off,
  AcquisitionStart,
  AcquisitionEnd,
  FrameStart,
  ExposureEnd,
  FrameTriggerMissed,
  Line0,
  Timer0End,
  Timer1End,
  Counter0End,
  Counter1End,
};

struct SignalName {
  const char* name;
  Signal signal;
};

inline constexpr std::array<SignalName, 11> kSignals{{{"Off", Signal::Off},
                                                      {"AcquisitionStart", Signal::AcquisitionStart},
                                                      {"AcquisitionEnd", Signal::AcquisitionEnd},
                                                      {"FrameStart", Signal::FrameStart},
                                                      {"ExposureEnd", Signal::ExposureEnd},
                                                      {"FrameTriggerMissed", Signal::FrameTriggerMissed},
                                                      {"Line0", Signal::Line0},
                                                      {"Timer0End", Signal::Timer0End},
                                                      {"Timer1End", Signal::Timer1End},
                                                      {"Counter0End", Signal::Counter0End},
                                                      {"Counter1End", Signal::Counter1End}}};

}  // namespace vcam
