// All that a node answers, as data.
#pragma once

#include <GenApi/INode.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

namespace tool {

/// Every answer of the node under the name of its question. A question whose answer was an exception is missing there
/// and found under "errors", with the exception's text.
nlohmann::ordered_json nodeJson(GenApi::INode& node);

/// "RW", "RO", "WO", "NA" or "NI"; "??" when the node fails to tell.
std::string accessOf(GenApi::INode& node);

/// A number as JSON; what JSON has no number for as the text "NaN", "Infinity" or "-Infinity".
nlohmann::ordered_json numberJson(double value);

/// An exception's text, without the place in the engine's sources.
std::string exceptionText(const std::string& what);

}  // namespace tool
