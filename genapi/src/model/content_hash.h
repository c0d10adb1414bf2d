// A fast hash that tells the texts of descriptions apart, also those that somebody made to look alike.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace GenApiEngine {

/// 128 bits of hash under a key.
///
/// For any two different texts that were chosen without knowledge of the key the hashes are equal with a probability of
/// about 2^-64. Each block of a text is a sum of products of its halves of words, each with its own part of the key
/// added (NH of UMAC), twice with the key shifted; the sums of the blocks are then mixed one after the other.
class ContentHash {
 public:
  struct Value {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    bool operator==(const Value&) const = default;
  };

  /// With a key of random numbers.
  ContentHash();

  Value operator()(std::string_view text) const;

 private:
  static constexpr std::size_t kBlockWords = 64;
  static constexpr std::size_t kBlockBytes = kBlockWords * sizeof(std::uint64_t);

  Value sumsOf(const char* block) const;

  std::array<std::uint64_t, kBlockWords + 1> key_;
};

}  // namespace GenApiEngine
