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
#include <cstring>
#include <fstream>
#include <iterator>

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
    result.started = CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                    &start, &info) != 0;
    if (result.started) {
      Handle process;
      Handle thread;
      process.value = info.hProcess;
      thread.value = info.hThread;
      if (WaitForSingleObject(info.hProcess, static_cast<DWORD>(timeout.count())) == WAIT_TIMEOUT) {
        result.timedOut = true;
        TerminateProcess(info.hProcess, 1);
        WaitForSingleObject(info.hProcess, INFINITE);
      }
      DWORD code = 0;
      GetExitCodeProcess(info.hProcess, &code);
      result.exitCode = static_cast<int>(code);
      result.crashed = code >= 0xC0000000U;
      if (result.crashed)
        result.crash = code == EXCEPTION_ACCESS_VIOLATION ? "access violation" : "exception " + std::to_string(code);
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

// Reads what there is; closes the end when there will be no more.
void drain(int& end, std::string& text) {
  std::array<char, 4096> part{};
  const ssize_t size = ::read(end, part.data(), part.size());
  if (size > 0)
    text.append(part.data(), static_cast<std::size_t>(size));
  else
    Pipe::closeEnd(end);
}

void readUntilEnd(Pipe& output, Pipe& messages, std::chrono::milliseconds timeout, pid_t child, ChildResult& result) {
  const auto end = std::chrono::steady_clock::now() + timeout;
  while (output.read >= 0 || messages.read >= 0) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      result.timedOut = true;
      kill(child, SIGKILL);
      return;
    }
    std::array<pollfd, 2> ends{pollfd{output.read, POLLIN, 0}, pollfd{messages.read, POLLIN, 0}};
    if (poll(ends.data(), ends.size(), static_cast<int>(left.count())) <= 0)
      continue;
    if (ends[0].revents != 0)
      drain(output.read, result.output);
    if (ends[1].revents != 0)
      drain(messages.read, result.messages);
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
  result.started = posix_spawn(&child, words.front().c_str(), &actions, nullptr, pointers.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  if (!result.started)
    return result;
  Pipe::closeEnd(output.write);
  Pipe::closeEnd(messages.write);
  readUntilEnd(output, messages, timeout, child, result);
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status))
    result.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status) && !result.timedOut) {
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
