// Loading, asking, and the way from a feature's name to its register.
#include "consumer.h"

#include <miniz.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <pugixml.hpp>

namespace producer_test {

namespace {

struct Loaded {
  SharedLibrary library{producerPath()};
  Functions functions{};

  template<class Function>
  void resolve(Function& function, const char* name) {
    function = reinterpret_cast<Function>(library.find(name));
    if (function == nullptr) {
      functions.missing.emplace_back(name);
    }
  }
};

std::unique_ptr<Loaded> loadProducer() {
  auto loaded = std::make_unique<Loaded>();
  if (!loaded->library.isLoaded()) {
    loaded->functions.missing.emplace_back(producerPath());
    return loaded;
  }
  Functions& f = loaded->functions;
#define RESOLVE(name) loaded->resolve(f.name, #name)
  RESOLVE(GCInitLib);
  RESOLVE(GCCloseLib);
  RESOLVE(GCGetInfo);
  RESOLVE(GCGetLastError);
  RESOLVE(GCReadPort);
  RESOLVE(GCWritePort);
  RESOLVE(GCGetPortURL);
  RESOLVE(GCGetPortInfo);
  RESOLVE(GCGetNumPortURLs);
  RESOLVE(GCGetPortURLInfo);
  RESOLVE(GCReadPortStacked);
  RESOLVE(GCWritePortStacked);
  RESOLVE(GCRegisterEvent);
  RESOLVE(GCUnregisterEvent);
  RESOLVE(EventGetData);
  RESOLVE(EventGetDataInfo);
  RESOLVE(EventGetInfo);
  RESOLVE(EventFlush);
  RESOLVE(EventKill);
  RESOLVE(TLOpen);
  RESOLVE(TLClose);
  RESOLVE(TLGetInfo);
  RESOLVE(TLGetNumInterfaces);
  RESOLVE(TLGetInterfaceID);
  RESOLVE(TLGetInterfaceInfo);
  RESOLVE(TLOpenInterface);
  RESOLVE(TLUpdateInterfaceList);
  RESOLVE(IFClose);
  RESOLVE(IFGetInfo);
  RESOLVE(IFGetNumDevices);
  RESOLVE(IFGetDeviceID);
  RESOLVE(IFUpdateDeviceList);
  RESOLVE(IFGetDeviceInfo);
  RESOLVE(IFOpenDevice);
  RESOLVE(IFGetParentTL);
  RESOLVE(DevClose);
  RESOLVE(DevGetInfo);
  RESOLVE(DevGetPort);
  RESOLVE(DevGetNumDataStreams);
  RESOLVE(DevGetDataStreamID);
  RESOLVE(DevOpenDataStream);
  RESOLVE(DevGetParentIF);
  RESOLVE(DSAnnounceBuffer);
  RESOLVE(DSAllocAndAnnounceBuffer);
  RESOLVE(DSRevokeBuffer);
  RESOLVE(DSQueueBuffer);
  RESOLVE(DSFlushQueue);
  RESOLVE(DSStartAcquisition);
  RESOLVE(DSStopAcquisition);
  RESOLVE(DSGetInfo);
  RESOLVE(DSGetBufferID);
  RESOLVE(DSGetBufferInfo);
  RESOLVE(DSClose);
  RESOLVE(DSGetBufferChunkData);
  RESOLVE(DSGetParentDev);
  RESOLVE(DSGetNumBufferParts);
  RESOLVE(DSGetBufferPartInfo);
  RESOLVE(oviVirtualHostility);
#undef RESOLVE
  return loaded;
}

std::string unzipped(const std::string& archive) {
  mz_zip_archive zip{};
  std::string content;
  if (mz_zip_reader_init_mem(&zip, archive.data(), archive.size(), 0) == 0) {
    return content;
  }
  mz_zip_archive_file_stat entry{};
  if (mz_zip_reader_file_stat(&zip, 0, &entry) != 0) {
    content.resize(static_cast<std::size_t>(entry.m_uncomp_size));
    mz_zip_reader_extract_to_mem(&zip, 0, content.data(), content.size(), 0);
  }
  mz_zip_reader_end(&zip);
  return content;
}

}  // namespace

const Functions& gentl() {
  static const std::unique_ptr<Loaded> loaded = loadProducer();
  return loaded->functions;
}

const OviVirtualHostility& orders() {
  return *gentl().oviVirtualHostility();
}

std::uint64_t Answer::number() const {
  std::uint64_t value = 0;
  std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof(value)));
  return value;
}

