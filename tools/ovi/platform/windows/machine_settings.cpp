// Settings of a Windows machine that cost cameras or images.
#include "platform/machine_settings.h"

// Before windows.h, which would bring in an older one.
#include <winsock2.h>
// After winsock2.h.
#include <windows.h>
// After windows.h, which they need.
#include <iphlpapi.h>
#include <powrprof.h>

#include <array>
#include <cstdint>
#include <cwchar>
#include <memory>

#include "paths.h"
#include "platform/console.h"
#include "platform/windows/usb.h"
#include "text.h"

namespace tool {

namespace {

std::string wideText(const wchar_t* text) {
  return text == nullptr ? std::string() : pathText(std::filesystem::path(text));
}

void examineAdapters(Findings& findings) {
  constexpr ULONG kJumbo = 8000;
  constexpr ULONG64 kFast = 1'000'000'000;
  ULONG size = 64U << 10U;
  std::vector<std::uint64_t> room;
  ULONG code = ERROR_BUFFER_OVERFLOW;
  for (int attempt = 0; attempt < 3 && code == ERROR_BUFFER_OVERFLOW; ++attempt) {
    room.resize(size / sizeof(std::uint64_t) + 1);
    code = GetAdaptersAddresses(AF_INET, GAA_FLAG_SKIP_ANYCAST | GAA_FLAG_SKIP_MULTICAST | GAA_FLAG_SKIP_DNS_SERVER,
                                nullptr, reinterpret_cast<IP_ADAPTER_ADDRESSES*>(room.data()), &size);
  }
  if (code != NO_ERROR)
    return;
  for (const auto* adapter = reinterpret_cast<const IP_ADAPTER_ADDRESSES*>(room.data()); adapter != nullptr;
       adapter = adapter->Next) {
    if (adapter->OperStatus != IfOperStatusUp || adapter->IfType != IF_TYPE_ETHERNET_CSMACD)
      continue;
    const std::string name = "network adapter \"" + wideText(adapter->FriendlyName) + "\"";
    const bool speedKnown = adapter->ReceiveLinkSpeed != 0 && adapter->ReceiveLinkSpeed != ~ULONG64{0};
    std::string text = name + ": packets of up to " + std::to_string(adapter->Mtu) + " bytes";
    if (speedKnown)
      text += ", " + std::to_string(adapter->ReceiveLinkSpeed / 1'000'000) + " Mbit/s";
    if (adapter->Mtu >= kJumbo)
      findings.push_back({Level::kGood, text});
    else
      findings.push_back({Level::kNote, text + ", a GigE camera on it costs less with jumbo packets",
                          "set \"Jumbo Packet\" to 9014 bytes in the adapter's advanced properties"});
    if (speedKnown && adapter->ReceiveLinkSpeed < kFast)
      findings.push_back({Level::kNote, name + " is too slow for most GigE cameras",
                          "check cable, plug and switch: 1000 Mbit/s need all four pairs of wires"});
    if (adapter->FirstUnicastAddress == nullptr)
      findings.push_back({Level::kNote, name + " has no IPv4 address: no GigE camera answers on it",
                          "give it an address of the camera's subnet"});
  }
}

void examinePower(Findings& findings) {
  // "Power saver", as every Windows names it.
  constexpr GUID kSaver = {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}};
  constexpr GUID kUsb = {0x2A737441, 0x1930, 0x4402, {0x8D, 0x77, 0xB2, 0xBE, 0xBB, 0xA3, 0x08, 0xA3}};
  constexpr GUID kUsbSuspend = {0x48E6B7A6, 0x50F5, 0x4782, {0xA5, 0xD4, 0x53, 0xBB, 0x8F, 0x07, 0xE2, 0x26}};
  GUID* active = nullptr;
  if (PowerGetActiveScheme(nullptr, &active) != ERROR_SUCCESS || active == nullptr)
    return;
  const std::unique_ptr<GUID, HLOCAL (*)(HLOCAL)> owner(active, &LocalFree);
  if (IsEqualGUID(*active, kSaver))
    findings.push_back({Level::kNote, "the power plan saves power: images may be lost at high frame rates",
                        "choose the plan \"High performance\" in the power options"});
  DWORD onMains = 0;
  DWORD onBattery = 0;
  PowerReadACValueIndex(nullptr, active, &kUsb, &kUsbSuspend, &onMains);
  PowerReadDCValueIndex(nullptr, active, &kUsb, &kUsbSuspend, &onBattery);
  if (onMains != 0 || onBattery != 0)
    findings.push_back({Level::kNote,
                        std::string("USB devices may be put to sleep when they are idle, cameras too") +
                            (onMains != 0 ? "" : ", while the machine runs on its battery"),
                        "turn \"USB selective suspend\" off in the power plan's advanced settings"});
}

std::string registryText(const wchar_t* key, const wchar_t* name) {
  std::array<wchar_t, 512> text{};
  DWORD size = static_cast<DWORD>(sizeof(text) - sizeof(wchar_t));
  if (RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
    return {};
  return wideText(text.data());
}

}  // namespace

Findings examineMachine() {
  Findings findings;
  examineAdapters(findings);
  examinePower(findings);
  examineUsbControllers(findings);
  return findings;
}

Findings examineBuses() {
  Findings findings;
  examineUsbCameras(findings);
  return findings;
}

std::vector<std::pair<std::string, std::string>> machineFacts() {
  constexpr const wchar_t* kVersion = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
  std::vector<std::pair<std::string, std::string>> facts;
  facts.emplace_back("system", registryText(kVersion, L"ProductName"));
  facts.emplace_back("build", registryText(kVersion, L"CurrentBuildNumber"));
  facts.emplace_back("processor",
                     registryText(L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"ProcessorNameString"));
  SYSTEM_INFO system{};
  GetNativeSystemInfo(&system);
  facts.emplace_back("processors", std::to_string(system.dwNumberOfProcessors));
  MEMORYSTATUSEX memory{};
  memory.dwLength = sizeof(memory);
  if (GlobalMemoryStatusEx(&memory) != 0) {
    facts.emplace_back("memory", bytesText(memory.ullTotalPhys));
    facts.emplace_back("free memory", bytesText(memory.ullAvailPhys));
  }
  return facts;
}

std::vector<std::string> usualProducerFolders() {
  std::vector<std::string> folders;
  for (const char* name : {"ProgramFiles", "ProgramW6432"})
    if (const std::string folder = environmentVariable(name);
        !folder.empty() && (folders.empty() || folders.front() != folder))
      folders.push_back(folder);
  return folders;
}

}  // namespace tool
