// Channels in groups, each group a category.
#include "channel_block.h"

#include <array>
#include <cstdio>
#include <string>

namespace vcam {

void declareChannels(FeatureMap& map, std::size_t channels) {
  constexpr std::size_t kGroup = 32;
  const std::string root = "SignalProcessor";
  map.category(root, "Channels of the signal processor");
  std::string group;
  for (std::size_t i = 0; i < channels; ++i) {
    std::array<char, 24> number{};
    std::snprintf(number.data(), number.size(), "%03zu", i);
    const std::string name = std::string("Channel") + number.data();
    if (i % kGroup == 0) {
      group = "ChannelsFrom" + std::string(number.data());
      map.category(group, "A group of channels", root);
    }
    const std::string of = " of channel " + std::to_string(i);
    map.boolean(name + "Enable", group, "Use" + of).vendorSpecific().visibility("Guru").value(i % 2 == 0 ? 1 : 0);
    map.floating(name + "Gain", group, "Amplification" + of)
        .unit("dB")
        .min("-12")
        .max("12")
        .length(4)
        .availableIf(name + "Enable")
        .vendorSpecific()
        .visibility("Guru")
        .notation("Fixed", 2);
    map.integer(name + "Span", group, "Largest offset" + of)
        .min("0")
        .max("1000")
        .value(static_cast<std::int64_t>(100 + i))
        .vendorSpecific()
        .visibility("Guru");
    map.integer(name + "Offset", group, "Offset" + of)
        .isSigned()
        .min("-" + name + "Span")
        .max(name + "Span")
        .inc("1")
        .vendorSpecific()
        .visibility("Guru");
    map.integer(name + "Threshold", group, "Threshold" + of)
        .min("0")
        .max(name + "Span * 4 + 100")
        .vendorSpecific()
        .availableIf(name + "Enable")
        .visibility("Guru");
  }
}

}  // namespace vcam