std::string lastErrorText() {
  Error code = 0;
  std::string text(1024, '\0');
  std::size_t size = text.size();
  EXPECT_EQ(gentl().GCGetLastError(&code, text.data(), &size), kSuccess);
  text.resize(size - 1);
  return text;
}

struct Registers::Document {
  pugi::xml_document xml;
  std::map<std::string, pugi::xml_node> nodes;

  void index(const pugi::xml_node& parent) {
    for (const pugi::xml_node& node : parent.children()) {
      if (std::string_view(node.name()) == "Group") {
        index(node);
      } else if (node.attribute("Name")) {
        nodes.emplace(node.attribute("Name").value(), node);
      }
    }
  }

  // Follows the value to the register behind it.
  pugi::xml_node registerOf(const std::string& name) const {
    auto found = nodes.find(name);
    for (int depth = 0; found != nodes.end() && depth < 8; ++depth) {
      if (found->second.child("Address")) {
        return found->second;
      }
      found = nodes.find(found->second.child_value("pValue"));
    }
    return {};
  }
};

Registers::Registers(Handle port)
    : port_(port),
      bigEndian_(ask(gentl().GCGetPortInfo, port, 6).number() != 0),
      document_(std::make_shared<Document>()) {
  const std::string url = ask(gentl().GCGetPortURLInfo, port, 0U, 0).bytes;
  const std::size_t first = url.find(';');
  const std::size_t second = url.find(';', first + 1);
  EXPECT_EQ(url.compare(0, 6, "Local:"), 0) << url;
  const std::uint64_t address = std::strtoull(url.c_str() + first + 1, nullptr, 16);
  std::size_t length = std::strtoull(url.c_str() + second + 1, nullptr, 16);
  description_.resize(length);
  EXPECT_EQ(gentl().GCReadPort(port, address, description_.data(), &length), kSuccess);
  if (url.substr(first - 4, 4) == ".zip") {
    description_ = unzipped(description_);
  }
  EXPECT_TRUE(document_->xml.load_string(description_.c_str())) << url;
  document_->index(document_->xml.document_element());
}

bool Registers::has(const std::string& name) const {
  return !document_->registerOf(name).empty();
}

Registers::Place Registers::place(const std::string& name) const {
  const pugi::xml_node node = document_->registerOf(name);
  EXPECT_TRUE(node) << "no register for " << name;
  Place found;
  for (const pugi::xml_node& part : node.children("Address")) {
    found.address += std::strtoull(part.child_value(), nullptr, 0);
  }
  for (const pugi::xml_node& part : node.children("pIndex")) {
    found.address += get(part.child_value()) * part.attribute("Offset").as_ullong();
  }
  found.length = std::strtoull(node.child_value("Length"), nullptr, 0);
  return found;
}

std::uint64_t Registers::address(const std::string& name) const {
  return place(name).address;
}

std::uint64_t Registers::get(const std::string& name) const {
  const Place at = place(name);
  std::array<unsigned char, 8> bytes{};
  std::size_t size = at.length;
  EXPECT_LE(size, bytes.size()) << name;
  EXPECT_EQ(gentl().GCReadPort(port_, at.address, bytes.data(), &size), kSuccess) << name << ": " << lastErrorText();
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < at.length; ++i) {
    value = value << 8 | bytes[bigEndian_ ? i : at.length - 1 - i];
  }
  return value;
}

Error Registers::set(const std::string& name, std::uint64_t value) const {
  const Place at = place(name);
  std::vector<unsigned char> bytes(at.length);
  std::size_t size = at.length;
  for (std::size_t i = 0; i < size; ++i, value >>= 8) {
    bytes[bigEndian_ ? size - 1 - i : i] = static_cast<unsigned char>(value & 0xFF);
  }
  return gentl().GCWritePort(port_, at.address, bytes.data(), &size);
}

std::string Registers::text(const std::string& name) const {
  const Place at = place(name);
  std::size_t size = at.length;
  std::string content(size, '\0');
  EXPECT_EQ(gentl().GCReadPort(port_, at.address, content.data(), &size), kSuccess) << name;
  return content.c_str();
}

std::uint64_t Registers::entry(const std::string& enumeration, const std::string& name) const {
  const auto found = document_->nodes.find(enumeration);
  if (found != document_->nodes.end()) {
    for (const pugi::xml_node& entry : found->second.children("EnumEntry")) {
      if (entry.attribute("Name").value() == name) {
        return std::strtoull(entry.child_value("Value"), nullptr, 0);
      }
    }
  }
  ADD_FAILURE() << enumeration << " has no entry " << name;
  return 0;
}

