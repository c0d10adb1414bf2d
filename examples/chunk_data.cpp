// Chunk data: what the camera says about an image travels behind it, in the same buffer.
//
// A chunk is its data, its ID and its length, the latter two as four bytes, big-endian with GigE Vision and the virtual
// camera, little-endian with USB3 Vision. The first chunk is the image itself; the camera's manual knows the other IDs.
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ovi/ovi.hpp>

namespace {

constexpr std::size_t kTrailer = 8;  // ID and length

std::size_t bigEndian(const std::uint8_t* bytes) {
  return std::size_t{bytes[0]} << 24U | std::size_t{bytes[1]} << 16U | std::size_t{bytes[2]} << 8U | bytes[3];
}

struct Chunk {
  std::size_t id;
  const std::uint8_t* data;
  std::size_t size;
};

// The chunks in the order of the buffer; none when the buffer's end is not a chunk's.
std::vector<Chunk> chunksOf(const ovi::Image& image) {
  std::vector<Chunk> chunks;
  std::size_t end = image.size();
  while (end >= kTrailer) {
    const std::uint8_t* trailer = image.data() + end - kTrailer;
    const std::size_t size = bigEndian(trailer + 4);
    if (size > end - kTrailer)  // not a length: trust nothing that comes from a camera
      return {};
    end -= kTrailer + size;
    chunks.push_back({bigEndian(trailer), image.data() + end, size});
  }
  std::reverse(chunks.begin(), chunks.end());
  return chunks;
}

void print(const Chunk& chunk) {
  std::uint64_t value = 0;  // numbers have the byte order of the camera's registers, here that of this machine
  if (chunk.size <= sizeof(value))
    std::memcpy(&value, chunk.data, chunk.size);
  std::printf("  chunk %zu: %zu bytes, %" PRIu64 "\n", chunk.id, chunk.size, value);
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::fprintf(stderr, "no camera was found\n");
      return 1;
    }
    const ovi::Device camera(cameras.front().deviceID);
    camera["ChunkModeActive"].set(true);
    for (const char* chunk : {"Timestamp", "FrameID"}) {
      camera["ChunkSelector"].set(chunk);
      camera["ChunkEnable"].set(true);
    }
    const ovi::Stream stream = camera.openStream();  // after the chunks are on: buffers must have room for them
    const ovi::Acquisition acquisition = camera.acquire();
    for (const ovi::Image& image : stream.images(3)) {
      std::printf("frame %" PRIu64 ":\n", image.frameID());
      for (const Chunk& chunk : chunksOf(image))
        print(chunk);
    }
    return 0;
  } catch (const ovi::Error& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
