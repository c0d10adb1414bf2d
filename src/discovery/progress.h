// The phases of a discovery's progress.
#pragma once

#include <array>

namespace OVI {

enum ProgressPhase : unsigned { kPhaseStart = 0, kPhaseProducers = 1, kPhaseDevices = 2, kPhaseEnd = 3 };

/** A phase reaches from its own bound to the next one; per cent. */
inline constexpr std::array kProgressBounds = {0.0, 5.0, 10.0, 100.0, 100.0};

inline double progressValue(unsigned phase, double fraction) {
  const double lower = kProgressBounds.at(phase);
  return lower + (kProgressBounds.at(phase + 1) - lower) * fraction;
}

}  // namespace OVI
