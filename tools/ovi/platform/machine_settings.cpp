// Settings of the machine that cost images when they are as systems come.
#include "platform/machine_settings.h"

#include <filesystem>
#include <fstream>
#include <optional>

#include "paths.h"
#include "text.h"

namespace tool {

#ifdef _WIN32

Findings examineMachine() {
  return {{Level::kNote, "network and USB settings are not examined on this system", ""}};
}

#else

namespace {

std::optional<std::string> wordIn(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::string word;
  if (stream >> word)
    return word;
  return std::nullopt;
}

std::optional<std::uint64_t> numberIn(const std::filesystem::path& file) {
  std::ifstream stream(file);
  // The system writes -1 where it does not know.
  std::int64_t number = 0;
  if (stream >> number && number >= 0)
    return static_cast<std::uint64_t>(number);
  return std::nullopt;
}

void examineReceiveBuffer(Findings& findings) {
  constexpr std::uint64_t kWanted = 10'000'000;
  const std::optional<std::uint64_t> size = numberIn("/proc/sys/net/core/rmem_max");
  if (!size)
    return;
  const std::string text = "largest receive buffer of the network: " + bytesText(*size);
  if (*size >= kWanted)
    findings.push_back({Level::kGood, text, ""});
  else
    findings.push_back({Level::kNote, text + ", little for GigE cameras", "sudo sysctl -w net.core.rmem_max=33554432"});
}

void examineInterfaces(Findings& findings) {
  constexpr std::uint64_t kJumbo = 8000;
  constexpr std::uint64_t kFast = 1000;  // Mbit/s
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator("/sys/class/net", error)) {
    const std::string name = pathText(entry.path().filename());
    // Only real adapters have a device behind them.
    if (!std::filesystem::exists(entry.path() / "device", error) ||
        wordIn(entry.path() / "operstate").value_or("") != "up")
      continue;
    const std::uint64_t mtu = numberIn(entry.path() / "mtu").value_or(0);
    const std::uint64_t speed = numberIn(entry.path() / "speed").value_or(0);
    const std::string text = "network adapter " + name + ": packets of up to " + std::to_string(mtu) + " bytes" +
                             (speed == 0 ? "" : ", " + std::to_string(speed) + " Mbit/s");
    if (mtu < kJumbo)
      findings.push_back({Level::kNote, text + "; a camera on it runs better with jumbo packets",
                          "sudo ip link set " + name + " mtu 9000"});
    else
      findings.push_back({Level::kGood, text, ""});
    if (speed != 0 && speed < kFast)
      findings.push_back(
          {Level::kNote,
           "network adapter " + name + " runs at " + std::to_string(speed) + " Mbit/s, too slow for most GigE cameras",
           "check cable and switch"});
  }
}

void examineUsb(Findings& findings) {
  constexpr std::uint64_t kWantedMegabytes = 128;
  const std::optional<std::uint64_t> size = numberIn("/sys/module/usbcore/parameters/usbfs_memory_mb");
  if (!size)
    return;
  const std::string text = "memory for USB transfers: " + std::to_string(*size) + " MB";
  if (*size == 0 || *size >= kWantedMegabytes)
    findings.push_back({Level::kGood, text, ""});
  else
    findings.push_back({Level::kNote, text + ", little for USB3 cameras",
                        "echo 1000 | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb"});
}

}  // namespace

Findings examineMachine() {
  Findings findings;
  examineReceiveBuffer(findings);
  examineInterfaces(findings);
  examineUsb(findings);
  return findings;
}

#endif

}  // namespace tool
