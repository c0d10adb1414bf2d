// Hands every record's message to the application.
#include "log_callback_appender.h"

#include <plog/Record.h>

#include <string>

#include "core/log_setup.h"
#include "platform/platform.h"

namespace OVI {

namespace {
// A callback that calls the library makes it log; that record must not wait for the lock its own thread holds.
thread_local bool insideCallback = false;
}  // namespace

LogCallbackAppender& LogCallbackAppender::instance() {
  static LogCallbackAppender& appender = *new LogCallbackAppender;
  return appender;
}

void LogCallbackAppender::set(oviLogCallback callback, void* userData) {
  const std::lock_guard lock(mutex_);
  callback_ = callback;
  userData_ = userData;
}

void LogCallbackAppender::forget() {
  if (!insideCallback) {
    set(nullptr, nullptr);
  }
}

void LogCallbackAppender::write(const plog::Record& record) {
  if (insideCallback) {
    return;
  }
  const std::lock_guard lock(mutex_);
  if (callback_ == nullptr) {
    return;
  }
  const std::string message = platform::narrow(plog::util::nstring(record.getMessage()));
  insideCallback = true;
  try {
    callback_(levelFromSeverity(static_cast<Severity>(record.getSeverity())), message.c_str(), userData_);
  } catch (...) {  // NOLINT(bugprone-empty-catch): what the application throws ends here.
  }
  insideCallback = false;
}

}  // namespace OVI
