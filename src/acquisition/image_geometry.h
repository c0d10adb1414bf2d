// What a pixel format says about the layout of an image.
#pragma once

#include <algorithm>
#include <cstdint>

#include "acquisition/statistics.h"
#include "ovi/ovi.h"

namespace OVI {

// Pixel formats by their code in the naming convention (PFNC).
inline constexpr std::uint32_t kMono8 = 0x01080001;
inline constexpr std::uint32_t kMono10 = 0x01100003;
inline constexpr std::uint32_t kMono12 = 0x01100005;
inline constexpr std::uint32_t kMono16 = 0x01100007;
inline constexpr std::uint32_t kMono10p = 0x010A0046;
inline constexpr std::uint32_t kMono12p = 0x010C0047;
inline constexpr std::uint32_t kRGB8 = 0x02180014;
inline constexpr std::uint32_t kBGR8 = 0x02180015;
inline constexpr std::uint32_t kRGBa8 = 0x02200016;
inline constexpr std::uint32_t kBGRa8 = 0x02200017;

constexpr std::uint32_t channelsOf(std::uint32_t pixelFormat) noexcept {
  struct Format {
    std::uint32_t code;
    std::uint32_t channels;
  };
  constexpr Format kFormats[] = {{kMono8, 1},   {0, 1},        {kMono10, 1}, {kMono12, 1}, {kMono16, 1},
                                 {kMono10p, 1}, {kMono12p, 1}, {kRGBa8, 4},  {kBGRa8, 4}};
  for (const Format& format : kFormats) {
    if (format.code == pixelFormat) {
      return format.channels;
    }
  }
  return 3;
}

/** Bytes of a line without padding; in single precision, as applications know it. */
inline std::uint32_t linePitchOf(std::uint32_t pixelFormat, std::uint32_t width) noexcept {
  const float pitch =
      static_cast<float>(OVI::oviBitsPerPixelFromFormat(pixelFormat)) * static_cast<float>(width) * 0.125F;
  constexpr float kMost = 4294967040.0F;  // The greatest float that a pitch can hold.
  return static_cast<std::uint32_t>(std::min(pitch, kMost));
}

inline oviImageInfo imageInfoOf(const oviNewBufferEventData& record) noexcept {
  return {record.width, record.height, record.linePitch, record.channels, record.pixelFormat};
}

}  // namespace OVI
