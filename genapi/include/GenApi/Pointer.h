/// Smart pointers to the interfaces of a node: they find the interface and refuse to be followed when it is not there.
#pragma once

#include <type_traits>

#include "Base/GCException.h"
#include "GenApi/IBase.h"

namespace GENAPI_NAMESPACE {

/// Finds the interface T of an object; null if it has none.
template<class T, class B>
T* InterfaceCast(B* pB) {
  if (pB == nullptr)
    return nullptr;
  if constexpr (InterfaceNumber<T>::value >= 0 && std::is_base_of_v<IBase, B>) {
    void* found = nullptr;
    if (pB->FindInterface(InterfaceNumber<T>::value, &found))
      return static_cast<T*>(found);
  }
  return dynamic_cast<T*>(pB);
}

/// A borrowed pointer; invalid when the object is null or lacks the interface.
///
/// Following an invalid pointer throws LogicalErrorException "NULL pointer dereferenced", and so does its conversion to
/// T*.
template<class T, class B = IBase>
class CPointer {
 public:
  CPointer() = default;
  CPointer(B* pB) : m_pT(InterfaceCast<T>(pB)) {}
  /// From an interface derived from B, which knows the way itself.
  template<class D, std::enable_if_t<std::is_base_of_v<B, D> && !std::is_same_v<B, D>, int> = 0>
  CPointer(D* pD) : m_pT(InterfaceCast<T>(pD)) {}

  void operator=(B* pB) { m_pT = InterfaceCast<T>(pB); }  // NOLINT(misc-unconventional-assign-operator)
  operator T*() const { return Checked(); }
  T& operator*() const { return *Checked(); }
  T& operator()() const { return *Checked(); }
  T* operator->() const { return Checked(); }
  bool IsValid() const noexcept { return m_pT != nullptr; }
  operator bool() const noexcept { return m_pT != nullptr; }
  bool operator==(T* pT) const { return m_pT == pT; }
  bool operator==(const CPointer& rT) const { return m_pT == rT.m_pT; }
  /// For comparison with NULL, whose type differs between compilers.
  template<class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
  bool operator==(Integer nMustBeNull) const {
    if (nMustBeNull != 0)
      throw LOGICAL_ERROR_EXCEPTION("argument must be NULL");
    return m_pT == nullptr;
  }

 protected:
  T* m_pT = nullptr;

 private:
  T* Checked() const {
    if (m_pT == nullptr)
      throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
    return m_pT;
  }
};

typedef CPointer<IBase> CBasePtr;

}  // namespace GENAPI_NAMESPACE
