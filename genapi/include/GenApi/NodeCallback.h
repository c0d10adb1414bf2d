/// Callbacks of nodes: called whenever a node may have changed.
#pragma once

#include <type_traits>
#include <utility>

#include "GenApi/INode.h"

namespace GENAPI_NAMESPACE {

typedef enum _ECallbackType {  // NOLINT(bugprone-reserved-identifier)
  cbPostInsideLock = 1,        ///< while the node map is locked
  cbPostOutsideLock = 2        ///< after its lock was released
} ECallbackType;

/// One registration at one node. The node owns it, calls it once in each phase, and destroys it.
class GENAPI_DECL_ABSTRACT CNodeCallback {
 public:
  explicit CNodeCallback(INode* pNode, ECallbackType CallbackType) : m_pNode(pNode), m_CallbackType(CallbackType) {}
  CNodeCallback(const CNodeCallback&) = delete;
  CNodeCallback& operator=(const CNodeCallback&) = delete;
  virtual ~CNodeCallback() = default;

  /// Does something only in the phase that it was made for.
  virtual void operator()(ECallbackType CallbackType) const = 0;
  virtual void Destroy() = 0;
  INode* GetNode() { return m_pNode; }

 protected:
  INode* m_pNode;
  ECallbackType m_CallbackType;
};

template<class Function>
class Function_NodeCallback : public CNodeCallback {
 public:
  Function_NodeCallback(INode* pNode, const Function& function, ECallbackType CallbackType)
      : CNodeCallback(pNode, CallbackType),
        m_Function(function) {}

  void operator()(ECallbackType CallbackType) const override {
    if (CallbackType != m_CallbackType)
      return;
    if constexpr (std::is_constructible_v<bool, Function&>) {
      if (!static_cast<bool>(m_Function))
        return;
    }
    m_Function(m_pNode);
  }
  void Destroy() override { delete this; }

 private:
  mutable Function m_Function;
};

template<class Client, class Member>
class Member_NodeCallback : public CNodeCallback {
 public:
  Member_NodeCallback(INode* pNode, Client& client, Member member, ECallbackType CallbackType)
      : CNodeCallback(pNode, CallbackType),
        m_Client(client),
        m_Member(member) {}

  void operator()(ECallbackType CallbackType) const override {
    if (CallbackType == m_CallbackType && m_Member != nullptr)
      (m_Client.*m_Member)(m_pNode);
  }
  void Destroy() override { delete this; }

 private:
  Client& m_Client;
  Member m_Member;
};

template<class Function>
CNodeCallback* make_NodeCallback(INode* pNode, Function function, ECallbackType CallbackType) {
  return new Function_NodeCallback<Function>(pNode, function, CallbackType);
}

template<class Client, class Member>
CNodeCallback* make_NodeCallback(INode* pNode, Client& client, Member member, ECallbackType CallbackType) {
  return new Member_NodeCallback<Client, Member>(pNode, client, member, CallbackType);
}

template<class Function>
intptr_t Register(INode* pNode, Function f, ECallbackType CallbackType = cbPostInsideLock) {
  return pNode->RegisterCallback(make_NodeCallback(pNode, f, CallbackType));
}

/// @param m  void (Client::*)(INode*)
template<class Client, class Member>
intptr_t Register(INode* pNode, Client& c, Member m, ECallbackType CallbackType = cbPostInsideLock) {
  return pNode->RegisterCallback(make_NodeCallback(pNode, c, m, CallbackType));
}

/// Ends a registration; the handle is that of Register or INode::RegisterCallback, and ends with it.
inline void Deregister(CallbackHandleType hCallback) {
  if (CNodeCallback* const callback = reinterpret_cast<CNodeCallback*>(hCallback))  // NOLINT(performance-no-int-to-ptr)
    callback->GetNode()->DeregisterCallback(hCallback);
}

}  // namespace GENAPI_NAMESPACE
