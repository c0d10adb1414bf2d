// The description behind a module's port.
#pragma once

#include <string>

#include "check/checker.h"

namespace tool::check {

/// Its bytes, text or archive, from the module's registers or from a file of the producer: the first of the module's
/// addresses that leads to one. Throws Broken.
std::string descriptionOf(Checker& check, PORT_HANDLE port);

}  // namespace tool::check
