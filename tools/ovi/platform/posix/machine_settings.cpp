// Settings of a Linux machine that cost cameras or images, read from /proc and /sys. A file that is not there, as on
// other systems of this family, tells nothing.
#include "platform/machine_settings.h"

#include <ifaddrs.h>
#include <sys/resource.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <thread>

#include "paths.h"
#include "text.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

std::optional<std::string> lineIn(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  if (std::getline(stream, line))
    return line;
  return std::nullopt;
}

std::optional<std::uint64_t> numberIn(const fs::path& file) {
  std::ifstream stream(file);
  // The system writes -1 where it does not know.
  std::int64_t number = 0;
  if (stream >> number && number >= 0)
    return static_cast<std::uint64_t>(number);
  return std::nullopt;
}

// The value of a line "KEY<separator>VALUE".
std::string valueOfKey(const fs::path& file, const std::string& key, char separator) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t at = line.find(separator);
    if (at == std::string::npos || !line.starts_with(key) || line.find_first_not_of(" \t", key.size()) != at)
      continue;
    const std::size_t first = line.find_first_not_of(" \t\"", at + 1);
    const std::size_t last = line.find_last_not_of(" \t\"");
    return first == std::string::npos ? std::string() : line.substr(first, last - first + 1);
  }
  return {};
}

std::vector<fs::path> entriesOf(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
    entries.push_back(entry->path());
  std::ranges::sort(entries);
  return entries;
}

// A setting that should be at least so large.
void addSize(Findings& findings, const std::string& text, bool enough, const std::string& complaint,
             const std::string& advice) {
  if (enough)
    findings.push_back({Level::kGood, text});
  else
    findings.push_back({Level::kNote, text + ", " + complaint, advice});
}

void examineReceiveBuffer(Findings& findings) {
  constexpr std::uint64_t kWanted = 10'000'000;
  if (const std::optional<std::uint64_t> size = numberIn("/proc/sys/net/core/rmem_max"))
    addSize(findings, "largest receive buffer of the network: " + bytesText(*size), *size >= kWanted,
            "little for GigE cameras: packets are lost when this program is busy for a moment",
            "sudo sysctl -w net.core.rmem_max=33554432; in a file of /etc/sysctl.d it stays so");
  constexpr std::uint64_t kWantedPackets = 1000;
  if (const std::optional<std::uint64_t> packets = numberIn("/proc/sys/net/core/netdev_max_backlog");
      packets && *packets < kWantedPackets)
    findings.push_back({Level::kNote,
                        "the network queues only " + std::to_string(*packets) + " packets for the processor",
                        "sudo sysctl -w net.core.netdev_max_backlog=5000"});
}

// Names of adapters with an IPv4 address.
std::set<std::string> adaptersWithAddress() {
  std::set<std::string> names;
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0)
    return names;
  for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next)
    if (entry->ifa_addr != nullptr && entry->ifa_addr->sa_family == AF_INET)
      names.insert(entry->ifa_name);
  freeifaddrs(list);
  return names;
}

// Answers of a camera in another subnet are thrown away by a strict filter; the larger of both values counts.
void examineReversePath(const std::string& adapter, Findings& findings) {
  const fs::path folder = "/proc/sys/net/ipv4/conf";
  const std::uint64_t mode = std::max(numberIn(folder / adapter / "rp_filter").value_or(0),
                                      numberIn(folder / "all" / "rp_filter").value_or(0));
  if (mode == 1)
    findings.push_back({Level::kNote,
                        "network adapter " + adapter +
                            ": rp_filter is strict, so that answers of cameras in other subnets are dropped",
                        "sudo sysctl -w net.ipv4.conf.all.rp_filter=2 net.ipv4.conf." + adapter + ".rp_filter=2"});
}

