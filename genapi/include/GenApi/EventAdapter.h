/// Makes the data of device events readable through the event ports of a node map.
#pragma once

#include <memory>

#include "GenApi/INodeMap.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

class GENAPI_DECL CEventAdapter {
 public:
  explicit CEventAdapter(INodeMap* pNodeMap = nullptr);
  CEventAdapter(const CEventAdapter&) = delete;
  CEventAdapter& operator=(const CEventAdapter&) = delete;
  virtual ~CEventAdapter();

  void AttachNodeMap(INodeMap* pNodeMap);
  /// Called by the destructor too; the node map must still be there.
  void DetachNodeMap();
  virtual void DeliverMessage(const uint8_t msg[], uint32_t numBytes) = 0;

 protected:
  struct Ports;
  Ports& GetPorts() const { return *m_ports; }

 private:
  std::unique_ptr<Ports> m_ports;
};

}  // namespace GENAPI_NAMESPACE
