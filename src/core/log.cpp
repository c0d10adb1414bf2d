// The logger and its appenders.
#include "core/log.h"

#include <plog/Appenders/ColorConsoleAppender.h>
#include <plog/Appenders/RollingFileAppender.h>
#include <plog/Log.h>

#include <array>
#include <ctime>
#include <iomanip>
#include <locale>
#include <mutex>
#include <shared_mutex>

#include "core/log_setup.h"
#include "log_callback_appender.h"
#include "platform/platform.h"

namespace OVI {

namespace {

constexpr std::size_t kMaxFileSize = 12582912;
constexpr int kMaxFiles = 2;

/** The logger's standard line of text, with the same numbers in every locale of the application. */
struct LineFormatter {
  static plog::util::nstring header() { return {}; }
  static plog::util::nstring format(const plog::Record& record) {
    std::tm time{};
    plog::util::localtime_s(&time, &record.getTime().time);
    plog::util::nostringstream line;
    line.imbue(std::locale::classic());
    line << std::put_time(&time, PLOG_NSTR("%Y-%m-%d %H:%M:%S.")) << std::setfill(PLOG_NSTR('0')) << std::setw(3)
         << record.getTime().millitm << std::setfill(PLOG_NSTR(' ')) << " " << std::left << std::setw(5)
         << plog::severityToString(record.getSeverity()) << " [" << record.getTid() << "] [" << record.getFunc() << "@"
         << record.getLine() << "] " << record.getMessage() << "\n";
    return line.str();
  }
};

/** Sends formatted lines to the debugger, where the system has a channel for that. */
class DebugOutputAppender : public plog::IAppender {
 public:
  void write(const plog::Record& record) override { platform::debugOutput(LineFormatter::format(record)); }
};

struct LevelPair {
  std::uint32_t level;
  Severity severity;
};
constexpr std::array kLevels = {LevelPair{0, Severity::None},    LevelPair{1, Severity::Error},
                                LevelPair{2, Severity::Warning}, LevelPair{4, Severity::Info},
                                LevelPair{8, Severity::Debug},   LevelPair{16, Severity::Verbose},
                                LevelPair{1, Severity::Fatal}};

// Appending while another thread writes a record would pull the appender list from under it.
std::shared_mutex& appenderListMutex() {
  static std::shared_mutex& mutex = *new std::shared_mutex;
  return mutex;
}

}  // namespace

LogRecord::~LogRecord() {
  try {
    plog::Record record(static_cast<plog::Severity>(severity_), site_, static_cast<std::size_t>(line_), "", nullptr, 0);
    record << text_.str();
    const std::shared_lock lock(appenderListMutex());
    *plog::get() += record;
  } catch (...) {  // NOLINT(bugprone-empty-catch): a record that cannot be written is lost, the work goes on.
  }
}

void setUpLogging(unsigned appenderMask, Severity severity, const std::string& fileName) {
  static std::once_flag once;
  std::call_once(once, [&] {
    // Logger and appenders are never destroyed: threads that outlive main go on writing.
    static auto& logger = *new plog::Logger<PLOG_DEFAULT_INSTANCE_ID>(static_cast<plog::Severity>(severity));
    if ((appenderMask & kLogToConsole) != 0) {
      logger.addAppender(new plog::ColorConsoleAppender<LineFormatter>);
    }
    if ((appenderMask & kLogToFile) != 0) {
      logger.addAppender(new plog::RollingFileAppender<LineFormatter>(fileName.c_str(), kMaxFileSize, kMaxFiles));
    }
    if ((appenderMask & kLogToDebugOutput) != 0) {
      logger.addAppender(new DebugOutputAppender);
    }
    Log::maximum_.store(static_cast<int>(severity));
  });
}

void attachCallback(oviLogCallback callback, void* userData) {
  LogCallbackAppender::instance().set(callback, userData);
  const std::unique_lock lock(appenderListMutex());
  plog::get()->addAppender(&LogCallbackAppender::instance());
}

void detachCallback() noexcept {
  LogCallbackAppender::instance().forget();
}

Severity severityFromLevel(std::uint32_t level) noexcept {
  for (const LevelPair& pair : kLevels) {
    if (pair.level == level) {
      return pair.severity;
    }
  }
  return Severity::Warning;
}

std::uint32_t levelFromSeverity(Severity severity) noexcept {
  for (const LevelPair& pair : kLevels) {
    if (pair.severity == severity) {
      return pair.level;
    }
  }
  return levelFromSeverity(Severity::Warning);
}

}  // namespace OVI