void examineAdapters(Findings& findings) {
  constexpr std::uint64_t kJumbo = 8000;
  constexpr std::uint64_t kFast = 1000;  // Mbit/s
  const std::set<std::string> withAddress = adaptersWithAddress();
  for (const fs::path& adapter : entriesOf("/sys/class/net")) {
    const std::string name = pathText(adapter.filename());
    std::error_code error;
    // Only real adapters have a device behind them.
    if (!fs::exists(adapter / "device", error) || lineIn(adapter / "operstate").value_or("") != "up")
      continue;
    const std::uint64_t mtu = numberIn(adapter / "mtu").value_or(0);
    const std::uint64_t speed = numberIn(adapter / "speed").value_or(0);
    addSize(findings,
            "network adapter " + name + ": packets of up to " + std::to_string(mtu) + " bytes" +
                (speed == 0 ? "" : ", " + std::to_string(speed) + " Mbit/s"),
            mtu >= kJumbo, "a GigE camera on it costs less with jumbo packets",
            "sudo ip link set " + name + " mtu 9000");
    if (speed != 0 && speed < kFast)
      findings.push_back({Level::kNote, "network adapter " + name + " is too slow for most GigE cameras",
                          "check cable, plug and switch: 1000 Mbit/s need all four pairs of wires"});
    if (!withAddress.contains(name))
      findings.push_back({Level::kNote,
                          "network adapter " + name + " has no IPv4 address: no GigE camera answers on it",
                          "sudo ip addr add 169.254.0.1/16 dev " + name + ", or an address of the camera's subnet"});
    examineReversePath(name, findings);
  }
}

void examineFirewall(Findings& findings) {
  if (valueOfKey("/etc/ufw/ufw.conf", "ENABLED", '=') == "yes")
    findings.push_back({Level::kNote,
                        "the firewall ufw is on: it drops what GigE cameras send unless it is told to let it in",
                        "sudo ufw allow in on ADAPTER, for the adapter that the camera hangs on"});
}

void examineUsbMemory(Findings& findings) {
  constexpr std::uint64_t kWantedMegabytes = 128;
  if (const std::optional<std::uint64_t> size = numberIn("/sys/module/usbcore/parameters/usbfs_memory_mb"))
    addSize(findings, "memory for USB transfers: " + (*size == 0 ? "unlimited" : std::to_string(*size) + " MB"),
            *size == 0 || *size >= kWantedMegabytes, "little for USB3 cameras: images stay away or are incomplete",
            "echo 1000 | sudo tee /sys/module/usbcore/parameters/usbfs_memory_mb");
}

void examineLimits(Findings& findings) {
  constexpr rlim_t kWantedFiles = 1024;
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
    addSize(findings, "files that a program may open: " + std::to_string(limit.rlim_cur),
            limit.rlim_cur >= kWantedFiles, "few for many cameras, each of which needs a dozen", "ulimit -n 4096");
  constexpr rlim_t kWantedLocked = 64U << 20U;
  if (getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && limit.rlim_cur < kWantedLocked &&
      geteuid() != 0)
    findings.push_back({Level::kNote,
                        "memory that a program may lock: " + bytesText(limit.rlim_cur) +
                            ", too little for producers of frame grabbers that lock the image buffers",
                        "raise memlock in a file of /etc/security/limits.d, if your producer asks for it"});
}

// Processors that save power answer late. With some drivers "powersave" is the name of what does not save it.
void examineGovernors(Findings& findings) {
  std::set<std::string> governors;
  bool slow = false;
  for (const fs::path& processor : entriesOf("/sys/devices/system/cpu")) {
    const std::optional<std::string> governor = lineIn(processor / "cpufreq" / "scaling_governor");
    if (!governor)
      continue;
    governors.insert(*governor);
    slow = slow || (*governor == "powersave" &&
                    !matchesPattern("pstate", lineIn(processor / "cpufreq" / "scaling_driver").value_or("")));
  }
  if (governors.empty())
    return;
  const std::vector<std::string> names(governors.begin(), governors.end());
  addSize(findings, "frequency governor of the processors: " + join(names, ", "), !slow,
          "which may answer late at high frame rates",
          "echo performance | sudo tee /sys/devices/system/cpu/cpu*/cpufreq/scaling_governor");
}

