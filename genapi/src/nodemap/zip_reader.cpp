// How archives that nobody has checked are opened.
#include "ovi_genapi/zip_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace GenApiEngine {
namespace {

// The lengths of a name, of the extra data and of the comment have 16 bits each.
constexpr std::size_t kRoomBehind = 3 * (std::size_t{UINT16_MAX} + 1);

void* resize(void* /*opaque*/, void* address, std::size_t items, std::size_t itemSize) {
  if (itemSize != 0 && items > (SIZE_MAX - kRoomBehind) / itemSize) {
    return nullptr;
  }
  const std::size_t size = items * itemSize;
  void* const memory = std::realloc(address, size + kRoomBehind);
  if (memory != nullptr) {
    std::memset(static_cast<std::byte*>(memory) + size, 0, kRoomBehind);
  }
  return memory;
}

void* allocate(void* opaque, std::size_t items, std::size_t itemSize) {
  return resize(opaque, nullptr, items, itemSize);
}

void release(void* /*opaque*/, void* address) {
  std::free(address);
}

}  // namespace

bool openZip(mz_zip_archive& zip, std::string_view bytes) {
  zip = {};
  zip.m_pAlloc = allocate;
  zip.m_pRealloc = resize;
  zip.m_pFree = release;
  return mz_zip_reader_init_mem(&zip, bytes.data(), bytes.size(), 0) != MZ_FALSE;
}

}  // namespace GenApiEngine
