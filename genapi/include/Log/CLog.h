/// GenICam's logger interface over the categories of log4cpp/Category.hh.
#pragma once

#include <cstdarg>

#include "Base/GCString.h"

namespace GENICAM_NAMESPACE {

struct ILogger {
  enum Priority { ERR = 300, WARN = 400, INFO = 600, DEBUG = 700, NOTSET = 800 };

  virtual void Log(Priority priority, const char* format, ...) = 0;
  virtual void LogVA(Priority priority, const char* format, va_list arguments) = 0;
  virtual ~ILogger() = default;
};

struct ILoggerFactory {
  virtual const gcstring GetLoggerFactoryName() = 0;
  virtual void ConfigureFromString(const gcstring& config) = 0;
  virtual void ConfigureDefault() = 0;
  virtual ILogger* GetLogger(const gcstring& name) = 0;
  virtual bool Exist(const gcstring& name) = 0;
  virtual void PushIndent() = 0;
  virtual void PopIndent() = 0;
  virtual ~ILoggerFactory() = default;
};

class CLog {
 public:
  static bool Exist(const gcstring& name);
  static bool Exist(const char* name);
  /// The logger stays valid until SetLoggerFactory or ShutDown.
  static ILogger& GetLogger(const gcstring& name);
  static ILogger& GetLogger(const char* name);
  static void PushIndent();
  static void PopIndent();
  /// A logger that drops everything.
  static ILogger& OmitLogger();
  /// Takes ownership.
  static void SetLoggerFactory(ILoggerFactory& factory);
  static ILoggerFactory& GetLoggerFactory();
  static void ShutDown();
};

}  // namespace GENICAM_NAMESPACE

#define GENICAM_LOG_IF(pLogger, priority, ...)                           \
  do {                                                                   \
    if ((pLogger) != nullptr && GENICAM_NAMESPACE::CLog::Exist(""))      \
      (pLogger)->Log(GENICAM_NAMESPACE::ILogger::priority, __VA_ARGS__); \
  } while (false)

#define GCLOGINFO(pLogger, ...) GENICAM_LOG_IF(pLogger, INFO, __VA_ARGS__)
#define GCLOGWARN(pLogger, ...) GENICAM_LOG_IF(pLogger, WARN, __VA_ARGS__)
#define GCLOGERROR(pLogger, ...) GENICAM_LOG_IF(pLogger, ERR, __VA_ARGS__)
#define GCLOGDEBUG(pLogger, ...) GENICAM_LOG_IF(pLogger, DEBUG, __VA_ARGS__)
#define GCLOGINFOPUSH(pLogger, ...)        \
  do {                                     \
    GCLOGINFO(pLogger, __VA_ARGS__);       \
    GENICAM_NAMESPACE::CLog::PushIndent(); \
  } while (false)
#define GCLOGINFOPOP(pLogger, ...)        \
  do {                                    \
    GENICAM_NAMESPACE::CLog::PopIndent(); \
    GCLOGINFO(pLogger, __VA_ARGS__);      \
  } while (false)
