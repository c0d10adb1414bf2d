// Texts out of registers and into them.
#include "nodes/string_reg_node.h"

#include <algorithm>
#include <cinttypes>

namespace GenApiEngine {

// The text ends at the first NUL or with the register.
void StringRegNode::fetchString(std::string& out, ReadFlags flags) {
  const std::int64_t length = register_.length(*this);
  std::string bytes(static_cast<std::size_t>(length), '\0');
  register_.read(*this, reinterpret_cast<std::uint8_t*>(bytes.data()), length, flags);
  bytes.resize(std::min(bytes.find('\0'), bytes.size()));
  out = std::move(bytes);
}

// The rest of the register is filled with zeros; a text of full length has none behind it.
void StringRegNode::storeString(std::string_view value, bool /*verify*/) {
  const std::int64_t length = register_.length(*this);
  if (value.size() > static_cast<std::size_t>(length)) {
    NODE_FAIL(*this, OutOfRangeException, "The text has %zu bytes, the register only %" PRId64 ".", value.size(),
              length);
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length), 0);
  std::ranges::copy(value, bytes.begin());
  register_.write(*this, bytes.data(), length);
}

std::int64_t StringRegNode::maxLength() {
  if (Api::IsWritable(accessMode())) {
    return register_.length(*this);
  }
  std::string text;
  readString(text, {});
  return static_cast<std::int64_t>(text.size());
}

}  // namespace GenApiEngine
