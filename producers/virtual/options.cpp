// The variant's own defaults, the settings file and the environment, in this order.
#include "options.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "camera/camera_model.h"
#include "ini_file.h"
#include "platform/environment.h"

namespace vcam {

namespace {

std::optional<std::uint64_t> numberFrom(const std::string& text, std::uint64_t minimum, std::uint64_t maximum) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < minimum || value > maximum) {
    return std::nullopt;
  }
  return value;
}

template<class Member>
bool setNumber(Member& to, const std::string& text, std::uint64_t minimum, std::uint64_t maximum) {
  const std::optional<std::uint64_t> value = numberFrom(text, minimum, maximum);
  if (value) {
    to = static_cast<Member>(*value);
  }
  return value.has_value();
}

bool setBoolean(bool& to, const std::string& text) {
  return setNumber(to, text, 0, 1);
}

bool setText(std::string& to, const std::string& text, std::size_t longest) {
  if (text.empty() || text.size() > longest) {
    return false;
  }
  to = text;
  return true;
}

bool setFolder(std::filesystem::path& to, const std::string& text, bool mustExist) {
  std::error_code error;
  const std::filesystem::path folder = pathFrom(text);
  const bool exists = std::filesystem::exists(folder, error);
  if (text.empty() || (exists ? !std::filesystem::is_directory(folder, error) : mustExist)) {
    return false;
  }
  to = folder;
  return true;
}

// A setting of the producer, or of one camera.
template<class Target>
struct Key {
  std::string_view name;
  const char* environment;
  std::string_view expected;
  bool (*set)(Target& target, const std::string& text);
};

constexpr std::string_view kMilliseconds = "a number of milliseconds from 0 to 60000";
constexpr std::string_view kSwitch = "0 or 1";
constexpr std::uint64_t kLongestMs = 60000;

constexpr Key<Options> kKeys[] = {
    {"Images", "OVI_VIRTUAL_IMAGES", "a folder that exists",
     [](Options& o, const std::string& text) { return setFolder(o.cameras.imageFolder, text, true); }},
    {"Storage", "OVI_VIRTUAL_STORAGE", "a folder",
     [](Options& o, const std::string& text) { return setFolder(o.cameras.storageFolder, text, false); }},
    {"SpeedMode", "OVI_VIRTUAL_SPEED_MODE", kSwitch,
     [](Options& o, const std::string& text) { return setBoolean(o.cameras.speedMode, text); }},
    {"FirstFrameId", "OVI_VIRTUAL_FIRST_FRAME_ID", "a number from 0 to 4294967295",
     [](Options& o, const std::string& text) { return setNumber(o.cameras.firstFrameId, text, 0, 0xFFFFFFFF); }},
    {"FirmwareApplyMs", "OVI_VIRTUAL_FIRMWARE_APPLY_MS", kMilliseconds,
     [](Options& o, const std::string& text) { return setNumber(o.cameras.firmwareApplyMs, text, 0, kLongestMs); }},
    {"BufferAlignment", "OVI_VIRTUAL_BUFFER_ALIGNMENT", "a power of two from 1 to 4096",
     [](Options& o, const std::string& text) {
       const std::optional<std::uint64_t> value = numberFrom(text, 1, 4096);
       const bool fits = value && (*value & (*value - 1)) == 0;
       o.bufferAlignment = fits ? static_cast<std::size_t>(*value) : o.bufferAlignment;
       return fits;
     }},
    {"MinimumBuffers", "OVI_VIRTUAL_MINIMUM_BUFFERS", "a number from 1 to 64",
     [](Options& o, const std::string& text) { return setNumber(o.minimumBuffers, text, 1, 64); }},
    {"InterfaceUpdateMs", "OVI_VIRTUAL_INTERFACE_UPDATE_MS", kMilliseconds,
     [](Options& o, const std::string& text) { return setNumber(o.interfaceUpdateMs, text, 0, kLongestMs); }},
    {"DeviceUpdateMs", "OVI_VIRTUAL_DEVICE_UPDATE_MS", kMilliseconds,
     [](Options& o, const std::string& text) { return setNumber(o.deviceUpdateMs, text, 0, kLongestMs); }},
    {"NetworkPacketSize", "OVI_VIRTUAL_NETWORK_PACKET_SIZE", "a number of bytes from 576 to 9000",
     [](Options& o, const std::string& text) {
       std::uint32_t size = 0;
       const bool fits = setNumber(size, text, 576, 9000);
       if (fits && o.variant == Variant::GigE) {
         o.cameras.networkPacketSize = size;
       }
       return fits;
     }},
    {"RecordingMegabytes", "OVI_VIRTUAL_RECORDING_MEGABYTES", "a number from 1 to 65536",
     [](Options& o, const std::string& text) {
       const std::optional<std::uint64_t> value = numberFrom(text, 1, 65536);
       o.recordingBytes = value ? *value << 20 : o.recordingBytes;
       return value.has_value();
     }},
};

