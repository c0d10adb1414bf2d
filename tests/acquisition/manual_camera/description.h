// The description that all modules of the manual camera share.
#pragma once

#include <string_view>

namespace manual {

inline constexpr std::string_view kDescription = R"xml(<?xml version="1.0" encoding="utf-8"?>
<RegisterDescription ModelName="Manual" VendorName="Kestrova" ToolTip="" StandardNameSpace="None"
  SchemaMajorVersion="1" SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0"
  SubMinorVersion="0" ProductGuid="9DDAA2F5-1AEB-4F30-9F6C-15B60C1B4D7C"
  VersionGuid="5A3B9C3A-8C5A-4E0E-8C3B-0D5A4B6E7F10" xmlns="http://www.genicam.org/GenApi/Version_1_1">
  <Category Name="Root"><pFeature>Width</pFeature><pFeature>Height</pFeature>
    <pFeature>GevSCPSPacketSize</pFeature></Category>
  <IntReg Name="Width"><Address>0x100</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="Height"><Address>0x104</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="PayloadSize"><Address>0x108</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Enumeration Name="PixelFormat">
    <EnumEntry Name="Mono8"><Value>0x01080001</Value></EnumEntry>
    <EnumEntry Name="RGB8"><Value>0x02180014</Value></EnumEntry>
    <EnumEntry Name="BGR12"><Value>0x0230001B</Value></EnumEntry>
    <pValue>PixelFormatReg</pValue></Enumeration>
  <IntReg Name="PixelFormatReg"><Address>0x10C</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="TLParamsLocked"><Address>0x110</Address><Length>4</Length><AccessMode>RW</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Command Name="AcquisitionStart"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="StartReg"><Address>0x114</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Command Name="AcquisitionStop"><pValue>StopReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="StopReg"><Address>0x118</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Command Name="AcquisitionAbort"><pValue>AbortReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="AbortReg"><Address>0x11C</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Integer Name="GevSCPSPacketSize"><pValue>PacketSizeReg</pValue><Min>576</Min><Max>9000</Max></Integer>
  <IntReg Name="PacketSizeReg"><Address>0x120</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Boolean Name="EnableFilterDriver"><pValue>FilterReg</pValue></Boolean>
  <IntReg Name="FilterReg"><Address>0x200</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="BufferSize"><Address>0x204</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="PaketLoss"><Address>0x208</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="PaketsReceived"><Address>0x20C</Address><Length>4</Length><AccessMode>RO</AccessMode>
    <pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <IntReg Name="FrameLoss"><Address>0x210</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Command Name="FindMaxPacketSize"><pValue>FindReg</pValue><CommandValue>1</CommandValue></Command>
  <IntReg Name="FindReg"><Address>0x214</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>
    <Cachable>NoCache</Cachable><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
  <Port Name="Device"/>
</RegisterDescription>
)xml";

}  // namespace manual
