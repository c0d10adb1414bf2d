// The catch ladder of a function behind an export: whatever leaves the work becomes a log line and a result code.
#pragma once

#include <exception>
#include <string_view>
#include <type_traits>

#include "Base/GCException.h"
#include "core/log.h"
#include "core/result.h"
#include "gentl/exceptions.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * Runs work and turns what it throws into a log line, prefix then the exception's text, and a code: the mapped code of
 * a GenTL exception, `onGenICam` for one of GenICam, Unknown (-200) for any other.
 *
 * @param prefix  a text, or a function that writes the text to the LogRecord& that it is given
 * @param work    oviErr(), the result when nothing is thrown
 */
template<class Prefix, class Work>
oviErr guarded(const char* site, Severity severity, const Prefix& prefix, Work&& work,
               oviErr onGenICam = OVI_ERR_UNKNOWN, int line = __builtin_LINE()) {
  const auto report = [&](const char* text) {
    if (Log::admits(severity)) {
      LogRecord record(severity, site, line);
      if constexpr (std::is_invocable_v<const Prefix&, LogRecord&>) {
        prefix(record);
      } else {
        record << prefix;
      }
      record << text;
    }
  };
  try {
    return work();
  } catch (const GenTLCpp::GenTLException& error) {
    report(error.what());
    return mapGenTLError(error.code());
  } catch (const GenICam::GenericException& error) {
    report(error.GetDescription());
    return onGenICam;
  } catch (const std::exception& error) {
    report(error.what());
    return OVI_ERR_UNKNOWN;
  } catch (...) {
    report("An exception of unknown type.");
    return OVI_ERR_UNKNOWN;
  }
}

}  // namespace OVI
