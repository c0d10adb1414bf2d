// What the library itself adds to a discovery over the virtual cameras, and to opening and closing one of them.
//
// The same calls, in the same order and number, are made on a copy of the producer without the library; the difference
// is the library's own time. Rounds of both alternate and the best of each counts.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "gentl_interface/GenTL.h"
#include "ovi/ovi.h"
#include "platform/platform.h"
#include "report.h"

namespace {

constexpr int kRounds = 2000;
constexpr std::uint64_t kTimeout = 1000;
constexpr std::size_t kTextSize = 1024;

void check(std::int64_t result, const char* what) {
  if (result != 0) {
    std::fprintf(stderr, "discovery_bench: %s answers %lld\n", what, static_cast<long long>(result));
    std::exit(EXIT_FAILURE);
  }
}

double microseconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin).count();
}

/** The producer alone, asked what the library asks. */
class Raw {
 public:
  explicit Raw(const std::string& path) : library_(OVI::platform::loadLibrary(path)) {
    check(library_ == nullptr ? 1 : 0, "loading the copy of the producer");
    check(find<PGCInitLib>("GCInitLib")(), "GCInitLib");
    check(find<PTLOpen>("TLOpen")(&system_), "TLOpen");
    updateInterfaces();
    for (const std::string& id : interfaceIds()) {
      Interface& opened = interfaces_.emplace_back();
      opened.id = id;
      check(openInterface_(system_, id.c_str(), &opened.handle), "TLOpenInterface");
    }
  }

  /** @return how many devices there are */
  std::size_t discover() {
    std::size_t devices = 0;
    producerText(TL_INFO_NAME);
    updateInterfaces();
    interfaceIds();
    for (const Interface& interface : interfaces_) {
      producerText(TL_INFO_PATHNAME);  // Whether it is a producer that needs special treatment.
      for (const std::string& id : deviceIds(interface.handle)) {
        describe(interface, id);
        ++devices;
      }
    }
    return devices;
  }

  void openAndClose() {
    producerText(TL_INFO_ID);
    producerText(TL_INFO_NAME);
    updateInterfaces();
    interfaceIds();
    const Interface& interface = interfaces_.front();
    const std::vector<std::string> ids = deviceIds(interface.handle);
    DEV_HANDLE device = nullptr;
    check(openDevice_(interface.handle, ids.front().c_str(), DEVICE_ACCESS_CONTROL, &device), "IFOpenDevice");
    producerText(TL_INFO_PATHNAME);
    producerText(TL_INFO_PATHNAME);
    check(closeDevice_(device), "DevClose");
  }

 private:
  struct Interface {
    std::string id;
    IF_HANDLE handle = nullptr;
  };

  template<class Function>
  Function find(const char* name) {
    const auto function = reinterpret_cast<Function>(OVI::platform::resolve(library_, name));
    check(function == nullptr ? 1 : 0, name);
    return function;
  }

  void producerText(TL_INFO_CMD command) {
    std::size_t size = text_.size();
    check(producerInfo_(command, &type_, text_.data(), &size), "GCGetInfo");
  }

  void updateInterfaces() {
    bool8_t changed = 0;
    check(updateInterfaces_(system_, &changed, kTimeout), "TLUpdateInterfaceList");
  }

