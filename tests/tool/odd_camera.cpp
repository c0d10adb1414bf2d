// The scripted camera with features as only some real cameras have them, or with the description that ODD_DESCRIPTION
// names.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string_view>

#include "scripted_camera.h"

extern "C" scripted::Script* scriptedCamera();

namespace {

constexpr const char* kDescription = R"(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Odd" VendorName="Kestrova" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0"
 ProductGuid="1F3C7F9E-1111-4222-8333-444455556666" VersionGuid="1F3C7F9E-1111-4222-8333-444455556667"
 xmlns="http://www.genicam.org/GenApi/Version_1_1">
<Category Name="Root" NameSpace="Standard"><pFeature>WriteOnly</pFeature><pFeature>WriteOnlyFloat</pFeature>
 <pFeature>Unreadable</pFeature><pFeature>Unwritable</pFeature><pFeature>Unmatched</pFeature><pFeature>Text</pFeature>
 <pFeature>Bytes</pFeature><pFeature>Locked</pFeature><pFeature>Mode</pFeature><pFeature>LastSelector</pFeature><pFeature>Selected</pFeature></Category>
<IntReg Name="WriteOnly"><Address>0x100</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<FloatReg Name="WriteOnlyFloat"><Address>0x108</Address><Length>4</Length><AccessMode>WO</AccessMode>
 <pPort>Device</pPort><Endianess>LittleEndian</Endianess></FloatReg>
<IntReg Name="Unreadable"><Address>0x110</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Cachable>NoCache</Cachable><Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="Unwritable"><Address>0x118</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="Unmatched"><EnumEntry Name="A"><Value>5</Value></EnumEntry><pValue>UnmatchedReg</pValue>
</Enumeration>
<IntReg Name="UnmatchedReg"><Address>0x120</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<StringReg Name="Text"><Address>0x200</Address><Length>64</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
</StringReg>
<Register Name="Bytes"><Address>0x300</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
</Register>
<Integer Name="Locked"><pIsLocked>LockReg</pIsLocked><Value>4</Value></Integer>
<IntReg Name="LockReg"><Address>0x140</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Enumeration Name="Mode"><EnumEntry Name="Plain"><Value>0</Value></EnumEntry>
 <EnumEntry Name="Fast"><pIsAvailable>Unlocked</pIsAvailable><Value>1</Value></EnumEntry><Value>0</Value></Enumeration>
<IntSwissKnife Name="Unlocked"><pVariable Name="LOCK">LockReg</pVariable><Formula>LOCK = 0</Formula></IntSwissKnife>
<Integer Name="LastSelector"><pValue>SelectorReg</pValue><Min>9223372036854775806</Min><Max>9223372036854775807</Max>
 <pSelected>Selected</pSelected></Integer>
<IntReg Name="SelectorReg"><Address>0x128</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<IntReg Name="Selected"><Address>0x130</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
 <Endianess>LittleEndian</Endianess></IntReg>
<Port Name="Device" NameSpace="Standard"></Port>
</RegisterDescription>)";

struct Oddities {
  Oddities() {
    scripted::Space& camera = scriptedCamera()->camera;
    camera.description = kDescription;
    if (const char* const file = std::getenv("ODD_DESCRIPTION")) {
      std::ifstream stream(file, std::ios::binary);
      camera.description.assign(std::istreambuf_iterator<char>(stream), {});
    }
    constexpr std::string_view kText = "two\nlines, \x1B[2J\x7F no \xE4 UTF-8";
    std::memcpy(&camera.memory[0x200], kText.data(), kText.size());
    camera.memory[0x140] = 1;
    camera.memory[0x128] = 0xFE;
    std::memset(&camera.memory[0x129], 0xFF, 6);
    camera.memory[0x12F] = 0x7F;
    camera.onRead = [](std::uint64_t address, std::size_t) { return address == 0x110 ? GC_ERR_IO : GC_ERR_SUCCESS; };
    camera.onWrite = [](std::uint64_t address, std::size_t) { return address == 0x118 ? GC_ERR_IO : GC_ERR_SUCCESS; };
  }
};

const Oddities oddities;

}  // namespace
