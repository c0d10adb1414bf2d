// A generated block of features for a camera with a very large description.
#pragma once

#include "camera_core.h"

namespace vcam {

// Declares so many channels of a signal processor, each with an enable, a gain, an offset within a span of its own, and
// a threshold.
void declareChannels(FeatureMap& map, std::size_t channels);

}  // namespace vcam
