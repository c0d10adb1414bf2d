// What the real-time producer needs of the machine, checked before it is loaded.
#include "discovery/environment.h"

#include <array>
#include <boost/algorithm/string/trim.hpp>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "core/log.h"
#include "platform/platform.h"
#include "settings_file.h"

namespace OVI {

namespace {

constexpr const char* kEnvironmentSite = "OVI::isKitharaEnvironmentSet";
constexpr const char* kProcessorsSite = "OVI::isKitharaProcsAllocated";
constexpr const char* kOutcomeKey = "KitharaEnvironment";
constexpr const char* kSkipKey = "EnvironmentSet";

struct Outcome {
  oviErr code;
  const char* name;
};

constexpr std::array kOutcomes = {
    Outcome{OVI_SUCCESS, "Success"},
    Outcome{OVI_ERR_HYPERVISOR_NOT_DISABLED, "oviHypervisorNotDisabledErr"},
    Outcome{OVI_ERR_NO_KITHARA_PROCESSORS, "oviNoKitharaProcessorsErr"},
};

std::optional<std::string> settingsPath() {
  const std::optional<std::string> documents = platform::publicDocuments();
  if (!documents) {
    OVI_LOG_ERROR(kEnvironmentSite)
        << "Error in getting the 'Public Documents' path to construct the config file path.";
    return std::nullopt;
  }
  const char separator = platform::pathSeparator();
  return *documents + separator + "Kestrova" + separator + "Pelt" + separator + "Hux.ini";
}

std::optional<oviErr> keptOutcome(const SettingsFile& settings) {
  const std::optional<std::string> name = settings.value(kOutcomeKey);
  if (!name || settings.value(kSkipKey) != "1")
    return std::nullopt;
  for (const Outcome& outcome : kOutcomes)
    if (*name == outcome.name)
      return outcome.code;
  return std::nullopt;
}

void keepOutcome(SettingsFile& settings, oviErr code) {
  for (const Outcome& outcome : kOutcomes) {
    if (outcome.code != code || settings.value(kOutcomeKey) == outcome.name)
      continue;
    settings.set(kOutcomeKey, outcome.name);
    const std::string error = settings.write();
    if (!error.empty()) {
      std::fputs("could not open temp ini file to write settings\n", stdout);
      OVI_LOG_WARNING(kEnvironmentSite) << "The outcome of the environment check was not stored: " << error;
    }
  }
}

bool hypervisorPresent() {
  const std::optional<std::string> answer =
      platform::runAndRead("powershell", "(gcim Win32_ComputerSystem).HypervisorPresent");
  if (!answer) {
    OVI_LOG_ERROR(kEnvironmentSite) << "popen() failed!";
    return true;
  }
  return boost::algorithm::trim_copy(*answer) != "False";
}

// The system-information library's one entry point: writes the value of an attribute and returns 0, or returns
// something else.
using GetAttribute = std::int32_t (*)(const char* name, std::uint32_t* value);

struct Attribute {
  const char* name;
  const char* failure;
};

constexpr std::array kAttributes = {
    Attribute{"NumberOfLogicalProcessors", "Error in getting the PC's number of Logical Processors inforamtion"},
    Attribute{"NumberOfEnabledCore", "Error in getting the PC's number of Windows Enabled Cores"},
    Attribute{"NumberOfCores", "Error in getting the PC's total number of Cores"},
};

// Processors are set aside when the system runs on fewer cores than the machine has.
bool processorsSetAside() {
  const std::unique_ptr<void, void (*)(void*)> library(platform::loadLibrary("SystemInfo.dll"),
                                                       [](void* handle) { platform::unload(handle); });
  if (library == nullptr) {
    OVI_LOG_ERROR(kProcessorsSite)
        << "SystemInfo.dll cannot be loaded to get PC's number of processors and cores inforamtion";
    return false;
  }
  const auto getAttribute = reinterpret_cast<GetAttribute>(platform::resolve(library.get(), "GetAttribute"));
  if (getAttribute == nullptr) {
    OVI_LOG_ERROR(kProcessorsSite)
        << "Failed to get number of dedicated CPUs, the SystemInfo.dll was available but with wrong version!";
    return false;
  }
  std::array<std::uint32_t, kAttributes.size()> values{};
  for (std::size_t i = 0; i < kAttributes.size(); ++i) {
    if (getAttribute(kAttributes.at(i).name, &values.at(i)) != 0) {
      OVI_LOG_ERROR(kProcessorsSite) << kAttributes.at(i).failure;
      return false;
    }
  }
  const auto [logical, enabled, cores] = values;
  return logical > 0 && enabled > 0 && enabled < cores;
}

oviErr checkEnvironment() {
  if (hypervisorPresent())
    return OVI_ERR_HYPERVISOR_NOT_DISABLED;
  return processorsSetAside() ? OVI_SUCCESS : OVI_ERR_NO_KITHARA_PROCESSORS;
}

}  // namespace

oviErr isKitharaEnvironmentSet() {
  const std::optional<std::string> path = settingsPath();
  if (!path)
    return checkEnvironment();
  SettingsFile settings(*path);
  if (const std::optional<oviErr> kept = keptOutcome(settings))
    return *kept;
  const oviErr code = checkEnvironment();
  keepOutcome(settings, code);
  return code;
}

}  // namespace OVI
