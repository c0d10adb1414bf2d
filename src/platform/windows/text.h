// Wide characters for the Windows half of the platform layer.
#pragma once

#include <windows.h>

#include <string>

namespace OVI::platform {

std::wstring widen(const std::string& text, unsigned codePage);
std::string narrowTo(const std::wstring& text, unsigned codePage);

}  // namespace OVI::platform
