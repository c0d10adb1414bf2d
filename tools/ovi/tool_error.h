// The tool's one kind of failure: what went wrong, why, and what to try next.
#pragma once

#include <stdexcept>
#include <string>

namespace tool {

/// Exit codes: 0 success, 1 the camera or the library failed, 2 the command line was wrong, 130 interrupted, 141
/// nobody reads the output any more, as shells have it (nothing is said then).
enum class ExitCode : int { kSuccess = 0, kFailure = 1, kUsage = 2, kInterrupted = 130, kReaderGone = 141 };

class ToolError : public std::runtime_error {
 public:
  explicit ToolError(const std::string& message, std::string hint = {}, ExitCode code = ExitCode::kFailure)
      : std::runtime_error(message),
        hint_(std::move(hint)),
        code_(code) {}

  /// The next command or step to try; may be empty.
  const std::string& hint() const { return hint_; }
  ExitCode code() const { return code_; }

 private:
  std::string hint_;
  ExitCode code_;
};

}  // namespace tool
