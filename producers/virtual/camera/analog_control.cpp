// Tones follow (component + black level) * exposure * gain * balance, then gamma, then the table.
#include "analog_control.h"

#include <algorithm>
#include <cmath>

namespace vcam {
namespace {

constexpr double kLutMax = 4095;

}  // namespace

void AnalogControl::declareExposure(const char* category) {
  FeatureMap& map = core_.map;
  map.enumeration("ExposureMode", category, "How the exposure is timed")
      .entry("Timed", 1, "By ExposureTime")
      .value(1)
      .readOnly();
  exposure_ = &map.floating("ExposureTime", category, "Time for which the sensor collects light")
                   .unit("us")
                   .min("10")
                   .max("1000000")
                   .value(core_.model.defaultExposure)
                   .stored()
                   .notation("Fixed", 1)
                   .dependsOn({"SequencerSetLoad"});
  if (core_.model.scaledRegisters) {
    exposure_->scaled(0.5);
  } else {
    exposure_->representation("Logarithmic");
  }
}

void AnalogControl::declare() {
  FeatureMap& map = core_.map;
  const char* const category = "AnalogControl";
  map.category(category, "Gain, black level, gamma and white balance");
  gain_ = &map.floating("Gain", category, "Amplification of the picture")
               .unit("dB")
               .min("0")
               .max("24")
               .stored()
               .notation("Fixed", 2)
               .dependsOn({"SequencerSetLoad"});
  if (core_.model.scaledRegisters) {
    gain_->scaled(0.01);
  }
  blackLevel_ = &map.floating("BlackLevel", category, "Value of a pixel that got no light, in percent of the largest")
                     .unit("%")
                     .min("0")
                     .max("25")
                     .stored()
                     .visibility("Expert")
                     .length(4);
  gamma_ = &map.floating("Gamma", category, "Exponent that the values are raised to")
                .min("0.25")
                .max("4")
                .value(1.0)
                .stored()
                .visibility("Expert")
                .length(4);
  if (core_.model.colour) {
    map.enumeration("BalanceRatioSelector", category, "The colour that BalanceRatio acts on")
        .entry("Red", 0)
        .entry("Green", 1)
        .entry("Blue", 2)
        .visibility("Expert");
    balance_ = &map.floating("BalanceRatio", category, "Amplification of one colour")
                    .min("0.25")
                    .max("4")
                    .value(1.0)
                    .stored()
                    .selectedBy({"BalanceRatioSelector"})
                    .visibility("Expert");
  }
  declareLut();
}

void AnalogControl::declareLut() {
  FeatureMap& map = core_.map;
  const char* const category = "LUTControl";
  map.category(category, "Look-up tables behind the analog part");
  Feature& selector =
      map.enumeration("LUTSelector", category, "The table to look at").entry("Luminance", 0).visibility("Expert");
  if (core_.model.colour) {
    selector.entry("Red", 1).entry("Green", 2).entry("Blue", 3);
  }
  lutEnable_ = &map.boolean("LUTEnable", category, "Sends values through the table")
                    .selectedBy({"LUTSelector"})
                    .stored()
                    .visibility("Expert");
  map.integer("LUTIndex", category, "Entry of the table, by the upper 8 bits of the value")
      .min("0")
      .max("255")
      .visibility("Guru");
  lutValue_ = &map.integer("LUTValue", category, "12-bit value that comes out for the index")
                   .min("0")
                   .max("4095")
                   .stored()
                   .selectedBy({"LUTSelector", "LUTIndex"})
                   .dependsOn({"LUTValueAll"})
                   .visibility("Guru")
                   .valueOf([](std::size_t slot) {
                     return std::lround(static_cast<double>(slot % kLutEntries) / (kLutEntries - 1) * kLutMax);
                   });
  // The whole table in one access, as 32-bit numbers in the camera's byte order.
  Feature& all = map.bytes("LUTValueAll", category, "All entries of the table, 32 bits each", kLutEntries * 4)
                     .selectedBy({"LUTSelector"})
                     .dependsOn({"LUTValue"})
                     .visibility("Guru");
  all.computedText([this](std::size_t slot) {
    std::string bytes(kLutEntries * 4, '\0');
    for (std::size_t i = 0; i < kLutEntries; ++i) {
      const auto value = static_cast<std::uint64_t>(lutValue_->integer(slot * kLutEntries + i));
      core_.map.putInteger(std::as_writable_bytes(std::span(bytes).subspan(i * 4, 4)), value);
    }
    return bytes;
  });
  all.onWrite([this, &all](std::size_t slot) {
    const std::span<const std::byte> bytes = std::span(all.bytes()).subspan(slot * kLutEntries * 4, kLutEntries * 4);
    for (std::size_t i = 0; i < kLutEntries; ++i) {
      if (core_.map.getInteger(bytes.subspan(i * 4, 4)) > static_cast<std::uint64_t>(kLutMax)) {
        return GC_ERROR{GC_ERR_INVALID_VALUE};
      }
    }
    for (std::size_t i = 0; i < kLutEntries; ++i) {
      lutValue_->set(static_cast<std::int64_t>(core_.map.getInteger(bytes.subspan(i * 4, 4))), slot * kLutEntries + i);
    }
    return GC_ERROR{GC_ERR_SUCCESS};
  });
}

std::uint16_t AnalogControl::throughLut(std::size_t selector, double share) const {
  const auto tone = static_cast<std::uint16_t>(std::lround(std::clamp(share, 0.0, 1.0) * 65535));
  if (!lutEnable_->on(selector)) {
    return tone;
  }
  const std::int64_t value = lutValue_->integer(selector * kLutEntries + (tone >> 8U));
  return static_cast<std::uint16_t>(std::lround(static_cast<double>(value) / kLutMax * 65535));
}

ToneTables AnalogControl::tones(double exposure, double gain) const {
  ToneTables tones{};
  const double amplification = exposure / core_.model.defaultExposure * std::pow(10.0, gain / 20);
  const double black = blackLevel_->floating() / 100;
  const double gamma = gamma_->floating();
  const auto shareOf = [&](std::size_t component, double factor) {
    const double light = std::min(1.0, static_cast<double>(component) / 255 * amplification * factor + black);
    return gamma == 1 ? light : std::pow(light, gamma);
  };
  for (std::size_t i = 0; i < 256; ++i) {
    tones.luma[i] = throughLut(0, shareOf(i, 1));
    for (std::size_t c = 0; c < 3; ++c) {
      const double factor = balance_ != nullptr ? balance_->floating(c) : 1;
      tones.rgb[c][i] = throughLut(core_.model.colour ? c + 1 : 0, shareOf(i, factor));
    }
  }
  return tones;
}

}  // namespace vcam
