/// GenICam's logging categories: the part of log4cpp's interface that programs around GenICam use, over one sink.
#pragma once

#include <atomic>
#include <string>

#include "Base/GCTypes.h"

#define LOG4CPP_NS log4cpp_GenICam

namespace LOG4CPP_NS {

class Priority {
 public:
  typedef enum {
    EMERG = 0,
    FATAL = 0,
    ALERT = 100,
    CRIT = 200,
    ERROR = 300,
    WARN = 400,
    NOTICE = 500,
    INFO = 600,
    DEBUG = 700,
    NOTSET = 800
  } PriorityLevel;
  typedef int Value;
};

/// A named source of log texts. Categories live until the program ends; all members may be called from any thread.
class Category {
 public:
  static Category& getRoot();
  /// The category of that name; made on first use.
  static Category& getInstance(const std::string& name);
  static Category* exists(const std::string& name);
  static void setRootPriority(Priority::Value priority);
  static Priority::Value getRootPriority();
  static void shutdown();

  Category(const Category&) = delete;
  Category& operator=(const Category&) = delete;

  const std::string& getName() const { return m_name; }
  /// NOTSET: as the root.
  void setPriority(Priority::Value priority) { m_priority.store(priority, std::memory_order_relaxed); }
  Priority::Value getPriority() const { return m_priority.load(std::memory_order_relaxed); }
  bool isPriorityEnabled(Priority::Value priority) const;

  void log(Priority::Value priority, const char* format, ...);
  void log(Priority::Value priority, const std::string& text);
  void debug(const char* format, ...);
  void debug(const std::string& text) { log(Priority::DEBUG, text); }
  void info(const char* format, ...);
  void info(const std::string& text) { log(Priority::INFO, text); }
  void notice(const char* format, ...);
  void notice(const std::string& text) { log(Priority::NOTICE, text); }
  void warn(const char* format, ...);
  void warn(const std::string& text) { log(Priority::WARN, text); }
  void error(const char* format, ...);
  void error(const std::string& text) { log(Priority::ERROR, text); }
  void crit(const char* format, ...);
  void crit(const std::string& text) { log(Priority::CRIT, text); }
  void alert(const char* format, ...);
  void alert(const std::string& text) { log(Priority::ALERT, text); }
  void emerg(const char* format, ...);
  void emerg(const std::string& text) { log(Priority::EMERG, text); }
  void fatal(const char* format, ...);
  void fatal(const std::string& text) { log(Priority::FATAL, text); }

  bool isDebugEnabled() const { return isPriorityEnabled(Priority::DEBUG); }
  bool isInfoEnabled() const { return isPriorityEnabled(Priority::INFO); }
  bool isNoticeEnabled() const { return isPriorityEnabled(Priority::NOTICE); }
  bool isWarnEnabled() const { return isPriorityEnabled(Priority::WARN); }
  bool isErrorEnabled() const { return isPriorityEnabled(Priority::ERROR); }
  bool isCritEnabled() const { return isPriorityEnabled(Priority::CRIT); }
  bool isAlertEnabled() const { return isPriorityEnabled(Priority::ALERT); }
  bool isEmergEnabled() const { return isPriorityEnabled(Priority::EMERG); }
  bool isFatalEnabled() const { return isPriorityEnabled(Priority::FATAL); }

 private:
  friend class CategoryTable;
  Category(std::string name, Priority::Value priority) : m_name(std::move(name)), m_priority(priority) {}

  const std::string m_name;
  std::atomic<Priority::Value> m_priority;
};

}  // namespace LOG4CPP_NS

namespace log4cpp = LOG4CPP_NS;
