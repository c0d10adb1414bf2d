/// A base for ports that applications write: override GetAccessMode, Read and Write.
#pragma once

#include "GenApi/INode.h"
#include "GenApi/IPortConstruct.h"
#include "GenApi/IPortRecorder.h"

namespace GENAPI_NAMESPACE {

class GENAPI_DECL CPortImpl : public IPortConstruct, public IPortReplay {
 public:
  CPortImpl() = default;
  CPortImpl(const CPortImpl&) = delete;
  CPortImpl& operator=(const CPortImpl&) = delete;
  ~CPortImpl() override = default;

  EAccessMode GetAccessMode() const override = 0;
  void Read(void* pBuffer, int64_t Address, int64_t Length) override = 0;
  void Write(const void* pBuffer, int64_t Address, int64_t Length) override = 0;

  /// Called by the node map on connecting, with the Port node; null on disconnecting.
  void SetPortImpl(IPort* pPort) override { m_ptrPort = pPort; }
  EYesNo GetSwapEndianess() override { return No; }
  /// Drops the caches of all registers behind the port.
  void InvalidateNode() {
    if (INode* const node = dynamic_cast<INode*>(m_ptrPort))
      node->InvalidateNode();
  }
  void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override {
    if (pPortRecorder == nullptr)
      return;
    pPortRecorder->Replay(this);
    if (Invalidate)
      InvalidateNode();
  }

 private:
  IPort* m_ptrPort = nullptr;
};

}  // namespace GENAPI_NAMESPACE
