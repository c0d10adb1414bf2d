// The system module: the producer's interfaces.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "modules/library.h"
#include "modules/list_update.h"
#include "modules/module.h"

namespace vcam {

class Interface;

class System final : public Module {
 public:
  explicit System(Session& session);
  ~System() override;

  static Info info(const ProducerIdentity& producer, TL_INFO_CMD command);
  static Info interfaceInfo(const InterfaceEntry& entry, INTERFACE_INFO_CMD command);

  Info info(TL_INFO_CMD command) const { return info(session_.identity, command); }

  bool updateList(std::uint64_t timeoutMs);
  std::uint32_t interfaceCount();
  std::string interfaceId(std::uint32_t index);
  Info interfaceInfo(const std::string& id, INTERFACE_INFO_CMD command);
  void* openInterface(const std::string& id);
  std::unique_ptr<Module> take(const Interface& child);

  Session& session() { return session_; }
  // A camera was plugged in or pulled out.
  void cableChanged(const CameraSlot& slot, bool present);

  PortIdentity identity() override;

 protected:
  ModuleFeatures& features() override { return features_; }
  void endCalls() override { update_.end(); }
  void closeChildren() override;
  std::unique_ptr<Module> detach() override;

 private:
  void describe();
  const InterfaceEntry& find(const std::string& id) const;
  // The interface that InterfaceSelector points at.
  const InterfaceEntry& selectedInterface();

  Session& session_;
  ModuleFeatures features_;
  ListUpdate update_;
  std::mutex listMutex_;
  bool listed_ = false;  // the interfaces never change, so a list is either empty or complete
  std::uint32_t selected_ = 0;
  std::atomic<std::uint64_t> updateTimeoutMs_{kUpdateTimeoutMs};  // of the command, not of TLUpdateInterfaceList
  std::atomic<bool> longInterrupts_{true};
  std::unique_ptr<Children<Interface>> children_;
};

}  // namespace vcam
