// What a process does last when it crashes.
#pragma once

namespace tool {

/// Has the function called on the thread that crashes, after which the process ends as crashed processes do, without a
/// dialogue. The latest function counts.
void watchCrashes(void (*report)());

}  // namespace tool
