// A producer's modules, opened as far as a group of rules needs them and closed at its end.
#include "check/modules.h"

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <thread>

#include "check/port_description.h"
#include "hex.h"
#include "platform/console.h"
#include "text.h"

namespace tool::check {

namespace {

// True when the device is the one that the user means.
bool isMeant(const Checker& check, const std::string& id, const Query& query) {
  if (check.camera().empty()) {
    const Info status = ask(query, DEVICE_INFO_ACCESS_STATUS);
    return !status.exists() || status.number() == DEVICE_ACCESS_STATUS_READWRITE ||
           status.number() == DEVICE_ACCESS_STATUS_UNKNOWN;
  }
  const auto is = [&](std::int32_t command) {
    const Info info = ask(query, command);
    return info.exists() && equalsIgnoringCase(info.text(), check.camera());
  };
  return id == check.camera() || is(DEVICE_INFO_SERIAL_NUMBER) || is(DEVICE_INFO_USER_DEFINED_NAME) ||
         is(DEVICE_INFO_MODEL);
}

class ProducerPort : public GenApi::IPort {
 public:
  ProducerPort(const ProducerFunctions& gentl, PORT_HANDLE port) : gentl_(gentl), port_(port) {}

  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }
  void Read(void* buffer, std::int64_t address, std::int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    const GC_ERROR code = gentl_.GCReadPort(port_, static_cast<std::uint64_t>(address), buffer, &size);
    judge("GCReadPort", code, size, length, address);
  }
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override {
    auto size = static_cast<std::size_t>(length);
    const GC_ERROR code = gentl_.GCWritePort(port_, static_cast<std::uint64_t>(address), buffer, &size);
    judge("GCWritePort", code, size, length, address);
  }

 private:
  static void judge(const char* function, GC_ERROR code, std::size_t moved, std::int64_t length, std::int64_t address) {
    const auto at = static_cast<std::uint64_t>(address);
    if (code != GC_ERR_SUCCESS)
      throw ACCESS_EXCEPTION("%s of %" PRId64 " bytes at 0x%" PRIx64 " returned %s", function, length, at,
                             codeText(code).c_str());
    if (moved != static_cast<std::size_t>(length))
      throw RUNTIME_EXCEPTION("%s at 0x%" PRIx64 " moved %zu of %" PRId64 " bytes and reported success", function, at,
                              moved, length);
  }

  const ProducerFunctions& gentl_;
  PORT_HANDLE port_;
};

}  // namespace

Modules::Modules(Checker& check, Depth depth) : gentl_(check.gentl()) {
  try {
    open(check, depth);
  } catch (...) {
    close();
    throw;
  }
}

Modules::Modules(Checker& check, const DeviceAddress& address, Depth depth) : gentl_(check.gentl()) {
  try {
    openToLook(check, address, depth);
  } catch (...) {
    close();
    throw;
  }
}

Modules::~Modules() {
  close();
}

void Modules::open(Checker& check, Depth depth) {
  check.need(gentl_.GCInitLib);
  initialized_ = true;
  if (depth == Depth::kLibrary)
    return;
  check.need(gentl_.TLOpen, &tl);
  if (depth == Depth::kSystem)
    return;
  if (depth == Depth::kInterface) {
    const std::vector<std::string> ids = interfaceIds(check, tl);
    if (ids.empty())
      throw Broken("there is no interface");
    interfaceId = ids.front();
    check.need(gentl_.TLOpenInterface, tl, interfaceId.c_str(), &iface);
    return;
  }
  openDevice(check);
  openBelowDevice(check, depth);
}

void Modules::openToLook(Checker& check, const DeviceAddress& address, Depth depth) {
  interfaceId = address.interface;
  deviceId = address.device;
  check.need(gentl_.GCInitLib);
  initialized_ = true;
  check.need(gentl_.TLOpen, &tl);
  interfaceIds(check, tl);  // The producer knows its interfaces only after it was asked for them.
  check.need(gentl_.TLOpenInterface, tl, interfaceId.c_str(), &iface);
  deviceIds(check, iface);
  GC_ERROR code = GC_ERR_ERROR;
  for (const DEVICE_ACCESS_FLAGS access : {DEVICE_ACCESS_READONLY, DEVICE_ACCESS_CONTROL, DEVICE_ACCESS_EXCLUSIVE}) {
    code = gentl_.IFOpenDevice(iface, deviceId.c_str(), access, &device);
    if (code == GC_ERR_SUCCESS)
      return openBelowDevice(check, depth);
  }
  throw Broken("IFOpenDevice returned " + codeText(code));
}

void Modules::openBelowDevice(Checker& check, Depth depth) {
  check.need(gentl_.DevGetPort, device, &remote);
  if (depth == Depth::kDevice)
    return;
  const std::vector<std::string> streams = streamIds(check, device);
  if (streams.empty())
    throw Broken("the device has no stream");
  streamId = streams.front();
  check.need(gentl_.DevOpenDataStream, device, streamId.c_str(), &stream);
}

void Modules::openDevice(Checker& check) {
  for (const std::string& id : interfaceIds(check, tl))
    if (openDeviceOf(check, id))
      return;
  throw Broken(check.camera().empty() ? "no interface has a device that can be opened"
                                      : "there is no device " + check.camera());
}

bool Modules::openDeviceOf(Checker& check, const std::string& interface) {
  check.need(gentl_.TLOpenInterface, tl, interface.c_str(), &iface);
  interfaceId = interface;
  for (const std::string& id : deviceIds(check, iface)) {
    if (!isMeant(check, id, [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
          return gentl_.IFGetDeviceInfo(iface, id.c_str(), command, type, buffer, size);
        }))
      continue;
    check.need(gentl_.IFOpenDevice, iface, id.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device);
    deviceId = id;
    return true;
  }
  check.need(gentl_.IFClose, iface);
  iface = nullptr;
  return false;
}

