// Hands every record's message to the application.
#pragma once

#include <plog/Appenders/IAppender.h>

#include <mutex>

#include "ovi/ovi.h"

namespace OVI {

/** Calls of the application's callback never overlap: they run inside the appender's lock, on the thread that logs. */
class LogCallbackAppender : public plog::IAppender {
 public:
  static LogCallbackAppender& instance();

  void set(oviLogCallback callback, void* userData);
  /** Calls nobody any more. May be called from within the callback, which is what ends a process sometimes. */
  void forget();
  void write(const plog::Record& record) override;

 private:
  LogCallbackAppender() = default;

  std::mutex mutex_;
  oviLogCallback callback_ = nullptr;
  void* userData_ = nullptr;
};

}  // namespace OVI
