// Takes the description out of a zip archive, also out of archives that strict readers refuse.
#pragma once

#include <string>
#include <string_view>

namespace GenApiEngine {

bool isZip(std::string_view data);

/// The first .xml file, or the first file. Throws RuntimeException when there is none or it is too long.
std::string unzipDescription(std::string_view archive);

}  // namespace GenApiEngine
