// What the log calls devices, and catches whose log line has no room for a reason.
#pragma once

#include <string>
#include <utility>

#include "core/log.h"
#include "gentl/device.h"
#include "gentl/guard.h"
#include "ovi/ovi.h"

namespace OVI {

/** The ID that the producer gives; empty when it gives none, which is no reason to fail a message. */
inline std::string deviceId(const GenTLCpp::Device& device) {
  try {
    return device.getInfoString(DEVICE_INFO_ID);
  } catch (const GenTLCpp::GenTLException&) {
    return {};
  }
}

/** As guarded(), for an error line that is fixed text: the reason follows in a line of its own, for debugging. */
template<class Work>
oviErr guardedWithFixedText(const char* site, const char* text, Work&& work) {
  return caught(std::forward<Work>(work), [&](const char* reason) {
    OVI_LOG_DEBUG(site) << text << " Reason: " << reason;
    OVI_LOG_ERROR(site) << text;
  });
}

}  // namespace OVI
