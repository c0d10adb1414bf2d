// What a transfer changes for its own length, and gives back whatever happens.
#pragma once

#include <cstdint>

#include "ovi/ovi.h"

namespace OVI {

/**
 * Switches feature caching off. Transfers to several cameras may overlap: the application's own setting is remembered
 * by the first and restored by the last.
 */
class CachingOff {
 public:
  CachingOff();
  CachingOff(const CachingOff&) = delete;
  CachingOff& operator=(const CachingOff&) = delete;
  ~CachingOff();
};

/**
 * Sets a number of the local device module, within the feature's limits, and writes the old value back at the end. A
 * device without that feature, or one that cannot be read, is left alone.
 */
class ScopedTimeout {
 public:
  ScopedTimeout(std::uint64_t device, const char* feature, std::uint64_t value);
  ScopedTimeout(const ScopedTimeout&) = delete;
  ScopedTimeout& operator=(const ScopedTimeout&) = delete;
  ~ScopedTimeout();

 private:
  std::uint64_t device_;
  const char* feature_;
  oviFeatureParameter old_{};
};

}  // namespace OVI
