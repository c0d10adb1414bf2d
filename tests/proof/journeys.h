// What applications do with the library, each as one run over the virtual camera that tells whether all of it was
// right.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "ovi/ovi.h"

namespace proof {

/** What a run saw: the first thing that was not as it should be. */
class Verdict {
 public:
  bool expect(bool holds, const char* what) noexcept {
    if (!holds && firstFailure_ == nullptr)
      firstFailure_ = what;
    return holds;
  }
  bool good() const noexcept { return firstFailure_ == nullptr; }
  const char* firstFailure() const noexcept { return good() ? "" : firstFailure_; }

 private:
  const char* firstFailure_ = nullptr;
};

/** Where the runs take place. */
struct World {
  std::string producers;                       // The folder of the virtual camera.
  std::unique_ptr<oviDiscoveryInfo> expected;  // What a healthy discovery finds; none: whatever it finds is right.
};

struct Journey {
  const char* name;
  void (*prepare)(const World& world, Verdict& verdict);  // What must have happened before.
  void (*run)(const World& world, Verdict& verdict);
};

/** Every run leaves nothing open, whatever fails in it, as a careful application does. */
extern const std::array<Journey, 8> kJourneys;

}  // namespace proof
