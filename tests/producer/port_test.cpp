// Ports: infos, descriptions, register access single and stacked, and the registers of the modules themselves.
#include "consumer.h"

#include <array>
#include <cstring>

namespace producer_test {

class PortTest : public ProducerTest {};

TEST_F(PortTest, EveryModuleNamesItselfAndServesItsDescription) {
  openStream();
  const Handle buffer = announce(1).front();
  struct Expected {
    Handle port;
    const char* module;
    std::vector<const char*> features;
  };
  const std::vector<Expected> modules = {
      {tl,
       "TLSystem",
       {"TLID", "TLVendorName", "TLModelName", "TLVersion", "TLPath", "TLType", "GenTLVersionMajor",
        "GenTLVersionMinor", "InterfaceUpdateList", "InterfaceSelector", "InterfaceID"}},
      {interface,
       "TLInterface",
       {"InterfaceID", "InterfaceType", "DeviceUpdateList", "DeviceSelector", "DeviceID", "DeviceVendorName",
        "DeviceModelName", "DeviceAccessStatus", "InterfaceTLVersionMajor", "DeviceTLVersionMinor"}},
      {device,
       "TLDevice",
       {"DeviceID", "DeviceVendorName", "DeviceModelName", "DeviceType", "DeviceAccessStatus", "StreamSelector",
        "StreamID"}},
      {stream,
       "TLDataStream",
       {"StreamID", "StreamType", "StreamAnnouncedBufferCount", "StreamAnnounceBufferMinimum",
        "StreamBufferHandlingMode"}},
      {buffer, "TLBuffer", {"BufferData", "BufferUserData"}},
      {port,
       "Device",
       {"Width", "Height", "PixelFormat", "PayloadSize", "AcquisitionStart", "AcquisitionStop", "TLParamsLocked"}},
  };
  for (const Expected& expected : modules) {
    SCOPED_TRACE(expected.module);
    EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, 4).bytes, expected.module);
    EXPECT_NE(ask(g.GCGetPortInfo, expected.port, 5).number(), ask(g.GCGetPortInfo, expected.port, 6).number());
    EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, 7).number(), 1U);
    EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, 9).number(), 0U);
    EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, 10).number(), 0U);
    for (const int text : {0, 1, 2, 3, 11, 12}) {
      EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, text).type, kString);
    }
    EXPECT_EQ(ask(g.GCGetPortInfo, expected.port, 13).error, kNotImplemented);

    const std::string url = ask(g.GCGetPortURLInfo, expected.port, 0U, 0).bytes;
    std::string list(url.size() + 100, 'x');
    std::size_t size = list.size();
    ASSERT_EQ(g.GCGetPortURL(expected.port, list.data(), &size), kSuccess);
    const std::string legacy = url.find('?') == std::string::npos ? url + "?SchemaVersion=1.1.0" : url;
    EXPECT_EQ(list.substr(0, size), legacy + '\0' + '\0') << "a list of one, which tells the schema version, too";
    std::uint32_t urls = 0;
    EXPECT_EQ(g.GCGetNumPortURLs(expected.port, &urls), kSuccess);
    EXPECT_EQ(urls, 1U);
    EXPECT_EQ(ask(g.GCGetPortURLInfo, expected.port, 1U, 0).error, kInvalidIndex);
    EXPECT_EQ(ask(g.GCGetPortURLInfo, expected.port, 0U, 9).number(), 0U) << "local";
    EXPECT_EQ(ask(g.GCGetPortURLInfo, expected.port, 0U, 6).bytes.size(), 20U);
    EXPECT_EQ(ask(g.GCGetPortURLInfo, expected.port, 0U, 6).type, kBytes);
    EXPECT_NE(url.find(ask(g.GCGetPortURLInfo, expected.port, 0U, 10).bytes), std::string::npos);

    const Registers registers(expected.port);
    for (const char* feature : expected.features) {
      EXPECT_NE(registers.description().find("Name=\"" + std::string(feature) + "\""), std::string::npos) << feature;
    }
    const std::string portName = ask(g.GCGetPortInfo, expected.port, 12).bytes;
    EXPECT_NE(registers.description().find("<Port Name=\"" + portName + "\""), std::string::npos);
  }
  EXPECT_EQ(ask(g.GCGetPortInfo, port, 0).bytes, ask(g.GCGetPortInfo, device, 0).bytes)
      << "the remote device repeats the local device's ID";
}

