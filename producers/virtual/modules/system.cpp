// The system's infos, its interface list and its registers.
#include "modules/system.h"

#include <algorithm>

#include "modules/interface.h"
#include "modules/tl_types.h"

namespace vcam {

namespace {
constexpr std::uint64_t kInterfaceListChanged = 0x9001;
}

System::System(Session& session)
    : Module(kSystem),
      session_(session),
      features_({"VirtualCameraSystem", "TLPort", "System module of the virtual camera producer"}),
      children_(std::make_unique<Children<Interface>>()) {
  describe();
}

System::~System() = default;

Info System::info(const ProducerIdentity& producer, TL_INFO_CMD command) {
  switch (command) {
    case TL_INFO_ID:
      return Info::text(producer.id);
    case TL_INFO_VENDOR:
      return Info::text(producer.vendor);
    case TL_INFO_MODEL:
      return Info::text(producer.model);
    case TL_INFO_VERSION:
      return Info::text(producer.version);
    case TL_INFO_TLTYPE:
      return Info::text(producer.tlType);
    case TL_INFO_NAME:
      return Info::text(producer.name);
    case TL_INFO_PATHNAME:
      return Info::text(producer.pathName);
    case TL_INFO_DISPLAYNAME:
      return Info::text(producer.displayName);
    case TL_INFO_CHAR_ENCODING:
      return Info::int32(TL_CHAR_ENCODING_UTF8);
    case TL_INFO_GENTL_VER_MAJOR:
      return Info::uint32(1);
    case TL_INFO_GENTL_VER_MINOR:
      return Info::uint32(5);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a system has no info ", command);
  }
}

Info System::interfaceInfo(const InterfaceEntry& entry, INTERFACE_INFO_CMD command) {
  switch (command) {
    case INTERFACE_INFO_ID:
      return Info::text(entry.id);
    case INTERFACE_INFO_DISPLAYNAME:
      return Info::text(entry.displayName);
    case INTERFACE_INFO_TLTYPE:
      return Info::text(entry.tlType);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "an interface has no info ", command);
  }
}

bool System::updateList(std::uint64_t timeoutMs) {
  update_.search(session_.options.interfaceUpdateMs, timeoutMs);
  bool changed = false;
  {
    const std::lock_guard lock(listMutex_);
    changed = !std::exchange(listed_, true);
  }
  if (changed) {
    fireModuleEvent(kInterfaceListChanged, {});
  }
  return changed;
}

std::uint32_t System::interfaceCount() {
  const std::lock_guard lock(listMutex_);
  return listed_ ? static_cast<std::uint32_t>(session_.interfaces.size()) : 0;
}

std::string System::interfaceId(std::uint32_t index) {
  const std::uint32_t count = interfaceCount();
  if (index >= count) {
    fail(GC_ERR_INVALID_INDEX, "interface ", index, " of ", count);
  }
  return session_.interfaces[index].id;
}

const InterfaceEntry& System::find(const std::string& id) const {
  const auto found =
      std::ranges::find_if(session_.interfaces, [&](const InterfaceEntry& entry) { return entry.id == id; });
  if (found == session_.interfaces.end()) {
    fail(GC_ERR_INVALID_ID, "no interface has the ID \"", id, "\"");
  }
  return *found;
}

Info System::interfaceInfo(const std::string& id, INTERFACE_INFO_CMD command) {
  return interfaceInfo(find(id), command);
}

void* System::openInterface(const std::string& id) {
  const InterfaceEntry& entry = find(id);
  return children_->open([&](const Interface& open) { return &open.entry() == &entry; },
                         [&] { return std::make_unique<Interface>(*this, entry); }, "the interface");
}

std::unique_ptr<Module> System::take(const Interface& child) {
  return children_->take(child);
}

void System::cableChanged(const CameraSlot& slot, bool present) {
  children_->forEach([&](Interface& open) { open.cableChanged(slot, present); });
}

