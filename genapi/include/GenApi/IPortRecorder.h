/// Recording the writes to a port and playing them back.
#pragma once

#include "GenApi/IPort.h"
#include "GenApi/Pointer.h"

namespace GENAPI_NAMESPACE {

struct GENAPI_DECL_ABSTRACT IPortWriteList {
  virtual ~IPortWriteList() = default;
  virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
  virtual void Replay(IPort* pPort) = 0;
  virtual void SetCookie(const int64_t Value) = 0;
  virtual int64_t GetCookie() = 0;
};

struct GENAPI_DECL_ABSTRACT IPortReplay : virtual public IPort {
  /// @param Invalidate  drop all caches behind the port afterwards
  virtual void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) = 0;
};

struct GENAPI_DECL_ABSTRACT IPortRecorder : virtual public IPortReplay {
  virtual void StartRecording(IPortWriteList* pPortRecorder) = 0;
  virtual void StopRecording() = 0;
};

typedef CPointer<IPortReplay> CPortReplayPtr;
typedef CPointer<IPortRecorder> CPortRecorderPtr;
typedef CPointer<IPortWriteList, IPortWriteList> CPortWriteListPtr;

}  // namespace GENAPI_NAMESPACE
