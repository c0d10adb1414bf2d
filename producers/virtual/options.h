// What can be set about the producer as a whole; the defaults need no file and no environment variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "camera/configuration.h"

namespace vcam {

// The families of producers that this binary behaves as, by the name of its own file.
enum class Variant { Plain, GigE, RealTime, Recording };

// Whether the family's cameras hang on a network.
constexpr bool isNetwork(Variant variant) {
  return variant == Variant::GigE || variant == Variant::RealTime;
}

struct Options {
  Variant variant = Variant::Plain;
  std::size_t bufferAlignment = 16;                         // bytes; announced memory that is not aligned is refused
  std::size_t minimumBuffers = 1;                           // buffers that must be announced before a start
  std::uint64_t interfaceUpdateMs = 0;                      // how long the search for interfaces takes
  std::uint64_t deviceUpdateMs = 0;                         // how long the search for devices takes
  std::uint64_t recordingBytes = std::uint64_t{256} << 20;  // images that all recordings hold together
  Configuration cameras;
};

// The options of the producer that lies at this path: what its variant needs, changed by the settings file, changed by
// environment variables. What is wrong in them is reported through cameras.report and has no effect.
Options loadOptions(const std::string& path);

// The variant that belongs to a path of the producer's file.
Variant variantOf(const std::string& path);

}  // namespace vcam
