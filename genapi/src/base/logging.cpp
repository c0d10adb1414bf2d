// Logging categories and the logger interface over them; both end in one sink.
#include <cstdarg>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "Log/CLog.h"
#include "Log/LogSink.h"
#include "log4cpp/Category.hh"

namespace GENICAM_NAMESPACE {
namespace {

struct Sink {
  LogSink_t function = nullptr;
  void* context = nullptr;
};

std::mutex& sinkMutex() {
  static std::mutex mutex;
  return mutex;
}
Sink& installedSink() {
  static Sink sink;
  return sink;
}

}  // namespace

void SetLogSink(LogSink_t sink, void* context) {
  const std::lock_guard lock(sinkMutex());
  installedSink() = {sink, context};
}

}  // namespace GENICAM_NAMESPACE

namespace LOG4CPP_NS {
namespace {

using GENICAM_NAMESPACE::installedSink;
using GENICAM_NAMESPACE::Sink;
using GENICAM_NAMESPACE::sinkMutex;

constexpr std::size_t kLineSize = 2048;

void deliver(const Category& category, Priority::Value priority, const char* text) {
  Sink sink;
  {
    const std::lock_guard lock(sinkMutex());
    sink = installedSink();
  }
  if (sink.function != nullptr)
    sink.function(sink.context, category.getName().c_str(), priority, text);
}

void deliverFormatted(const Category& category, Priority::Value priority, const char* format, va_list arguments) {
  if (!category.isPriorityEnabled(priority))
    return;
  char text[kLineSize] = "";
  std::vsnprintf(text, sizeof text, format, arguments);
  deliver(category, priority, text);
}

}  // namespace

/// All categories of the process.
class CategoryTable {
 public:
  static CategoryTable& instance() {
    // Never destroyed: texts may come while the process ends.
    static CategoryTable& table = *new CategoryTable;
    return table;
  }

  Category& root() { return root_; }
  Category& get(const std::string& name) {
    if (name.empty())
      return root_;
    const std::lock_guard lock(mutex_);
    std::unique_ptr<Category>& category = categories_[name];
    if (!category)
      category.reset(new Category(name, Priority::NOTSET));
    return *category;
  }
  Category* find(const std::string& name) {
    if (name.empty())
      return &root_;
    const std::lock_guard lock(mutex_);
    const auto found = categories_.find(name);
    return found != categories_.end() ? found->second.get() : nullptr;
  }

 private:
  CategoryTable() : root_("", Priority::INFO) {}

  Category root_;
  std::mutex mutex_;
  std::map<std::string, std::unique_ptr<Category>> categories_;
};

Category& Category::getRoot() {
  return CategoryTable::instance().root();
}
Category& Category::getInstance(const std::string& name) {
  return CategoryTable::instance().get(name);
}
Category* Category::exists(const std::string& name) {
  return CategoryTable::instance().find(name);
}
void Category::setRootPriority(Priority::Value priority) {
  getRoot().setPriority(priority);
}
Priority::Value Category::getRootPriority() {
  return getRoot().getPriority();
}
void Category::shutdown() {
  GENICAM_NAMESPACE::SetLogSink(nullptr, nullptr);
}

bool Category::isPriorityEnabled(Priority::Value priority) const {
  const Priority::Value own = getPriority();
  return priority <= (own != Priority::NOTSET ? own : getRootPriority());
}

// The interface has them so.
// NOLINTBEGIN(readability-make-member-function-const)
void Category::log(Priority::Value priority, const std::string& text) {
  if (isPriorityEnabled(priority))
    deliver(*this, priority, text.c_str());
}

// C gives variable arguments on only as a list, so each level has to pack its own.
#define LOG4CPP_DEFINE_LEVEL(function, level)                    \
  void Category::function(const char* format, ...) {             \
    va_list arguments;                                           \
    va_start(arguments, format);                                 \
    deliverFormatted(*this, Priority::level, format, arguments); \
    va_end(arguments);                                           \
  }

LOG4CPP_DEFINE_LEVEL(debug, DEBUG)
LOG4CPP_DEFINE_LEVEL(info, INFO)
LOG4CPP_DEFINE_LEVEL(notice, NOTICE)
LOG4CPP_DEFINE_LEVEL(warn, WARN)
LOG4CPP_DEFINE_LEVEL(error, ERROR)
LOG4CPP_DEFINE_LEVEL(crit, CRIT)
LOG4CPP_DEFINE_LEVEL(alert, ALERT)
LOG4CPP_DEFINE_LEVEL(emerg, EMERG)
LOG4CPP_DEFINE_LEVEL(fatal, FATAL)

#undef LOG4CPP_DEFINE_LEVEL

void Category::log(Priority::Value priority, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  deliverFormatted(*this, priority, format, arguments);
  va_end(arguments);
}
// NOLINTEND(readability-make-member-function-const)

}  // namespace LOG4CPP_NS

