// Descriptions of any size, made for measuring.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// A description of about so many nodes, in the proportions of real cameras: registers, masked registers, features over
/// them with limits, enumerations with their entries, converters and knives. Among its features are Integer0,
/// Enumeration0 and Float0, which is a float through a converter over a register.
///
/// @param dependents  how many knives depend on Integer0; the others depend on nobody else's features
std::string makeDescription(std::size_t nodes, std::size_t dependents);

}  // namespace bench
