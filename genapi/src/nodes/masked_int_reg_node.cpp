// Bits out of registers and into them.
#include "nodes/masked_int_reg_node.h"

#include <algorithm>
#include <cinttypes>

#include "nodemap/node_map.h"

namespace GenApiEngine {

MaskedIntRegNode::MaskedIntRegNode(NodeMap& map, NodeIndex index) : RegisterNode(map, index) {
  const Model& model = map.model();
  const auto number = [&](Element element) {
    const Property* found = property(element);
    return found != nullptr && model.hasNumber(*found) ? model.integer(*found) : kWhole;
  };
  const std::int64_t bit = number(Element::Bit);
  const std::int64_t lsb = bit != kWhole ? bit : number(Element::LSB);
  const std::int64_t msb = bit != kWhole ? bit : number(Element::MSB);
  // Which of the two is larger depends on the byte order and is often written the wrong way round.
  firstBit_ = std::min(lsb, msb);
  lastBit_ = std::max(lsb, msb);
  if (firstBit_ == kWhole) {
    firstBit_ = lastBit_;
  }
}

MaskedIntRegNode::Field MaskedIntRegNode::field() {
  Field field;
  field.length = register_.numberLength(*this);
  const std::int64_t bits = 8 * field.length;
  const std::int64_t first = firstBit_ == kWhole ? 0 : firstBit_;
  const std::int64_t last = lastBit_ == kWhole ? bits - 1 : lastBit_;
  if (first < 0 || last >= bits) {
    NODE_FAIL(*this, RuntimeException, "Bits %" PRId64 " to %" PRId64 " do not lie in a register of %" PRId64 " bytes.",
              first, last, field.length);
  }
  field.low = static_cast<unsigned>(register_.endianess() == Api::BigEndian ? bits - 1 - last : first);
  field.width = static_cast<unsigned>(last - first + 1);
  return field;
}

std::int64_t MaskedIntRegNode::intMin() {
  return register_.isSigned() ? std::numeric_limits<std::int64_t>::min() >> (64 - field().width) : 0;
}

// All 64 bits unsigned have the maximum -1.
std::int64_t MaskedIntRegNode::intMax() {
  const Field bits = field();
  return register_.isSigned() ? std::numeric_limits<std::int64_t>::max() >> (64 - bits.width)
                              : static_cast<std::int64_t>(bits.mask());
}

std::int64_t MaskedIntRegNode::fetchInt(ReadFlags flags) {
  const Field bits = field();
  const std::uint64_t value = (register_.readUnsigned(*this, bits.length, flags) >> bits.low) & bits.mask();
  if (!register_.isSigned()) {
    return static_cast<std::int64_t>(value);
  }
  const unsigned unused = 64 - bits.width;
  return static_cast<std::int64_t>(value << unused) >> unused;
}

void MaskedIntRegNode::storeInt(std::int64_t value, bool /*verify*/) {
  if (register_.declaredAccess() == Api::WO) {
    // The other bits cannot be known.
    NODE_FAIL(*this, AccessException, "Node is not readable.");
  }
  const Field bits = field();
  const std::uint64_t mask = bits.mask() << bits.low;
  const std::uint64_t whole = register_.readUnsigned(*this, bits.length, {});
  register_.writeNumber(*this, (whole & ~mask) | ((static_cast<std::uint64_t>(value) << bits.low) & mask));
}

}  // namespace GenApiEngine