namespace GENICAM_NAMESPACE {
namespace {

class CategoryLogger : public ILogger {
 public:
  explicit CategoryLogger(const gcstring& name) : category_(LOG4CPP_NS::Category::getInstance(name.c_str())) {}

  void Log(Priority priority, const char* format, ...) override {
    va_list arguments;
    va_start(arguments, format);
    LogVA(priority, format, arguments);
    va_end(arguments);
  }
  void LogVA(Priority priority, const char* format, va_list arguments) override {
    LOG4CPP_NS::deliverFormatted(category_, priority, format, arguments);
  }

 private:
  LOG4CPP_NS::Category& category_;
};

class SilentLogger : public ILogger {
 public:
  void Log(Priority, const char*, ...) override {}
  void LogVA(Priority, const char*, va_list) override {}
};

class CategoryLoggerFactory : public ILoggerFactory {
 public:
  const gcstring GetLoggerFactoryName() override { return "Category"; }
  void ConfigureFromString(const gcstring&) override {}
  void ConfigureDefault() override {}
  ILogger* GetLogger(const gcstring& name) override {
    std::unique_ptr<CategoryLogger>& logger = loggers_[std::string(name.c_str())];
    if (!logger)
      logger = std::make_unique<CategoryLogger>(name);
    return logger.get();
  }
  bool Exist(const gcstring& name) override { return LOG4CPP_NS::Category::exists(name.c_str()) != nullptr; }
  void PushIndent() override {}
  void PopIndent() override {}

 private:
  std::map<std::string, std::unique_ptr<CategoryLogger>> loggers_;
};

std::recursive_mutex& factoryMutex() {
  static std::recursive_mutex mutex;
  return mutex;
}
std::unique_ptr<ILoggerFactory>& factory() {
  static std::unique_ptr<ILoggerFactory> installed = std::make_unique<CategoryLoggerFactory>();
  return installed;
}

}  // namespace

ILoggerFactory& CLog::GetLoggerFactory() {
  const std::lock_guard lock(factoryMutex());
  return *factory();
}

bool CLog::Exist(const gcstring& name) {
  const std::lock_guard lock(factoryMutex());
  return factory()->Exist(name);
}
bool CLog::Exist(const char* name) {
  return Exist(gcstring(name));
}

ILogger& CLog::GetLogger(const gcstring& name) {
  const std::lock_guard lock(factoryMutex());
  ILogger* const logger = factory()->GetLogger(name);
  return logger != nullptr ? *logger : OmitLogger();
}
ILogger& CLog::GetLogger(const char* name) {
  return GetLogger(gcstring(name));
}

void CLog::PushIndent() {
  const std::lock_guard lock(factoryMutex());
  factory()->PushIndent();
}
void CLog::PopIndent() {
  const std::lock_guard lock(factoryMutex());
  factory()->PopIndent();
}

ILogger& CLog::OmitLogger() {
  static SilentLogger silent;
  return silent;
}

void CLog::SetLoggerFactory(ILoggerFactory& newFactory) {
  const std::lock_guard lock(factoryMutex());
  factory().reset(&newFactory);
}

void CLog::ShutDown() {
  const std::lock_guard lock(factoryMutex());
  factory() = std::make_unique<CategoryLoggerFactory>();
}

}  // namespace GENICAM_NAMESPACE
