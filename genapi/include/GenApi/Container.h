/// Lists of nodes and of values.
#pragma once

#include "Base/GCObjectVector.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct INode;
struct IValue;

class GENAPI_DECL node_vector : public GENICAM_NAMESPACE::GCObjectVector<INode*> {
 public:
  using GCObjectVector::GCObjectVector;
};

class GENAPI_DECL value_vector : public GENICAM_NAMESPACE::GCObjectVector<IValue*> {
 public:
  using GCObjectVector::GCObjectVector;
};

typedef node_vector NodeList_t;
typedef value_vector FeatureList_t;

}  // namespace GENAPI_NAMESPACE
