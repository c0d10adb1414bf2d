// A camera whose registers and descriptions a test writes: what the tests of the library share with ScriptedCamera.cti.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "gentl_interface/GenTL.h"

namespace scripted {

constexpr std::size_t kMemorySize = 0x20000;
constexpr std::uint64_t kDescriptionAddress = 0x10000000;

/** One register space with its description. The port node is called "Device". */
struct Space {
  std::string description;
  /** Where the port says that its description lies; when empty, where it does lie. */
  std::vector<std::string> urls;
  bool bigEndian = false;
  std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(kMemorySize);
  /** Called before a register is read and after one was written; a code other than 0 is the producer's answer. */
  std::function<GC_ERROR(std::uint64_t address, std::size_t size)> onRead;
  std::function<GC_ERROR(std::uint64_t address, std::size_t size)> onWrite;
};

/** What the one camera of the producer does. Tests change it while nobody uses the camera. */
struct Script {
  Space camera;
  Space localDevice;
  Space interface;
  Space system;
};

using GetScript = Script* (*)();

}  // namespace scripted
