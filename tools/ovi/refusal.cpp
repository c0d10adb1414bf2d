// Why a feature could not be read or set: which node forbids it, and that node's value.
#include "refusal.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "camera_description.h"
#include "text.h"

namespace tool {

namespace {

// The lock that a running acquisition puts on the camera's geometry.
constexpr const char* kLock = "TLParamsLocked";

bool canBeRead(const NodeState& state) {
  return state.access == OVI_ACCESS_READ_ONLY || state.access == OVI_ACCESS_READ_WRITE;
}

bool canBeWritten(const NodeState& state) {
  return state.access == OVI_ACCESS_WRITE_ONLY || state.access == OVI_ACCESS_READ_WRITE;
}

std::string lockText(const std::string& whom) {
  return " " + whom + " locks it: stop the acquisition first.";
}

// Looks for the reason in the description, and for the values in the nodes' states.
class Explanation {
 public:
  Explanation(const FeatureFacts& facts, NodeStates& states) : facts_(facts), states_(states) {}

  // A sentence with a blank before it; empty when the description does not tell.
  std::string of(const Attempt& attempt) {
    using Limit = FeatureFacts::Limit;
    switch (attempt.what) {
      case Attempt::What::kTooSmall:
        return limit(attempt.node, Limit::kMinimum, "minimum");
      case Attempt::What::kTooLarge:
        return limit(attempt.node, Limit::kMaximum, "maximum");
      case Attempt::What::kOffStep:
        return limit(attempt.node, Limit::kStep, "step");
      default:
        return forbidden(attempt.node, attempt.what == Attempt::What::kWrite, {});
    }
  }

 private:
  std::string limit(const std::string& node, FeatureFacts::Limit which, const char* name) {
    std::vector<std::string> parts;
    for (const std::string& one : facts_.limits(node, which))
      origin(one, parts);
    return std::string(" Its ") + name +
           (parts.empty() ? " is fixed in the camera's description" : " depends on " + join(parts, ", ")) + ".";
  }

  // Whose value a node's value is: the feature that it is, or those that it is computed from.
  void origin(const std::string& node, std::vector<std::string>& parts) {
    constexpr std::size_t kMost = 6;
    std::set<std::string> seen;
    std::vector<std::string> open{node};
    for (std::size_t next = 0; next < open.size() && parts.size() < kMost; ++next) {
      const std::string one = open[next];
      if (!seen.insert(one).second)
        continue;
      const std::vector<std::string> terms = facts_.terms(one);
      if (facts_.isFeature(one) || terms.empty()) {
        const std::string part = withValue(one);
        if (std::ranges::find(parts, part) == parts.end())
          parts.push_back(part);
        continue;
      }
      open.insert(open.end(), terms.begin(), terms.end());
    }
  }

  std::string withValue(const std::string& node) {
    const NodeState& state = states_.of(node);
    return node + (state.value.empty() ? " (not readable)" : " = " + state.value);
  }

  // "Guard = 1", and what it is computed from when it is no feature itself.
  std::string guardText(const std::string& guard) {
    std::vector<std::string> parts;
    if (!facts_.isFeature(guard) && facts_.isFormula(guard))
      origin(guard, parts);
    return withValue(guard) + (parts.empty() ? "" : " (from " + join(parts, ", ") + ")");
  }

  // `behind` is the feature that holds its value in the node.
  std::string forbidden(const std::string& node, bool write, const std::string& behind) {
    if (!visited_.insert(node).second)
      return {};
    const std::string it = behind.empty() ? "it" : node + ", which is behind " + behind;
    for (const Guard& guard : facts_.guards(node))
      if (const std::string sentence = decided(guard, write, it); !sentence.empty())
        return sentence;
    const std::string access = facts_.fixedAccess(node);
    const bool available = states_.of(node).access > OVI_ACCESS_NOT_AVAILABLE;
    if (available && access == (write ? "RO" : "WO"))
      return " It always is: " + node + " is " + access + " in the camera's description.";
    if (const std::string filledBy = facts_.filledBy(node); !filledBy.empty())
      return " " + node + " is filled by " + filledBy + ", and none has come.";
    if (available && write && facts_.isFormula(node)) {
      std::vector<std::string> parts;
      for (const std::string& term : facts_.terms(node))
        origin(term, parts);
      return " It is computed" + (parts.empty() ? std::string() : " from " + join(parts, ", ")) +
             " and can never be set.";
    }
    const std::string feature = behind.empty() ? node : behind;
    for (const std::string& source : facts_.valueSources(node))
      if (write ? !canBeWritten(states_.of(source)) : !canBeRead(states_.of(source)))
        if (const std::string sentence = forbidden(source, write, feature); !sentence.empty())
          return sentence;
    for (const std::string& need : facts_.needs(node))
      if (states_.of(need).access <= OVI_ACCESS_NOT_AVAILABLE)
        if (const std::string sentence = forbidden(need, false, feature); !sentence.empty())
          return sentence;
    const std::vector<std::string> entries = facts_.entries(node);
    const auto isUsable = [this](const std::string& entry) {
      return states_.of(entry).access > OVI_ACCESS_NOT_AVAILABLE;
    };
    if (!entries.empty() && std::ranges::none_of(entries, isUsable))
      return " None of its entries can be used." + forbidden(entries.front(), false, feature);
    return {};
  }

