// The sums over the blocks of a text and their mixing.
#include "model/content_hash.h"

#include <cstring>
#include <random>

#include "model/text.h"

namespace GenApiEngine {
namespace {

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
  a ^= b;
  a ^= a >> 32;
  a *= 0xD6E8FEB86659FD93ULL;
  a ^= a >> 29;
  a *= 0x9E3779B97F4A7C15ULL;
  return a ^ (a >> 32);
}

// The halves of a word, each with its half of the key added, multiplied.
std::uint64_t product(std::uint64_t word, std::uint64_t key) {
  const auto low = static_cast<std::uint32_t>(word) + static_cast<std::uint32_t>(key);
  const auto high = static_cast<std::uint32_t>(word >> 32) + static_cast<std::uint32_t>(key >> 32);
  return std::uint64_t{low} * high;
}

}  // namespace

ContentHash::ContentHash() {
  std::random_device random;
  for (std::uint64_t& word : key_) {
    word = (std::uint64_t{random()} << 32) | random();
  }
}

ContentHash::Value ContentHash::sumsOf(const char* block) const {
  Value sums;
  for (std::size_t i = 0; i < kBlockWords; ++i) {
    const auto word = wordAt<std::uint64_t>(block + i * sizeof(std::uint64_t));
    sums.first += product(word, key_[i]);
    sums.second += product(word, key_[i + 1]);
  }
  return sums;
}

ContentHash::Value ContentHash::operator()(std::string_view text) const {
  Value hash{text.size(), ~text.size()};
  const auto add = [&](const char* block) {
    const Value sums = sumsOf(block);
    hash = {mix(hash.first, sums.first), mix(hash.second, sums.second)};
  };
  for (; text.size() >= kBlockBytes; text.remove_prefix(kBlockBytes)) {
    add(text.data());
  }
  std::array<char, kBlockBytes> last{};
  std::memcpy(last.data(), text.data(), text.size());
  add(last.data());
  return hash;
}

}  // namespace GenApiEngine
