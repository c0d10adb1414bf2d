// Log sites: how every part of the library writes to its log.
#pragma once

#include <atomic>
#include <cstddef>
#include <locale>
#include <ostream>
#include <sstream>
#include <string>

namespace OVI {

/** Severities in the logger's own numbering; the smaller the number, the graver. */
enum class Severity : int { None = 0, Fatal = 1, Error = 2, Warning = 3, Info = 4, Debug = 5, Verbose = 6 };

/** What a log site asks before it builds its message. */
class Log {
 public:
  /** True when a logger exists and lets records of this severity through. One comparison. */
  static bool admits(Severity severity) noexcept {
    return static_cast<int>(severity) <= maximum_.load(std::memory_order_relaxed);
  }

 private:
  friend void setUpLogging(unsigned appenderMask, Severity severity, const std::string& fileName);

  static inline std::atomic<int> maximum_{-1};
};

/** One record in the making; it reaches the appenders when it goes out of scope. Numbers print in decimal, whatever the
 * application's locale. */
class LogRecord {
 public:
  /** @param site  the function's name as the log shows it, "OVI::oviInit"; must outlive the record */
  LogRecord(Severity severity, const char* site, int line) : severity_(severity), line_(line), site_(site) {
    text_.imbue(std::locale::classic());
  }
  LogRecord(const LogRecord&) = delete;
  LogRecord& operator=(const LogRecord&) = delete;
  ~LogRecord();

  LogRecord& operator<<(const char* text) {
    text_ << (text != nullptr ? text : "(null)");
    return *this;
  }
  template<class T>
  LogRecord& operator<<(const T& value) {
    text_ << value;
    return *this;
  }

 private:
  Severity severity_;
  int line_;
  const char* site_;
  std::ostringstream text_;
};

namespace detail {
/** Gives both branches of a log site the same type; binds weaker than <<. */
struct DiscardRecord {
  void operator&(const LogRecord& /*record*/) const noexcept {}
};
}  // namespace detail

}  // namespace OVI

/** A log site: OVI_LOG(severity, "OVI::oviInit") << "text" << value; costs one comparison when the severity is off. */
#define OVI_LOG_AT(severity, site, line)               \
  !::OVI::Log::admits(severity) ? static_cast<void>(0) \
                                : ::OVI::detail::DiscardRecord() & ::OVI::LogRecord((severity), (site), (line))
#define OVI_LOG(severity, site) OVI_LOG_AT(severity, site, __LINE__)
#define OVI_LOG_VERBOSE(site) OVI_LOG(::OVI::Severity::Verbose, site)
#define OVI_LOG_DEBUG(site) OVI_LOG(::OVI::Severity::Debug, site)
#define OVI_LOG_INFO(site) OVI_LOG(::OVI::Severity::Info, site)
#define OVI_LOG_WARNING(site) OVI_LOG(::OVI::Severity::Warning, site)
#define OVI_LOG_ERROR(site) OVI_LOG(::OVI::Severity::Error, site)
