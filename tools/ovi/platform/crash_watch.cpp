// What a process does last when it crashes.
#include "platform/crash_watch.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <signal.h>
#endif

#include <array>
#include <csignal>
#include <cstdio>

namespace tool {

namespace {

void (*reportFunction)() = nullptr;

// The process ends at once afterwards, with what is in its buffers.
void reportCrash() {
  reportFunction();
  std::fflush(stderr);
}

#ifdef _WIN32

LONG WINAPI onException(EXCEPTION_POINTERS* exception) {
  reportCrash();
  TerminateProcess(GetCurrentProcess(), exception->ExceptionRecord->ExceptionCode);
  return EXCEPTION_EXECUTE_HANDLER;
}

void onAbort(int /*signal*/) {
  constexpr UINT kAborted = 0xC0000409;  // What the system itself gives a process that gave up.
  reportCrash();
  TerminateProcess(GetCurrentProcess(), kAborted);
}

#else

// The handler's own, for when the stack has run over or was overwritten.
std::array<char, 65536> handlerStack;

void onSignal(int signal) {
  reportCrash();
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

#endif

}  // namespace

void watchCrashes(void (*report)()) {
  reportFunction = report;
#ifdef _WIN32
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
  SetUnhandledExceptionFilter(onException);
  std::signal(SIGABRT, onAbort);
#else
  stack_t stack{};
  stack.ss_sp = handlerStack.data();
  stack.ss_size = handlerStack.size();
  sigaltstack(&stack, nullptr);
  struct sigaction action {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_ONSTACK | SA_NODEFER;
  for (const int signal : std::array{SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL})
    sigaction(signal, &action, nullptr);
#endif
}

}  // namespace tool
