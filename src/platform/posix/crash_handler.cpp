// Handlers of fatal signals that write a text report with async-signal-safe calls only, after which the system's own
// default action follows.
#include <execinfo.h>
#include <fcntl.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): the POSIX parts of it
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <ctime>
#include <exception>
#include <memory>
#include <typeinfo>

#include "dump_name.h"
#include "platform/platform.h"
#include "posix/signal_safe.h"

namespace OVI::platform {

namespace {

struct FatalSignal {
  int number;
  const char* name;
};

constexpr std::array kFatalSignals = {
    FatalSignal{SIGSEGV, "SIGSEGV (invalid memory access)"},
    FatalSignal{SIGBUS, "SIGBUS (bad address)"},
    FatalSignal{SIGILL, "SIGILL (illegal instruction)"},
    FatalSignal{SIGFPE, "SIGFPE (arithmetic fault)"},
    FatalSignal{SIGABRT, "SIGABRT (abort)"},
    FatalSignal{SIGSYS, "SIGSYS (bad system call)"},
    FatalSignal{SIGTRAP, "SIGTRAP (trap)"},
};

// Everything that the handler needs is made before the crash: nothing is allocated or locked in it.
struct CrashState {
  std::array<char, PATH_MAX> directory{};
  std::array<char, NAME_MAX + 1> executable{};
  std::array<char, 256> support{};
  std::array<char, 512> exceptionText{};
  bool quiet = false;
  std::terminate_handler previousTerminate = nullptr;
};

CrashState state;
std::atomic<long> reporter{0};  // The thread that writes the report.

void copyText(char* to, std::size_t size, const char* from) {
  const std::size_t length = std::min(std::strlen(from), size - 1);
  std::memcpy(to, from, length);
  to[length] = 0;
}

const char* signalName(int number) noexcept {
  for (const FatalSignal& signal : kFatalSignals)
    if (signal.number == number)
      return signal.name;
  return "unknown signal";
}

std::uintptr_t instructionPointer(const ucontext_t& context) noexcept {
#if defined(__x86_64__)
  return static_cast<std::uintptr_t>(context.uc_mcontext.gregs[REG_RIP]);
#elif defined(__aarch64__)
  return context.uc_mcontext.pc;
#else
  static_cast<void>(context);
  return 0;
#endif
}

/** Makes the context that of the caller, as if the instruction had returned at once. */
void returnAtOnce(ucontext_t& context) noexcept {
#if defined(__x86_64__)
  greg_t& stack = context.uc_mcontext.gregs[REG_RSP];
  std::uintptr_t caller = 0;
  if (readMemory(static_cast<std::uintptr_t>(stack), &caller, sizeof(caller))) {
    context.uc_mcontext.gregs[REG_RIP] = static_cast<greg_t>(caller);
    stack += static_cast<greg_t>(sizeof(caller));
  }
#elif defined(__aarch64__)
  context.uc_mcontext.pc = context.uc_mcontext.regs[30];
#else
  static_cast<void>(context);
#endif
}

constexpr std::size_t kMaxFrames = 64;

struct Frames {
  std::array<void*, kMaxFrames> addresses{};
  std::size_t count = 0;

