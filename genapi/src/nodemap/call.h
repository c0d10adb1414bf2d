// The frames around every call of an application into a node: lock, entry point, and what a write has to do at its end.
#pragma once

#include "nodemap/node_map.h"

namespace GenApiEngine {

/// Remembers the outermost call while it lasts; the lock is held already.
class Frame {
 public:
  Frame(const NodeCore& node, const char* method) : map_(node.map()) {
    if (map_.callDepth_++ == 0) {
      map_.entryNode_ = &node;
      map_.entryMethod_ = method;
      map_.steps_ = 0;
    }
  }
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;
  ~Frame() { --map_.callDepth_; }

 private:
  NodeMap& map_;
};

/// Holds the lock during one call and remembers the outermost one.
class Call {
 public:
  Call(const NodeCore& node, const char* method) : lock_(node.map().GetLock()), frame_(node, method) {}

 private:
  Api::AutoLock lock_;
  Frame frame_;
};

/// One call that changes values. finish() ends it well: caches fall, errors are checked, callbacks are called, the
/// second kind after the lock is released. Without it, after an exception, only the caches fall.
class WriteCall {
 public:
  WriteCall(NodeCore& node, const char* method);
  WriteCall(const WriteCall&) = delete;
  WriteCall& operator=(const WriteCall&) = delete;
  ~WriteCall();

  void finish(bool verify);

 private:
  void leave();

  NodeCore& node_;
  NodeMap& map_;
  std::size_t dueBefore_ = 0;  // callbacks that an outer call still owes
  bool locked_ = true;
  bool dropped_ = false;
};

}  // namespace GenApiEngine
