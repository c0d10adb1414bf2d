// The frame that every exported function runs in: the initialised check, one inward call, and the last catch before the
// C boundary.
#pragma once

#include <exception>
#include <new>
#include <type_traits>
#include <utility>

#include "core/global_state.h"
#include "core/log.h"
#include "ovi/ovi.h"

namespace OVI::api {

/** What a function answers when an exception reaches the boundary that no layer turned into a code. */
template<class Result>
struct Fallback {
  Result onOutOfMemory;
  Result onAnything;
};

template<class Result>
constexpr Fallback<Result> defaultFallback() {
  if constexpr (std::is_same_v<Result, std::int32_t>)
    return {OVI_ERR_OUT_OF_MEMORY, OVI_ERR_UNKNOWN};
  else
    return {};
}

/** Runs work, and lets nothing pass the C boundary. For functions that work without oviInit. */
template<class Work, class Result = std::invoke_result_t<Work>>
Result always(const char* site, Work&& work, Fallback<Result> fallback = defaultFallback<Result>()) noexcept {
  // A failing log must not turn a caught exception into another one.
  const auto report = [&](const char* text) {
    try {
      OVI_LOG_ERROR(site) << "Unexpected exception: " << text;
    } catch (...) {  // NOLINT(bugprone-empty-catch)
    }
  };
  try {
    return std::forward<Work>(work)();
  } catch (const std::bad_alloc& exception) {
    report(exception.what());
    return fallback.onOutOfMemory;
  } catch (const std::exception& exception) {
    report(exception.what());
    return fallback.onAnything;
  } catch (...) {
    report("of an unknown type");
    return fallback.onAnything;
  }
}

/** The same for functions that need oviInit: before it they answer notInitialized and touch no argument. */
template<class Work, class Result = std::invoke_result_t<Work>>
Result whenInitialized(const char* site, Work&& work, Result notInitialized = OVI_ERR_NOT_INITIALIZED) noexcept {
  if (!isInitialized())
    return notInitialized;
  return always(site, std::forward<Work>(work));
}

/** For the functions whose documentation says that an exception leaves them. */
template<class Work, class Result = std::invoke_result_t<Work>>
Result whenInitializedUncaught(Work&& work, Result notInitialized = OVI_ERR_NOT_INITIALIZED) {
  if (!isInitialized())
    return notInitialized;
  return std::forward<Work>(work)();
}

}  // namespace OVI::api
