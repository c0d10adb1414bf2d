// Zip archives: through their directory, or, when that is damaged, through the first local header.
#include "nodemap/unzip.h"

#include <miniz.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "Base/GCException.h"
#include "base/limits.h"
#include "model/text.h"
#include "ovi_genapi/zip_reader.h"

namespace GenApiEngine {
namespace {

constexpr std::string_view kLocalHeader{"PK\x03\x04", 4};

class Archive {
 public:
  explicit Archive(std::string_view data) : good_(openZip(zip_, data)) {}
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;
  ~Archive() {
    if (good_) {
      mz_zip_reader_end(&zip_);
    }
  }

  std::optional<std::string> description() {
    if (!good_) {
      return std::nullopt;
    }
    std::optional<mz_uint> chosen;
    std::size_t size = 0;
    for (mz_uint i = 0; i < mz_zip_reader_get_num_files(&zip_); ++i) {
      mz_zip_archive_file_stat stat{};
      if (mz_zip_reader_file_stat(&zip_, i, &stat) == MZ_FALSE || stat.m_is_directory) {
        continue;
      }
      const std::string_view name = &stat.m_filename[0];
      const bool isXml = name.size() > 4 && equalsIgnoringCase(name.substr(name.size() - 4), ".xml");
      if (!chosen || isXml) {
        chosen = i;
        size = static_cast<std::size_t>(stat.m_uncomp_size);
      }
      if (isXml) {
        break;
      }
    }
    if (!chosen) {
      return std::nullopt;
    }
    if (size > kMaxDescriptionBytes) {
      throw RUNTIME_EXCEPTION("The zipped camera description has %llu bytes, more than the %llu that are allowed",
                              static_cast<unsigned long long>(size),
                              static_cast<unsigned long long>(kMaxDescriptionBytes));
    }
    std::string text(size, '\0');
    if (mz_zip_reader_extract_to_mem(&zip_, *chosen, text.data(), text.size(), 0) == MZ_FALSE) {
      return std::nullopt;
    }
    return text;
  }

 private:
  mz_zip_archive zip_{};
  bool good_;
};

std::uint32_t little(std::string_view bytes, std::size_t at, std::size_t count) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i) {
    value |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
  }
  return value;
}

int appendBounded(const void* data, int size, void* target) {
  auto& text = *static_cast<std::string*>(target);
  const auto count = static_cast<std::size_t>(size);
  if (text.size() + count > kMaxDescriptionBytes) {
    return 0;
  }
  text.append(static_cast<const char*>(data), count);
  return 1;
}

std::optional<std::string> firstLocalFile(std::string_view archive) {
  constexpr std::size_t kHeaderSize = 30;
  constexpr std::uint32_t kStored = 0;
  constexpr std::uint32_t kDeflated = 8;
  if (archive.size() < kHeaderSize) {
    return std::nullopt;
  }
  const std::uint32_t method = little(archive, 8, 2);
  const std::size_t packed = little(archive, 18, 4);
  const std::size_t start = kHeaderSize + little(archive, 26, 2) + little(archive, 28, 2);
  if (start > archive.size()) {
    return std::nullopt;
  }
  const std::string_view body = archive.substr(start);
  if (method == kStored) {
    return std::string(body.substr(0, std::min(packed, kMaxDescriptionBytes)));
  }
  std::string text;
  std::size_t used = body.size();
  if (method != kDeflated || tinfl_decompress_mem_to_callback(body.data(), &used, appendBounded, &text, 0) == 0) {
    return std::nullopt;
  }
  return text;
}

}  // namespace

bool isZip(std::string_view data) {
  return data.starts_with(kLocalHeader);
}

std::string unzipDescription(std::string_view archive) {
  if (auto text = Archive(archive).description()) {
    return std::move(*text);
  }
  if (auto text = firstLocalFile(archive)) {
    return std::move(*text);
  }
  throw RUNTIME_EXCEPTION("The zipped camera description cannot be unpacked");
}

}  // namespace GenApiEngine
