// Where this producer was loaded from.
#pragma once

#include <string>

namespace vcam {

// The full path of the file that this code was loaded from, in UTF-8. Falls back to the default file name.
std::string ownPath();

}  // namespace vcam
