// The table of all functions of the library, from which calls are made.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "abuse_arguments.h"

namespace proof {

inline std::atomic<std::size_t> calls{0};

enum class Kind {
  Quick,
  Slow,      // Waits, or works for longer: called less often.
  Ours,      // Called by this program alone, at its time.
  Tolerant,  // As slow, and succeeds also with a handle that nobody knows.
};

struct Function {
  std::string name;
  Kind kind;
  std::function<void(Arguments& arguments)> call;
};

std::vector<Function> allFunctions();

/** Whether the table holds what the public header declares, no more and no less; reports the differences. */
bool checkTable(const std::vector<Function>& functions);

}  // namespace proof
