/// What every node of a node map offers, and the helpers that judge access modes.
#pragma once

#include "GenApi/Container.h"
#include "GenApi/IBase.h"
#include "GenApi/Pointer.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct INodeMap;
class CNodeCallback;
typedef intptr_t CallbackHandleType;

struct GENAPI_DECL_ABSTRACT INode : virtual public IBase {
  /// With FullQualified the name is prefixed by its name space: "Std::Gain".
  virtual GENICAM_NAMESPACE::gcstring GetName(bool FullQualified = false) const = 0;
  virtual ENameSpace GetNameSpace() const = 0;
  virtual EVisibility GetVisibility() const = 0;
  /// Drops the caches of the node and of all that depend on it, and fires their callbacks.
  virtual void InvalidateNode() = 0;
  virtual bool IsCachable() const = 0;
  virtual EYesNo IsAccessModeCacheable() const = 0;
  virtual ECachingMode GetCachingMode() const = 0;
  /// In milliseconds; -1 for a node that is not polled.
  virtual int64_t GetPollingTime() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetToolTip() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDescription() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDisplayName() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDeviceName() const = 0;
  virtual void GetChildren(NodeList_t& Children, ELinkType LinkType = ctReadingChildren) const = 0;
  virtual void GetParents(NodeList_t& Parents) const = 0;
  /// Takes ownership of the callback.
  virtual CallbackHandleType RegisterCallback(CNodeCallback* pCallback) = 0;
  /// Destroys the callback; false if the handle is not one of this node.
  virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
  virtual INodeMap* GetNodeMap() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetEventID() const = 0;
  virtual bool IsStreamable() const = 0;
  virtual void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector& PropertyNames) const = 0;
  /// Several values or attributes are joined by tabs, in the same order in both strings.
  virtual bool GetProperty(const GENICAM_NAMESPACE::gcstring& PropertyName, GENICAM_NAMESPACE::gcstring& ValueStr,
                           GENICAM_NAMESPACE::gcstring& AttributeStr) = 0;
  virtual void ImposeAccessMode(EAccessMode ImposedAccessMode) = 0;
  virtual void ImposeVisibility(EVisibility ImposedVisibility) = 0;
  virtual INode* GetAlias() const = 0;
  virtual INode* GetCastAlias() const = 0;
  virtual GENICAM_NAMESPACE::gcstring GetDocuURL() const = 0;
  virtual bool IsDeprecated() const = 0;
  virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
  /// Whether the node can be reached from the category Root.
  virtual bool IsFeature() const = 0;

  /// Declared again so that the question need not go through the virtual base.
  bool FindInterface(int Type, void** Interface) override { return IBase::FindInterface(Type, Interface); }
};

template<>
struct InterfaceNumber<INode> {
  static constexpr int value = kInterfaceINode;
};

typedef CPointer<INode> CNodePtr;

inline bool IsReadable(EAccessMode AccessMode) {
  return AccessMode == RW || AccessMode == RO;
}
inline bool IsReadable(const IBase* p) {
  return p != nullptr && IsReadable(p->GetAccessMode());
}
inline bool IsReadable(const IBase& r) {
  return IsReadable(r.GetAccessMode());
}
template<class T, class B>
bool IsReadable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsReadable(ptr->GetAccessMode());
}

inline bool IsWritable(EAccessMode AccessMode) {
  return AccessMode == RW || AccessMode == WO;
}
inline bool IsWritable(const IBase* p) {
  return p != nullptr && IsWritable(p->GetAccessMode());
}
inline bool IsWritable(const IBase& r) {
  return IsWritable(r.GetAccessMode());
}
template<class T, class B>
bool IsWritable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsWritable(ptr->GetAccessMode());
}

inline bool IsImplemented(EAccessMode AccessMode) {
  return AccessMode != NI;
}
inline bool IsImplemented(const IBase* p) {
  return p != nullptr && IsImplemented(p->GetAccessMode());
}
inline bool IsImplemented(const IBase& r) {
  return IsImplemented(r.GetAccessMode());
}
template<class T, class B>
bool IsImplemented(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsImplemented(ptr->GetAccessMode());
}

inline bool IsAvailable(EAccessMode AccessMode) {
  return AccessMode != NI && AccessMode != NA;
}
inline bool IsAvailable(const IBase* p) {
  return p != nullptr && IsAvailable(p->GetAccessMode());
}
inline bool IsAvailable(const IBase& r) {
  return IsAvailable(r.GetAccessMode());
}
template<class T, class B>
bool IsAvailable(const CPointer<T, B>& ptr) {
  return ptr.IsValid() && IsAvailable(ptr->GetAccessMode());
}

inline bool IsVisible(EVisibility Visibility, EVisibility MaxVisibility) {
  return Visibility <= MaxVisibility;
}
inline bool IsCacheable(ECachingMode CachingMode) {
  return CachingMode != NoCache;
}

/// What remains accessible where two access modes apply.
inline EAccessMode Combine(EAccessMode Peter, EAccessMode Paul) {
  if (Peter == NI || Paul == NI)
    return NI;
  if (Peter == NA || Paul == NA)
    return NA;
  if ((Peter == RO && Paul == WO) || (Peter == WO && Paul == RO))
    return NA;
  if (Peter == WO || Paul == WO)
    return WO;
  if (Peter == RO || Paul == RO)
    return RO;
  return RW;
}
/// The more restrictive visibility.
inline EVisibility Combine(EVisibility Peter, EVisibility Paul) {
  return Peter < Paul ? Paul : Peter;
}
inline ECachingMode Combine(ECachingMode Peter, ECachingMode Paul) {
  if (Peter == NoCache || Paul == NoCache)
    return NoCache;
  return Peter == WriteAround || Paul == WriteAround ? WriteAround : WriteThrough;
}

/// "IInteger", "ICategory", ...; "IBase" for an object that is no node.
GENAPI_DECL GENICAM_NAMESPACE::gcstring GetInterfaceName(IBase* pBase);

}  // namespace GENAPI_NAMESPACE