TEST_F(PortTest, AllCamerasServeTheirDescriptionInTheirOwnForm) {
  for (const char* model : {"VC-1200C", "VC-320HS", "VC-800BE", "VC-1024Z", "VC-1024D", "VC-640X"}) {
    SCOPED_TRACE(model);
    openDevice(model);
    EXPECT_NE(remote->description().find("RegisterDescription"), std::string::npos);
    const bool zipped = std::string(model) == "VC-1024Z";
    EXPECT_EQ(ask(g.GCGetPortURLInfo, port, 0U, 0).bytes.find(".zip;") != std::string::npos, zipped);
    EXPECT_EQ(ask(g.GCGetPortInfo, port, 6).number(), std::string(model) == "VC-800BE" ? 1U : 0U);
    ASSERT_EQ(g.TLClose(tl), kSuccess);
    tl = interface = device = nullptr;
  }
}

TEST_F(PortTest, AccessMovesAllBytesOrFails) {
  openDevice();
  const std::uint64_t width = remote->address("Width");
  std::uint64_t value = 0;
  std::size_t size = 4;
  ASSERT_EQ(g.GCReadPort(port, width, &value, &size), kSuccess);
  EXPECT_EQ(size, 4U);
  // Byte by byte gives the same.
  std::uint64_t bytewise = 0;
  for (std::size_t i = 0; i < 4; ++i) {
    size = 1;
    ASSERT_EQ(g.GCReadPort(port, width + i, reinterpret_cast<char*>(&bytewise) + i, &size), kSuccess);
  }
  EXPECT_EQ(bytewise, value);
  size = 4;
  EXPECT_EQ(g.GCReadPort(port, 0xFFFFFFFFFFFF0000, &value, &size), kInvalidAddress);
  EXPECT_EQ(size, 0U);
  size = 4;
  EXPECT_EQ(g.GCWritePort(port, 0xFFFFFFFFFFFF0000, &value, &size), kInvalidAddress);
  EXPECT_EQ(g.GCReadPort(port, width, nullptr, &size), kInvalidParameter);
  EXPECT_EQ(g.GCReadPort(port, width, &value, nullptr), kInvalidParameter);
  size = 0;
  EXPECT_EQ(g.GCReadPort(port, width, &value, &size), kInvalidParameter);
  size = 4;
  EXPECT_EQ(g.GCReadPort(nullptr, width, &value, &size), kInvalidHandle);
  EXPECT_EQ(size, 0U);
  EXPECT_EQ(remote->set("PayloadSize", 1), kAccessDenied);
  size = 8;
  value = 640;
  EXPECT_EQ(g.GCWritePort(port, width, &value, &size), kInvalidAddress);
  EXPECT_EQ(size, 4U) << "there is nothing behind the register, which took its part";
  EXPECT_EQ(remote->get("Width"), 640U);
}

TEST_F(PortTest, ReadOnlyDevicesRefuseWrites) {
  openDevice("VC-1300M", 2);
  EXPECT_EQ(ask(g.GCGetPortInfo, port, 8).number(), 0U);
  EXPECT_EQ(remote->set("Width", 64), kAccessDenied);
  EXPECT_GT(remote->get("Width"), 0U);
}

TEST_F(PortTest, StackedAccessStopsAtTheFirstFailure) {
  openDevice();
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  std::uint32_t third = 0;
  std::array<StackEntry, 3> entries = {{{remote->address("Width"), &first, 4},
                                        {0xFFFFFFFFFFFF0000, &second, 4},
                                        {remote->address("Height"), &third, 4}}};
  std::size_t count = entries.size();
  EXPECT_EQ(g.GCReadPortStacked(port, entries.data(), &count), kInvalidAddress);
  EXPECT_EQ(count, 1U);
  EXPECT_NE(first, 0U);
  EXPECT_EQ(third, 0U);
  entries[1].address = remote->address("Height");
  count = entries.size();
  EXPECT_EQ(g.GCReadPortStacked(port, entries.data(), &count), kSuccess);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(second, third);
  count = 0;
  EXPECT_EQ(g.GCReadPortStacked(port, entries.data(), &count), kInvalidParameter);
  count = 3;
  EXPECT_EQ(g.GCReadPortStacked(nullptr, entries.data(), &count), kInvalidHandle);
  EXPECT_EQ(count, 0U);
  entries[1].buffer = nullptr;
  count = 2;
  EXPECT_EQ(g.GCWritePortStacked(port, entries.data(), &count), kInvalidParameter);
  EXPECT_EQ(count, 1U);
}

