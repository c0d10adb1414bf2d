// Features read and written as text, with explanations when that fails.
#pragma once

#include <string>

#include "module_view.h"

namespace tool {

/// A feature's value as text: a register's bytes in hexadecimal, everything else as the library writes it. Throws
/// ToolError that says why it cannot be read, or which feature was meant.
std::string readFeature(const ModuleView& view, const std::string& name);

/// The same, with floats in all of their digits.
std::string readExactly(const ModuleView& view, const std::string& name);

/// Sets a feature from text and returns what it reads afterwards. Throws ToolError that names the legal values.
std::string writeFeature(const ModuleView& view, const std::string& name, const std::string& value);

/// Sets a feature from "Name=Value". Throws ToolError, also for a text that is none.
void assignFeature(const ModuleView& view, const std::string& assignment);

/// What is known about a feature. Throws ToolError with the nearest name for one that is not there.
ovi::FeatureParameter requireParameter(const ModuleView& view, const std::string& name);

}  // namespace tool
