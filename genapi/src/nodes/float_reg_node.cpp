// Floats out of registers and into them.
#include "nodes/float_reg_node.h"

#include <bit>
#include <cfloat>
#include <cinttypes>
#include <cmath>

namespace GenApiEngine {

bool FloatRegNode::isSingle() {
  const std::int64_t length = register_.length(*this);
  if (length != sizeof(float) && length != sizeof(double)) {
    NODE_FAIL(*this, RuntimeException, "A register of %" PRId64 " bytes holds no floating-point number.", length);
  }
  return length == sizeof(float);
}

double FloatRegNode::floatMin() {
  return -floatMax();
}

double FloatRegNode::floatMax() {
  return isSingle() ? double{FLT_MAX} : DBL_MAX;
}

double FloatRegNode::fetchFloat(ReadFlags flags) {
  if (isSingle()) {
    return double{
        std::bit_cast<float>(static_cast<std::uint32_t>(register_.readUnsigned(*this, sizeof(float), flags)))};
  }
  return std::bit_cast<double>(register_.readUnsigned(*this, sizeof(double), flags));
}

void FloatRegNode::storeFloat(double value, bool /*verify*/) {
  if (!isSingle()) {
    register_.writeNumber(*this, std::bit_cast<std::uint64_t>(value));
    return;
  }
  if (std::isfinite(value) && std::fabs(value) > double{FLT_MAX}) {
    NODE_FAIL(*this, OutOfRangeException, "Value %f does not fit into single precision.", value);
  }
  register_.writeNumber(*this, std::bit_cast<std::uint32_t>(static_cast<float>(value)));
}

}  // namespace GenApiEngine