  std::vector<std::string> interfaceIds() {
    std::uint32_t count = 0;
    check(interfaceCount_(system_, &count), "TLGetNumInterfaces");
    std::vector<std::string> ids;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::size_t size = text_.size();
      check(interfaceId_(system_, i, text_.data(), &size), "TLGetInterfaceID");
      ids.emplace_back(text_.data());
    }
    return ids;
  }

  std::vector<std::string> deviceIds(IF_HANDLE interface) {
    bool8_t changed = 0;
    check(updateDevices_(interface, &changed, kTimeout), "IFUpdateDeviceList");
    std::uint32_t count = 0;
    check(deviceCount_(interface, &count), "IFGetNumDevices");
    std::vector<std::string> ids;
    for (std::uint32_t i = 0; i < count; ++i) {
      std::size_t size = text_.size();
      check(deviceId_(interface, i, text_.data(), &size), "IFGetDeviceID");
      ids.emplace_back(text_.data());
    }
    return ids;
  }

  void describe(const Interface& interface, const std::string& device) {
    for (const DEVICE_INFO_CMD command :
         {DEVICE_INFO_DISPLAYNAME, DEVICE_INFO_MODEL, DEVICE_INFO_VENDOR, DEVICE_INFO_SERIAL_NUMBER,
          DEVICE_INFO_USER_DEFINED_NAME, DEVICE_INFO_VERSION, DEVICE_INFO_TLTYPE, DEVICE_INFO_ACCESS_STATUS}) {
      std::size_t size = text_.size();
      check(deviceInfo_(interface.handle, device.c_str(), command, &type_, text_.data(), &size), "IFGetDeviceInfo");
    }
    for (const INTERFACE_INFO_CMD command : {INTERFACE_INFO_DISPLAYNAME, INTERFACE_INFO_TLTYPE}) {
      std::size_t size = text_.size();
      check(interfaceInfo_(system_, interface.id.c_str(), command, &type_, text_.data(), &size), "TLGetInterfaceInfo");
    }
    for (const TL_INFO_CMD command : {TL_INFO_DISPLAYNAME, TL_INFO_PATHNAME, TL_INFO_ID}) {
      producerText(command);
    }
  }

  OVI::platform::LibraryHandle library_;
  TL_HANDLE system_ = nullptr;
  std::vector<Interface> interfaces_;
  std::array<char, kTextSize> text_{};
  INFO_DATATYPE type_ = INFO_DATATYPE_UNKNOWN;
  PGCGetInfo producerInfo_ = find<PGCGetInfo>("GCGetInfo");
  PTLUpdateInterfaceList updateInterfaces_ = find<PTLUpdateInterfaceList>("TLUpdateInterfaceList");
  PTLGetNumInterfaces interfaceCount_ = find<PTLGetNumInterfaces>("TLGetNumInterfaces");
  PTLGetInterfaceID interfaceId_ = find<PTLGetInterfaceID>("TLGetInterfaceID");
  PTLGetInterfaceInfo interfaceInfo_ = find<PTLGetInterfaceInfo>("TLGetInterfaceInfo");
  PTLOpenInterface openInterface_ = find<PTLOpenInterface>("TLOpenInterface");
  PIFUpdateDeviceList updateDevices_ = find<PIFUpdateDeviceList>("IFUpdateDeviceList");
  PIFGetNumDevices deviceCount_ = find<PIFGetNumDevices>("IFGetNumDevices");
  PIFGetDeviceID deviceId_ = find<PIFGetDeviceID>("IFGetDeviceID");
  PIFGetDeviceInfo deviceInfo_ = find<PIFGetDeviceInfo>("IFGetDeviceInfo");
  PIFOpenDevice openDevice_ = find<PIFOpenDevice>("IFOpenDevice");
  PDevClose closeDevice_ = find<PDevClose>("DevClose");
};

void tell(bench::Report& report, const std::string& what, double alone, double withLibrary, double target) {
  report.atMost(what + ", the library's own us", withLibrary - alone, target,
                bench::withUnit(alone, "us of the producer"));
}

}  // namespace

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  // A folder with nothing but the producer: the search for others is part of a discovery.
  const fs::path producer = fs::absolute(argc > 0 ? argv[0] : ".").parent_path() / "VirtualCamera.cti";
  const fs::path folder = fs::temp_directory_path() / "ovi_discovery_bench";
  fs::create_directories(folder / "raw");
  fs::copy_file(producer, folder / "VirtualCamera.cti", fs::copy_options::overwrite_existing);
  fs::copy_file(producer, folder / "raw" / "Copy.cti", fs::copy_options::overwrite_existing);

  Raw raw((folder / "raw" / "Copy.cti").string());
  const auto found = std::make_unique<oviDiscoveryInfo>();
  check(oviInit(0, nullptr, nullptr), "oviInit");
  const auto discover = [&] {
    check(oviDiscoverDevices(found.get(), kTimeout, nullptr, folder.string().c_str(), 1), "oviDiscoverDevices");
  };
  discover();
  const std::string camera = found->devices[0].deviceID;
  const auto openAndClose = [&] {
    std::uint64_t device = 0;
    check(oviOpenDevice(camera.c_str(), &device, kTimeout, DEVICE_ACCESS_CONTROL), "oviOpenDevice");
    check(oviCloseDevice(device), "oviCloseDevice");
  };

  double rawDiscovery = 1e9;
  double discovery = 1e9;
  double rawOpening = 1e9;
  double opening = 1e9;
  std::size_t devices = 0;
  for (int round = 0; round < kRounds; ++round) {
    rawDiscovery = std::min(rawDiscovery, microseconds([&] { devices = raw.discover(); }));
    discovery = std::min(discovery, microseconds(discover));
    rawOpening = std::min(rawOpening, microseconds([&] { raw.openAndClose(); }));
    opening = std::min(opening, microseconds(openAndClose));
  }
  bench::Report report("discovery_bench");
  tell(report, "discovery of " + std::to_string(devices) + " devices", rawDiscovery, discovery, 100);
  tell(report, "opening and closing a camera", rawOpening, opening, 200);
  oviClose();
  fs::remove_all(folder);
  return report.result();
}
