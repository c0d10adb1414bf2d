/// gcstring_vector: a list of strings.
#pragma once

#include <algorithm>

#include "Base/GCObjectVector.h"
#include "Base/GCString.h"

namespace GENICAM_NAMESPACE {

class GCBASE_API gcstring_vector : public GCObjectVector<gcstring> {
 public:
  using GCObjectVector<gcstring>::GCObjectVector;
  bool contains(const gcstring& str) const { return std::find(begin(), end(), str) != end(); }
};

}  // namespace GENICAM_NAMESPACE