void Modules::close() {
  if (stream != nullptr)
    gentl_.DSClose(stream);
  if (device != nullptr)
    gentl_.DevClose(device);
  if (iface != nullptr)
    gentl_.IFClose(iface);
  if (tl != nullptr)
    gentl_.TLClose(tl);
  if (initialized_)
    gentl_.GCCloseLib();
  stream = device = iface = tl = nullptr;
  initialized_ = false;
}

std::vector<std::string> interfaceIds(Checker& check, TL_HANDLE tl) {
  const ProducerFunctions& gentl = check.gentl();
  bool8_t changed = 0;
  check.need(gentl.TLUpdateInterfaceList, tl, &changed, kUpdateTime);
  std::uint32_t count = 0;
  check.need(gentl.TLGetNumInterfaces, tl, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("TLGetInterfaceID(" + std::to_string(i) + ")",
                          [&](char* text, std::size_t* size) { return gentl.TLGetInterfaceID(tl, i, text, size); }));
  return ids;
}

std::vector<std::string> deviceIds(Checker& check, IF_HANDLE iface) {
  const ProducerFunctions& gentl = check.gentl();
  bool8_t changed = 0;
  check.need(gentl.IFUpdateDeviceList, iface, &changed, kUpdateTime);
  std::uint32_t count = 0;
  check.need(gentl.IFGetNumDevices, iface, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("IFGetDeviceID(" + std::to_string(i) + ")",
                          [&](char* text, std::size_t* size) { return gentl.IFGetDeviceID(iface, i, text, size); }));
  return ids;
}

std::vector<std::string> streamIds(Checker& check, DEV_HANDLE device) {
  const ProducerFunctions& gentl = check.gentl();
  std::uint32_t count = 0;
  check.need(gentl.DevGetNumDataStreams, device, &count);
  std::vector<std::string> ids;
  for (std::uint32_t i = 0; i < count; ++i)
    ids.push_back(askText("DevGetDataStreamID(" + std::to_string(i) + ")", [&](char* text, std::size_t* size) {
      return gentl.DevGetDataStreamID(device, i, text, size);
    }));
  return ids;
}

PortMap::PortMap(Checker& check, PORT_HANDLE port) : port_(std::make_unique<ProducerPort>(check.gentl(), port)) {
  const std::string content = descriptionOf(check, port);
  bytes_ = content.size();
  const Info portName =
      ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
              std::size_t* size) { return check.gentl().GCGetPortInfo(port, command, type, buffer, size); },
          PORT_INFO_PORTNAME);
  GenApi::CNodeMapFactory factory(content.starts_with("PK") ? GenApi::ContentType_ZippedXml : GenApi::ContentType_Xml,
                                  content.data(), content.size());
  map_ = factory.CreateNodeMap();
  const std::string name = portName.exists() ? portName.text() : "Device";
  if (!map_->Connect(port_.get(), name.c_str()))
    throw Broken("the description has no Port \"" + name + "\", which PORT_INFO_PORTNAME names");
}

PortMap::~PortMap() {
  if (auto* const end = dynamic_cast<GenApi::IDestroy*>(map_))
    end->Destroy();
}

bool PortMap::has(const char* node) const {
  return GenApi::IsImplemented(map_->GetNode(node));
}

void PortMap::execute(Checker& check, const char* command) {
  constexpr std::chrono::seconds kLongest{2};
  const GenApi::CCommandPtr node = map_->GetNode(command);
  if (!node.IsValid())
    throw Broken(std::string("the device has no command ") + command);
  node->Execute();
  const auto start = std::chrono::steady_clock::now();
  unsigned polls = 1;
  for (; !node->IsDone(); ++polls) {
    if (std::chrono::steady_clock::now() - start > kLongest)
      throw Broken(std::string(command) + " is not done after " + std::to_string(polls) + " polls in 2 s");
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  if (polls > 1)
    check.warn(std::string("the command ") + command + " was busy: done only at poll " + std::to_string(polls));
}

std::optional<std::int64_t> PortMap::integer(const char* node) const {
  const GenApi::CIntegerPtr integer = map_->GetNode(node);
  if (!GenApi::IsReadable(integer))
    return std::nullopt;
  return integer->GetValue();
}

void PortMap::lock(bool on) {
  const GenApi::CIntegerPtr locked = map_->GetNode("TLParamsLocked");
  if (GenApi::IsWritable(locked))
    locked->SetValue(on ? 1 : 0);
}

void PortMap::assign(const std::string& assignment) {
  const std::size_t equals = assignment.find('=');
  const std::string value = assignment.substr(equals + 1);
  const auto need = [&](const auto& parsed) {
    if (!parsed)
      throw Broken(assignment + ": the feature has no such value");
    return *parsed;
  };
  GenApi::INode* const node = map_->GetNode(assignment.substr(0, equals).c_str());
  try {
    if (const GenApi::CCommandPtr command = node; command.IsValid()) {
      command->Execute();
    } else if (const GenApi::CBooleanPtr boolean = node; boolean.IsValid()) {
      boolean->SetValue(need(booleanFrom(value)));
    } else if (node != nullptr && node->GetPrincipalInterfaceType() == GenApi::intfIRegister) {
      const std::vector<std::uint8_t> data = need(bytesFromHex(value));
      GenApi::CRegisterPtr(node)->Set(data.data(), static_cast<std::int64_t>(data.size()));
    } else {
      GenApi::CValuePtr(node)->FromString(toLibraryText(value).c_str());
    }
  } catch (const GenICam::GenericException& error) {
    throw Broken(assignment + ": " + error.GetDescription());
  }
}

}  // namespace tool::check
