// One row for each kind of node.
#include "nodes/node_factory.h"

#include <array>

#include "nodemap/node_map.h"
#include "nodes/boolean_node.h"
#include "nodes/category_node.h"
#include "nodes/command_node.h"
#include "nodes/converter_node.h"
#include "nodes/enum_entry_node.h"
#include "nodes/enumeration_node.h"
#include "nodes/float_node.h"
#include "nodes/float_reg_node.h"
#include "nodes/inert_nodes.h"
#include "nodes/int_converter_node.h"
#include "nodes/int_reg_node.h"
#include "nodes/int_swiss_knife_node.h"
#include "nodes/integer_node.h"
#include "nodes/masked_int_reg_node.h"
#include "nodes/plain_node.h"
#include "nodes/port_node.h"
#include "nodes/raw_register_node.h"
#include "nodes/string_node.h"
#include "nodes/string_reg_node.h"
#include "nodes/swiss_knife_node.h"

namespace GenApiEngine {
namespace {

struct Kind {
  NodeKind kind;
  std::size_t size;
  NodeCore* (*make)(NodeMap& map, NodeIndex index);
};

template<class T>
constexpr Kind kindOf(NodeKind kind) {
  return {kind, sizeof(T), [](NodeMap& map, NodeIndex index) -> NodeCore* {
            return new (map.arena().allocate(sizeof(T), alignof(T))) T(map, index);
          }};
}

// In the order of the enumeration.
constexpr std::array<Kind, kNodeKinds> kKinds{
    kindOf<PlainNode>(NodeKind::Node),
    kindOf<CategoryNode>(NodeKind::Category),
    kindOf<IntegerNode>(NodeKind::Integer),
    kindOf<IntRegNode>(NodeKind::IntReg),
    kindOf<MaskedIntRegNode>(NodeKind::MaskedIntReg),
    kindOf<MaskedIntRegNode>(NodeKind::StructEntry),
    kindOf<BooleanNode>(NodeKind::Boolean),
    kindOf<CommandNode>(NodeKind::Command),
    kindOf<EnumerationNode>(NodeKind::Enumeration),
    kindOf<EnumEntryNode>(NodeKind::EnumEntry),
    kindOf<FloatNode>(NodeKind::Float),
    kindOf<FloatRegNode>(NodeKind::FloatReg),
    kindOf<ConverterNode>(NodeKind::Converter),
    kindOf<IntConverterNode>(NodeKind::IntConverter),
    kindOf<SwissKnifeNode>(NodeKind::SwissKnife),
    kindOf<IntSwissKnifeNode>(NodeKind::IntSwissKnife),
    kindOf<StringNode>(NodeKind::String),
    kindOf<StringRegNode>(NodeKind::StringReg),
    kindOf<RawRegisterNode>(NodeKind::Register),
    kindOf<PortNode>(NodeKind::Port),
    kindOf<InertNode>(NodeKind::ConfRom),
    kindOf<InertStringNode>(NodeKind::TextDesc),
    kindOf<InertIntegerNode>(NodeKind::IntKey),
    kindOf<IntRegNode>(NodeKind::AdvFeatureLock),
    kindOf<InertIntegerNode>(NodeKind::SmartFeature),
};

constexpr bool inOrder() {
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    if (static_cast<std::size_t>(kKinds[i].kind) != i) {
      return false;
    }
  }
  return true;
}
static_assert(inOrder());

}  // namespace

std::size_t sizeOfNode(NodeKind kind) {
  return kKinds[static_cast<std::size_t>(kind)].size;
}

NodeCore* makeNode(NodeMap& map, NodeIndex index) {
  return kKinds[static_cast<std::size_t>(map.model().node(index).kind)].make(map, index);
}

}  // namespace GenApiEngine
