// Any bytes as the virtual camera's settings file: whatever it says, the options are ones that the producer can keep.
#include <cstdint>

#include "options.h"
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFile file("gevtls2i.ini");
  file.write(data, size);
  const vcam::Options options = vcam::loadOptions(file.folder() + "/gevtls2i.cti");
  const std::size_t alignment = options.bufferAlignment;
  fuzz::require(alignment >= 1 && alignment <= 4096 && (alignment & (alignment - 1)) == 0);
  fuzz::require(options.minimumBuffers >= 1 && options.minimumBuffers <= 64);
  fuzz::require(options.interfaceUpdateMs <= 60000 && options.deviceUpdateMs <= 60000);
  fuzz::require(options.cameras.firmwareApplyMs <= 60000);
  fuzz::require(options.recordingBytes >= 1U << 20);
  fuzz::require(options.cameras.networkPacketSize >= 576 && options.cameras.networkPacketSize <= 9000);
  for (const auto& [serial, choice] : options.cameras.choices)
    fuzz::require(choice.vendor.size() <= 63 && choice.userDefinedName.size() <= 63);
  return 0;
}
