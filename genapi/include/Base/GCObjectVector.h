/// The vector that gcstring_vector, node_vector and value_vector share: a std::vector with positions by index as well.
#pragma once

#include <utility>
#include <vector>

#include "Base/GCTypes.h"

namespace GENICAM_NAMESPACE {

template<class T>
class GCObjectVector {
 public:
  typedef typename std::vector<T>::iterator iterator;
  typedef typename std::vector<T>::const_iterator const_iterator;
  typedef T value_type;
  typedef T& reference;
  typedef const T& const_reference;
  typedef size_t size_type;

  GCObjectVector() = default;
  explicit GCObjectVector(size_t count) : m_items(count) {}
  GCObjectVector(size_t count, const T& value) : m_items(count, value) {}
  GCObjectVector(const GCObjectVector&) = default;
  GCObjectVector(GCObjectVector&&) noexcept = default;
  GCObjectVector& operator=(const GCObjectVector&) = default;
  GCObjectVector& operator=(GCObjectVector&&) noexcept = default;
  virtual ~GCObjectVector() = default;

  void assign(size_t count, const T& value) { m_items.assign(count, value); }
  void clear() { m_items.clear(); }
  iterator erase(iterator position) { return m_items.erase(position); }
  void erase(size_t index) { m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index)); }
  /// Throws std::out_of_range behind the end.
  T& at(size_t index) { return m_items.at(index); }
  const T& at(size_t index) const { return m_items.at(index); }
  T& back() { return m_items.back(); }
  const T& back() const { return m_items.back(); }
  iterator begin() { return m_items.begin(); }
  const_iterator begin() const { return m_items.begin(); }
  size_t capacity() const { return m_items.capacity(); }
  iterator end() { return m_items.end(); }
  const_iterator end() const { return m_items.end(); }
  T& front() { return m_items.front(); }
  const T& front() const { return m_items.front(); }
  size_t max_size() const { return m_items.max_size(); }
  size_t size() const { return m_items.size(); }
  iterator insert(iterator position, const T& value) { return m_items.insert(position, value); }
  void insert(size_t index, const T& value) {
    m_items.insert(m_items.begin() + static_cast<std::ptrdiff_t>(index), value);
  }
  bool empty() const { return m_items.empty(); }
  void pop_back() { m_items.pop_back(); }
  void push_back(const T& value) { m_items.push_back(value); }
  void push_back(T&& value) { m_items.push_back(std::move(value)); }
  void resize(size_t count, const T& value = T()) { m_items.resize(count, value); }
  void reserve(size_t count) { m_items.reserve(count); }
  T& operator[](size_t index) { return m_items[index]; }
  const T& operator[](size_t index) const { return m_items[index]; }

 private:
  std::vector<T> m_items;
};

}  // namespace GENICAM_NAMESPACE
