// One run of the tool as a program of its own.
#include "tool_run.h"

#include <gtest/gtest.h>
#ifdef _WIN32
#include <windows.h>

#include <chrono>
#include <thread>
#else
#include <sys/wait.h>
#endif

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace tool_test {

namespace {

constexpr const char* kOut = "run.out";
constexpr const char* kErr = "run.err";

#ifdef _WIN32

constexpr const char* kBetween = ";";

std::string quoted(const std::string& word) {
  std::string text = "\"";
  for (const char c : word)
    text += c == '"' ? std::string("\\\"") : std::string(1, c);
  return text + "\"";
}

void setVariable(const char* name, const std::string& value) {
  _putenv_s(name, value.c_str());
}

#else

constexpr const char* kBetween = ":";

std::string quoted(const std::string& word) {
  std::string text = "'";
  for (const char c : word)
    text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return text + "'";
}

int exitCode(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void setVariable(const char* name, const std::string& value) {
  setenv(name, value.c_str(), 1);
}

#endif

std::string printed(const char* file) {
  std::string text = readText(file);
  std::erase(text, '\r');  // Windows ends a line with one
  return text;
}

}  // namespace

#ifdef _WIN32

namespace {

HANDLE fileForChild(const char* name) {
  SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
  return CreateFileA(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, CREATE_ALWAYS, 0, nullptr);
}

/// The tool while it runs, with its output in the two files.
class Child {
 public:
  explicit Child(const std::vector<std::string>& arguments) {
    std::string line = quoted(std::filesystem::path(OVI_PROGRAM).make_preferred().string());
    for (const std::string& argument : arguments)
      line += " " + quoted(argument);
    const HANDLE out = fileForChild(kOut);
    const HANDLE err = fileForChild(kErr);
    STARTUPINFOA start{};
    start.cb = sizeof(start);
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    start.hStdOutput = out;
    start.hStdError = err;
    constexpr int kAttempts = 5;  // While many programs start, the system refuses one now and then.
    for (int attempt = 0; attempt < kAttempts && !started_; ++attempt)
      started_ =
          CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &child_) != 0;
    EXPECT_TRUE(started_) << "error " << GetLastError();
    CloseHandle(out);
    CloseHandle(err);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (started_) {
      CloseHandle(child_.hThread);
      CloseHandle(child_.hProcess);
    }
  }

  bool started() const { return started_; }

  /// Waits for its end, and ends it after `timeout` milliseconds.
  Outcome finish(DWORD timeout) {
    if (!started_)  // There is nothing to wait for, and "no process" would mean this one.
      return {};
    if (WaitForSingleObject(child_.hProcess, timeout) != WAIT_OBJECT_0)
      TerminateProcess(child_.hProcess, 99);
    WaitForSingleObject(child_.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(child_.hProcess, &code);
    return {static_cast<int>(code), printed(kOut), printed(kErr)};
  }

 private:
  PROCESS_INFORMATION child_{};
  bool started_ = false;
};

// Ctrl-C reaches all programs of a console, so the child and this one have one of their own, and this one ignores it.
void pressCtrlC() {
  SetConsoleCtrlHandler(nullptr, TRUE);
  EXPECT_NE(GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0), 0);
}

}  // namespace

Outcome ovi(const std::vector<std::string>& arguments) {
  return Child(arguments).finish(INFINITE);
}

Outcome oviInterrupted(const std::vector<std::string>& arguments, const std::string& text) {
  FreeConsole();
  EXPECT_NE(AllocConsole(), 0);
  SetConsoleCtrlHandler(nullptr, FALSE);  // The child inherits this.
  Child child(arguments);
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (child.started() && printed(kOut).find(text) == std::string::npos &&
         printed(kErr).find(text) == std::string::npos && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  pressCtrlC();
  Outcome outcome = child.finish(30'000);
  SetConsoleCtrlHandler(nullptr, FALSE);
  return outcome;
}

#else

namespace {

std::string commandLine(const std::vector<std::string>& words) {
  std::string line;
  for (const std::string& word : words)
    line += quoted(word) + " ";
  return line + ">" + kOut + " 2>" + kErr;
}

std::string oviCommand(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), std::filesystem::path(OVI_PROGRAM).make_preferred().string());
  return commandLine(arguments);
}

Outcome finish(const std::string& command) {
  Outcome run;
  run.code = exitCode(std::system(command.c_str()));
  run.out = printed(kOut);
  run.err = printed(kErr);
  return run;
}

}  // namespace

Outcome ovi(const std::vector<std::string>& arguments) {
  return finish(oviCommand(arguments));
}

Outcome oviInterrupted(const std::vector<std::string>& arguments, const std::string& text) {
  // One that never says it is killed, which is no interrupt.
  return finish("rm -f " + std::string(kOut) + " " + kErr + "; " + oviCommand(arguments) +
                " & child=$!; signal=KILL; for i in $(seq 1500); do if grep -qs " + quoted(text) + " " + kOut + " " +
                kErr + "; then signal=INT; break; fi; sleep 0.02; done; kill -$signal $child; wait $child");
}

Outcome shell(const std::vector<std::string>& words) {
  return finish(commandLine(words));
}
#endif

Environment::Environment(const char* name, const std::string& value) : name_(name) {
  const char* const before = std::getenv(name);
  before_ = before == nullptr ? "" : before;
  setVariable(name, value);
}

Environment::~Environment() {
  setVariable(name_, before_);
}

std::filesystem::path freshFolder(const std::string& name) {
  std::filesystem::remove_all(name);
  std::filesystem::create_directories(name);
  return name;
}

std::string searchPath(std::initializer_list<std::string> folders) {
  std::string path;
  for (const std::string& folder : folders)
    path += (path.empty() ? "" : kBetween) + folder;
  return path;
}

std::string readText(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void writeText(const std::filesystem::path& file, std::string_view text) {
  std::ofstream(file, std::ios::binary) << text;
}

std::vector<std::string> words(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace tool_test
