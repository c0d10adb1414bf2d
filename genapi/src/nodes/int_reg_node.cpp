// Range and writing of integer registers.
#include "nodes/int_reg_node.h"

namespace GenApiEngine {

std::int64_t IntRegNode::intMin() {
  if (!register_.isSigned()) {
    return 0;
  }
  return std::numeric_limits<std::int64_t>::min() >> (64 - 8 * register_.numberLength(*this));
}

// Eight unsigned bytes have the largest signed number as their maximum, although larger ones are read as negative.
std::int64_t IntRegNode::intMax() {
  const std::int64_t bits = 8 * register_.numberLength(*this);
  return std::numeric_limits<std::int64_t>::max() >> (register_.isSigned() || bits == 64 ? 64 - bits : 63 - bits);
}

void IntRegNode::storeInt(std::int64_t value, bool /*verify*/) {
  register_.writeNumber(*this, static_cast<std::uint64_t>(value));
}

}  // namespace GenApiEngine
