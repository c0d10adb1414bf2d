/// A list of writes that INodeMap::ConcatenatedWrite performs together.
#pragma once

#include <utility>
#include <vector>

#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

class GENAPI_DECL CNodeWriteConcatenator {
 public:
  void Add(const GENICAM_NAMESPACE::gcstring& NodeName, const GENICAM_NAMESPACE::gcstring& Value) {
    m_writes.emplace_back(NodeName, Value);
  }
  void Clear() { m_writes.clear(); }
  void Destroy() { delete this; }
  const std::vector<std::pair<GENICAM_NAMESPACE::gcstring, GENICAM_NAMESPACE::gcstring>>& GetWrites() const {
    return m_writes;
  }

 private:
  std::vector<std::pair<GENICAM_NAMESPACE::gcstring, GENICAM_NAMESPACE::gcstring>> m_writes;
};

}  // namespace GENAPI_NAMESPACE
