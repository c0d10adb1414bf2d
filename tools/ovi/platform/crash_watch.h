// What a process does last when it crashes.
#pragma once

namespace tool {

/// Has the function called on the thread that crashes, after which the process ends as crashed processes do, without a
/// dialogue. For processes that are there to be crashed by producers.
void watchCrashes(void (*report)());

}  // namespace tool
