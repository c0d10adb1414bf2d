// The event adapters: the event ports of a node map get the data of each event that is delivered.
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "GenApi/EventAdapterGeneric.h"
#include "adapters/hex_id.h"
#include "adapters/memory_port.h"

namespace GENAPI_NAMESPACE {

using GenApiEngine::MemoryPort;
using GenApiEngine::normalizedId;

struct CEventAdapter::Ports {
  struct Event {
    std::vector<std::unique_ptr<MemoryPort>> ports;
    std::vector<INode*> portNodes;
    // What is invalidated on delivery: the nodes of the event that do not depend on another one of it.
    std::vector<INode*> sources;
  };

  INodeMap* nodeMap = nullptr;
  std::map<std::string, Event> events;

  Ports() = default;
  Ports(const Ports&) = delete;
  Ports& operator=(const Ports&) = delete;
  ~Ports() {
    try {
      detach();
    } catch (...) {  // NOLINT(bugprone-empty-catch)
      // A callback that throws; nothing can be told to anyone here.
    }
  }

  void attach(INodeMap* map) {
    nodeMap = map;
    std::map<std::string, std::vector<INode*>> nodesOf;
    NodeList_t nodes;
    map->GetNodes(nodes);
    for (INode* const node : nodes) {
      if (const std::string id = normalizedId(node->GetEventID()); !id.empty())
        nodesOf[id].push_back(node);
    }
    for (const auto& [id, members] : nodesOf) {
      Event& event = events[id];
      for (INode* const node : members) {
        if (node->GetPrincipalInterfaceType() != intfIPort)
          continue;
        // Kept before it is connected: a callback may throw then.
        event.portNodes.push_back(node);
        map->Connect(event.ports.emplace_back(std::make_unique<MemoryPort>()).get(), node->GetName());
      }
      event.sources = sourcesAmong(members, event.portNodes);
    }
  }

  // Ports come first, as most nodes of an event depend on its port.
  static std::vector<INode*> sourcesAmong(std::vector<INode*> members, const std::vector<INode*>& portNodes) {
    std::ranges::stable_partition(members,
                                  [&](INode* node) { return std::ranges::find(portNodes, node) != portNodes.end(); });
    std::vector<INode*> sources;
    std::set<INode*> reached;
    for (INode* const node : members) {
      if (reached.contains(node))
        continue;
      sources.push_back(node);
      NodeList_t dependents;
      node->GetChildren(dependents, ctDependingNodes);
      reached.insert(dependents.begin(), dependents.end());
    }
    return sources;
  }

  void detach() {
    if (nodeMap == nullptr)
      return;
    // They hold the ports until the node map has let go of them.
    const auto detached = std::exchange(events, {});
    std::vector<INode*> portNodes;
    for (const auto& [id, event] : detached)
      portNodes.insert(portNodes.end(), event.portNodes.begin(), event.portNodes.end());
    GenApiEngine::disconnect(*std::exchange(nodeMap, nullptr), portNodes);
  }

  void deliver(const uint8_t* data, uint32_t size, const std::string& id) {
    const auto found = events.find(id);
    if (nodeMap == nullptr || found == events.end())
      return;
    {
      const AutoLock lock(nodeMap->GetLock());
      for (const auto& port : found->second.ports)
        port->attachCopy(data, size);
    }
    for (INode* const node : found->second.sources)
      node->InvalidateNode();
  }
};

CEventAdapter::CEventAdapter(INodeMap* pNodeMap) : m_ports(std::make_unique<Ports>()) {
  if (pNodeMap != nullptr)
    AttachNodeMap(pNodeMap);
}

CEventAdapter::~CEventAdapter() = default;

void CEventAdapter::AttachNodeMap(INodeMap* pNodeMap) {
  DetachNodeMap();
  if (pNodeMap != nullptr)
    m_ports->attach(pNodeMap);
}

void CEventAdapter::DetachNodeMap() {
  m_ports->detach();
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t* /*msg*/, uint32_t /*numBytes*/) {
  throw RUNTIME_EXCEPTION("The ID of the event must be given");
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes,
                                          const GENICAM_NAMESPACE::gcstring& EventID) {
  GetPorts().deliver(msg, numBytes, normalizedId(EventID));
}

void CEventAdapterGeneric::DeliverMessage(const uint8_t msg[], uint32_t numBytes, uint64_t EventID) {
  GetPorts().deliver(msg, numBytes, normalizedId(EventID));
}

}  // namespace GENAPI_NAMESPACE
