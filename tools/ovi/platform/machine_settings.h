// Settings of the machine that cost images when they are as systems come.
#pragma once

#include "finding.h"

namespace tool {

/// Network and USB settings, as far as this system shows them.
Findings examineMachine();

}  // namespace tool
