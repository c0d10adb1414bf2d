/// A port whose registers lie in a chunk of a buffer.
#pragma once

#include "GenApi/IPort.h"
#include "GenApi/Pointer.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IChunkPort : virtual public IPort {
  virtual GENICAM_NAMESPACE::gcstring GetChunkID() const = 0;
  /// Yes: the data is kept when the buffer is detached.
  virtual EYesNo CacheChunkData() const = 0;
};

typedef CPointer<IChunkPort> CChunkPortPtr;

}  // namespace GENAPI_NAMESPACE
