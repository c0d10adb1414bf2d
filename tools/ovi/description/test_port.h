// Ports that stand for a camera when a description is tried without one.
#pragma once

#include <GenApi/IPort.h>

#include <cstdint>
#include <memory>

namespace tool {

/// Every register reads as zero; writes are swallowed.
std::unique_ptr<GenApi::IPort> makeZeroPort();

/// Every byte depends on its address and the seed alone; writes are swallowed.
std::unique_ptr<GenApi::IPort> makeRandomPort(std::uint64_t seed);

/// Every access fails, as with a camera that was unplugged.
std::unique_ptr<GenApi::IPort> makeFailingPort();

}  // namespace tool
