// Which camera file a host file is meant for, told by its first bytes.
#include <array>
#include <string>
#include <string_view>

#include "core/bounded_copy.h"
#include "core/global_state.h"
#include "core/log.h"
#include "file_selector.h"
#include "filetransfer/file_transfer.h"
#include "gentl/device.h"
#include "gentl/module_lookup.h"
#include "platform/files.h"

namespace OVI {
namespace {

constexpr const char* kSite = "OVI::oviGetUpdateFileType";

/** A row of the table: the leading bytes, the type, and for some the type of cameras that do not know the first. */
struct LeadingBytes {
  std::string_view bytes;
  const char* type;
  const char* otherType = nullptr;
  const char* otherNote = nullptr;
};
constexpr std::array kLeadingBytes = {
    LeadingBytes{"APPL", "Application"},
    LeadingBytes{"FPGA", "Bitstream"},
    LeadingBytes{"HWCA", "HWCalibFile"},
    LeadingBytes{"BREF", "BrefLut1", "DSNULUT1", "USING File Selector 'DSNULUT1' for >= Zet 1.0"},
    LeadingBytes{"KM", "User Defined"},
    LeadingBytes{"SHC", "ShcLut1", "PRNULUT1", "USING File Selector 'PRNULUT1' for >= Zet 1.0"},
    LeadingBytes{"UserSetV", "Default"},
    LeadingBytes{"UserSet", "UserSet1", "UserData", "USING File Selector 'UserDataSet' for >= Zet 1.0"},
    LeadingBytes{"DD", "GammaLut", "GammaLUT", "USING File Selector 'GammaLUT' "},
    LeadingBytes{"DevicePackage", "PackageDescriptionFile"},
    LeadingBytes{"SENS", "SensorFile"},
    LeadingBytes{"XML", "Xml"},
};

/** What is recognised further inside a file. A file must reach to `atLeast` bytes. */
struct InnerBytes {
  std::size_t offset;
  std::string_view bytes;
  std::size_t atLeast;
  const char* type;
};
constexpr InnerBytes kXmlBehindByteOrderMark = {3, "<?xml", 8, "Xml"};
constexpr InnerBytes kFirmware = {32, "V\xEF\xEF\xEF", 37, "Firmware"};
constexpr InnerBytes kSensorFile = {12, "\x60\x82", 14, "SensorFile"};
constexpr std::size_t kBytesThatTell = 64;

bool matches(const InnerBytes& inner, std::string_view start) {
  return start.size() >= inner.atLeast && start.substr(inner.offset).starts_with(inner.bytes);
}

const char* typeOf(std::uint64_t device, std::string_view start) {
  for (const LeadingBytes& row : kLeadingBytes) {
    if (!start.starts_with(row.bytes))
      continue;
    if (row.otherType == nullptr || hasFileSelector(device, row.type))
      return row.type;
    OVI_LOG_DEBUG(kSite) << row.otherNote;
    return row.otherType;
  }
  for (const InnerBytes* const inner : {&kXmlBehindByteOrderMark, &kFirmware}) {
    if (matches(*inner, start))
      return inner->type;
  }
  return nullptr;
}

}  // namespace

oviErr oviGetUpdateFileType(std::uint64_t deviceHandle, const char* filePath, char* type, std::uint64_t typeSize) {
  if (!isInitialized())
    return OVI_ERR_NOT_INITIALIZED;
  if (filePath == nullptr || type == nullptr || typeSize == 0)
    return OVI_ERR_INVALID_PARAMETER;
  std::shared_ptr<GenTLCpp::Device> device;
  if (const oviErr code = lookupModule(deviceHandle, device); code != OVI_SUCCESS) {
    OVI_LOG_ERROR(kSite) << "Device not found!";
    return code;
  }
  OVI_LOG_DEBUG(kSite) << "Start of oviGetFileType(...), fileName: " << filePath;
  std::vector<std::uint8_t> bytes;
  if (const std::string error = platform::readFileStart(filePath, kBytesThatTell, bytes); !error.empty())
    OVI_LOG_ERROR(kSite) << "Cannot read the file " << filePath << ": " << error;
  const std::string_view start(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  OVI_LOG_DEBUG(kSite) << "First 4 bytes: " << start.substr(0, 4);
  const char* found = matches(kSensorFile, start) ? kSensorFile.type : nullptr;
  if (const char* const leading = typeOf(deviceHandle, start); found == nullptr)
    found = leading;
  OVI_LOG_DEBUG(kSite) << "Name of file type: " << (found != nullptr ? found : "");
  if (found != nullptr)
    boundedCopy(type, typeSize, found);
  return OVI_SUCCESS;
}

}  // namespace OVI
