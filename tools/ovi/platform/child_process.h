// Another program run to its end, with what it printed.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace tool {

struct ChildResult {
  bool started = false;
  std::string refusal;    ///< why it was not, in the system's words
  bool timedOut = false;  ///< and was ended
  bool stopped = false;   ///< and was ended, because the user pressed Ctrl-C
  bool crashed = false;
  std::string crash;  ///< the signal or exception, when it crashed
  int exitCode = -1;
  std::string output;    ///< standard output
  std::string messages;  ///< standard error
};

/// Runs a program and waits for its end, for so long at most, or until Ctrl-C. What it started itself may go on.
ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                     std::chrono::milliseconds timeout);

/// This program's own file.
std::filesystem::path ownProgram();

}  // namespace tool
