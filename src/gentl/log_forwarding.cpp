// GenICam's own log categories, made visible in the library's log.
#include "log_forwarding.h"

#include <Log/LogSink.h>
#include <log4cpp/Category.hh>

#include "core/log.h"

namespace GenTLCpp {

namespace {

OVI::Severity severityOf(int priority) noexcept {
  if (priority <= LOG4CPP_NS::Priority::ERROR) {
    return OVI::Severity::Error;
  }
  if (priority <= LOG4CPP_NS::Priority::WARN) {
    return OVI::Severity::Warning;
  }
  return priority <= LOG4CPP_NS::Priority::INFO ? OVI::Severity::Info : OVI::Severity::Debug;
}

void writeRecord(void* /*context*/, const char* category, int priority, const char* text) {
  OVI_LOG(severityOf(priority), category) << text;
}

}  // namespace

void forwardGenICamLog() {
  GenICam::SetLogSink(&writeRecord, nullptr);
}

}  // namespace GenTLCpp
