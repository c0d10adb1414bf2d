// The frames around every call of an application into a node: lock, entry point, and what a write has to do at its end.
#pragma once

#include "nodemap/node_map.h"

namespace GenApiEngine {

/// Holds the lock during one call and remembers the outermost one.
class Call {
 public:
  Call(const NodeCore& node, const char* method) : map_(node.map()) {
    map_.lock_.Lock();
    if (map_.callDepth_++ == 0) {
      map_.entryNode_ = &node;
      map_.entryMethod_ = method;
      map_.steps_ = 0;
    }
  }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;
  ~Call() {
    --map_.callDepth_;
    map_.lock_.Unlock();
  }

 private:
  NodeMap& map_;
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
  bool locked_ = true;
  bool dropped_ = false;
};

}  // namespace GenApiEngine
