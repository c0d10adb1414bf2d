/// Makes the chunks of a buffer readable through the chunk ports of a node map.
#pragma once

#include <memory>

#include "GenApi/INodeMap.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

struct AttachStatistics_t {
  int NumChunkPorts;      ///< of the node map
  int NumChunks;          ///< in the buffer
  int NumAttachedChunks;  ///< chunks with a port
};

/// Splits buffers into chunks and hands each to the port of the same chunk ID. The buffer stays the caller's and must
/// stay until it is detached.
class GENAPI_DECL CChunkAdapter {
 public:
  /// @param MaxChunkCacheSize  largest chunk that a port keeps a copy of; negative for any size
  explicit CChunkAdapter(INodeMap* pNodeMap = nullptr, int64_t MaxChunkCacheSize = -1);
  CChunkAdapter(const CChunkAdapter&) = delete;
  CChunkAdapter& operator=(const CChunkAdapter&) = delete;
  virtual ~CChunkAdapter();

  void AttachNodeMap(INodeMap* pNodeMap);
  /// Called by the destructor too; the node map must still be there.
  void DetachNodeMap();
  virtual bool CheckBufferLayout(uint8_t* pBuffer, int64_t BufferLength) = 0;
  virtual void AttachBuffer(uint8_t* pBuffer, int64_t BufferLength,
                            AttachStatistics_t* pAttachStatistics = nullptr) = 0;
  void DetachBuffer();
  /// The next buffer with the same layout as the one attached.
  void UpdateBuffer(uint8_t* pBaseAddress);
  void ClearCaches();

 protected:
  struct Ports;
  Ports& GetPorts() const { return *m_ports; }

 private:
  std::unique_ptr<Ports> m_ports;
};

}  // namespace GENAPI_NAMESPACE
