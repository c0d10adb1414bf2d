// Ctrl-C, and the system's wish that the program should end.
#include "interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>

#include "tool_error.h"

namespace tool {

namespace {

// Written by the handler, read by the threads that take images.
std::atomic<bool> interruptFlag{false};
static_assert(std::atomic<bool>::is_always_lock_free);

// The first one lets the command stop the camera and close everything.
void onInterrupt(int signal) {
  const int error = errno;
  interruptFlag = true;
  std::signal(signal, SIG_DFL);
  errno = error;
}

}  // namespace

bool interrupted() {
  return interruptFlag;
}

void catchInterrupt() {
  std::signal(SIGINT, onInterrupt);
  std::signal(SIGTERM, onInterrupt);
#ifdef SIGPIPE
  // A write fails instead, so that the camera is stopped. Not ignored: programs that producers start would inherit
  // that.
  std::signal(SIGPIPE, [](int) {});
#endif
#ifdef SIGBREAK
  std::signal(SIGBREAK, onInterrupt);  // Ctrl-Break, and the closing of the window.
#endif
}

void throwIfInterrupted() {
  if (interrupted())
    throw ToolError("interrupted", {}, ExitCode::kInterrupted);
}

}  // namespace tool