constexpr Key<CameraChoice> kCameraKeys[] = {
    {"Vendor", nullptr, "a text of at most 63 bytes",
     [](CameraChoice& c, const std::string& text) { return setText(c.vendor, text, 63); }},
    {"UserName", nullptr, "a text of at most 32 bytes",
     [](CameraChoice& c, const std::string& text) { return setText(c.userDefinedName, text, 32); }},
    {"Plugged", nullptr, kSwitch, [](CameraChoice& c, const std::string& text) { return setBoolean(c.plugged, text); }},
    {"ForeignSubnet", nullptr, kSwitch,
     [](CameraChoice& c, const std::string& text) { return setBoolean(c.foreignSubnet, text); }},
};

constexpr std::string_view kProducerSection = "Producer";
constexpr std::string_view kCameraSection = "Camera ";

void report(const std::string& text) {
  std::fprintf(stderr, "Virtual camera producer: %s\n", text.c_str());
}

// Applies one setting; the complaint when it cannot be.
template<class Target, std::size_t kCount>
std::string apply(const Key<Target> (&keys)[kCount], Target& target, const IniEntry& entry) {
  const auto* const key = std::find_if(std::begin(keys), std::end(keys),
                                       [&](const Key<Target>& candidate) { return candidate.name == entry.key; });
  if (key == std::end(keys)) {
    return "unknown key \"" + entry.key + "\"; it is ignored";
  }
  if (!key->set(target, entry.value)) {
    return entry.key + " must be " + std::string(key->expected) + ", not \"" + entry.value + "\"; the default is used";
  }
  return {};
}

std::string apply(Options& options, const IniEntry& entry) {
  if (entry.section.empty() || entry.section == kProducerSection) {
    return apply(kKeys, options, entry);
  }
  if (!entry.section.starts_with(kCameraSection)) {
    return "unknown section [" + entry.section + "]; its keys are ignored";
  }
  const std::string serial = entry.section.substr(kCameraSection.size());
  const std::vector<CameraModel> models = defaultModels();
  if (std::ranges::none_of(models, [&](const CameraModel& model) { return model.identity.serialNumber == serial; })) {
    return "no camera has the serial number \"" + serial + "\"; its keys are ignored";
  }
  return apply(kCameraKeys, options.cameras.choices[serial], entry);
}

void applyVariant(Options& options) {
  // Network cameras count their frames from 1.
  if (isNetwork(options.variant)) {
    options.cameras.firstFrameId = 1;
    options.cameras.tlType = "GEV";
  }
  if (options.variant == Variant::GigE) {
    options.cameras.networkPacketSize = 8164;
    options.cameras.choices["KV064007"].foreignSubnet = true;
  }
}

void applyFile(Options& options, const std::string& producerPath) {
  const std::optional<std::string> named = environmentVariable("OVI_VIRTUAL_CONFIG");
  const std::filesystem::path file = named ? pathFrom(*named) : pathFrom(producerPath).replace_extension(".ini");
  const std::string name = named ? *named : file.string();
  const auto tell = [&](std::size_t line, const std::string& text) {
    report(name + ":" + std::to_string(line) + ": " + text);
  };
  std::vector<IniEntry> entries;
  if (!readIniFile(file, entries, tell) && named) {
    report(name + ": the settings file cannot be read; the defaults are used");
  }
  for (const IniEntry& entry : entries) {
    if (const std::string complaint = apply(options, entry); !complaint.empty()) {
      tell(entry.line, complaint);
    }
  }
}

void applyEnvironment(Options& options) {
  for (const Key<Options>& key : kKeys) {
    const std::optional<std::string> value = environmentVariable(key.environment);
    if (value && !key.set(options, *value)) {
      report(std::string(key.environment) + " must be " + std::string(key.expected) + ", not \"" + *value +
             "\"; it is ignored");
    }
  }
}

}  // namespace

Options loadOptions(const std::string& path) {
  Options options;
  options.variant = variantOf(path);
  options.cameras.report = report;
  applyVariant(options);
  applyFile(options, path);
  applyEnvironment(options);
  return options;
}

Variant variantOf(const std::string& path) {
  const std::string name = path.substr(path.find_last_of("/\\") + 1);
  if (name == "gevtls2i.cti") {
    return Variant::GigE;
  }
  if (name.find("lsgentlgevkithara") != std::string::npos) {
    return Variant::RealTime;
  }
  if (name.find("nimbo_producer.cti") != std::string::npos) {
    return Variant::Recording;
  }
  return Variant::Plain;
}

}  // namespace vcam
