// Another program run to its end, with what it printed.
#include "platform/child_process.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <system_error>

#include "interrupt.h"
#include "paths.h"

#ifndef _WIN32
extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to the program.
#endif

namespace tool {

#ifdef _WIN32

namespace {

struct Handle {
  HANDLE value = nullptr;
  Handle() = default;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (value != nullptr && value != INVALID_HANDLE_VALUE)
      CloseHandle(value);
  }
};

// A file for the child's output; a pipe would have to be read while it runs.
std::filesystem::path scratchFile(const wchar_t* prefix) {
  std::array<wchar_t, MAX_PATH + 1> folder{};
  std::array<wchar_t, MAX_PATH + 1> name{};
  GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
  GetTempFileNameW(folder.data(), prefix, 0, name.data());
  return name.data();
}

std::string takeFile(const std::filesystem::path& file) {
  std::string text;
  {
    std::ifstream stream(file, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(stream), {});
  }
  std::error_code error;
  std::filesystem::remove(file, error);
  return text;
}

void openForChild(const std::filesystem::path& file, Handle& handle) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  handle.value = CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_TEMPORARY, nullptr);
}

constexpr DWORD kFirstException = 0xC0000000;

// What ended a process, by the exit code that the system gave it.
std::string exceptionText(DWORD code) {
  struct Exception {
    DWORD code;
    const char* text;
  };
  static constexpr std::array kExceptions = {Exception{0xC0000005, "access violation"},
                                             Exception{0xC000001D, "illegal instruction"},
                                             Exception{0xC0000094, "division by zero"},
                                             Exception{0xC00000FD, "stack overflow"},
                                             Exception{0xC0000135, "a library that it needs is not there"},
                                             Exception{0xC0000142, "a library failed to start"},
                                             Exception{0xC0000374, "the heap was damaged"},
                                             Exception{0xC0000409, "it aborted"}};
  for (const Exception& exception : kExceptions)
    if (exception.code == code)
      return exception.text;
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "exception 0x%08lX", static_cast<unsigned long>(code));
  return text.data();
}

}  // namespace

ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                     std::chrono::milliseconds timeout) {
  ChildResult result;
  std::wstring commandLine = L"\"" + program.wstring() + L"\"";
  for (const std::string& argument : arguments)
    commandLine += L" \"" + pathFromText(argument).wstring() + L"\"";
  const std::filesystem::path outputFile = scratchFile(L"out");
  const std::filesystem::path messageFile = scratchFile(L"err");
  {
    Handle output;
    Handle messages;
    openForChild(outputFile, output);
    openForChild(messageFile, messages);
    STARTUPINFOW start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output.value;
    start.hStdError = messages.value;
    PROCESS_INFORMATION info{};
    constexpr int kAttempts = 3;  // While many programs start, the system refuses one now and then.
    for (int attempt = 0; attempt < kAttempts && !result.started; ++attempt)
      result.started = CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                      &start, &info) != 0;
    if (!result.started)
      result.refusal = std::system_category().message(static_cast<int>(GetLastError()));
    if (result.started) {
      Handle process;
      Handle thread;
      process.value = info.hProcess;
      thread.value = info.hThread;
      constexpr DWORD kSlice = 50;  // ms
      const auto end = std::chrono::steady_clock::now() + timeout;
      while (WaitForSingleObject(info.hProcess, kSlice) == WAIT_TIMEOUT) {
        result.stopped = interrupted();
        result.timedOut = !result.stopped && std::chrono::steady_clock::now() >= end;
        if (!result.stopped && !result.timedOut)
          continue;
        TerminateProcess(info.hProcess, 1);
        WaitForSingleObject(info.hProcess, INFINITE);
        break;
      }
      DWORD code = 0;
      GetExitCodeProcess(info.hProcess, &code);
      result.exitCode = static_cast<int>(code);
      result.crashed = code >= kFirstException;
      if (result.crashed)
        result.crash = exceptionText(code);
    }
  }
  result.output = takeFile(outputFile);
  result.messages = takeFile(messageFile);
  return result;
}

std::filesystem::path ownProgram() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

#else

namespace {

struct Pipe {
  int read = -1;
  int write = -1;
  Pipe() {
    std::array<int, 2> ends{-1, -1};
    if (pipe(ends.data()) == 0) {
      read = ends[0];
      write = ends[1];
      fcntl(read, F_SETFD, FD_CLOEXEC);
      fcntl(write, F_SETFD, FD_CLOEXEC);
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    closeEnd(read);
    closeEnd(write);
  }
  static void closeEnd(int& end) {
    if (end >= 0)
      close(end);
    end = -1;
  }
};

// Reads what there is; closes the end when there will be no more. @return whether there was something
bool drain(int& end, std::string& text) {
  std::array<char, 65536> part{};
  const ssize_t size = end < 0 ? 0 : ::read(end, part.data(), part.size());
  if (size > 0)
    text.append(part.data(), static_cast<std::size_t>(size));
  else if (size == 0 || (errno != EAGAIN && errno != EINTR))
    Pipe::closeEnd(end);
  return size > 0;
}

// Until the child ends, which its pipes do not tell: what it started itself may hold them open.
int waitForEnd(Pipe& output, Pipe& messages, std::chrono::milliseconds timeout, pid_t child, ChildResult& result) {
  const auto end = std::chrono::steady_clock::now() + timeout;
  for (const int pipe : {output.read, messages.read})
    fcntl(pipe, F_SETFL, O_NONBLOCK);
  for (;;) {
    std::array<pollfd, 2> ends{pollfd{output.read, POLLIN, 0}, pollfd{messages.read, POLLIN, 0}};
    const bool allClosed = output.read < 0 && messages.read < 0;
    poll(ends.data(), ends.size(), allClosed ? 2 : 50);
    int status = 0;
    const bool ended = waitpid(child, &status, WNOHANG) == child;
    while (drain(output.read, result.output) || drain(messages.read, result.messages))
      ;
    if (ended)
      return status;
    result.stopped = interrupted();
    result.timedOut = !result.stopped && std::chrono::steady_clock::now() >= end;
    if (result.stopped || result.timedOut) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return status;
    }
  }
}

}  // namespace

ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                     std::chrono::milliseconds timeout) {
  ChildResult result;
  std::vector<std::string> words{pathText(program)};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);

  Pipe output;
  Pipe messages;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages.write, STDERR_FILENO);
  pid_t child = 0;
  const int refused = posix_spawn(&child, words.front().c_str(), &actions, nullptr, pointers.data(), environ);
  result.started = refused == 0;
  posix_spawn_file_actions_destroy(&actions);
  if (!result.started) {
    result.refusal = std::generic_category().message(refused);
    return result;
  }
  Pipe::closeEnd(output.write);
  Pipe::closeEnd(messages.write);
  const int status = waitForEnd(output, messages, timeout, child, result);
  if (WIFEXITED(status))
    result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status) && !result.timedOut && !result.stopped) {
    result.crashed = true;
    result.crash = strsignal(WTERMSIG(status));
  }
  return result;
}

std::filesystem::path ownProgram() {
  std::error_code error;
  return std::filesystem::read_symlink("/proc/self/exe", error);
}

#endif

}  // namespace tool
