// The USB controllers of a Windows machine, and the cameras behind them.
#pragma once

#include "doctor/finding.h"

namespace tool {

/// Controllers: which there are, whether one is fast enough, whether they work.
void examineUsbControllers(Findings& findings);

/// USB3 Vision cameras, as the system sees them, with or without the driver of a producer.
void examineUsbCameras(Findings& findings);

}  // namespace tool
