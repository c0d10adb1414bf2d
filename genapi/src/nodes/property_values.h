// How nodes read the enumerated texts of their properties.
#pragma once

#include <string>
#include <string_view>

#include "nodes/node_core.h"

namespace GenApiEngine {

/// _UndefinedRepresentation for no text or an unknown one.
Api::ERepresentation representationFrom(std::string_view text);
/// _UndefinedEDisplayNotation for no text or an unknown one.
Api::EDisplayNotation notationFrom(std::string_view text);
Api::ECachingMode cachingFrom(std::string_view text);
/// _UndefinedESlope for no text or an unknown one.
Api::ESlope slopeFrom(std::string_view text);

/// The numbers of a ValidValueSet, without what is no number; empty when there is none.
std::vector<std::int64_t> validIntegersFrom(std::string_view text);
std::vector<double> validFloatsFrom(std::string_view text);

}  // namespace GenApiEngine
