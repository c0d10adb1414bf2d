// What surrounds a program: its environment variables, and folders that the library and producers write to.
#pragma once

#include "doctor/finding.h"

namespace tool {

Findings examineSurroundings();

}  // namespace tool
