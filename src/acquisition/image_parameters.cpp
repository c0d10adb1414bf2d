// The image format of a camera, its packet size and its maintenance mode.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <limits>
#include <thread>

#include "acquisition/statistics.h"
#include "features/feature_parameter.h"
#include "features/feature_text.h"
#include "features/memory.h"
#include "features/typed_access.h"
#include "image_geometry.h"
#include "scan_state.h"

namespace OVI {

namespace {

struct PixelFormatName {
  std::uint32_t code;
  const char* name;
};
constexpr PixelFormatName kPixelFormatNames[] = {
    {kMono8, "Mono8"},        {kMono10, "Mono10"}, {kMono12, "Mono12"},   {kMono10p, "Mono10p"}, {kMono12p, "Mono12p"},
    {kRGB8, "RGB8"},          {kBGR8, "BGR8"},     {0x02300018, "RGB10"}, {0x0230001A, "RGB12"}, {0x0230001B, "BGR12"},
    {0x0220001D, "RGB10p32"}, {kRGBa8, "RGBa8"},   {kBGRa8, "BGRa8"},
};

/** The name to write to a camera; a format that is not listed becomes RGB8. */
const char* pixelFormatName(std::uint32_t code) noexcept {
  const auto* found =
      std::ranges::find_if(kPixelFormatNames, [&](const PixelFormatName& entry) { return entry.code == code; });
  return found != std::end(kPixelFormatNames) ? found->name : "RGB8";
}

constexpr std::uint64_t kMaintenanceAddress = 0xA3E4;
constexpr std::uint32_t kMaintenanceValue = 0x2A00;
constexpr std::uint64_t kBuiltInAddress = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint32_t kBuiltInValue = std::numeric_limits<std::uint32_t>::max();

oviErr readWord(std::uint64_t deviceHandle, std::uint64_t address, std::uint32_t& word) {
  std::array<std::uint8_t, sizeof word> bytes{};
  const oviErr result = OVI::oviReadMemory(deviceHandle, address, bytes.data(), bytes.size());
  std::memcpy(&word, bytes.data(), sizeof word);
  return result;
}

oviErr writeWord(std::uint64_t deviceHandle, std::uint64_t address, std::uint32_t word) {
  std::array<std::uint8_t, sizeof word> bytes{};
  std::memcpy(bytes.data(), &word, sizeof word);
  return OVI::oviWriteMemory(deviceHandle, address, bytes.data(), bytes.size());
}

}  // namespace

std::uint32_t oviBitsPerPixelFromFormat(std::uint32_t pixelFormat) noexcept {
  constexpr std::uint32_t kDefined[] = {8, 10, 12, 14, 16, 24, 32, 48, 64};
  constexpr std::uint32_t kUnknown = 8;
  if (pixelFormat == 0) {
    return 0;
  }
  const std::uint32_t bits = (pixelFormat >> 16) & 0xFF;
  for (const std::uint32_t defined : kDefined) {
    if (bits == defined) {
      return bits;
    }
  }
  return kUnknown;
}

oviErr oviSetImageParameter(std::uint64_t deviceHandle, oviImageInfo* image, std::int64_t timeout,
                            std::uint8_t filterDriver, std::uint8_t scanFlag) {
  if (image == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  ScanState& scan = ScanState::instance();
  scan.filterDriver = filterDriver != 0;
  if (timeout != 0) {
    scan.imageTimeout = static_cast<std::uint64_t>(timeout);
  }
  scan.scanFlag = scanFlag != 0;

  // The pixel format comes first: the limits of width and height depend on it.
  oviErr result = OVI_SUCCESS;
  if (image->pixelFormat != 0) {
    result = OVI::oviSetFeatureOnModule(deviceHandle, "PixelFormat", pixelFormatName(image->pixelFormat),
                                        OVI_MODULE_REMOTE_DEVICE);
  }
  if (result == OVI_SUCCESS && image->width != 0) {
    result = OVI::oviSetFeatureInt(deviceHandle, "Width", image->width, OVI_MODULE_REMOTE_DEVICE);
  }
  if (result == OVI_SUCCESS && image->height != 0) {
    result = OVI::oviSetFeatureInt(deviceHandle, "Height", image->height, OVI_MODULE_REMOTE_DEVICE);
    if (result == OVI_SUCCESS) {
      scan.expectedHeight = image->height;
    }
  }
  return result;
}

oviErr oviSetDeviceMaxPacketSize(std::uint64_t deviceHandle) {
  constexpr const char* kFeature = "GevSCPSPacketSize";
  oviFeatureParameter packetSize{};
  const oviErr result = OVI::oviGetFeatureParameter(deviceHandle, kFeature, &packetSize, OVI_MODULE_REMOTE_DEVICE);
  if (result != OVI_SUCCESS || packetSize.intValue >= packetSize.intMax) {
    return result;
  }
  return OVI::oviSetFeatureInt(deviceHandle, kFeature, packetSize.intMax, OVI_MODULE_REMOTE_DEVICE);
}

oviErr oviGetMaintenanceMode(std::uint64_t deviceHandle, std::uint8_t* enabled) {
  if (enabled == nullptr) {
    return OVI_ERR_INVALID_PARAMETER;
  }
  std::uint32_t word = 0;
  const oviErr result = readWord(deviceHandle, kMaintenanceAddress, word);
  if (result == OVI_SUCCESS) {
    *enabled = word != 0 ? 1 : 0;
  }
  return result;
}

oviErr oviSetMaintenanceMode(std::uint64_t deviceHandle, std::uint8_t enable, std::uint64_t address,
                             std::uint32_t value) {
  constexpr int kWrites = 3;
  constexpr std::chrono::milliseconds kPause{500};
  address = address == kBuiltInAddress ? kMaintenanceAddress : address;
  value = value == kBuiltInValue ? kMaintenanceValue : value;

  std::uint32_t before = 0;
  oviErr result = readWord(deviceHandle, address, before);
  if (result != OVI_SUCCESS) {
    return result;
  }
  const std::uint32_t word = enable != 0 ? value : 0;
  result = writeWord(deviceHandle, address, word);
  for (int write = 1; write < kWrites && result != OVI_SUCCESS; ++write) {
    std::this_thread::sleep_for(kPause);
    result = writeWord(deviceHandle, address, word);
  }
  if (result != OVI_SUCCESS) {
    return result;
  }
  std::uint32_t after = 0;
  return readWord(deviceHandle, address, after);
}

}  // namespace OVI
