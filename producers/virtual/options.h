// What can be set about the producer as a whole; the defaults need no file and no environment variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "camera/configuration.h"

namespace vcam {

// The families of producers that this binary behaves as, by the name of its own file.
enum class Variant { Plain, GigE, RealTime, Recording };

struct Options {
  Variant variant = Variant::Plain;
  std::size_t bufferAlignment = 16;     // bytes; announced memory that is not aligned is refused
  std::size_t minimumBuffers = 1;       // buffers that must be announced before a start
  std::uint64_t interfaceUpdateMs = 0;  // how long the search for interfaces takes
  std::uint64_t deviceUpdateMs = 0;     // how long the search for devices takes
  Configuration cameras;
};

// The options of the producer that lies at this path.
Options loadOptions(const std::string& path);

// The variant that belongs to a path of the producer's file.
Variant variantOf(const std::string& path);

}  // namespace vcam