  std::string decided(const Guard& guard, bool write, const std::string& it) {
    const bool locks = guard.decides == Guard::Decides::kLocked;
    if (locks && !write)
      return {};
    const NodeState& state = states_.of(guard.node);
    // A guard that is not there, or has no number, decides nothing.
    if (state.access == OVI_ACCESS_UNDEFINED || (!state.yes && canBeRead(state) && !state.value.empty()))
      return {};
    if (!state.yes)
      return " " + guard.node + ", which decides whether it can be used, cannot be read." +
             forbidden(guard.node, false, guard.node);
    if (*state.yes != locks)
      return {};
    const std::string text = guardText(guard.node);
    if (locks)
      return guard.node == kLock ? lockText(text) : " " + text + " locks " + it + ".";
    if (guard.decides == Guard::Decides::kAvailable)
      return " " + text + " makes it unavailable" + (it == "it" ? "" : ": " + it) + ".";
    return " " + text + ": this camera does not have " + it + ".";
  }

  const FeatureFacts& facts_;
  NodeStates& states_;
  std::set<std::string> visited_;
};

// Without a description: features that the node refers to, directly or through nodes that are none; one of them is the
// reason. Something is forbidden by a mere register or formula as well; then it is among the nodes that it refers to
// directly.
class PossibleReasons {
 public:
  PossibleReasons(NodeStates& states, const Attempt& attempt) : states_(states), attempt_(attempt) {}

  std::string text() {
    const std::vector<std::string>& children = states_.of(attempt_.node).children;
    if (attempt_.what == Attempt::What::kWrite && states_.of(kLock).yes.value_or(false) &&
        std::ranges::find(children, kLock) != children.end())
      return lockText(std::string(kLock) + " = " + states_.of(kLock).value);
    visited_ = {attempt_.node, kLock};
    visit(attempt_.node, 0);
    const std::vector<std::string>& found = features_.empty() ? others_ : features_;
    return found.empty() ? std::string() : " It depends on " + join(found, ", ") + ".";
  }

 private:
  void visit(const std::string& parent, unsigned depth) {
    constexpr unsigned kMaxDepth = 4;
    const bool forbidden = attempt_.what == Attempt::What::kRead || attempt_.what == Attempt::What::kWrite ||
                           attempt_.what == Attempt::What::kEntry;
    for (const std::string& child : states_.of(parent).children) {
      if (!visited_.insert(child).second)
        continue;
      const NodeState& state = states_.of(child);
      if (!state.value.empty() && (state.isFeature || (depth == 0 && forbidden)))
        (state.isFeature ? features_ : others_).push_back(child + " = " + state.value);
      if (!state.isFeature && depth < kMaxDepth)
        visit(child, depth + 1);
    }
  }

  NodeStates& states_;
  const Attempt& attempt_;
  std::set<std::string> visited_;
  std::vector<std::string> features_;
  std::vector<std::string> others_;
};

}  // namespace

Refused::Refused(std::string message, const std::string& candidates, std::string hint, ExitCode code,
                 const ModuleView& view, Attempt attempt, std::shared_ptr<NodeStates> states)
    : ToolError(message + candidates, std::move(hint), code),
      message_(std::move(message)),
      camera_(view.camera()),
      module_(view.module()),
      attempt_(std::move(attempt)),
      states_(std::move(states)) {}

std::string Refused::explained(Session& session) const {
  try {
    const std::shared_ptr<const FeatureFacts> facts = describedFeatures(session, camera_, module_);
    const std::string reason = Explanation(*facts, *states_).of(attempt_);
    return reason.empty() ? what() : message_ + reason;
  } catch (const ToolError&) {
    return what();
  }
}

void refuse(const ModuleView& view, const Attempt& attempt, const std::string& message, const std::string& hint,
            ExitCode code) {
  const auto states = std::make_shared<NodeStates>(view);
  std::string reason;
  if (view.facts() != nullptr)
    reason = Explanation(*view.facts(), *states).of(attempt);
  if (reason.empty()) {
    states->takeAround(attempt.node);
    reason = PossibleReasons(*states, attempt).text();
  }
  states->detach();
  view.session().takeMessages();
  if (view.facts() != nullptr || view.isWithoutDescription())
    throw ToolError(message + reason, hint, code);
  throw Refused(message, reason, hint, code, view, attempt, states);
}

}  // namespace tool
