/// Arrays of numbers whose copies share the same elements.
#pragma once

#include <memory>
#include <vector>

#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

template<class T>
class AutovectorT {
 public:
  AutovectorT() = default;
  explicit AutovectorT(size_t n) : m_items(std::make_shared<std::vector<T>>(n)) {}

  T& operator[](size_t index) { return (*m_items)[index]; }
  const T& operator[](size_t index) const { return (*m_items)[index]; }
  size_t size() const { return m_items ? m_items->size() : 0; }

 private:
  std::shared_ptr<std::vector<T>> m_items;
};

class GENAPI_DECL int64_autovector_t : public AutovectorT<int64_t> {
 public:
  using AutovectorT::AutovectorT;
};

class GENAPI_DECL double_autovector_t : public AutovectorT<double> {
 public:
  using AutovectorT::AutovectorT;
};

}  // namespace GENAPI_NAMESPACE
