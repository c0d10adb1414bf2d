// The description of a camera's modules, which the library reads but does not hand out.
#pragma once

#include <memory>

#include "description/feature_facts.h"
#include "session.h"

namespace tool {

/// What the description of a module says. The producer is asked in a process of its own; where it lets a camera be
/// opened once only, this process must not hold it. Throws ToolError with the reason.
std::shared_ptr<const FeatureFacts> describedFeatures(Session& session, const Camera& camera, ovi::Module module);

}  // namespace tool