// What hides cameras from everything that runs here.
void examineHousing(Findings& findings) {
  std::error_code error;
  const std::string kernel = lineIn("/proc/version").value_or("");
  if (matchesPattern("microsoft", kernel))
    findings.push_back({Level::kNote,
                        "this is a Linux inside Windows: it sees neither USB cameras nor the network's own adapters",
                        "run the tool on Windows itself, or pass the USB camera in with usbipd"});
  else if (fs::exists("/.dockerenv", error) || fs::exists("/run/.containerenv", error))
    findings.push_back({Level::kNote,
                        "this is a container: it sees only the network and the USB devices that it was given",
                        "start it with --network host, and for USB with --device /dev/bus/usb"});
}

// The USB devices with an interface of the vision class.
std::set<fs::path> visionDevices() {
  std::set<fs::path> devices;
  std::error_code error;
  for (const fs::path& interface : entriesOf("/sys/bus/usb/devices"))
    if (lineIn(interface / "bInterfaceClass").value_or("") == "ef" &&
        lineIn(interface / "bInterfaceSubClass").value_or("") == "05")
      devices.insert(fs::canonical(interface, error).parent_path());
  return devices;
}

std::string threeDigits(std::uint64_t number) {
  const std::string text = std::to_string(number);
  return std::string(text.size() < 3 ? 3 - text.size() : 0, '0') + text;
}

}  // namespace

Findings examineMachine() {
  Findings findings;
  examineHousing(findings);
  examineReceiveBuffer(findings);
  examineAdapters(findings);
  examineFirewall(findings);
  examineUsbMemory(findings);
  examineLimits(findings);
  examineGovernors(findings);
  return findings;
}

Findings examineBuses() {
  constexpr std::uint64_t kSuperSpeed = 5000;  // Mbit/s
  Findings findings;
  for (const fs::path& device : visionDevices()) {
    const std::string name = lineIn(device / "manufacturer").value_or("") + " " +
                             lineIn(device / "product").value_or("?") + ", serial number " +
                             lineIn(device / "serial").value_or("?");
    const std::string node = "/dev/bus/usb/" + threeDigits(numberIn(device / "busnum").value_or(0)) + "/" +
                             threeDigits(numberIn(device / "devnum").value_or(0));
    const std::uint64_t speed = numberIn(device / "speed").value_or(0);
    if (access(node.c_str(), R_OK | W_OK) != 0)
      findings.push_back({Level::kProblem, "USB camera " + name + ": this user may not open it (" + node + ")",
                          "install the camera maker's udev rules, then plug the camera in again"});
    else if (speed != 0 && speed < kSuperSpeed)
      findings.push_back({Level::kNote, "USB camera " + name + " runs at " + std::to_string(speed) + " Mbit/s only",
                          "plug it into a USB 3 socket, with a USB 3 cable"});
    else
      findings.push_back({Level::kGood, "USB camera " + name + ": may be opened"});
  }
  return findings;
}

std::vector<std::pair<std::string, std::string>> machineFacts() {
  std::vector<std::pair<std::string, std::string>> facts;
  facts.emplace_back("system", valueOfKey("/etc/os-release", "PRETTY_NAME", '='));
  utsname kernel{};
  if (uname(&kernel) == 0)
    facts.emplace_back("kernel", std::string(kernel.sysname) + " " + kernel.release + " " + kernel.machine);
  facts.emplace_back("processor", valueOfKey("/proc/cpuinfo", "model name", ':'));
  facts.emplace_back("processors", std::to_string(std::thread::hardware_concurrency()));
  facts.emplace_back("memory", valueOfKey("/proc/meminfo", "MemTotal", ':'));
  facts.emplace_back("free memory", valueOfKey("/proc/meminfo", "MemAvailable", ':'));
  return facts;
}

std::vector<std::string> usualProducerFolders() {
  return {"/opt", "/usr/local/lib", "/usr/lib"};
}

}  // namespace tool