  Frames() noexcept : count(static_cast<std::size_t>(backtrace(addresses.data(), kMaxFrames))) {}
  std::uintptr_t at(std::size_t i) const noexcept { return reinterpret_cast<std::uintptr_t>(addresses.at(i)); }
  /** The frame with this address; `count` when there is none. Those of the signal handler stand before it. */
  std::size_t find(std::uintptr_t address) const noexcept {
    std::size_t i = count;
    while (i > 0 && at(i - 1) != address)
      --i;
    return i > 0 ? i - 1 : count;
  }
};

void writeFrame(SignalSafeWriter& report, std::size_t number, std::uintptr_t address, std::uintptr_t inside) noexcept {
  report.text("  #").decimal(number).text(" ").hexadecimal(address).text(" ");
  writeSymbol(report, inside);
  report.text("\n");
}

/** The frames behind the one at which the context stands. @return whether there are any */
bool writeCallers(SignalSafeWriter& report, const ucontext_t& context, std::uintptr_t crashedAt) noexcept {
  const std::uintptr_t start = instructionPointer(context);
  char code = 0;
  if (!readMemory(start, &code, sizeof(code)))
    return false;  // The unwinder looks at the code there.
  const Frames frames;
  const std::size_t found = frames.find(start);
  const std::size_t first = start == crashedAt ? found + 1 : found;
  // A return address may lie just behind its function's end; the call itself lies before it.
  for (std::size_t i = first; i < frames.count; ++i)
    writeFrame(report, i - first + 1, frames.at(i), frames.at(i) - 1);
  return first < frames.count;
}

void writeBacktrace(SignalSafeWriter& report, ucontext_t& context) noexcept {
  const std::uintptr_t crashedAt = instructionPointer(context);
  writeFrame(report, 0, crashedAt, crashedAt);
  if (writeCallers(report, context, crashedAt))
    return;
  // The call of a null pointer, say: nothing tells the way out of such a place, but who called it is known.
  const mcontext_t saved = context.uc_mcontext;
  returnAtOnce(context);
  writeCallers(report, context, crashedAt);
  context.uc_mcontext = saved;
}

/** @return 0; or the system's number of what went wrong */
int writeReport(int file, int number, const siginfo_t* information, ucontext_t& context,
                std::int64_t seconds) noexcept {
  SignalSafeWriter report(file);
  report.text("Crash report of ").text(state.executable.data()).text("\n\n");
  report.text("time: ").utcTime(seconds).text("\n");
  report.text("signal: ").decimal(static_cast<std::uint64_t>(number)).text(", ").text(signalName(number)).text("\n");
  if (state.exceptionText.front() != 0)
    report.text("uncaught exception: ").text(state.exceptionText.data()).text("\n");
  report.text("address: ");
  if (information->si_code > 0)
    report.hexadecimal(reinterpret_cast<std::uintptr_t>(information->si_addr)).text("\n");
  else
    report.text("none, sent by process ").decimal(static_cast<std::uint64_t>(information->si_pid)).text("\n");
  report.text("instruction: ").hexadecimal(instructionPointer(context)).text("\n");
  report.text("process: ").decimal(static_cast<std::uint64_t>(getpid())).text("\n");
  report.text("thread: ").decimal(static_cast<std::uint64_t>(syscall(SYS_gettid))).text("\n");
  report.text("\nbacktrace:\n");
  writeBacktrace(report, context);
  report.text("\nloaded modules:\n");
  writeModules(report);
  return report.error();
}

void report(int number, const siginfo_t* information, ucontext_t& context) noexcept {
  const std::int64_t seconds = std::time(nullptr);
  std::array<char, PATH_MAX + NAME_MAX + 32> name{};
  composeDumpName(name.data(), name.size(), state.directory.data(), state.executable.data(), seconds);
  const int file = open(name.data(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0600);
  int error = errno;
  SignalSafeWriter console(state.quiet ? -1 : STDERR_FILENO);
  const auto complain = [&](const char* what) {
    console.text(what).text(name.data()).text("' (error ").decimal(static_cast<std::uint64_t>(error)).text(")\n");
  };
  if (file < 0) {
    complain("Failed to create dump file '");
    return;
  }
  error = writeReport(file, number, information, context, seconds);
  close(file);
  if (error != 0) {
    complain("Failed to save dump file to '");
    return;
  }
  console.text("There was an unexpected error:\n\n").text(state.exceptionText.data());
  console.text("\nPlease send the following dump file to ").text(state.support.data());
  console.text(" together with a short description of the error case:\n\nFilename: ").text(name.data()).text("\n");
}

// The thread that writes the report ends the process. Not for ever: that one may be stuck.
void waitForTheEnd() noexcept {
  constexpr time_t kPatienceSeconds = 5;
  timespec rest{kPatienceSeconds, 0};
  while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {
  }
}

void handleSignal(int number, siginfo_t* information, void* context) {
  const int savedErrno = errno;
  const long thisThread = syscall(SYS_gettid);
  long first = 0;
  // What damages memory often crashes several threads at once. The default action of the second would cut the report.
  if (reporter.compare_exchange_strong(first, thisThread))
    report(number, information, *static_cast<ucontext_t*>(context));
  else if (first != thisThread)
    waitForTheEnd();
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;
  for (const FatalSignal& signal : kFatalSignals)
    sigaction(signal.number, &byDefault, nullptr);
  errno = savedErrno;
  // A fault happens again on return and meets the default action; a signal that was sent, or that ended a system call,
  // has to be sent again.
  if (information->si_code <= 0 || number == SIGABRT || number == SIGTRAP || number == SIGSYS)
    syscall(SYS_tgkill, getpid(), thisThread, number);
}

// Keeps what an uncaught exception says for the report of the abort that follows.
[[noreturn]] void handleTerminate() {
  if (const std::exception_ptr current = std::current_exception()) {
    try {
      std::rethrow_exception(current);
    } catch (const std::exception& exception) {
      copyText(state.exceptionText.data(), state.exceptionText.size(), typeid(exception).name());
      const std::size_t used = std::strlen(state.exceptionText.data());
      if (used + 3 < state.exceptionText.size()) {
        copyText(state.exceptionText.data() + used, 3, ": ");
        copyText(state.exceptionText.data() + used + 2, state.exceptionText.size() - used - 2, exception.what());
      }
    } catch (...) {
      copyText(state.exceptionText.data(), state.exceptionText.size(), "of an unknown type");
    }
  }
  if (state.previousTerminate != nullptr)
    state.previousTerminate();
  std::abort();
}

// The handler runs on a stack of its own, so that a stack overflow of the installing thread is reported too.
void installSignalStack() {
  constexpr std::size_t kStackSize = 256 * 1024;
  static const std::unique_ptr<char[]> stack(new char[kStackSize]);
  stack_t alternative{};
  alternative.ss_sp = stack.get();
  alternative.ss_size = kStackSize;
  sigaltstack(&alternative, nullptr);
}

}  // namespace

bool installCrashHandler(const CrashHandlerOptions& options) {
  static std::atomic_flag installed;
  if (installed.test_and_set())
    return false;

  copyText(state.directory.data(), state.directory.size(), options.directory.c_str());
  copyText(state.support.data(), state.support.size(), options.supportAddress.c_str());
  state.quiet = options.quiet;
  std::array<char, PATH_MAX> path{};
  const ssize_t length = readlink("/proc/self/exe", path.data(), path.size() - 1);
  const char* separator = length > 0 ? std::strrchr(path.data(), '/') : nullptr;
  copyText(state.executable.data(), state.executable.size(), separator != nullptr ? separator + 1 : "unknown");

  // The first backtrace loads the unwinder, which a signal handler must not do.
  std::array<void*, 4> frames{};
  backtrace(frames.data(), static_cast<int>(frames.size()));

  installSignalStack();
  state.previousTerminate = std::set_terminate(handleTerminate);
  struct sigaction action {};
  action.sa_sigaction = handleSignal;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  for (const FatalSignal& signal : kFatalSignals)
    sigaction(signal.number, &action, nullptr);
  return true;
}

}  // namespace OVI::platform