void System::closeChildren() {
  children_->closeAll();
}

std::unique_ptr<Module> System::detach() {
  return Library::instance().takeSystem();
}

PortIdentity System::identity() {
  const ProducerIdentity& me = session_.identity;
  return {me.id, me.vendor, me.model, me.version, me.tlType, GENTL_MODULE_SYSTEM, "TLPort"};
}

const InterfaceEntry& System::selectedInterface() {
  const std::lock_guard lock(listMutex_);
  if (!listed_) {
    fail(GC_ERR_NOT_AVAILABLE, "the system lists no interface before the first update");
  }
  return session_.interfaces[selected_];
}

void System::describe() {
  const ProducerIdentity& me = session_.identity;
  ModuleFeatures& f = features_;
  f.category("SystemInformation", "Which producer this is");
  f.text({"TLID", "Unique ID of the producer"}, [&] { return me.id; });
  f.text({"TLVendorName", "Vendor of the producer"}, [&] { return me.vendor; });
  f.text({"TLModelName", "Name of the producer"}, [&] { return me.model; });
  f.text({"TLVersion", "Version of the producer"}, [&] { return me.version; });
  f.text({"TLFileName", "File name of the producer", "Expert"}, [&] { return me.name; });
  f.text({"TLDisplayName", "Name of the producer for people"}, [&] { return me.displayName; });
  f.text({"TLPath", "Full path of the producer", "Expert"}, [&] { return me.pathName; });
  f.enumeration({"TLType", "Transport technology"}, tlTypeEntries(true), [&] { return tlTypeValue(me.tlType); });
  f.integer({"GenTLVersionMajor", "Major version of the GenTL interface", "Expert"}, [] { return 1; });
  f.integer({"GenTLVersionMinor", "Minor version of the GenTL interface", "Expert"}, [] { return 5; });
  f.integer({"GenTLSFNCVersionMajor", "Major version of the naming convention", "Expert"}, [] { return 1; });
  f.integer({"GenTLSFNCVersionMinor", "Minor version of the naming convention", "Expert"}, [] { return 2; });
  f.category("InterfaceEnumeration", "The interfaces of the producer");
  f.command({"InterfaceUpdateList", "Searches for interfaces", "Expert"}, [this] { updateList(updateTimeoutMs_); });
  describeUpdateTimeout(f, "InterfaceUpdateTimeout", updateTimeoutMs_);
  f.integer(
      {"InterfaceSelector", "The interface that the following features are about", "Expert"},
      [this] {
        const std::lock_guard lock(listMutex_);
        return selected_;
      },
      [this](std::uint64_t value) {
        const std::uint32_t count = interfaceCount();
        if (value >= count) {
          fail(GC_ERR_INVALID_VALUE, "InterfaceSelector ", value, " of ", count);
        }
        const std::lock_guard lock(listMutex_);
        selected_ = static_cast<std::uint32_t>(value);
      },
      {0, [this] { return std::max(interfaceCount(), 1U) - 1; }});
  f.text({"InterfaceID", "ID of the selected interface", "Expert"}, [this] { return selectedInterface().id; });
  f.text({"InterfaceDisplayName", "Name of the selected interface for people", "Expert"},
         [this] { return selectedInterface().displayName; });
  f.select("InterfaceSelector", {"InterfaceID", "InterfaceDisplayName"});
  if (session_.options.variant == Variant::RealTime) {
    f.category("RealTimeControl", "The real-time part of the host");
    f.boolean(
        {"EnableKitharaIncreasedInterruptInterval", "Lets interrupts of the network card come less often"},
        [this] { return longInterrupts_ ? 1 : 0; }, [this](std::uint64_t value) { longInterrupts_ = value != 0; });
  }
  f.events({{"InterfaceListChanged", kInterfaceListChanged, "The list of interfaces has changed", {}}});
  f.finish();
}

}  // namespace vcam
