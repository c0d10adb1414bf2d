// Device descriptions: found through a port's URLs or in a file, unpacked, and made into node maps.
#include "gentl/description.h"

#include <miniz.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "gentl/trace.h"
#include "ovi_genapi/description_limit.h"
#include "ovi_genapi/zip_reader.h"
#include "platform/ascii.h"
#include "platform/platform.h"

namespace GenTLCpp {

namespace {

/** A port that tells of more has lost count. */
constexpr std::uint32_t kMaxURLs = 64;

/** From the last dot on, in capitals; empty without a dot. */
std::string extensionOf(std::string_view fileName) {
  const std::size_t dot = fileName.rfind('.');
  return dot != std::string_view::npos ? OVI::platform::upperCase(fileName.substr(dot)) : std::string();
}

/** The hexadecimal number that a text begins with, after blanks and an optional 0x. */
std::optional<std::uint64_t> parseHex(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
  }
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

/** A zip archive in memory, closed at the end. */
class ZipArchive {
 public:
  explicit ZipArchive(const std::string& bytes) {
    if (!GenApiEngine::openZip(archive_, bytes)) {
      fail();
    }
  }
  ZipArchive(const ZipArchive&) = delete;
  ZipArchive& operator=(const ZipArchive&) = delete;
  ~ZipArchive() { mz_zip_reader_end(&archive_); }

  std::string extractFirst() {
    mz_zip_archive_file_stat entry;
    if (mz_zip_reader_file_stat(&archive_, 0, &entry) == MZ_FALSE ||
        entry.m_uncomp_size > GenApiEngine::kMaxDescriptionBytes) {
      fail();
    }
    std::string content(static_cast<std::size_t>(entry.m_uncomp_size), '\0');
    if (!content.empty() && mz_zip_reader_extract_to_mem(&archive_, 0, content.data(), content.size(), 0) == MZ_FALSE) {
      fail();
    }
    return content;
  }

 private:
  [[noreturn]] static void fail() { throw std::runtime_error("Unable to retrieve XML. Error during unzip operation!"); }

  mz_zip_archive archive_{};
};

/** The description in the bytes of a file. Text ends at its first NUL, unless it is UTF-16, which is full of them. */
GenICam::gcstring unpack(std::string bytes, const std::string& extension) {
  if (extension == ".ZIP") {
    bytes = ZipArchive(bytes).extractFirst();
  }
  const bool isUtf16 = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
  const std::size_t length = isUtf16 ? bytes.size() : std::min(bytes.find('\0'), bytes.size());
  return {bytes.data(), length};
}

/** "LOCAL:name;address;length": a file in the port's own registers. Empty when the URL is malformed. */
GenICam::gcstring readLocal(Port& port, std::string_view location) {
  const std::size_t nameEnd = location.find(';');
  if (nameEnd == std::string_view::npos) {
    return {};
  }
  const std::string_view numbers = location.substr(nameEnd + 1);
  const std::size_t addressEnd = numbers.find(';');
  if (addressEnd == std::string_view::npos) {
    return {};
  }
  const auto address = parseHex(numbers.substr(0, addressEnd));
  const auto length = parseHex(numbers.substr(addressEnd + 1));
  if (!address || !length || *length > GenApiEngine::kMaxDescriptionBytes) {
    return {};
  }
  std::string bytes(static_cast<std::size_t>(*length), '\0');
  port.Read(bytes.data(), static_cast<std::int64_t>(*address), static_cast<std::int64_t>(*length));
  return unpack(std::move(bytes), extensionOf(location.substr(0, nameEnd)));
}

/** The description behind one URL; empty when the URL leads to none. */
GenICam::gcstring readURL(Port& port, const std::string& url) {
  constexpr std::size_t kSchemeLength = 6;
  const std::string scheme = OVI::platform::upperCase(std::string_view(url).substr(0, kSchemeLength));
  if (scheme == "LOCAL:") {
    return readLocal(port, std::string_view(url).substr(kSchemeLength));
  }
  if (scheme == "FILE:/") {
    return readDescriptionFile(OVI::platform::urlToPath(url));
  }
  return {};
}

}  // namespace

GenICam::gcstring retrieveXML(Port& port) {
  setTraceEnabled(true);  // An exception leaves the traces on: they tell what happens from here on.
  GenICam::gcstring xml;
  std::exception_ptr failure;
  const std::uint32_t count = std::min(port.getNumURLs(), kMaxURLs);
  for (std::uint32_t index = 0; index < count && xml.empty(); ++index) {
    std::string url;
    try {
      url = port.getURL(index);
      xml = readURL(port, url);
    } catch (const std::exception&) {
      failure = std::current_exception();
    }
    if (xml.empty()) {
      traceLine("Error: XML string was empty! URL: ", url);
    }
  }
  if (xml.empty()) {
    if (failure) {
      std::rethrow_exception(failure);
    }
    throw std::runtime_error("Unable to retrieve XML.");
  }
  setTraceEnabled(false);
  return xml;
}

GenICam::gcstring readDescriptionFile(const std::string& path) {
  std::optional<std::string> bytes = OVI::platform::readFile(path, GenApiEngine::kMaxDescriptionBytes);
  return bytes ? unpack(std::move(*bytes), extensionOf(path)) : GenICam::gcstring();
}

NodeMapPtr makeNodeMap(const GenICam::gcstring& xml, const std::shared_ptr<ConcretePort>& port) {
  GenApi::CNodeMapFactory factory(xml, GenApi::CacheUsage_Automatic, false);
  NodeMapPtr nodeMap(factory.CreateNodeMap("Device", true), [port](GenApi::INodeMap* map) {
    if (auto* whole = dynamic_cast<GenApi::IDestroy*>(map)) {
      whole->Destroy();
    }
  });
  const bool connected = nodeMap != nullptr && nodeMap->Connect(port.get(), port->getPortName().c_str());
  return connected ? nodeMap : nullptr;
}

}  // namespace GenTLCpp
