// The rules that a producer is held against: each is one line of the report, with what was seen.
#pragma once

#include <functional>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "check/producer_functions.h"

namespace tool::check {

enum class Verdict { kPass, kWarn, kFail };

/// "GC_ERR_TIMEOUT (-1011)".
std::string codeText(GC_ERROR code);

/// What ends a rule as failed.
class Broken : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One line of the report.
struct RuleLine {
  std::string rule;
  Verdict verdict = Verdict::kPass;
  std::string seen;
  bool ended = false;  ///< `seen` is nothing but the failure that ended the rule's work
};

class Checker {
 public:
  using Line = std::function<void(const RuleLine& line)>;
  using Begin = std::function<void(const std::string& rule)>;

  /// @param camera  ID, serial number, user-defined name or model of the device to be used; empty for the first
  Checker(const ProducerFunctions& functions, std::string camera, Begin begin, Line line)
      : functions_(functions),
        camera_(std::move(camera)),
        begin_(std::move(begin)),
        line_(std::move(line)) {}

  const ProducerFunctions& gentl() const { return functions_; }
  const std::string& camera() const { return camera_; }

  /// Holds the producer against one rule. The work passes it by coming to its end; seen(), warn() and fault() fill the
  /// line.
  /// @return whether it did not fail
  bool rule(const std::string& text, const std::function<void()>& work);

  /// What was seen, for the line of a rule that holds.
  void seen(const std::string& text);
  /// Something that is allowed, or not forbidden, but will give trouble.
  void warn(const std::string& text);
  /// A breach after which the rule's work goes on.
  void fault(const std::string& text);

  /// Calls the function, which must succeed.
  template<class Pointer, class... Args>
  void need(const Function<Pointer>& function, Args... args) {
    expectCode(function.name(), function(args...), {GC_ERR_SUCCESS});
  }

  /// Calls the function, which must answer with one of these codes.
  template<class Pointer, class... Args>
  GC_ERROR expect(std::initializer_list<GC_ERROR> codes, const Function<Pointer>& function, Args... args) {
    return expectCode(function.name(), function(args...), codes);
  }

  /// The same, but the rule's work goes on after another code. `what` says what the call was about.
  template<class Pointer, class... Args>
  void prefer(const char* what, std::initializer_list<GC_ERROR> codes, const Function<Pointer>& function,
              Args... args) {
    preferCode(what, function.name(), function(args...), codes);
  }

 private:
  GC_ERROR expectCode(const char* function, GC_ERROR code, std::initializer_list<GC_ERROR> codes) const;
  void preferCode(const char* what, const char* function, GC_ERROR code, std::initializer_list<GC_ERROR> codes);

  const ProducerFunctions& functions_;
  std::string camera_;
  Begin begin_;
  Line line_;
  std::vector<std::string> seen_;
  std::vector<std::string> warnings_;
  std::vector<std::string> faults_;
};

}  // namespace tool::check
