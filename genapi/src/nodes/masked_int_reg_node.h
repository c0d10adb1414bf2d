// MaskedIntReg nodes and the entries of StructReg: some bits of a register.
#pragma once

#include <limits>

#include "nodes/integer_base.h"
#include "nodes/register_access.h"

namespace GenApiEngine {

class MaskedIntRegNode final : public RegisterNode<IntegerBase> {
 public:
  MaskedIntRegNode(NodeMap& map, NodeIndex index);

  std::int64_t intMin() override;
  std::int64_t intMax() override;

 protected:
  std::int64_t fetchInt(ReadFlags flags) override;
  void storeInt(std::int64_t value, bool verify) override;

 private:
  /// Where the bits lie in the whole register read as an unsigned number.
  struct Field {
    std::int64_t length = 0;  // of the register, in bytes
    unsigned low = 0;
    unsigned width = 64;

    std::uint64_t mask() const { return width >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << width) - 1; }
  };
  Field field();

  static constexpr std::int64_t kWhole = std::numeric_limits<std::int64_t>::min();
  std::int64_t firstBit_ = kWhole;  // as the description counts them; the smaller number of the two
  std::int64_t lastBit_ = kWhole;
};

}  // namespace GenApiEngine
