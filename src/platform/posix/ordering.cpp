// Ordering the memory accesses of all threads from one of them.
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>

#include "platform/platform.h"

#if defined(__linux__) && __has_include(<linux/membarrier.h>)
#include <linux/membarrier.h>
#endif

namespace OVI::platform {

namespace {

/** @return whether the system knows the command and has done it */
bool membarrier([[maybe_unused]] int command) noexcept {
#if defined(__NR_membarrier) && __has_include(<linux/membarrier.h>)
  return syscall(__NR_membarrier, command, 0, 0) == 0;
#else
  return false;
#endif
}

#if __has_include(<linux/membarrier.h>)
constexpr int kRegister = MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED;
constexpr int kOrder = MEMBARRIER_CMD_PRIVATE_EXPEDITED;
#else
constexpr int kRegister = 0;
constexpr int kOrder = 0;
#endif

}  // namespace

bool prepareOrdering() noexcept {
  return membarrier(kRegister) && membarrier(kOrder);
}

void orderAllThreads() noexcept {
  // Where the system cannot, every thread orders its own accesses, and this one does too.
  static std::atomic<int> own{0};
  own.fetch_add(1, std::memory_order_seq_cst);
  static_cast<void>(membarrier(kOrder));
}

}  // namespace OVI::platform
