// The system module of a producer: its interfaces.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "gentl/interface_info.h"
#include "gentl/open_module.h"
#include "gentl/producer.h"

namespace GenTLCpp {

struct TLFunctions {
  explicit TLFunctions(LibraryHandle handle) : library(handle) {}

  LibraryHandle library;
  Export<PTLOpen> TLOpen{library, "TLOpen"};
  Export<PTLClose> TLClose{library, "TLClose"};
  Export<PTLGetInfo> TLGetInfo{library, "TLGetInfo"};
  Export<PTLGetNumInterfaces> TLGetNumInterfaces{library, "TLGetNumInterfaces"};
  Export<PTLGetInterfaceID> TLGetInterfaceID{library, "TLGetInterfaceID"};
  Export<PTLGetInterfaceInfo> TLGetInterfaceInfo{library, "TLGetInterfaceInfo"};
  Export<PTLOpenInterface> TLOpenInterface{library, "TLOpenInterface"};
  Export<PTLUpdateInterfaceList> TLUpdateInterfaceList{library, "TLUpdateInterfaceList"};
};

/** Made by GenTLProducer::openTransportLayer. All operations throw GenTLException when the producer fails. */
class TransportLayer final : public OpenModule<GenTLProducer, TLFunctions, &TLFunctions::TLClose> {
 public:
  static constexpr int kModuleType = kTransportLayerModule;

  TransportLayer(const std::shared_ptr<GenTLProducer>& producer, LibraryHandle library);
  ~TransportLayer() override;

  int moduleType() const override { return kModuleType; }
  GC_ERROR closeModule() override;

  const std::shared_ptr<GenTLProducer>& getProducer() const noexcept { return getParent(); }

  std::vector<std::string> getInterfaceIDs() const;
  std::string getInterfaceInfoString(const std::string& id, INTERFACE_INFO_CMD cmd) const;
  /** The interfaces that can be opened, in the producer's order. */
  std::vector<std::shared_ptr<InterfaceInfo>> getInterfaceInfos();
  /** The interface with exactly this ID, or nothing. */
  std::shared_ptr<InterfaceInfo> findInterfaceInfo(const std::string& id);
  /** @param timeout  milliseconds
   * @return whether the list changed */
  bool updateInterfaceList(std::uint64_t timeout) const;
  IF_HANDLE openInterfaceHandle(const std::string& id) const;
};

}  // namespace GenTLCpp
