// An interface that a producer lists, not opened yet.
#pragma once

#include <memory>
#include <string>

namespace GenTLCpp {

class TransportLayer;
class TLInterface;

class InterfaceInfo {
 public:
  InterfaceInfo(std::shared_ptr<TransportLayer> parent, std::string id, std::string displayName, std::string tlType);
  InterfaceInfo(const InterfaceInfo&) = delete;
  InterfaceInfo& operator=(const InterfaceInfo&) = delete;
  ~InterfaceInfo();

  const std::shared_ptr<TransportLayer>& getParent() const noexcept { return parent_; }
  const std::string& getID() const noexcept { return id_; }
  const std::string& getDisplayName() const noexcept { return displayName_; }
  const std::string& getTLType() const noexcept { return tlType_; }

  /** @throws GenTLException */
  std::shared_ptr<TLInterface> open();

 private:
  std::shared_ptr<TransportLayer> parent_;
  std::string id_;
  std::string displayName_;
  std::string tlType_;
};

}  // namespace GenTLCpp
