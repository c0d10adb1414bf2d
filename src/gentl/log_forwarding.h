// GenICam's own log categories, made visible in the library's log.
#pragma once

namespace GenTLCpp {

/** Sends what GenICam and the binding tell their log categories to the library's log, at the category's name as site.
 */
void forwardGenICamLog();

}  // namespace GenTLCpp
