// The node map of a port, over the producer's own reads and writes.
#include "check/port_map.h"

#include <chrono>
#include <cinttypes>
#include <thread>

#include "check/info.h"
#include "check/port_description.h"
#include "hex.h"
#include "platform/console.h"
#include "text.h"

namespace tool::check {

namespace {

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
