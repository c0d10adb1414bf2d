// Ordering the memory accesses of all threads from one of them.
#include <windows.h>

#include "platform/platform.h"

namespace OVI::platform {

bool prepareOrdering() noexcept {
  return true;
}

void orderAllThreads() noexcept {
  FlushProcessWriteBuffers();
}

}  // namespace OVI::platform
