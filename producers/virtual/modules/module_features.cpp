// Lays registers out one after the other and writes the description beside them.
#include "modules/module_features.h"

#include <algorithm>
#include <cstring>

#include "modules/failure.h"

namespace vcam {

namespace {

constexpr std::uint64_t kFirstRegister = 0x1000;
constexpr std::uint64_t kDescriptionAddress = 0x100000;
constexpr std::uint64_t kBlockAddress = 0x1000000;
constexpr std::size_t kNumberSize = 8;
constexpr std::size_t kTextSize = 512;

std::string prefixed(std::uint64_t address) {
  return "0x" + hexadecimal(address);
}

// What the register holds now, as its bytes.
std::string contentOf(std::size_t size, const ModuleFeatures::Number& get, const ModuleFeatures::Text& text) {
  std::string content(size, '\0');
  if (text) {
    const std::string value = text();
    std::copy_n(value.begin(), std::min(value.size(), size - 1), content.begin());
  } else if (get) {
    const std::uint64_t value = get();
    std::memcpy(content.data(), &value, std::min(size, sizeof(value)));
  }
  return content;
}

}  // namespace

ModuleFeatures::ModuleFeatures(Naming naming) : naming_(std::move(naming)), nextAddress_(kFirstRegister) {}

void ModuleFeatures::category(std::string_view name, std::string_view toolTip) {
  categories_.push_back({std::string(name), std::string(toolTip), {}});
}

std::uint64_t ModuleFeatures::place(std::size_t size, Register registers) {
  const std::uint64_t address = nextAddress_;
  registers.size = size;
  registers_.emplace(address, std::move(registers));
  nextAddress_ += size;
  return address;
}

void ModuleFeatures::element(std::string_view name, std::string_view value) {
  body_ += "  <" + std::string(name) + ">" + std::string(value) + "</" + std::string(name) + ">\n";
}

void ModuleFeatures::open(std::string_view nodeElement, const About& about) {
  categories_.back().members.emplace_back(about.name);
  body_ += "<" + std::string(nodeElement) + " Name=\"" + std::string(about.name) + "\" NameSpace=\"Standard\">\n";
  element("ToolTip", about.toolTip);
  element("Visibility", about.visibility);
}

void ModuleFeatures::number(std::string_view name, Number get, SetNumber set) {
  const std::string access = set ? (get ? "RW" : "WO") : "RO";
  const std::uint64_t address = place(kNumberSize, {0, std::move(get), std::move(set), nullptr});
  body_ += "<IntReg Name=\"" + std::string(name) + "\">\n";
  element("Address", prefixed(address));
  element("Length", std::to_string(kNumberSize));
  element("AccessMode", access);
  element("pPort", naming_.portName);
  element("Cachable", "NoCache");
  element("Sign", "Signed");
  element("Endianess", "LittleEndian");
  close("IntReg");
}

void ModuleFeatures::text(const About& about, Text get) {
  const std::uint64_t address = place(kTextSize, {0, nullptr, nullptr, std::move(get)});
  open("StringReg", about);
  element("Address", prefixed(address));
  element("Length", std::to_string(kTextSize));
  element("AccessMode", "RO");
  element("pPort", naming_.portName);
  element("Cachable", "NoCache");
  close("StringReg");
}

void ModuleFeatures::integer(const About& about, Number get, SetNumber set) {
  integer(about, std::move(get), std::move(set), {});
}

void ModuleFeatures::integer(const About& about, Number get, SetNumber set, Range range) {
  const std::string name(about.name);
  const bool writable = set != nullptr;
  const bool limited = range.maximum != nullptr;
  open("Integer", about);
  element("ImposedAccessMode", writable ? "RW" : "RO");
  element("pValue", name + "Reg");
  if (limited) {
    element("Min", std::to_string(range.minimum));
    element("pMax", name + "MaxReg");
  }
  if (!about.unit.empty()) {
    element("Unit", about.unit);
  }
  body_ += "%selected:" + name + "%";
  close("Integer");
  number(name + "Reg", std::move(get), std::move(set));
  if (limited) {
    number(name + "MaxReg", std::move(range.maximum), nullptr);
  }
}

void ModuleFeatures::boolean(const About& about, Number get, SetNumber set) {
  const std::string name(about.name);
  open("Boolean", about);
  element("ImposedAccessMode", set ? "RW" : "RO");
  element("pValue", name + "Reg");
  close("Boolean");
  number(name + "Reg", std::move(get), std::move(set));
}

void ModuleFeatures::enumeration(const About& about, const Entries& entries, Number get, SetNumber set) {
  const std::string name(about.name);
  open("Enumeration", about);
  element("ImposedAccessMode", set ? "RW" : "RO");
  for (const auto& [entry, value] : entries) {
    body_ += "  <EnumEntry Name=\"" + std::string(entry) + "\" NameSpace=\"Standard\"><Value>" + std::to_string(value) +
             "</Value></EnumEntry>\n";
  }
  element("pValue", name + "Reg");
  body_ += "%selected:" + name + "%";
  close("Enumeration");
  SetNumber checked;
  if (set) {
    checked = [entries, name, set = std::move(set)](std::uint64_t value) {
      if (std::ranges::none_of(entries, [&](const auto& entry) { return entry.second == value; })) {
        fail(GC_ERR_INVALID_VALUE, name, " has no entry with the value ", value);
      }
      set(value);
    };
  }
  number(name + "Reg", std::move(get), std::move(checked));
}

void ModuleFeatures::command(const About& about, std::function<void()> execute) {
  const std::string name(about.name);
  open("Command", about);
  element("pValue", name + "Reg");
  element("CommandValue", "1");
  close("Command");
  // Commands are done when the write returns, so a read always finds them done.
  number(
      name + "Reg", [] { return 0; },
      [execute = std::move(execute)](std::uint64_t value) {
        if (value != 0) {
          execute();
        }
      });
}

void ModuleFeatures::block(const About& about, Number length,
                           std::function<void(std::size_t, void*, std::size_t)> get) {
  const std::string name(about.name);
  blockLength_ = length;
  blockGet_ = std::move(get);
  open("Register", about);
  element("Address", prefixed(kBlockAddress));
  element("pLength", name + "LengthReg");
  element("AccessMode", "RO");
  element("pPort", naming_.portName);
  element("Cachable", "NoCache");
  close("Register");
  number(name + "LengthReg", std::move(length), nullptr);
}

void ModuleFeatures::select(std::string_view selector, std::initializer_list<std::string_view> features) {
  auto& list = selected_[std::string(selector)];
  list.insert(list.end(), features.begin(), features.end());
}

void ModuleFeatures::events(const std::vector<ModuleEvent>& list) {
  events_ = list;
  notifying_.assign(list.size(), true);
  category("EventControl", "Events that the module can send");
  Entries names;
  for (const ModuleEvent& event : list) {
    names.emplace_back(event.name, names.size());
  }
  enumeration(
      {"EventSelector", "The event that EventNotification is about", "Expert"}, names,
      [this] {
        const std::lock_guard lock(eventMutex_);
        return selectedEvent_;
      },
      [this](std::uint64_t value) {
        const std::lock_guard lock(eventMutex_);
        selectedEvent_ = value;
      });
  enumeration(
      {"EventNotification", "Whether the selected event is sent", "Expert"}, {{"Off", 0}, {"On", 1}},
      [this] {
        const std::lock_guard lock(eventMutex_);
        return notifying_[selectedEvent_] ? 1 : 0;
      },
      [this](std::uint64_t value) {
        const std::lock_guard lock(eventMutex_);
        notifying_[selectedEvent_] = value != 0;
      });
  select("EventSelector", {"EventNotification"});
  for (const ModuleEvent& event : list) {
    const std::string name = "Event" + std::string(event.name);
    for (std::size_t i = 0; i < event.data.size(); ++i) {
      open("IntReg", {event.data[i], event.toolTip, "Expert"});
      element("Address", prefixed(i * kNumberSize));
      element("Length", std::to_string(kNumberSize));
      element("AccessMode", "RO");
      element("pPort", name + "Port");
      element("Cachable", "NoCache");
      element("Sign", "Signed");
      element("Endianess", "LittleEndian");
      close("IntReg");
    }
    body_ += "<Port Name=\"" + name + "Port\">\n";
    element("EventID", hexadecimal(event.id, 4));
    close("Port");
  }
}

bool ModuleFeatures::notifies(std::uint64_t id) {
  const std::lock_guard lock(eventMutex_);
  const auto found = std::ranges::find_if(events_, [&](const ModuleEvent& event) { return event.id == id; });
  return found != events_.end() && notifying_[static_cast<std::size_t>(found - events_.begin())];
}

void ModuleFeatures::finish() {
  xml_ = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"" + naming_.model +
         "\" VendorName=\"Kestrova\" ToolTip=\"" + naming_.toolTip +
         "\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" "
         "MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
         "ProductGuid=\"6B1F0E4A-52C1-4D0B-9B0E-6C1B7A3D9E10\" VersionGuid=\"2F9C8B6D-0A34-4E7F-8D21-53B7C6E4A911\" "
         "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\" "
         "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\""
         "http://www.genicam.org/GenApi/Version_1_1 http://www.genicam.org/GenApi/GenApiSchema_Version_1_1.xsd\">\n";
  xml_ += "<Category Name=\"Root\" NameSpace=\"Standard\">\n";
  for (const auto& [name, toolTip, members] : categories_) {
    xml_ += "  <pFeature>" + name + "</pFeature>\n";
  }
  xml_ += "</Category>\n";
  for (const auto& [name, toolTip, members] : categories_) {
    xml_ += "<Category Name=\"" + name + "\" NameSpace=\"Standard\">\n  <ToolTip>" + toolTip + "</ToolTip>\n";
    for (const std::string& member : members) {
      xml_ += "  <pFeature>" + member + "</pFeature>\n";
    }
    xml_ += "</Category>\n";
  }
  // Selectors learn of their features only after they were written.
  constexpr std::string_view kMark = "%selected:";
  for (std::size_t at = body_.find(kMark); at != std::string::npos; at = body_.find(kMark, at)) {
    const std::size_t end = body_.find('%', at + 1);
    const std::string name = body_.substr(at + kMark.size(), end - at - kMark.size());
    std::string lines;
    if (const auto found = selected_.find(name); found != selected_.end()) {
      for (const std::string& feature : found->second) {
        lines += "  <pSelected>" + feature + "</pSelected>\n";
      }
    }
    body_.replace(at, end + 1 - at, lines);
  }
  xml_ += body_;
  xml_ += "<Port Name=\"" + naming_.portName + "\" NameSpace=\"Standard\"/>\n</RegisterDescription>\n";
  body_.clear();

  description_.fileName = naming_.model + "_1_0_0.xml";
  description_.address = kDescriptionAddress;
  description_.size = xml_.size();
  description_.url = "Local:" + description_.fileName + ";" + hexadecimal(kDescriptionAddress) + ";" +
                     hexadecimal(xml_.size()) + "?SchemaVersion=1.1.0";
}

void ModuleFeatures::read(std::uint64_t address, void* data, std::size_t size) {
  auto* to = static_cast<char*>(data);
  if (address >= kDescriptionAddress && address - kDescriptionAddress <= xml_.size() &&
      size <= xml_.size() - (address - kDescriptionAddress)) {
    std::copy_n(xml_.data() + (address - kDescriptionAddress), size, to);
    return;
  }
  if (blockLength_ && address >= kBlockAddress) {
    const std::uint64_t length = blockLength_();
    if (address - kBlockAddress <= length && size <= length - (address - kBlockAddress)) {
      blockGet_(static_cast<std::size_t>(address - kBlockAddress), data, size);
      return;
    }
  }
  while (size != 0) {
    auto found = registers_.upper_bound(address);
    if (found == registers_.begin() || address - std::prev(found)->first >= std::prev(found)->second.size) {
      fail(GC_ERR_INVALID_ADDRESS, "no register at address 0x", hexadecimal(address));
    }
    const auto& [start, entry] = *std::prev(found);
    if (!entry.get && !entry.text) {
      fail(GC_ERR_ACCESS_DENIED, "the register at address 0x", hexadecimal(start), " cannot be read");
    }
    const std::string content = contentOf(entry.size, entry.get, entry.text);
    const auto offset = static_cast<std::size_t>(address - start);
    const std::size_t bytes = std::min(size, entry.size - offset);
    std::copy_n(content.data() + offset, bytes, to);
    to += bytes;
    address += bytes;
    size -= bytes;
  }
}

void ModuleFeatures::write(std::uint64_t address, const void* data, std::size_t size) {
  const auto found = registers_.upper_bound(address);
  if (found == registers_.begin() || address - std::prev(found)->first >= std::prev(found)->second.size) {
    fail(GC_ERR_INVALID_ADDRESS, "no register at address 0x", hexadecimal(address));
  }
  const auto& [start, entry] = *std::prev(found);
  const auto offset = static_cast<std::size_t>(address - start);
  if (!entry.set) {
    fail(GC_ERR_ACCESS_DENIED, "the register at address 0x", hexadecimal(start), " cannot be written");
  }
  if (size > entry.size - offset) {
    fail(GC_ERR_INVALID_ADDRESS, "the write runs over the end of the register at address 0x", hexadecimal(start));
  }
  std::uint64_t value = 0;
  if (entry.get) {
    value = entry.get();
  }
  std::memcpy(reinterpret_cast<char*>(&value) + offset, data, size);
  entry.set(value);
}

}  // namespace vcam
