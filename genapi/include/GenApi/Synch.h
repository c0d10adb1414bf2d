/// The lock of a node map.
#pragma once

#include <mutex>

#include "GenApi/GenApiDll.h"

namespace GENAPI_NAMESPACE {

/// A recursive lock. Every call on a node takes its map's lock; an application may hold it around several calls.
class GENAPI_DECL CLock {
 public:
  CLock() = default;
  CLock(const CLock&) = delete;
  CLock& operator=(const CLock&) = delete;
  ~CLock() = default;

  bool TryLock() { return m_mutex.try_lock(); }
  void Lock() { m_mutex.lock(); }
  void Unlock() { m_mutex.unlock(); }

 private:
  std::recursive_mutex m_mutex;
};

class GENAPI_DECL CLockEx : public CLock {};

/// Holds a lock during its life.
class GENAPI_DECL AutoLock {
 public:
  explicit AutoLock(CLock& lock) : m_lock(lock) { m_lock.Lock(); }
  AutoLock(const AutoLock&) = delete;
  AutoLock& operator=(const AutoLock&) = delete;
  ~AutoLock() { m_lock.Unlock(); }

 private:
  CLock& m_lock;
};

}  // namespace GENAPI_NAMESPACE
