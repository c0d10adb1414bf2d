// The crash handler of the process: who installs it, and where its reports go.
#pragma once

#include <cstdint>
#include <string>

namespace OVI {

/**
 * Writes a report about a crash anywhere in the process and ends it: a mini-dump on Windows, a text elsewhere, after
 * which the system's own default action follows there.
 *
 * A process has at most one active MiniDumper: the first one constructed. Later ones do nothing, and none is ever
 * uninstalled.
 */
class MiniDumper {
 public:
  /** @param directory  where the report is written, as the system spells its temporary folder, in UTF-8
   *  @param quiet      tell the user nothing */
  explicit MiniDumper(const std::string& directory, bool quiet = false);

  /** Whether this one is the process's. */
  bool active() const noexcept { return active_; }

 private:
  bool active_;
};

/** Installs the process's handler on its first call; later calls do nothing. Needs no oviInit. @return 0 */
std::int32_t oviRegisterDebugExceptionHandler();

}  // namespace OVI
