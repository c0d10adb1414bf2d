// A producer asked about itself and its cameras, in a process that it may take down.
#include "doctor/producer_probe.h"

#include <algorithm>
#include <array>
#include <memory>

#include "check/info.h"
#include "doctor/missing_libraries.h"
#include "paths.h"
#include "tool_error.h"

namespace tool {

namespace {

using nlohmann::ordered_json;
using Tell = std::function<void(const ordered_json&)>;
using Clock = std::chrono::steady_clock;

class Walk {
 public:
  Walk(const check::ProducerFunctions& gentl, std::chrono::milliseconds timeout, Tell tell)
      : gentl_(gentl),
        timeout_(static_cast<std::uint64_t>(timeout.count())),
        tell_(std::move(tell)) {}

  void run() {
    if (!succeeds(gentl_.GCInitLib))
      return;
    describeProducer();
    TL_HANDLE tl = nullptr;
    if (succeeds(gentl_.TLOpen, &tl) && isThere("", gentl_.TLOpen.name(), tl)) {
      walkInterfaces(tl);
      succeeds(gentl_.TLClose, tl);
    }
    succeeds(gentl_.GCCloseLib);
  }

 private:
  template<class Pointer, class... Args>
  bool succeeds(const check::Function<Pointer>& function, Args... args) {
    return succeedsFor("", function, args...);
  }
  // `module` is the ID of whom the call is about.
  template<class Pointer, class... Args>
  bool succeedsFor(const std::string& module, const check::Function<Pointer>& function, Args... args) {
    const GC_ERROR code = function(args...);
    if (code == GC_ERR_SUCCESS)
      return true;
    tellFault(module, function.name(), resultText(function.exists(), code));
    return false;
  }

  void tellFault(const std::string& module, const char* function, const std::string& result) {
    ordered_json fault{{"is", "fault"}, {"function", function}, {"result", result}};
    if (!module.empty())
      fault["module"] = module;
    tell_(fault);
  }
  // A handle that a function gave.
  bool isThere(const std::string& module, const char* function, const void* handle) {
    if (handle == nullptr)
      tellFault(module, function, "reported success and gave no handle");
    return handle != nullptr;
  }
  // How many of so many are looked at.
  std::uint32_t sensible(const std::string& module, const char* function, std::uint32_t count) {
    constexpr std::uint32_t kMost = 256;
    if (count > kMost)
      tellFault(module, function,
                "told of " + std::to_string(count) + ", of which " + std::to_string(kMost) + " were looked at");
    return std::min(count, kMost);
  }

  std::string resultText(bool exported, GC_ERROR code) const {
    if (!exported)
      return "is not exported";
    std::array<char, 1024> text{};
    std::size_t size = text.size() - 1;
    GC_ERROR last = 0;
    const bool told = gentl_.GCGetLastError(&last, text.data(), &size) == GC_ERR_SUCCESS && last == code;
    text.back() = '\0';
    return "returned " + check::codeText(code) +
           (told && text[0] != '\0' ? ", \"" + std::string(text.data()) + "\"" : "");
  }

  static std::string textOf(const check::Query& query, std::int32_t command) {
    const check::Info info = check::ask(query, command);
    return info.exists() ? info.text() : std::string();
  }
  // An ID as the producer gives it; of what fails there is none.
  template<class Ask>
  static std::string idOf(Ask&& ask) {
    std::array<char, 1024> text{};
    std::size_t size = text.size() - 1;
    if (ask(text.data(), &size) != GC_ERR_SUCCESS)
      return {};
    text.back() = '\0';
    return text.data();
  }

  void describeProducer() {
    const check::Query query = [this](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return gentl_.GCGetInfo(command, type, buffer, size);
    };
    ordered_json producer{{"is", "producer"},
                          {"displayName", textOf(query, TL_INFO_DISPLAYNAME)},
                          {"vendor", textOf(query, TL_INFO_VENDOR)},
                          {"model", textOf(query, TL_INFO_MODEL)},
                          {"version", textOf(query, TL_INFO_VERSION)},
                          {"type", textOf(query, TL_INFO_TLTYPE)}};
    const check::Info major = check::ask(query, TL_INFO_GENTL_VER_MAJOR);
    const check::Info minor = check::ask(query, TL_INFO_GENTL_VER_MINOR);
    if (major.exists() && minor.exists() && major.type == INFO_DATATYPE_UINT32 && minor.type == INFO_DATATYPE_UINT32)
      producer["gentl"] = std::to_string(major.number()) + "." + std::to_string(minor.number());
    tell_(producer);
  }

