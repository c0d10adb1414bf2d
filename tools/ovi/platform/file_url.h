// File URLs, as producers name their descriptions with them.
#pragma once

#include <filesystem>
#include <string>

namespace tool {

/// The local file that a URL of the form file:///PATH names; empty when it names none.
std::filesystem::path pathOfUrl(const std::string& url);

}  // namespace tool
