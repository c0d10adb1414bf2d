// Bytes as text: 0x and two digits each, in the order of memory.
#include "nodes/raw_register_node.h"

#include <charconv>
#include <vector>

#include "model/text.h"

namespace GenApiEngine {

std::string RawRegisterNode::textValue(ReadFlags flags) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const std::int64_t length = register_.length(*this);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  register_.read(*this, bytes.data(), length, flags);
  std::string text = "0x";
  text.reserve(2 + 2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0x0F];
  }
  return text;
}

void RawRegisterNode::setText(std::string_view text, bool /*verify*/) {
  const auto fail = [&] {
    NODE_FAIL(*this, InvalidArgumentException, "Node '%s' : cannot convert string '%s' to the bytes of the register.",
              nodeName().c_str(), std::string(text.substr(0, 100)).c_str());
  };
  std::string_view digits = trim(text);
  if (digits.starts_with("0x") || digits.starts_with("0X")) {
    digits.remove_prefix(2);
  }
  const std::int64_t length = register_.length(*this);
  if (digits.size() != 2 * static_cast<std::size_t>(length) || length == 0) {
    fail();
  }
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* const at = digits.data() + 2 * i;
    if (const auto [end, error] = std::from_chars(at, at + 2, bytes[i], 16); error != std::errc{} || end != at + 2) {
      fail();
    }
  }
  register_.write(*this, bytes.data(), length);
}

}  // namespace GenApiEngine
