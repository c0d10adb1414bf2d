// The frame of every exported function: the orders of tests, the initialised check, and exceptions turned into codes.
#pragma once

#include <exception>
#include <new>
#include <type_traits>

#include "modules/failure.h"
#include "modules/functions.h"
#include "modules/handle_table.h"
#include "modules/hostility.h"
#include "modules/info.h"
#include "modules/last_error.h"
#include "modules/library.h"

namespace vcam {

enum class Needs { Nothing, InitializedLibrary };

// Runs the work, which returns nothing or a code of its own, and remembers what went wrong.
template<class Work>
GC_ERROR call(Function function, Work&& work, Needs needs = Needs::InitializedLibrary) noexcept {
  try {
    if (Hostility::armed()) {
      if (const GC_ERROR code = Hostility::instance().enter(function); code != GC_ERR_SUCCESS) {
        return rememberError(code, nameOf(function), "failed by order");
      }
    }
    if (needs == Needs::InitializedLibrary && !Library::isInitialized()) {
      return rememberError(GC_ERR_NOT_INITIALIZED, nameOf(function), "GCInitLib comes first");
    }
    if constexpr (std::is_void_v<decltype(work())>) {
      work();
      return GC_ERR_SUCCESS;
    } else {
      return work();
    }
  } catch (const Failure& failure) {
    return rememberError(failure.code(), nameOf(function), failure.text());
  } catch (const std::bad_alloc&) {
    return rememberError(GC_ERR_OUT_OF_MEMORY, nameOf(function), "no memory left");
  } catch (const std::exception& error) {
    return rememberError(GC_ERR_ERROR, nameOf(function), error.what());
  } catch (...) {
    return rememberError(GC_ERR_ERROR, nameOf(function), "an unknown failure");
  }
}

// Stores a result whose place the caller must name.
template<class Value>
void store(Value* to, Value value, std::string_view name) {
  require(to, name);
  *to = value;
}

// The ID text of a call.
inline std::string idFrom(const char* id) {
  require(id, "the ID");
  return id;
}

}  // namespace vcam
