// SHA-1 as published in FIPS 180-4.
#include "modules/sha1.h"

#include <array>
#include <bit>
#include <cstdint>

namespace vcam {

namespace {

using State = std::array<std::uint32_t, 5>;

void addBlock(State& state, const unsigned char* block) {
  std::array<std::uint32_t, 80> w{};
  for (std::size_t i = 0; i < 16; ++i) {
    w[i] = std::uint32_t{block[4 * i]} << 24 | std::uint32_t{block[4 * i + 1]} << 16 |
           std::uint32_t{block[4 * i + 2]} << 8 | block[4 * i + 3];
  }
  for (std::size_t i = 16; i < 80; ++i) {
    w[i] = std::rotl(w[i - 3] ^ w[i - 8] ^ w[i - 14] ^ w[i - 16], 1);
  }
  auto [a, b, c, d, e] = state;
  for (std::size_t i = 0; i < 80; ++i) {
    std::uint32_t f = b ^ c ^ d;
    std::uint32_t k = i < 40 ? 0x6ED9EBA1 : 0xCA62C1D6;
    if (i < 20) {
      f = (b & c) | (~b & d);
      k = 0x5A827999;
    } else if (i >= 40 && i < 60) {
      f = (b & c) | (b & d) | (c & d);
      k = 0x8F1BBCDC;
    }
    const std::uint32_t next = std::rotl(a, 5) + f + e + k + w[i];
    e = d;
    d = c;
    c = std::rotl(b, 30);
    b = a;
    a = next;
  }
  state[0] += a;
  state[1] += b;
  state[2] += c;
  state[3] += d;
  state[4] += e;
}

}  // namespace

std::string sha1(std::string_view content) {
  std::string padded(content);
  padded.push_back('\x80');
  padded.resize((padded.size() + 8 + 63) / 64 * 64, '\0');
  const std::uint64_t bits = std::uint64_t{content.size()} * 8;
  for (std::size_t i = 0; i < 8; ++i) {
    padded[padded.size() - 1 - i] = static_cast<char>(bits >> (8 * i) & 0xFF);
  }
  State state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
  for (std::size_t at = 0; at < padded.size(); at += 64) {
    addBlock(state, reinterpret_cast<const unsigned char*>(padded.data()) + at);
  }
  std::string digest;
  for (const std::uint32_t word : state) {
    for (int shift = 24; shift >= 0; shift -= 8) {
      digest.push_back(static_cast<char>(word >> shift & 0xFF));
    }
  }
  return digest;
}

}  // namespace vcam