  void walkInterfaces(TL_HANDLE tl) {
    bool8_t changed = 0;
    std::uint32_t count = 0;
    if (!succeeds(gentl_.TLUpdateInterfaceList, tl, &changed, timeout_) ||
        !succeeds(gentl_.TLGetNumInterfaces, tl, &count))
      return;
    count = sensible("", gentl_.TLGetNumInterfaces.name(), count);
    for (std::uint32_t i = 0; i < count; ++i) {
      const std::string id =
          idOf([&](char* text, std::size_t* size) { return gentl_.TLGetInterfaceID(tl, i, text, size); });
      if (id.empty())
        tellFault("", gentl_.TLGetInterfaceID.name(), "gave no ID of interface " + std::to_string(i));
      else
        walkInterface(tl, id);
    }
  }

  void walkInterface(TL_HANDLE tl, const std::string& id) {
    const check::Query query = [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return gentl_.TLGetInterfaceInfo(tl, id.c_str(), command, type, buffer, size);
    };
    IF_HANDLE interface = nullptr;
    if (!succeedsFor(id, gentl_.TLOpenInterface, tl, id.c_str(), &interface) ||
        !isThere(id, gentl_.TLOpenInterface.name(), interface))
      return;
    bool8_t changed = 0;
    std::uint32_t count = 0;
    const Clock::time_point start = Clock::now();
    const bool updated = succeedsFor(id, gentl_.IFUpdateDeviceList, interface, &changed, timeout_);
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    if (updated && succeedsFor(id, gentl_.IFGetNumDevices, interface, &count)) {
      tell_({{"is", "interface"},
             {"id", id},
             {"name", textOf(query, INTERFACE_INFO_DISPLAYNAME)},
             {"type", textOf(query, INTERFACE_INFO_TLTYPE)},
             {"cameras", count},
             {"milliseconds", taken}});
      count = sensible(id, gentl_.IFGetNumDevices.name(), count);
      for (std::uint32_t i = 0; i < count; ++i) {
        const std::string device =
            idOf([&](char* text, std::size_t* size) { return gentl_.IFGetDeviceID(interface, i, text, size); });
        if (device.empty())
          tellFault(id, gentl_.IFGetDeviceID.name(), "gave no ID of camera " + std::to_string(i));
        else
          tellCamera(interface, id, device);
      }
    }
    succeedsFor(id, gentl_.IFClose, interface);
  }

  void tellCamera(IF_HANDLE interface, const std::string& interfaceId, const std::string& id) {
    const check::Query query = [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
      return gentl_.IFGetDeviceInfo(interface, id.c_str(), command, type, buffer, size);
    };
    const check::Info access = check::ask(query, DEVICE_INFO_ACCESS_STATUS);
    tell_({{"is", "camera"},
           {"interface", interfaceId},
           {"id", id},
           {"vendor", textOf(query, DEVICE_INFO_VENDOR)},
           {"model", textOf(query, DEVICE_INFO_MODEL)},
           {"serial", textOf(query, DEVICE_INFO_SERIAL_NUMBER)},
           {"userName", textOf(query, DEVICE_INFO_USER_DEFINED_NAME)},
           {"type", textOf(query, DEVICE_INFO_TLTYPE)},
           {"access", access.exists() ? access.number() : 0}});
  }

  const check::ProducerFunctions& gentl_;
  std::uint64_t timeout_;
  Tell tell_;
};

// Never unloaded: a broken producer may have threads that still run.
std::unique_ptr<DynamicLibrary>& loadedLibrary() {
  static auto& library = *new std::unique_ptr<DynamicLibrary>;
  return library;
}

void tellUnloadable(const std::filesystem::path& file, const std::string& reason, const Tell& tell) {
  ordered_json unloadable{{"is", "unloadable"}, {"reason", reason}, {"missing", ordered_json::array()}};
  const check::WatchedCall watch("a library that it needs");
  for (const MissingLibrary& missing : missingLibraries(file))
    unloadable["missing"].push_back(
        {{"library", missing.name}, {"neededBy", missing.neededBy}, {"problem", missing.problem}});
  tell(unloadable);
}

}  // namespace

void probeProducer(const std::filesystem::path& file, std::chrono::milliseconds timeout, Tell tell) {
  constexpr std::chrono::seconds kPatience{8};
  check::watchCalls(timeout + kPatience, [tell](const std::string& function) {
    tell({{"is", "hung"}, {"function", function}});
  });
  std::unique_ptr<DynamicLibrary>& library = loadedLibrary();
  try {
    const check::WatchedCall watch("its own start, while it is loaded");
    library = std::make_unique<DynamicLibrary>(file);
  } catch (const ToolError& error) {
    tellUnloadable(file, error.what(), tell);
    return;
  }
  const check::ProducerFunctions functions(*library);
  if (!functions.missing().empty())
    tell({{"is", "missing"}, {"functions", functions.missing()}});
  if (functions.GCInitLib.exists())
    Walk(functions, timeout, tell).run();
  tell({{"is", "end"}});
}

}  // namespace tool
