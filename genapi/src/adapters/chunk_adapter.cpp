// The chunk adapters: each chunk port of a node map gets a port of its own, onto its chunk of the attached buffer.
#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "GenApi/ChunkAdapterGeneric.h"
#include "GenApi/IChunkPort.h"
#include "adapters/hex_id.h"
#include "adapters/memory_port.h"

namespace GENAPI_NAMESPACE {

using GenApiEngine::MemoryPort;
using GenApiEngine::normalizedId;

namespace {

// An ID that another node holds may be unreadable for a while; the port has no chunk then.
std::string idOf(const IChunkPort& port) {
  try {
    return normalizedId(port.GetChunkID());
  } catch (...) {
    return {};
  }
}

bool isChunkPort(INode& node, const IChunkPort& port) {
  GENICAM_NAMESPACE::gcstring name;
  GENICAM_NAMESPACE::gcstring attribute;
  return node.GetProperty("pChunkID", name, attribute) || !port.GetChunkID().empty();
}

}  // namespace

struct CChunkAdapter::Ports {
  struct Chunk {
    std::string id;
    ptrdiff_t offset;
    size_t length;
  };
  struct Port {
    INode* node;
    IChunkPort* chunk;
    ptrdiff_t offset = 0;
    std::unique_ptr<MemoryPort> memory = std::make_unique<MemoryPort>();
  };

  INodeMap* nodeMap = nullptr;
  int64_t maxCacheSize = -1;
  std::vector<Port> ports;

  Ports() = default;
  Ports(const Ports&) = delete;
  Ports& operator=(const Ports&) = delete;
  ~Ports() {
    try {
      detachAll();
    } catch (...) {  // NOLINT(bugprone-empty-catch)
      // A callback that throws; nothing can be told to anyone here.
    }
  }

  void detachAll() {
    if (nodeMap == nullptr)
      return;
    // They hold the memory until the node map has let go of it.
    const std::vector<Port> detached = std::exchange(ports, {});
    std::vector<INode*> portNodes;
    std::ranges::transform(detached, std::back_inserter(portNodes), &Port::node);
    GenApiEngine::disconnect(*std::exchange(nodeMap, nullptr), portNodes);
  }

  bool mayKeep(const Port& port) const {
    return port.chunk->CacheChunkData() == Yes &&
           (maxCacheSize < 0 || port.memory->size() <= static_cast<uint64_t>(maxCacheSize));
  }

  // Changes ports under the map's lock; afterwards, without it, invalidates those for which the change returned true.
  template<class Change>
  void change(Change&& changePort) {
    if (nodeMap == nullptr)
      return;
    std::vector<INode*> changed;
    {
      const AutoLock lock(nodeMap->GetLock());
      for (Port& port : ports) {
        if (changePort(port))
          changed.push_back(port.node);
      }
    }
    for (INode* const node : changed)
      node->InvalidateNode();
  }

  void attach(const uint8_t* buffer, const std::vector<Chunk>& chunks, AttachStatistics_t* statistics) {
    AttachStatistics_t counted = {static_cast<int>(ports.size()), static_cast<int>(chunks.size()), 0};
    change([&](Port& port) {
      const std::string wanted = idOf(*port.chunk);
      const auto chunk = std::ranges::find_if(chunks, [&](const Chunk& c) { return c.id == wanted; });
      if (wanted.empty() || chunk == chunks.end())
        return leave(port);
      port.offset = chunk->offset;
      port.memory->attach(buffer + chunk->offset, chunk->length);
      ++counted.NumAttachedChunks;
      return true;
    });
    if (statistics != nullptr)
      *statistics = counted;
  }

  // Lets go of the buffer; whether the port changed by that.
  bool leave(Port& port) const {
    if (!port.memory->isAttached() || port.memory->ownsData())
      return false;
    if (mayKeep(port)) {
      port.memory->keepCopy();
      return false;
    }
    port.memory->detach();
    return true;
  }
};

CChunkAdapter::CChunkAdapter(INodeMap* pNodeMap, int64_t MaxChunkCacheSize) : m_ports(std::make_unique<Ports>()) {
  m_ports->maxCacheSize = MaxChunkCacheSize;
  if (pNodeMap != nullptr)
    AttachNodeMap(pNodeMap);
}

CChunkAdapter::~CChunkAdapter() = default;

void CChunkAdapter::AttachNodeMap(INodeMap* pNodeMap) {
  DetachNodeMap();
  if (pNodeMap == nullptr)
    return;
  m_ports->nodeMap = pNodeMap;
  NodeList_t nodes;
  pNodeMap->GetNodes(nodes);
  for (INode* const node : nodes) {
    if (node->GetPrincipalInterfaceType() != intfIPort)
      continue;
    auto* const chunkPort = dynamic_cast<IChunkPort*>(node);
    if (chunkPort == nullptr || !isChunkPort(*node, *chunkPort))
      continue;
    // Kept before it is connected: a callback may throw then.
    pNodeMap->Connect(m_ports->ports.emplace_back(Ports::Port{node, chunkPort}).memory.get(), node->GetName());
  }
}

void CChunkAdapter::DetachNodeMap() {
  m_ports->detachAll();
}

void CChunkAdapter::DetachBuffer() {
  m_ports->change([this](Ports::Port& port) { return m_ports->leave(port); });
}

void CChunkAdapter::UpdateBuffer(uint8_t* pBaseAddress) {
  m_ports->change([pBaseAddress](Ports::Port& port) {
    if (!port.memory->isAttached() || port.memory->ownsData())
      return false;
    port.memory->attach(pBaseAddress + port.offset, port.memory->size());
    return true;
  });
}

void CChunkAdapter::ClearCaches() {
  m_ports->change([](Ports::Port& port) {
    if (!port.memory->isAttached() || !port.memory->ownsData())
      return false;
    port.memory->detach();
    return true;
  });
}

bool CChunkAdapterGeneric::CheckBufferLayout(uint8_t* /*pBuffer*/, int64_t /*BufferLength*/) {
  return false;
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* /*pBuffer*/, int64_t /*BufferLength*/,
                                        AttachStatistics_t* /*pAttachStatistics*/) {
  throw RUNTIME_EXCEPTION("The chunks of a buffer of unknown layout must be given as a list");
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkData_t* pChunkData, int64_t NumChunks,
                                        AttachStatistics_t* pAttachStatistics) {
  std::vector<Ports::Chunk> chunks;
  for (const SingleChunkData_t* chunk = pChunkData; chunk < pChunkData + NumChunks; ++chunk)
    chunks.push_back({normalizedId(chunk->ChunkID), chunk->ChunkOffset, chunk->ChunkLength});
  GetPorts().attach(pBuffer, chunks, pAttachStatistics);
}

void CChunkAdapterGeneric::AttachBuffer(uint8_t* pBuffer, SingleChunkDataStr_t* pChunkData, int64_t NumChunks,
                                        AttachStatistics_t* pAttachStatistics) {
  std::vector<Ports::Chunk> chunks;
  for (const SingleChunkDataStr_t* chunk = pChunkData; chunk < pChunkData + NumChunks; ++chunk)
    chunks.push_back({normalizedId(chunk->ChunkID), chunk->ChunkOffset, chunk->ChunkLength});
  GetPorts().attach(pBuffer, chunks, pAttachStatistics);
}

}  // namespace GENAPI_NAMESPACE
