// What is known about a device: the record that applications get.
#include "device_record.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "core/bounded_copy.h"
#include "core/log.h"
#include "gentl/guard.h"
#include "gentl/producer.h"
#include "gentl/transport_layer.h"

namespace OVI {

namespace {

constexpr const char* kRecordSite = "OVI::TLDiscovery::getDeviceList";

constexpr std::array<std::string_view, 9> kVendors = {
    "Intel", "Kestrova", "Allied", "SVS", "Tattile", "TATTILE", "Mikrotron", "Net", "Machine Vision Games Ltd."};

// One field from one info; the query is its text for the log.
template<std::size_t Size, class Ask>
void fillField(char (&field)[Size], const std::string& deviceID, const char* query, Ask&& ask) {
  guarded(
      kRecordSite, Severity::Debug,
      [&](LogRecord& record) { record << query << " of device [" << deviceID << "] is not available: "; },
      [&] {
        boundedCopy(&field[0], Size, ask());
        return OVI_SUCCESS;
      });
}

std::uint32_t accessStatus(const GenTLCpp::TLInterface& tlInterface, const std::string& deviceID) {
  std::int32_t status = 0;
  guarded(
      kRecordSite, Severity::Debug,
      [&](LogRecord& record) { record << "The access status of device [" << deviceID << "] is not available: "; },
      [&] {
        status = tlInterface.getDeviceAccessStatus(deviceID);
        return OVI_SUCCESS;
      });
  constexpr std::int32_t kLast = 5;
  return status >= 1 && status <= kLast ? static_cast<std::uint32_t>(status) : 0;
}

}  // namespace

void fillDeviceRecord(oviDeviceInfo& record, const GenTLCpp::TLInterface& tlInterface, const std::string& interfaceID,
                      const std::string& deviceID) {
  record = {};
  boundedCopy(record.deviceID, sizeof(record.deviceID), deviceID);
  boundedCopy(record.interfaceID, sizeof(record.interfaceID), interfaceID);

  const auto device = [&](DEVICE_INFO_CMD cmd) {
    return [&tlInterface, &deviceID, cmd] { return tlInterface.getDeviceInfoString(deviceID, cmd); };
  };
  fillField(record.displayName, deviceID, "The display name", device(DEVICE_INFO_DISPLAYNAME));
  fillField(record.model, deviceID, "The model", device(DEVICE_INFO_MODEL));
  fillField(record.vendor, deviceID, "The vendor", device(DEVICE_INFO_VENDOR));
  fillField(record.serialNumber, deviceID, "The serial number", device(DEVICE_INFO_SERIAL_NUMBER));
  fillField(record.userDefinedName, deviceID, "The user-defined name", device(DEVICE_INFO_USER_DEFINED_NAME));
  fillField(record.version, deviceID, "The version", device(DEVICE_INFO_VERSION));
  fillField(record.tlType, deviceID, "The transport layer type", device(DEVICE_INFO_TLTYPE));

  const GenTLCpp::TransportLayer& transportLayer = *tlInterface.getParent();
  const auto fromInterface = [&](INTERFACE_INFO_CMD cmd) {
    return [&tlInterface, &transportLayer, &interfaceID, cmd] {
      try {
        return transportLayer.getInterfaceInfoString(interfaceID, cmd);
      } catch (const GenTLCpp::GenTLException&) {
        return tlInterface.getInfoString(cmd);  // Some producers list an interface no more once it is open.
      }
    };
  };
  fillField(record.interfaceDisplayName, deviceID, "The interface's display name",
            fromInterface(INTERFACE_INFO_DISPLAYNAME));
  fillField(record.interfaceTLType, deviceID, "The interface's type", fromInterface(INTERFACE_INFO_TLTYPE));

  const GenTLCpp::GenTLProducer& producer = *transportLayer.getProducer();
  fillField(record.tlDisplayName, deviceID, "The producer's display name", [&] { return producer.getDisplayName(); });
  fillField(record.tlPathName, deviceID, "The producer's path name", [&] { return producer.getPathName(); });
  fillField(record.tlID, deviceID, "The producer's ID", [&] { return producer.getID(); });
  record.accessStatus = accessStatus(tlInterface, deviceID);
}

bool isSupportedDevice(const oviDeviceInfo& record) noexcept {
  const std::string_view vendor(record.vendor);
  return record.model[0] != 0 && std::ranges::any_of(kVendors, [&](std::string_view served) {
           return vendor.find(served) != std::string_view::npos;
         });
}

}  // namespace OVI
