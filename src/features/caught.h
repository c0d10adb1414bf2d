// The catches of the feature functions: an exception becomes a log line of the caller's making and a result code.
#pragma once

#include <exception>

#include "Base/GCException.h"
#include "core/result.h"
#include "gentl/exceptions.h"
#include "ovi/ovi.h"

namespace OVI {

/**
 * Runs `work`, which returns a result code. Whatever it throws is passed to `report` as text: a GenTL exception gives
 * the mapped code, everything else Unknown (-200).
 */
template<class Work, class Report>
oviErr caught(Work&& work, Report&& report) {
  try {
    return work();
  } catch (const GenTLCpp::GenTLException& error) {
    report(error.what());
    return mapGenTLError(error.code());
  } catch (const GenICam::GenericException& error) {
    report(error.GetDescription());
  } catch (const std::exception& error) {
    report(error.what());
  }
  return OVI_ERR_UNKNOWN;
}

}  // namespace OVI
