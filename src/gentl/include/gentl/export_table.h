// Entry points of a producer: each table of them is a struct whose members resolve themselves in order.
#pragma once

#include <type_traits>

#include "gentl_interface/GenTL.h"
#include "platform/platform.h"

namespace GenTLCpp {

using LibraryHandle = OVI::platform::LibraryHandle;

/** The entry point, or null after a warning in GenICam's log that the producer does not export it. */
void* resolveExportOrWarn(LibraryHandle library, const char* name);

template<class Function>
class Export;

/**
 * One entry point, resolved at construction. Calling a missing GenTL function answers GC_ERR_NOT_AVAILABLE. A table
 * reads:
 * @code
 * struct SomeFunctions {
 *   explicit SomeFunctions(LibraryHandle handle) : library(handle) {}
 *   LibraryHandle library;
 *   Export<PTLOpen> TLOpen{library, "TLOpen"};
 * };
 * @endcode
 */
template<class Result, class... Args>
class Export<Result(GC_CALLTYPE*)(Args...)> {
 public:
  using Function = Result(GC_CALLTYPE*)(Args...);

  Export(LibraryHandle library, const char* name)
      : function_(reinterpret_cast<Function>(resolveExportOrWarn(library, name))) {}

  Function get() const noexcept { return function_; }

  GC_ERROR operator()(Args... args) const requires std::is_same_v<Result, GC_ERROR> {
    return function_ != nullptr ? function_(args...) : GC_ERR_NOT_AVAILABLE;
  }

 private:
  Function function_;
};

/** What every module that can register events needs. */
struct EventFunctions {
  explicit EventFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PGCRegisterEvent> GCRegisterEvent{library, "GCRegisterEvent"};
  Export<PGCUnregisterEvent> GCUnregisterEvent{library, "GCUnregisterEvent"};
  Export<PEventGetData> EventGetData{library, "EventGetData"};
  Export<PEventGetDataInfo> EventGetDataInfo{library, "EventGetDataInfo"};
  Export<PEventGetInfo> EventGetInfo{library, "EventGetInfo"};
  Export<PEventFlush> EventFlush{library, "EventFlush"};
  Export<PEventKill> EventKill{library, "EventKill"};
};

}  // namespace GenTLCpp
