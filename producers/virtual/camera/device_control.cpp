// Declaration of the device features.
#include "device_control.h"

#include <array>
#include <cmath>
#include <numbers>

namespace vcam {
namespace {

constexpr const char* kDeviceCategory = "DeviceControl";
constexpr const char* kUserId = "DeviceUserID";

// Fixed places in the register space. A pair of address and value registers reaches every other register, 32 bits wide.
constexpr std::uint64_t kIndirectWriteAddress = 0xA184;
constexpr std::uint64_t kIndirectWriteValue = 0xA188;
constexpr std::uint64_t kIndirectReadAddress = 0xA18C;
constexpr std::uint64_t kIndirectReadValue = 0xA190;
constexpr std::uint64_t kMaintenance = 0xA3E4;
constexpr std::uint64_t kScratch = 0xA400;

// Whether an access of 32 bits touches a register of 32 bits, which would lead it back to itself.
bool overlap(std::uint64_t a, std::uint64_t b) {
  return a < b + 4 && b < a + 4;
}

}  // namespace

void DeviceControl::declare() {
  core_.map.category(kDeviceCategory, "What the camera is and how it is");
  declareIdentity();
  declareTemperature();
  declareLink();
  declareRegisters();
}

void DeviceControl::powerOn() {
  if (const auto kept = store_.read(kUserId)) {
    userId_->setText(toText(*kept));
  }
}

void DeviceControl::declareIdentity() {
  FeatureMap& map = core_.map;
  const Identity& identity = core_.model.identity;
  map.enumeration("DeviceType", kDeviceCategory, "Kind of device").entry("Transmitter", 0, "It sends data").readOnly();
  map.enumeration("DeviceScanType", kDeviceCategory, "Kind of sensor").entry("Areascan", 0).readOnly();
  const auto text = [&](const char* name, const char* toolTip, const std::string& value) -> Feature& {
    return map.string(name, kDeviceCategory, toolTip).readOnly().value(value);
  };
  text("DeviceVendorName", "Name of the vendor", identity.vendor);
  text("DeviceModelName", "Name of the model", identity.model);
  text("DeviceFamilyName", "Name of the model family", identity.family).visibility("Expert");
  text("DeviceManufacturerInfo", "More from the vendor", identity.manufacturerInfo);
  text("DeviceVersion", "Version of the camera", identity.version);
  firmware_ = &text("DeviceFirmwareVersion", "Version of the firmware", "1.0.0").visibility("Expert").uncached();
  text("DeviceSerialNumber", "Serial number", identity.serialNumber);
  userId_ = &map.string("DeviceUserID", kDeviceCategory, "A name that the user gives", 32)
                 .value(core_.model.userDefinedName)
                 .onWrite([this](std::size_t) {
                   store_.write(kUserId, toContent(userId_->text()));
                   return kOk;
                 });
  map.integer("DeviceSFNCVersionMajor", kDeviceCategory, "Version of the naming convention")
      .readOnly()
      .value(2)
      .visibility("Guru");
  map.integer("DeviceSFNCVersionMinor", kDeviceCategory, "Version of the naming convention")
      .readOnly()
      .value(7)
      .visibility("Guru");
  map.integer("DeviceManifestXMLMajorVersion", kDeviceCategory, "Version of this description")
      .readOnly()
      .value(1)
      .visibility("Guru");
  map.command("DeviceReset", kDeviceCategory, "Stops the camera and loads the default user set")
      .visibility("Guru")
      .onWrite([this](std::size_t) {
        hooks_.reset();
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  map.integer("Timestamp", kDeviceCategory, "Time stamp at the last TimestampLatch")
      .unit("ns")
      .length(8)
      .readOnly()
      .uncached()
      .visibility("Expert")
      .computed([this](std::size_t) { return static_cast<std::int64_t>(latched_); });
  map.command("TimestampLatch", kDeviceCategory, "Takes the present time stamp into Timestamp")
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        latched_ = core_.ticks(Clock::now());
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
  map.command("TimestampReset", kDeviceCategory, "Lets time stamps count from 0")
      .visibility("Expert")
      .onWrite([this](std::size_t) {
        core_.resetTicks();
        latched_ = 0;
        return kOk;
      })
      .computed([](std::size_t) { return 0; });
}

void DeviceControl::declareTemperature() {
  FeatureMap& map = core_.map;
  map.enumeration("DeviceTemperatureSelector", kDeviceCategory, "Where the temperature is taken")
      .entry("Sensor", 0)
      .entry("Mainboard", 1)
      .visibility("Expert");
  map.floating("DeviceTemperature", kDeviceCategory, "Temperature, which moves by itself")
      .unit("C")
      .readOnly()
      .polled(1000)
      .selectedBy({"DeviceTemperatureSelector"})
      .notation("Fixed", 2)
      .visibility("Expert")
      .computedFloat([this](std::size_t place) { return temperature(place); });
  temperatureLimit_ = &map.floating("DeviceTemperatureLimit", kDeviceCategory,
                                    "Sensor temperature at which the event DeviceTemperature is sent")
                           .unit("C")
                           .min("0")
                           .max("100")
                           .value(80.0)
                           .notation("Fixed", 1)
                           .vendorSpecific()
                           .visibility("Expert");
  temperatureLimit_->onWrite([this](std::size_t) {
    hot_ = false;
    if (!watching_) {
      watching_ = true;
      watchTemperature();
    }
    return kOk;
  });
}

// Warms up over half a minute and then swings by two degrees.
double DeviceControl::temperature(std::size_t place) const {
  const double seconds = static_cast<double>(core_.ticks(Clock::now())) * 1e-9;
  const double base = place == 0 ? 38 : 33;
  return base + 6 * (1 - std::exp(-seconds / 10)) + 2 * std::sin(seconds * 2 * std::numbers::pi / 20);
}

void DeviceControl::watchTemperature() {
  const double now = temperature(0);
  if (now >= temperatureLimit_->floating() && !hot_) {
    hooks_.overheat(now);
  }
  hot_ = now >= temperatureLimit_->floating();
  core_.schedule(Clock::now() + std::chrono::milliseconds(100), [this] { watchTemperature(); });
}

void DeviceControl::declareLink() {
  FeatureMap& map = core_.map;
  map.floating("DeviceLinkHeartbeatTimeout", kDeviceCategory,
               "Silence after which the camera takes the control link for lost")
      .unit("us")
      .min("500000")
      .max("60000000")
      .value(3000000.0)
      .visibility("Guru")
      .notation("Fixed", 0);
  map.integer("DeviceLinkSpeed", kDeviceCategory, "Speed of the link")
      .unit("Bps")
      .length(8)
      .readOnly()
      .value(1250000000)
      .visibility("Expert");
  map.integer("DeviceStreamChannelCount", kDeviceCategory, "Number of streams")
      .readOnly()
      .value(static_cast<std::int64_t>(core_.model.streams))
      .visibility("Expert");
  map.enumeration("DeviceRegistersEndianness", kDeviceCategory, "Byte order of the registers")
      .entry("Little", 0)
      .entry("Big", 1)
      .readOnly()
      .value(core_.model.bigEndian ? 1 : 0)
      .visibility("Guru");
}

void DeviceControl::declareRegisters() {
  FeatureMap& map = core_.map;
  const char* const category = "DeviceMaintenance";
  map.category(category, "Raw registers for service", kDeviceCategory);
  const auto raw = [&](const char* name, const char* toolTip, std::uint64_t address) -> Feature& {
    return map.integer(name, category, toolTip)
        .at(address)
        .representation("HexNumber")
        .visibility("Guru")
        .vendorSpecific()
        .uncached();
  };
  raw("MaintenanceMode", "Not 0 while the camera is in maintenance mode", kMaintenance);
  raw("ScratchRegister", "Keeps what is written", kScratch);
  Feature& writeAddress = raw("IndirectWriteAddress", "Where IndirectWriteValue writes to", kIndirectWriteAddress);
  Feature& writeValue = raw("IndirectWriteValue", "Writes 32 bits to IndirectWriteAddress", kIndirectWriteValue);
  writeValue.onWrite([this, &writeAddress, &writeValue](std::size_t) {
    const auto target = static_cast<std::uint64_t>(writeAddress.integer());
    if (overlap(target, kIndirectWriteValue)) {
      return GC_ERROR{GC_ERR_INVALID_ADDRESS};
    }
    std::array<std::byte, 4> bytes{};
    core_.map.putInteger(bytes, static_cast<std::uint64_t>(writeValue.integer()));
    return core_.map.write(target, bytes);
  });
  Feature& readAddress = raw("IndirectReadAddress", "Where IndirectReadValue reads from", kIndirectReadAddress);
  // An address that leads nowhere reads as all ones, as an open bus does.
  raw("IndirectReadValue", "The 32 bits at IndirectReadAddress", kIndirectReadValue)
      .readOnly()
      .dependsOn({"IndirectReadAddress"})
      .computed([this, &readAddress](std::size_t) -> std::int64_t {
        const auto target = static_cast<std::uint64_t>(readAddress.integer());
        std::array<std::byte, 4> bytes{};
        if (overlap(target, kIndirectReadValue) || core_.map.read(target, bytes) != kOk) {
          return 0xFFFFFFFF;
        }
        return static_cast<std::int64_t>(core_.map.getInteger(bytes));
      });
}

}  // namespace vcam
