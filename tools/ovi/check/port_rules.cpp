// Rules of ports, registers and descriptions.
#include <map>

#include "check/groups.h"
#include "check/info.h"
#include "check/modules.h"
#include "check/port_map.h"

namespace tool::check {

namespace {

// The endianness and the access that exactly one value must tell.
void judgePort(Checker& check, const Infos& infos, const std::string& name) {
  const bool little = infos.at(PORT_INFO_LITTLE_ENDIAN).number() != 0;
  const bool big = infos.at(PORT_INFO_BIG_ENDIAN).number() != 0;
  if (little == big)
    check.fault(name + " is " + (little ? "both" : "neither") + " little and big endian");
}

// Every readable node of the description is read once.
void readAll(Checker& check, const PortMap& map, const std::string& name) {
  GenApi::NodeList_t nodes;
  map.map().GetNodes(nodes);
  std::size_t read = 0;
  std::size_t failed = 0;
  std::string first;
  for (GenApi::INode* node : nodes) {
    try {
      if (!GenApi::IsReadable(node->GetAccessMode()))
        continue;
      if (auto* const value = dynamic_cast<GenApi::IValue*>(node);
          value != nullptr && node->GetPrincipalInterfaceType() != GenApi::intfICategory)
        value->ToString(false, true);
      ++read;
    } catch (const GenICam::GenericException& error) {
      if (failed++ == 0)
        first = std::string(node->GetName().c_str()) + ": " + error.GetDescription();
    }
  }
  if (failed > 0)
    check.fault(std::to_string(failed) + " of " + std::to_string(read + failed) + " readable nodes of " + name +
                " cannot be read, the first is " + first);
  check.seen(name + ": " + std::to_string(nodes.size()) + " nodes");
}

void checkStacked(Checker& check, const PortMap& map, PORT_HANDLE port) {
  const ProducerFunctions& gentl = check.gentl();
  GenApi::NodeList_t nodes;
  map.map().GetNodes(nodes);
  for (GenApi::INode* node : nodes) {
    auto* const bytes = dynamic_cast<GenApi::IRegister*>(node);
    if (bytes == nullptr || node->GetAccessMode() != GenApi::RW || bytes->GetLength() > 8)
      continue;
    const auto address = static_cast<std::uint64_t>(bytes->GetAddress());
    auto length = static_cast<std::size_t>(bytes->GetLength());
    std::uint64_t single = 0;
    std::uint64_t stacked = 0;
    const std::size_t wanted = length;
    check.need(gentl.GCReadPort, port, address, static_cast<void*>(&single), &length);
    if (length != wanted)
      throw Broken("GCReadPort moved " + std::to_string(length) + " of " + std::to_string(wanted) +
                   " bytes and reported success");
    PORT_REGISTER_STACK_ENTRY entry{address, &stacked, wanted};
    std::size_t count = 1;
    check.need(gentl.GCReadPortStacked, port, &entry, &count);
    if (count != 1 || single != stacked)
      check.fault("GCReadPortStacked read other bytes than GCReadPort at the same address");
    check.need(gentl.GCWritePortStacked, port, &entry, &count);
    length = wanted;
    check.need(gentl.GCWritePort, port, address, static_cast<const void*>(&single), &length);
    check.seen(node->GetName().c_str());
    return;
  }
  check.warn("the device has no register that can be read and written");
}

}  // namespace

void checkPorts(Checker& check) {
  const ProducerFunctions& gentl = check.gentl();
  std::unique_ptr<Modules> modules;
  if (!check.rule("Modules open down to a stream", [&] { modules = std::make_unique<Modules>(check, Depth::kStream); }))
    return;
  struct Port {
    PORT_HANDLE handle;
    const char* module;
  };
  const std::vector<Port> ports = {{modules->tl, GENTL_MODULE_SYSTEM},
                                   {modules->iface, GENTL_MODULE_INTERFACE},
                                   {modules->device, GENTL_MODULE_DEVICE},
                                   {modules->stream, GENTL_MODULE_DATA_STREAM},
                                   {modules->remote, GENTL_MODULE_REMOTE_DEVICE}};
  for (const Port& port : ports) {
    const std::string name = port.module;
    check.rule("The port of " + name + " is described by the rules of type, size and terminator", [&] {
      const Infos infos = askAll(
          check, "GCGetPortInfo",
          [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
            return gentl.GCGetPortInfo(port.handle, command, type, buffer, size);
          },
          kPortInfos);
      judgePort(check, infos, name);
      if (infos.at(PORT_INFO_MODULE).exists() && infos.at(PORT_INFO_MODULE).text() != name)
        check.fault("PORT_INFO_MODULE is \"" + infos.at(PORT_INFO_MODULE).text() + "\"");
      check.seen("port name " + infos.at(PORT_INFO_PORTNAME).text());
    });
    check.rule("The description of " + name + " has addresses by the rules", [&] {
      std::uint32_t count = 0;
      if (gentl.GCGetNumPortURLs.exists())
        check.need(gentl.GCGetNumPortURLs, port.handle, &count);
      for (std::uint32_t i = 0; i < count; ++i)
        check.seen(askAll(
                       check, "GCGetPortURLInfo",
                       [&](std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size) {
                         return gentl.GCGetPortURLInfo(port.handle, i, command, type, buffer, size);
                       },
                       kUrlInfos)
                       .at(URL_INFO_URL)
                       .text());
      std::size_t size = 0;
      if (const GC_ERROR code = gentl.GCGetPortURL(port.handle, nullptr, &size); code != GC_ERR_SUCCESS)
        check.fault("GCGetPortURL returned " + codeText(code));
    });
    check.rule("The description of " + name + " is read and every readable node of it, too", [&] {
      const PortMap map(check, port.handle);
      readAll(check, map, name);
      check.seen(std::to_string(map.bytes()) + " bytes");
    });
  }
  check.rule("Stacked reads and writes move the same bytes as single ones", [&] {
    const PortMap map(check, modules->remote);
    checkStacked(check, map, modules->remote);
  });
}

}  // namespace tool::check