TEST_F(PortTest, ModuleRegistersMirrorTheInterface) {
  openStream();
  const Registers system(tl);
  EXPECT_EQ(system.text("TLID"), ask(g.TLGetInfo, tl, 0).bytes);
  EXPECT_EQ(system.text("TLPath"), ask(g.TLGetInfo, tl, 6).bytes);
  EXPECT_EQ(system.get("GenTLVersionMinor"), 5U);
  EXPECT_EQ(system.set("InterfaceSelector", 1), kSuccess);
  char id[256];
  std::size_t size = sizeof(id);
  ASSERT_EQ(g.TLGetInterfaceID(tl, 1, id, &size), kSuccess);
  EXPECT_EQ(system.text("InterfaceID"), id);
  EXPECT_EQ(system.set("InterfaceSelector", 2), kInvalidValue);
  EXPECT_EQ(system.get("InterfaceSelector"), 1U);
  EXPECT_EQ(system.set("TLID", 1), kAccessDenied);

  const Registers local(interface);
  ASSERT_EQ(local.set("DeviceSelector", 1), kSuccess);
  size = sizeof(id);
  ASSERT_EQ(g.IFGetDeviceID(interface, 1, id, &size), kSuccess);
  EXPECT_EQ(local.text("DeviceID"), id);
  EXPECT_EQ(local.get("DeviceAccessStatus"), 1U);
  ASSERT_EQ(local.set("DeviceSelector", 0), kSuccess);
  EXPECT_EQ(local.get("DeviceAccessStatus"), 5U);
  // The list update as a command acts on the same list.
  ASSERT_EQ(orders().loseDevice(id), 0);
  std::uint32_t before = 0;
  std::uint32_t after = 0;
  ASSERT_EQ(g.IFGetNumDevices(interface, &before), kSuccess);
  EXPECT_EQ(local.set("DeviceUpdateList", 1), kSuccess);
  EXPECT_EQ(local.get("DeviceUpdateList"), 0U) << "done";
  ASSERT_EQ(g.IFGetNumDevices(interface, &after), kSuccess);
  EXPECT_EQ(after, before - 1);
  ASSERT_EQ(orders().slowUpdates(1000), 0);
  ASSERT_EQ(local.set("DeviceUpdateTimeout", 1), kSuccess);
  EXPECT_EQ(local.set("DeviceUpdateList", 1), kTimeout);

  const Registers streamRegisters(stream);
  const Handle buffer = announce(2, false).front();
  EXPECT_EQ(streamRegisters.get("StreamAnnouncedBufferCount"), 2U);
  EXPECT_EQ(streamRegisters.text("StreamID"), ask(g.DSGetInfo, stream, 0).bytes);
  EXPECT_EQ(streamRegisters.set("StreamBufferHandlingMode", 77), kInvalidValue);

  const Registers bufferRegisters(buffer);
  EXPECT_EQ(bufferRegisters.get("BufferUserData"), 1U);
  auto* const base = reinterpret_cast<char*>(static_cast<std::uintptr_t>(bufferInfo(buffer, 0)));
  std::memcpy(base, "pixels", 6);
  char pixels[6];
  size = sizeof(pixels);
  ASSERT_EQ(g.GCReadPort(buffer, bufferRegisters.address("BufferData"), pixels, &size), kSuccess);
  EXPECT_EQ(std::string_view(pixels, 6), "pixels");
  size = sizeof(pixels);
  const std::uint64_t end = bufferRegisters.address("BufferData") + bufferInfo(buffer, 1);
  EXPECT_EQ(g.GCReadPort(buffer, end - 3, pixels, &size), kInvalidAddress) << "past the end of the buffer";
}

}  // namespace producer_test
