// IDs given as numbers.
#include "adapters/hex_id.h"

#include <cstdint>

#include "base/number_text.h"

namespace GenApiEngine {

std::string normalizedId(std::uint64_t number) {
  return normalizedId(integerText(static_cast<std::int64_t>(number), GENAPI_NAMESPACE::HexNumber));
}

}  // namespace GenApiEngine
