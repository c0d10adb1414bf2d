/// Where the texts of GenICam's logging categories go. Without a sink they are dropped.
#pragma once

#include "Base/GCTypes.h"

namespace GENICAM_NAMESPACE {

/// @param category  name of the category, for example "TLProxy"
/// @param priority  log4cpp's number: 300 error, 400 warning, 600 information, 700 debug
/// @param text      the finished message, valid during the call
typedef void (*LogSink_t)(void* context, const char* category, int priority, const char* text);

/// Sends all categories to one function; null drops the texts. Any thread; a call under way may still reach the old
/// sink.
GCBASE_API void SetLogSink(LogSink_t sink, void* context);

}  // namespace GENICAM_NAMESPACE