void ProducerTest::SetUp() {
  ASSERT_TRUE(g.missing.empty()) << "missing: " << g.missing.front();
  ASSERT_EQ(g.GCInitLib(), kSuccess);
}

void ProducerTest::TearDown() {
  if (g.missing.empty()) {
    orders().reset();
    EXPECT_EQ(g.GCCloseLib(), kSuccess);
  }
}

void ProducerTest::openSystem() {
  ASSERT_EQ(g.TLOpen(&tl), kSuccess);
  ASSERT_EQ(g.TLUpdateInterfaceList(tl, nullptr, 1000), kSuccess);
}

void ProducerTest::openInterface(std::uint32_t index) {
  if (tl == nullptr) {
    openSystem();
  }
  char id[256];
  std::size_t size = sizeof(id);
  ASSERT_EQ(g.TLGetInterfaceID(tl, index, id, &size), kSuccess);
  ASSERT_EQ(g.TLOpenInterface(tl, id, &interface), kSuccess);
  ASSERT_EQ(g.IFUpdateDeviceList(interface, nullptr, 1000), kSuccess);
}

void ProducerTest::openDevice(const std::string& model, std::int32_t access) {
  if (tl == nullptr) {
    openSystem();
  }
  std::uint32_t interfaces = 0;
  ASSERT_EQ(g.TLGetNumInterfaces(tl, &interfaces), kSuccess);
  for (std::uint32_t i = 0; i < interfaces && device == nullptr; ++i) {
    openInterface(i);
    std::uint32_t devices = 0;
    ASSERT_EQ(g.IFGetNumDevices(interface, &devices), kSuccess);
    for (std::uint32_t d = 0; d < devices && device == nullptr; ++d) {
      char id[256];
      std::size_t size = sizeof(id);
      ASSERT_EQ(g.IFGetDeviceID(interface, d, id, &size), kSuccess);
      if (ask(g.IFGetDeviceInfo, interface, static_cast<const char*>(id), 2).bytes == model) {
        deviceId = id;
        ASSERT_EQ(g.IFOpenDevice(interface, id, access, &device), kSuccess) << lastErrorText();
      }
    }
    if (device == nullptr) {
      ASSERT_EQ(g.IFClose(interface), kSuccess);
    }
  }
  ASSERT_NE(device, nullptr) << "no camera of model " << model;
  ASSERT_EQ(g.DevGetPort(device, &port), kSuccess);
  remote = std::make_unique<Registers>(port);
}

void ProducerTest::openStream(std::uint32_t index) {
  if (device == nullptr) {
    openDevice();
  }
  char id[256];
  std::size_t size = sizeof(id);
  ASSERT_EQ(g.DevGetDataStreamID(device, index, id, &size), kSuccess);
  ASSERT_EQ(g.DevOpenDataStream(device, id, &stream), kSuccess);
  ASSERT_EQ(g.GCRegisterEvent(stream, kNewBuffer, &newBuffer), kSuccess);
}

std::vector<Handle> ProducerTest::announce(std::size_t count, bool queued) {
  const std::size_t payload = streamInfo(7);
  std::vector<Handle> buffers(count);
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(g.DSAllocAndAnnounceBuffer(stream, payload, reinterpret_cast<void*>(i + 1), &buffers[i]), kSuccess);
    if (queued) {
      EXPECT_EQ(g.DSQueueBuffer(stream, buffers[i]), kSuccess);
    }
  }
  return buffers;
}

std::optional<NewBufferData> ProducerTest::next(std::uint64_t timeoutMs) {
  NewBufferData data{};
  std::size_t size = sizeof(data);
  const Error error = g.EventGetData(newBuffer, &data, &size, timeoutMs);
  if (error != kSuccess) {
    EXPECT_EQ(error, kTimeout);
    return std::nullopt;
  }
  EXPECT_EQ(size, 16U);
  return data;
}

std::uint64_t ProducerTest::bufferInfo(Handle buffer, std::int32_t command) const {
  std::int32_t type = 0;
  std::uint64_t value = 0;
  std::size_t size = sizeof(value);
  EXPECT_EQ(g.DSGetBufferInfo(stream, buffer, command, &type, &value, &size), kSuccess) << "info " << command;
  return value;
}

std::uint64_t ProducerTest::streamInfo(std::int32_t command) const {
  std::int32_t type = 0;
  std::uint64_t value = 0;
  std::size_t size = sizeof(value);
  EXPECT_EQ(g.DSGetInfo(stream, command, &type, &value, &size), kSuccess) << "info " << command;
  return value;
}

}  // namespace producer_test
