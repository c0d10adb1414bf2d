/// All nodes of a device.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/INode.h"
#include "GenApi/IPort.h"
#include "GenApi/IPortStacked.h"
#include "GenApi/NodeWriteConcatenator.h"
#include "GenApi/Pointer.h"
#include "GenApi/Synch.h"

namespace GENAPI_NAMESPACE {

/// Made by CNodeMapFactory; ended by IDestroy::Destroy, which the same object offers.
struct GENAPI_DECL_ABSTRACT INodeMap {
  virtual void GetNodes(NodeList_t& Nodes) const = 0;
  /// Null if there is no such node. The name may carry a name space: "Std::Gain".
  virtual INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const = 0;
  virtual void InvalidateNodes() const = 0;
  /// The caller keeps the port and outlives the map with it, or disconnects it by connecting null.
  /// False if there is no Port node of that name.
  virtual bool Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const = 0;
  virtual bool Connect(IPort* pPort) const = 0;
  virtual bool Connect(IPortStacked* pPort, const GENICAM_NAMESPACE::gcstring& PortName) = 0;
  virtual bool Connect(IPortStacked* pPort) = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDeviceName() = 0;
  /// @param ElapsedTime  milliseconds since the call before
  virtual void Poll(int64_t ElapsedTime) = 0;
  virtual CLock& GetLock() const = 0;
  virtual uint64_t GetNumNodes() const = 0;
  /// Compiles all formulas; false, with the reasons in the list, if one is wrong.
  virtual bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const = 0;
  virtual CNodeWriteConcatenator* NewNodeWriteConcatenator() const = 0;
  virtual bool ConcatenatedWrite(CNodeWriteConcatenator* pConcatenator, bool featureStreaming = true,
                                 GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) = 0;
  /// As GetNode, for a name that lies somewhere else than in a string of this type: nothing is copied.
  virtual INode* FindNode(const char* Name, size_t Length) const {
    return GetNode(GENICAM_NAMESPACE::gcstring(Name, Length));
  }

 protected:
  ~INodeMap() = default;
};

typedef CPointer<INodeMap, INodeMap> CNodeMapPtr;

}  // namespace GENAPI_NAMESPACE
