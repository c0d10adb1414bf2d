// The logger of the process: its severity, its appenders and the application's callback.
#pragma once

#include <cstdint>
#include <string>

#include "core/log.h"
#include "ovi/ovi.h"

namespace OVI {

inline constexpr unsigned kLogToConsole = 1;
inline constexpr unsigned kLogToFile = 2;
inline constexpr unsigned kLogToDebugOutput = 4;

/** Creates the logger with its appenders. Only the first call of a process does anything. */
void setUpLogging(unsigned appenderMask, Severity severity, const std::string& fileName);

/** Stores the callback and appends the callback appender once more, so that a second attachment delivers twice. */
void attachCallback(oviLogCallback callback, void* userData);

/** Forgets the callback: at the end of the process, what it needs may be gone. */
void detachCallback() noexcept;

/** The severity for a level as applications give it; a value that is none of theirs means warning. */
Severity severityFromLevel(std::uint32_t level) noexcept;

/** The level that the application's callback is told; fatal counts as error. */
std::uint32_t levelFromSeverity(Severity severity) noexcept;

}  // namespace OVI
