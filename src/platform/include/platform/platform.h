// What the library asks of the operating system; posix/ and windows/ answer it, and only they see system headers.
//
// Narrow text is what the C interface takes and gives: UTF-8 outside Windows, the ANSI code page there.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OVI::platform {

/** A loaded library; null when there is none. */
using LibraryHandle = void*;

/** Loads a library with its symbols kept to itself; the libraries that it needs are looked for in its own folder too.
 * @return null when it cannot be loaded; lastErrorText then says why, until this thread's next call */
LibraryHandle loadLibrary(const std::string& path);
/** The entry point of that name, or null. */
void* resolve(LibraryHandle library, const char* name) noexcept;
void unload(LibraryHandle library) noexcept;

/**
 * Has a function called when the process exits, while other threads and all libraries that are loaded now are still
 * there. What is registered last runs first. The library with the function stays loaded until then; the function may be
 * called more than once.
 */
void callAtExit(void (*function)()) noexcept;

/** The number of this process. A forked child has another one than its parent. */
unsigned long processId() noexcept;

/** The system's words for the calling thread's last failed call of this header, as the system gives them. */
std::string lastErrorText();

/** The characters that separate the folders of a search path. */
const char* searchPathSeparators() noexcept;
/** What stands between a folder and what is in it, as the system writes it. */
char pathSeparator() noexcept;

/** The local path of a file URL, percent-decoded; empty when the URL names no local file. */
std::string urlToPath(const std::string& url);

/** The folder of documents that all users of the machine share. */
std::optional<std::string> publicDocuments();

/** The folder for temporary files, as the system gives it, but in UTF-8 everywhere: it holds the user's name, which the
 * code page may lack. */
std::string tempDirectory();

/** Runs a program with an argument that holds whatever it holds, and returns what it prints to standard output: nothing
 * when no program can be started, an empty text when there is none of that name. */
std::optional<std::string> runAndRead(const std::string& program, const std::string& argument);

/**
 * A file's whole content; nothing when it cannot be read, holds more than `limit` bytes or, outside Windows, is no
 * regular file. Others may have it open.
 */
std::optional<std::string> readFile(const std::string& path, std::uint64_t limit = UINT64_MAX);

/** Time of a clock that never goes back, from an arbitrary start. */
std::uint64_t monotonicNanoseconds() noexcept;

/** Asked once, before orderAllThreads: whether the system orders the memory accesses of a process's threads on demand.
 */
bool prepareOrdering() noexcept;
/** What this thread wrote before is seen by all others from now on, and what they wrote before is seen by this one: the
 * expensive half of a fence whose cheap half, on the other side, costs nothing. */
void orderAllThreads() noexcept;

/** Writes to the debugger's channel; where there is none, nothing happens. */
void debugOutput(const std::string& text) noexcept;
void debugOutput(const std::wstring& text) noexcept;

/** Narrow text for a log message of either character type; what the code page lacks is replaced. */
inline const std::string& narrow(const std::string& text) {
  return text;  // NOLINT(bugprone-return-const-ref-from-parameter): twin of the other, which converts.
}
std::string narrow(const std::wstring& text);

/** Narrow text in UTF-8, as cameras and producers take it. */
std::string toUtf8(std::string narrowText);
/** The text of a camera, its description or its producer, which is UTF-8, as narrow text. What is no UTF-8 stays as it
 * is. */
std::string fromUtf8(std::string utf8Text);

/** Whether narrow text is UTF-8, so that the two above change nothing. */
#ifdef _WIN32
inline constexpr bool kNarrowIsUtf8 = false;
#else
inline constexpr bool kNarrowIsUtf8 = true;
#endif

/** The same for who only looks at the text: nothing is copied where nothing changes, else `room` holds the result. */
inline std::string_view viewInUtf8(std::string_view narrowText, std::string& room) {
  if constexpr (!kNarrowIsUtf8) {
    return room = toUtf8(std::string(narrowText));
  }
  return narrowText;
}
inline std::string_view viewFromUtf8(std::string_view utf8Text, std::string& room) {
  if constexpr (!kNarrowIsUtf8) {
    return room = fromUtf8(std::string(utf8Text));
  }
  return utf8Text;
}

/** What a crash handler needs to know beforehand. */
struct CrashHandlerOptions {
  std::string directory;       // Where the report is written, in UTF-8 as tempDirectory gives it.
  std::string supportAddress;  // Named in the message to the user.
  bool quiet = false;          // No message boxes.
};

/** Installs the handler that writes a report about a crash and ends the process; once per process, the first counts.
 * @return whether this call installed it */
bool installCrashHandler(const CrashHandlerOptions& options);

}  // namespace OVI::platform
