// A module that a rule opens.
#pragma once

#include <utility>

#include "check/producer_functions.h"

namespace tool::check {

/// Closes the module at the end of the rule that opened it, however that ends; unless the rule did so itself.
class Opened {
 public:
  /// What closes modules of this kind. All handles are of one type.
  using Close = Function<PTLClose>;

  explicit Opened(const Close& close) : close_(close) {}
  ~Opened() {
    if (handle != nullptr)
      close_(handle);
  }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  /// For whoever closes it himself.
  void* release() { return std::exchange(handle, nullptr); }

  void* handle = nullptr;

 private:
  const Close& close_;
};

}  // namespace tool::check
