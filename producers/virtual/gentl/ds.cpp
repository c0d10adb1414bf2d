// DS functions.
#include "gentl/call.h"
#include "modules/data_stream.h"

using namespace vcam;

namespace {
constexpr const char* kStreamWhat = "data stream";
}

GC_ERROR GC_CALLTYPE DSAnnounceBuffer(DS_HANDLE ds, void* memory, size_t size, void* priv, BUFFER_HANDLE* out) {
  return call(Function::DSAnnounceBuffer, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    require(out, "the buffer handle");
    *out = stream->announce(memory, size, priv);
  });
}

GC_ERROR GC_CALLTYPE DSAllocAndAnnounceBuffer(DS_HANDLE ds, size_t size, void* priv, BUFFER_HANDLE* out) {
  return call(Function::DSAllocAndAnnounceBuffer, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    require(out, "the buffer handle");
    *out = stream->allocateAndAnnounce(size, priv);
  });
}

GC_ERROR GC_CALLTYPE DSRevokeBuffer(DS_HANDLE ds, BUFFER_HANDLE buffer, void** memoryOut, void** privOut) {
  return call(Function::DSRevokeBuffer, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->revoke(buffer, memoryOut, privOut);
  });
}

GC_ERROR GC_CALLTYPE DSQueueBuffer(DS_HANDLE ds, BUFFER_HANDLE buffer) {
  return call(Function::DSQueueBuffer, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->queue(buffer);
  });
}

GC_ERROR GC_CALLTYPE DSFlushQueue(DS_HANDLE ds, ACQ_QUEUE_TYPE operation) {
  return call(Function::DSFlushQueue, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->flush(operation);
  });
}

GC_ERROR GC_CALLTYPE DSStartAcquisition(DS_HANDLE ds, ACQ_START_FLAGS flags, uint64_t numToAcquire) {
  return call(Function::DSStartAcquisition, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->start(flags, numToAcquire);
  });
}

GC_ERROR GC_CALLTYPE DSStopAcquisition(DS_HANDLE ds, ACQ_STOP_FLAGS flags) {
  return call(Function::DSStopAcquisition, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->stop(flags);
  });
}

GC_ERROR GC_CALLTYPE DSGetInfo(DS_HANDLE ds, STREAM_INFO_CMD cmd, INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::DSGetInfo, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    answer(stream->info(cmd), cmd, type, buf, size);
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferID(DS_HANDLE ds, uint32_t index, BUFFER_HANDLE* out) {
  return call(Function::DSGetBufferID, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    require(out, "the buffer handle");
    *out = stream->bufferAt(index);
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferInfo(DS_HANDLE ds, BUFFER_HANDLE buffer, BUFFER_INFO_CMD cmd, INFO_DATATYPE* type,
                                     void* buf, size_t* size) {
  // A buffer is never open without its stream, so the stream needs no look-up of its own.
  return call(Function::DSGetBufferInfo, [&] { BufferRecord::answer(ds, buffer, cmd, type, buf, size); });
}

GC_ERROR GC_CALLTYPE DSClose(DS_HANDLE ds) {
  return call(Function::DSClose, [&] { Module::close(ds, kStream, kStreamWhat); });
}

GC_ERROR GC_CALLTYPE DSGetBufferChunkData(DS_HANDLE ds, BUFFER_HANDLE buffer, SINGLE_CHUNK_DATA* chunks,
                                          size_t* count) {
  return call(Function::DSGetBufferChunkData, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    stream->chunkData(buffer, chunks, count);
  });
}

GC_ERROR GC_CALLTYPE DSGetParentDev(DS_HANDLE ds, DEV_HANDLE* out) {
  return call(Function::DSGetParentDev, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    store(out, stream->deviceHandle(), "the device handle");
  });
}

GC_ERROR GC_CALLTYPE DSGetNumBufferParts(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t* count) {
  return call(Function::DSGetNumBufferParts, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    require(count, "the count");
    *count = stream->partCount(buffer);
  });
}

GC_ERROR GC_CALLTYPE DSGetBufferPartInfo(DS_HANDLE ds, BUFFER_HANDLE buffer, uint32_t part, BUFFER_PART_INFO_CMD cmd,
                                         INFO_DATATYPE* type, void* buf, size_t* size) {
  return call(Function::DSGetBufferPartInfo, [&] {
    const Pin<DataStream> stream(ds, kStream, kStreamWhat);
    answer(stream->partInfo(buffer, part, cmd), cmd, type, buf, size);
  });
}
