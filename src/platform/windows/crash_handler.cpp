// The unhandled-exception filter that tells the user, writes a mini-dump and ends the process.
#include <windows.h>
// After windows.h, which it needs.
#include <dbghelp.h>

#include <array>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <cwchar>
#include <string>

#include "dump_name.h"
#include "platform/platform.h"
#include "windows/text.h"

namespace OVI::platform {

namespace {

using WriteDump = decltype(&MiniDumpWriteDump);
using Message = std::array<wchar_t, 2048>;

class CrashHandler {
 public:
  explicit CrashHandler(const CrashHandlerOptions& options)
      : directory_(widen(options.directory, CP_UTF8)),
        support_(widen(options.supportAddress, CP_ACP)),
        quiet_(options.quiet) {}

  [[noreturn]] void handle(EXCEPTION_POINTERS* exception) const noexcept {
    const std::int64_t seconds = std::time(nullptr);
    Message message{};
    if (!writeReport(exception, seconds, message) && !quiet_)
      show(message.data());
    end();
  }

 private:
  [[noreturn]] static void end() noexcept {
    TerminateProcess(GetCurrentProcess(), 0);
    for (;;)
      Sleep(INFINITE);  // Termination of the own process does not return.
  }

  // False with a message for the user when there is no dump. Does not return when the user's box is not answered with
  // OK.
  bool writeReport(EXCEPTION_POINTERS* exception, std::int64_t seconds, Message& message) const noexcept {
    std::array<wchar_t, MAX_PATH> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    const bool known = length > 0 && length < path.size();
    wchar_t* separator = known ? std::wcsrchr(path.data(), L'\\') : nullptr;
    const wchar_t* executable = separator != nullptr ? separator + 1 : L"unknown";

    const HMODULE library = loadDebugHelp(path.data(), separator);
    if (library == nullptr) {
      std::swprintf(message.data(), message.size(), L"DBGHELP.DLL not found");
      return false;
    }
    const auto writeDump =
        reinterpret_cast<WriteDump>(reinterpret_cast<void*>(GetProcAddress(library, "MiniDumpWriteDump")));
    if (writeDump == nullptr) {
      std::swprintf(message.data(), message.size(), L"DBGHELP.DLL too old");
      return false;
    }

    std::array<wchar_t, MAX_PATH> file{};
    composeDumpName(file.data(), file.size(), directory_.c_str(), executable, seconds);
    std::swprintf(
        message.data(), message.size(),
        L"There was an unexpected error:\n\n%ls\nPlease send the following dump file to %ls together with a short "
        L"description of the error case:\n\nFilename: %ls",
        L"", support_.c_str(), file.data());
    if (!quiet_ && !show(message.data())) {
      std::fwprintf(stderr, L"No dump file was written, because no window could be shown.\n");
      std::fflush(stderr);
      end();
    }
    return writeFile(writeDump, exception, file.data(), message);
  }

  static HMODULE loadDebugHelp(const wchar_t* executablePath, const wchar_t* separator) noexcept {
    static constexpr const wchar_t* kName = L"DBGHELP.DLL";
    HMODULE library = nullptr;
    if (separator != nullptr) {
      std::array<wchar_t, MAX_PATH + 16> beside{};
      const auto folder = static_cast<int>(separator - executablePath + 1);
      std::swprintf(beside.data(), beside.size(), L"%.*ls%ls", folder, executablePath, kName);
      library = LoadLibraryW(beside.data());
    }
    return library != nullptr ? library : LoadLibraryW(kName);
  }

  static bool writeFile(WriteDump writeDump, EXCEPTION_POINTERS* exception, const wchar_t* file,
                        Message& message) noexcept {
    const HANDLE handle =
        CreateFileW(file, GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
      std::swprintf(message.data(), message.size(), L"Failed to create dump file '%ls' (error %d)", file,
                    static_cast<int>(GetLastError()));
      return false;
    }
    MINIDUMP_EXCEPTION_INFORMATION information{};
    information.ThreadId = GetCurrentThreadId();
    information.ExceptionPointers = exception;
    information.ClientPointers = FALSE;
    const BOOL written =
        writeDump(GetCurrentProcess(), GetCurrentProcessId(), handle, MiniDumpNormal, &information, nullptr, nullptr);
    const auto error = static_cast<int>(GetLastError());
    CloseHandle(handle);
    if (written == FALSE)
      std::swprintf(message.data(), message.size(), L"Failed to save dump file to '%ls' (error %d)", file, error);
    return written != FALSE;
  }

  // Whether the user has read it. Where no window can be shown the text goes to standard error.
  static bool show(const wchar_t* message) noexcept {
    const int answer = MessageBoxW(nullptr, message, nullptr, MB_OK);
    if (answer <= 0) {
      std::fwprintf(stderr, L"%ls\n", message);
      std::fflush(stderr);
    }
    return answer == IDOK;
  }

  std::wstring directory_;
  std::wstring support_;
  bool quiet_;
};

std::atomic<const CrashHandler*> activeHandler{nullptr};

LONG WINAPI filter(EXCEPTION_POINTERS* exception) {
  const CrashHandler* handler = activeHandler.load();
  if (handler == nullptr)
    return EXCEPTION_CONTINUE_SEARCH;
  handler->handle(exception);
}

}  // namespace

bool installCrashHandler(const CrashHandlerOptions& options) {
  // Lives as long as the process: the filter may run while static objects are being destroyed.
  static std::aligned_storage_t<sizeof(CrashHandler), alignof(CrashHandler)> storage;
  static std::atomic_flag installed;
  if (installed.test_and_set())
    return false;
  activeHandler.store(new (&storage) CrashHandler(options));
  SetUnhandledExceptionFilter(filter);
  return true;
}

}  // namespace OVI::platform
