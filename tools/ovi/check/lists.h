// The lists of interfaces, devices and streams, brought up to date.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "check/info.h"

namespace tool::check {

/// How long updates of lists may take: the library's own default.
constexpr std::uint64_t kUpdateTime = 1000;  // ms

std::vector<std::string> interfaceIds(Checker& check, TL_HANDLE tl);
std::vector<std::string> deviceIds(Checker& check, IF_HANDLE iface);
std::vector<std::string> streamIds(Checker& check, DEV_HANDLE device);

/// Throws Broken when an ID occurs twice.
void requireUnique(const std::vector<std::string>& ids);

/// Makes an update, which must come in time, and tells the rule that is being checked how long it took.
void timeUpdate(Checker& check, const char* function, const std::function<GC_ERROR()>& update);

}  // namespace tool::check
