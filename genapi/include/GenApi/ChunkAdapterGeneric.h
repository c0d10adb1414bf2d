/// A chunk adapter for buffers whose chunks the producer lists.
#pragma once

#include "GenApi/ChunkAdapter.h"

namespace GENAPI_NAMESPACE {

struct SingleChunkData_t {
  uint64_t ChunkID;
  ptrdiff_t ChunkOffset;
  size_t ChunkLength;
};

struct SingleChunkDataStr_t {
  GENICAM_NAMESPACE::gcstring ChunkID;  ///< hexadecimal, as in the description
  ptrdiff_t ChunkOffset;
  size_t ChunkLength;
};

class GENAPI_DECL CChunkAdapterGeneric : public CChunkAdapter {
 public:
  using CChunkAdapter::CChunkAdapter;

  /// A buffer alone does not tell its chunks: false.
  bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) override;
  /// Throws RuntimeException.
  void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength, AttachStatistics_t* pAttachStatistics = nullptr) override;
  void AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* pChunkData, int64_t NumChunks,
                    AttachStatistics_t* pAttachStatistics = nullptr);
  void AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* pChunkData, int64_t NumChunks,
                    AttachStatistics_t* pAttachStatistics = nullptr);
};

}  // namespace GENAPI_NAMESPACE
