// The catch ladder of a function behind an export: whatever leaves the work becomes a log line and a result code.
#pragma once

#include <exception>
#include <source_location>
#include <type_traits>
#include <utility>

#include "Base/GCException.h"
#include "core/log.h"
#include "core/result.h"
#include "gentl/exceptions.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * Runs work and turns what it throws into a text for `report` and a code: the mapped code of a GenTL exception,
 * `onGenICam` for one of GenICam, Unknown (-200) for any other.
 *
 * @param work    oviErr(), the result when nothing is thrown
 * @param report  void(const char* text)
 */
template<class Work, class Report>
oviErr caught(Work&& work, Report&& report, oviErr onGenICam = OVI_ERR_UNKNOWN) {
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

/**
 * The same with one log line as the report.
 *
 * @param prefix  what stands before the exception's text: a text, or a function that writes it to the LogRecord& that
 *                it is given
 */
template<class Prefix, class Work>
oviErr guarded(const char* site, Severity severity, const Prefix& prefix, Work&& work,
               oviErr onGenICam = OVI_ERR_UNKNOWN,
               const std::source_location& where = std::source_location::current()) {
  const auto report = [&](const char* text) {
    if (Log::admits(severity)) {
      LogRecord record(severity, site, static_cast<int>(where.line()));
      if constexpr (std::is_invocable_v<const Prefix&, LogRecord&>) {
        prefix(record);
      } else {
        record << prefix;
      }
      record << text;
    }
  };
  return caught(std::forward<Work>(work), report, onGenICam);
}

}  // namespace OVI
