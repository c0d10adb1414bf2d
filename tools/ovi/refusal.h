// Why a feature could not be read or set: which node forbids it, and that node's value.
#pragma once

#include <memory>
#include <string>

#include "module_view.h"
#include "node_states.h"
#include "tool_error.h"

namespace tool {

/// What was tried with a feature, or with an entry of it.
struct Attempt {
  enum class What { kRead, kWrite, kTooSmall, kTooLarge, kOffStep, kEntry };

  What what;
  std::string node;
};

/// A refusal that main() explains with the description, once the camera is closed: many can be opened once only. What
/// it says by itself names all that may be the reason.
class Refused : public ToolError {
 public:
  Refused(std::string message, const std::string& candidates, std::string hint, ExitCode code, const ModuleView& view,
          Attempt attempt, std::shared_ptr<NodeStates> states);

  /// With the node that forbids it, when the description can be had and tells.
  std::string explained(Session& session) const;

 private:
  std::string message_;
  Camera camera_;
  ovi::Module module_;
  Attempt attempt_;
  std::shared_ptr<NodeStates> states_;
};

/// Throws ToolError with the message and why it is so.
[[noreturn]] void refuse(const ModuleView& view, const Attempt& attempt, const std::string& message,
                         const std::string& hint, ExitCode code = ExitCode::kFailure);

}  // namespace tool
