// The USB controllers of a Windows machine, and the cameras behind them.
#include "platform/windows/usb.h"

#include <windows.h>
// After windows.h, which they need.
#include <cfgmgr32.h>
#include <setupapi.h>

#include <algorithm>
#include <cwchar>
#include <string>
#include <vector>

#include "paths.h"
#include "text.h"

namespace tool {

namespace {

constexpr DWORD kNoDriver = 28;  // As the system numbers a device's problems.
constexpr DWORD kDisabled = 22;

struct DeviceSet {
  HDEVINFO value = INVALID_HANDLE_VALUE;
  explicit DeviceSet(HDEVINFO set) : value(set) {}
  DeviceSet(const DeviceSet&) = delete;
  DeviceSet& operator=(const DeviceSet&) = delete;
  ~DeviceSet() {
    if (value != INVALID_HANDLE_VALUE)
      SetupDiDestroyDeviceInfoList(value);
  }
};

struct UsbDevice {
  std::string name;
  std::vector<std::string> ids;  ///< hardware and compatible ones
  DWORD problem = 0;             ///< 0 when it works

  bool is(const std::string& pattern) const {
    return std::ranges::any_of(ids, [&](const std::string& id) { return matchesPattern(pattern, id); });
  }
};

// The texts of a property, one or several.
std::vector<std::string> property(HDEVINFO set, SP_DEVINFO_DATA& device, DWORD which) {
  DWORD size = 0;
  DWORD type = 0;
  SetupDiGetDeviceRegistryPropertyW(set, &device, which, &type, nullptr, 0, &size);
  std::wstring buffer(size / sizeof(wchar_t) + 2, L'\0');
  std::vector<std::string> texts;
  if (size == 0 || SetupDiGetDeviceRegistryPropertyW(set, &device, which, &type, reinterpret_cast<BYTE*>(buffer.data()),
                                                     size, nullptr) == 0)
    return texts;
  for (const wchar_t* text = buffer.c_str(); *text != L'\0'; text += std::wcslen(text) + 1) {
    texts.push_back(pathText(std::filesystem::path(text)));
    if (type == REG_SZ)
      break;
  }
  return texts;
}

UsbDevice describe(HDEVINFO set, SP_DEVINFO_DATA& device) {
  UsbDevice result;
  for (const DWORD which : {SPDRP_FRIENDLYNAME, SPDRP_DEVICEDESC})
    if (const std::vector<std::string> name = property(set, device, which); result.name.empty() && !name.empty())
      result.name = name.front();
  for (const DWORD which : {SPDRP_HARDWAREID, SPDRP_COMPATIBLEIDS})
    for (std::string& id : property(set, device, which))
      result.ids.push_back(std::move(id));
  ULONG status = 0;
  ULONG problem = 0;
  if (CM_Get_DevNode_Status(&status, &problem, device.DevInst, 0) == CR_SUCCESS && (status & DN_HAS_PROBLEM) != 0)
    result.problem = problem;
  return result;
}

// The devices of an enumerator ("PCI", "USB") that are there now and have such an ID.
std::vector<UsbDevice> devicesOf(const wchar_t* enumerator, const std::string& idPattern) {
  std::vector<UsbDevice> found;
  const DeviceSet set(SetupDiGetClassDevsW(nullptr, enumerator, nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES));
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof(device);
  for (DWORD i = 0; set.value != INVALID_HANDLE_VALUE && SetupDiEnumDeviceInfo(set.value, i, &device) != 0; ++i)
    if (UsbDevice candidate = describe(set.value, device); candidate.is(idPattern))
      found.push_back(std::move(candidate));
  return found;
}

std::string problemText(DWORD problem) {
  if (problem == kNoDriver)
    return "has no driver";
  if (problem == kDisabled)
    return "is disabled";
  return "does not work (the device manager's code " + std::to_string(problem) + ")";
}

}  // namespace

void examineUsbControllers(Findings& findings) {
  // PCI's class of serial bus controllers of the USB kind; its last byte is the generation.
  const std::vector<UsbDevice> controllers = devicesOf(L"PCI", "*CC_0C03*");
  const auto isUsb3 = [](const UsbDevice& controller) {
    return controller.is("*CC_0C0330*") || controller.is("*CC_0C0340*");
  };
  for (const UsbDevice& controller : controllers) {
    const std::string name = "USB controller " + controller.name;
    if (controller.problem != 0)
      findings.push_back({Level::kNote, name + " " + problemText(controller.problem),
                          "install its driver in the device manager, or enable it there"});
    else
      findings.push_back({Level::kGood, name + ": " + (isUsb3(controller) ? "USB 3" : "USB 2 or older")});
  }
  const bool fast = std::ranges::any_of(
      controllers, [&](const UsbDevice& controller) { return controller.problem == 0 && isUsb3(controller); });
  if (!controllers.empty() && !fast)
    findings.push_back({Level::kNote, "no USB 3 controller works here: USB3 cameras are slow or not found at all",
                        "enable USB 3 (xHCI) in the firmware, install its driver, or add a USB 3 adapter"});
}

void examineUsbCameras(Findings& findings) {
  for (const UsbDevice& camera : devicesOf(L"USB", "*Class_EF&SubClass_05*")) {
    const std::string name = "USB camera " + camera.name;
    if (camera.problem != 0)
      findings.push_back({Level::kProblem, name + " " + problemText(camera.problem) + ": no producer can open it",
                          camera.problem == kNoDriver
                              ? "install its maker's producer with the driver for USB3 Vision, then plug it in again"
                              : "look at it in the device manager, and plug it in again"});
    else
      findings.push_back({Level::kGood, name + ": is there, with a driver"});
  }
}

}  // namespace tool
