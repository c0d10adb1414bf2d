// Helpers for the texts of failures.
#include "modules/failure.h"

namespace vcam {

std::string hexadecimal(std::uint64_t value, std::size_t digits) {
  std::string text;
  while (value != 0 || text.size() < digits) {
    text.insert(text.begin(), "0123456789ABCDEF"[value & 0xF]);
    value >>= 4;
  }
  return text;
}

}  // namespace vcam
