// The tool's one place that knows which operating system it runs on.
#include "platform/console.h"

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#include <windows.h>
// After windows.h, which it needs.
#include <shellapi.h>
#else
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>
#endif

#ifndef _WIN32
extern char** environ;  // NOLINT(readability-redundant-declaration): POSIX leaves it to the program.
#endif

#include "platform/files.h"

namespace tool {

namespace {

// The descriptor of the real standard output, once the libraries' output was sent elsewhere.
int dataDescriptor = 1;

}  // namespace

std::uint64_t mainMemory() {
  return OVI::platform::mainMemory();
}

#ifdef _WIN32

namespace {

std::wstring widen(std::string_view text, UINT codePage) {
  if (text.empty())
    return {};
  const int size = MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), static_cast<int>(text.size()), wide.data(), size);
  return wide;
}

std::string narrow(std::wstring_view text, UINT codePage) {
  if (text.empty())
    return {};
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(codePage, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(codePage, 0, text.data(), length, result.data(), size, nullptr, nullptr);
  return result;
}

void enableEscapeSequences(DWORD which) {
  const HANDLE handle = GetStdHandle(which);
  DWORD mode = 0;
  if (GetConsoleMode(handle, &mode) != 0)
    SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

std::string shellWord(const std::string& word) {
  return word.find_first_of(" \t\"'^&|;<>()*?%!,=") == std::string::npos ? word : "\"" + word + "\"";
}

std::FILE* takeStandardOutput(bool showLibraryOutput) {
  const int real = _dup(_fileno(stdout));
  if (real >= 0)  // What producers start must not hold it open.
    SetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(real)), HANDLE_FLAG_INHERIT, 0);
  std::FILE* data = real < 0 ? nullptr : _fdopen(real, "w");
  if (data == nullptr)
    return stdout;
  const int other = showLibraryOutput ? _dup(_fileno(stderr)) : _open("NUL", _O_WRONLY);
  if (other >= 0) {
    _dup2(other, _fileno(stdout));
    _close(other);
  }
  dataDescriptor = real;
  return data;
}

bool standardOutputIsTerminal() {
  return _isatty(dataDescriptor) != 0;
}
bool standardErrorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

int terminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info) == 0)
    return 80;
  return info.srWindow.Right - info.srWindow.Left + 1;
}

void prepareConsole() {
  SetConsoleOutputCP(CP_UTF8);
  enableEscapeSequences(STD_OUTPUT_HANDLE);
  enableEscapeSequences(STD_ERROR_HANDLE);
}

std::vector<std::string> utf8Arguments(int argc, char** argv) {
  int count = 0;
  LPWSTR* wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  if (wide == nullptr) {
    arguments.assign(argv + 1, argv + argc);
    return arguments;
  }
  for (int i = 1; i < count; ++i)
    arguments.push_back(narrow(wide[i], CP_UTF8));
  LocalFree(wide);
  return arguments;
}

std::filesystem::path programFolder() {
  std::wstring path(32768, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  path.resize(length);
  return std::filesystem::path(path).parent_path();
}

std::string environmentVariable(const char* name) {
  const std::wstring wideName = widen(name, CP_UTF8);
  std::wstring value(32768, L'\0');
  const DWORD length = GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size()));
  return narrow(std::wstring_view(value.data(), length), CP_UTF8);
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  _wputenv_s(widen(name, CP_UTF8).c_str(), widen(value, CP_UTF8).c_str());
}

std::string toLibraryText(std::string_view utf8) {
  return narrow(widen(utf8, CP_UTF8), CP_ACP);
}

std::string fromLibraryText(std::string_view text) {
  return narrow(widen(text, CP_ACP), CP_UTF8);
}

std::vector<std::string> environmentVariables() {
  std::vector<std::string> variables;
  wchar_t* const block = GetEnvironmentStringsW();
  for (const wchar_t* entry = block; entry != nullptr && *entry != L'\0'; entry += std::wcslen(entry) + 1)
    variables.push_back(narrow(entry, CP_UTF8));
  if (block != nullptr)
    FreeEnvironmentStringsW(block);
  return variables;
}

const char* searchPathSeparators() {
  return ";";
}

#else

std::string shellWord(const std::string& word) {
  // Nothing is obeyed between these marks, whatever a camera may be named.
  static constexpr const char* kObeyed = " \t\n\r\"'`$&|;<>()[]{}*?!#~^\\";
  if (!word.empty() && word.find_first_of(kObeyed) == std::string::npos)
    return word;
  std::string quoted = "'";
  for (const char c : word)
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

std::FILE* takeStandardOutput(bool showLibraryOutput) {
  const int real = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);  // What producers start must not hold it open.
  std::FILE* data = real < 0 ? nullptr : fdopen(real, "w");
  if (data == nullptr)
    return stdout;
  const int other = showLibraryOutput ? dup(STDERR_FILENO) : open("/dev/null", O_WRONLY);
  if (other >= 0) {
    dup2(other, STDOUT_FILENO);
    close(other);
  }
  dataDescriptor = real;
  return data;
}

bool standardOutputIsTerminal() {
  return isatty(dataDescriptor) != 0;
}
bool standardErrorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

int terminalWidth() {
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0)
    return 80;
  return size.ws_col;
}

void prepareConsole() {}

std::vector<std::string> utf8Arguments(int argc, char** argv) {
  return {argv + 1, argv + argc};
}

std::filesystem::path programFolder() {
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? std::filesystem::current_path(error) : self.parent_path();
}

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

void setEnvironmentVariable(const char* name, const std::string& value) {
  setenv(name, value.c_str(), 1);
}

std::string toLibraryText(std::string_view utf8) {
  return std::string(utf8);
}

std::string fromLibraryText(std::string_view narrow) {
  return std::string(narrow);
}

std::vector<std::string> environmentVariables() {
  std::vector<std::string> variables;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry)
    variables.emplace_back(*entry);
  return variables;
}

const char* searchPathSeparators() {
  return ";:";
}

#endif

}  // namespace tool
