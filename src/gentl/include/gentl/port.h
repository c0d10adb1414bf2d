// The register space of a module, as node maps read and write it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "GenApi/GenApi.h"
#include "gentl/export_table.h"
#include "gentl_interface/GenTL.h"

namespace GenTLCpp {

class BaseModule;

struct PortFunctions {
  explicit PortFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PGCReadPort> GCReadPort{library, "GCReadPort"};
  Export<PGCWritePort> GCWritePort{library, "GCWritePort"};
  Export<PGCGetPortURL> GCGetPortURL{library, "GCGetPortURL"};
  Export<PGCGetNumPortURLs> GCGetNumPortURLs{library, "GCGetNumPortURLs"};
  Export<PGCGetPortInfo> GCGetPortInfo{library, "GCGetPortInfo"};
  Export<PGCGetPortURLInfo> GCGetPortURLInfo{library, "GCGetPortURLInfo"};
  Export<PGCReadPortStacked> GCReadPortStacked{library, "GCReadPortStacked"};
  Export<PGCWritePortStacked> GCWritePortStacked{library, "GCWritePortStacked"};
};

/** A port with the producer's functions behind it. */
class Port : public GenApi::IPort {
 public:
  Port(const Port&) = delete;
  Port& operator=(const Port&) = delete;
  ~Port() override;

  /** Bytes that the producer does not deliver although it reports success are zero. @throws GenTLException */
  void Read(void* buffer, std::int64_t address, std::int64_t length) override;
  /** The producer never sees the caller's memory: it gets a copy. @throws GenTLException */
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override;
  GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

  /** As isAccessible of the module that owns the port; a module that is gone counts as closed. */
  virtual bool isAccessible() const = 0;

  std::uint32_t getNumURLs() const;
  std::string getURL(std::uint32_t index) const { return getURLInfoString(index, URL_INFO_URL); }
  std::string getURLInfoString(std::uint32_t index, URL_INFO_CMD cmd) const;
  std::string getInfoString(PORT_INFO_CMD cmd) const;
  std::string getPortName() const { return getInfoString(PORT_INFO_PORTNAME); }
  bool isBigEndian() const;

 protected:
  Port(PORT_HANDLE handle, LibraryHandle library);

  /** Keeps the owner for the length of a call. @throws ClosedException when it is closed or gone */
  virtual std::shared_ptr<BaseModule> holdOwner() const = 0;

  PORT_HANDLE rawHandle() const noexcept { return handle_; }

 private:
  PORT_HANDLE handle_;
  PortFunctions functions_;
};

/** The port of a module, or of the remote side of a device. Knows its owner without keeping it. */
class ConcretePort : public Port {
 public:
  ConcretePort(PORT_HANDLE handle, const std::shared_ptr<BaseModule>& owner);
  ~ConcretePort() override;

  /** @throws ClosedException when the owner is closed */
  PORT_HANDLE getHandle() const;
  bool isAccessible() const override;

 protected:
  std::shared_ptr<BaseModule> holdOwner() const override;

 private:
  std::weak_ptr<BaseModule> owner_;
};

/** A node map, together with the port that it is connected to. */
using NodeMapPtr = std::shared_ptr<GenApi::INodeMap>;

}  // namespace GenTLCpp
