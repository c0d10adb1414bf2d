// Words and encodings as descriptions have them.
#include "model/text.h"

#include <algorithm>
#include <cstring>

namespace GenApiEngine {
namespace {

constexpr char lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

void appendUtf8(std::string& out, std::uint32_t code) {
  const auto put = [&out](std::uint32_t byte) { out.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | (code >> 6));
    put(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    put(0xE0 | (code >> 12));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  } else {
    put(0xF0 | ((code >> 18) & 0x07));
    put(0x80 | ((code >> 12) & 0x3F));
    put(0x80 | ((code >> 6) & 0x3F));
    put(0x80 | (code & 0x3F));
  }
}

// The length of the UTF-8 sequence at the start of text, or 0 when the bytes there are none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  const std::size_t length = first < 0x80                    ? 1
                             : first >= 0xC2 && first < 0xE0 ? 2
                             : (first & 0xF0) == 0xE0        ? 3
                             : first >= 0xF0 && first < 0xF5 ? 4
                                                             : 0;
  if (length == 0 || length > text.size()) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  return length;
}

// Units of `Width` bytes, UTF-16 or UTF-32, up to the first NUL unit.
template<std::size_t Width>
std::string convertWide(const unsigned char* data, std::size_t size, bool bigEndian) {
  const auto unit = [&](std::size_t i) {
    std::uint32_t value = 0;
    for (std::size_t b = 0; b < Width; ++b) {
      value |= std::uint32_t{data[i * Width + b]} << (8 * (bigEndian ? Width - 1 - b : b));
    }
    return value;
  };
  std::string out;
  out.reserve(size / Width + 16);
  const std::size_t count = size / Width;
  for (std::size_t i = 0; i < count; ++i) {
    std::uint32_t code = unit(i);
    if (code == 0) {
      break;
    }
    if constexpr (Width == 2) {
      if (code >= 0xD800 && code < 0xDC00 && i + 1 < count) {
        const std::uint32_t second = unit(i + 1);
        if (second >= 0xDC00 && second < 0xE000) {
          code = 0x10000 + ((code - 0xD800) << 10) + (second - 0xDC00);
          ++i;
        }
      }
    }
    appendUtf8(out, code > 0x10FFFF ? 0xFFFD : code);
  }
  return out;
}

struct WideForm {
  std::size_t width = 1;
  bool bigEndian = false;
  std::size_t mark = 0;  // bytes of the byte-order mark
};

// By its mark, or by the shape that '<' has in it.
WideForm detectForm(const unsigned char* data, std::size_t size) {
  const auto starts = [&](std::initializer_list<int> bytes) {
    return size >= bytes.size() &&
           std::equal(bytes.begin(), bytes.end(), data, [](int a, unsigned char b) { return a == b; });
  };
  if (starts({0xFF, 0xFE, 0, 0})) {
    return {4, false, 4};
  }
  if (starts({0, 0, 0xFE, 0xFF})) {
    return {4, true, 4};
  }
  if (starts({0xFF, 0xFE})) {
    return {2, false, 2};
  }
  if (starts({0xFE, 0xFF})) {
    return {2, true, 2};
  }
  if (starts({'<', 0, 0, 0})) {
    return {4, false, 0};
  }
  if (starts({0, 0, 0, '<'})) {
    return {4, true, 0};
  }
  if (starts({'<', 0})) {
    return {2, false, 0};
  }
  if (starts({0, '<'})) {
    return {2, true, 0};
  }
  return {1, false, starts({0xEF, 0xBB, 0xBF}) ? std::size_t{3} : 0};
}

bool declaresLatin1(std::string_view text) {
  const std::string_view head = text.substr(0, 200);
  const std::size_t end = head.find("?>");
  const std::size_t at = head.substr(0, end == std::string_view::npos ? 0 : end).find("encoding");
  if (at == std::string_view::npos) {
    return false;
  }
  std::string_view name = head.substr(at + 8, end - at - 8);
  const std::size_t quote = name.find_first_of("\"'");
  if (quote == std::string_view::npos) {
    return false;
  }
  name.remove_prefix(quote + 1);
  name = name.substr(0, name.find_first_of("\"'"));
  return equalsIgnoringCase(name, "iso-8859-1") || equalsIgnoringCase(name, "latin1") ||
         equalsIgnoringCase(name, "windows-1252");
}

// Where the document ends: remains of something else may follow its last tag.
std::size_t documentSize(std::string_view text, bool cutAtFirstEnd) {
  constexpr std::string_view kEnd = "RegisterDescription>";
  if (!cutAtFirstEnd && trim(text).ends_with(kEnd)) {
    return text.size();
  }
  std::size_t searched = 0;  // no end tag is open here
  for (std::size_t at = text.find(kEnd); at != std::string_view::npos; at = text.find(kEnd, at + 1)) {
    const std::string_view before = text.substr(searched, at - searched);
    const std::size_t open = before.rfind('<');
    if (open != std::string_view::npos && before.substr(open + 1).starts_with('/')) {
      return at + kEnd.size();
    }
    searched = at;
  }
  return text.size();
}

bool isAscii(std::string_view text) {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  std::uint64_t bits = 0;
  const std::size_t words = text.size() / kWord;
  for (std::size_t i = 0; i < words; ++i) {  // counted, so that the compiler takes several at once
    bits |= wordAt<std::uint64_t>(text.data() + i * kWord);
  }
  for (const char c : text.substr(words * kWord)) {
    bits |= static_cast<unsigned char>(c);
  }
  return (bits & 0x8080808080808080U) == 0;
}

// Moves on over the sequences that begin in front of `end`; stops at a byte that begins none. Whether it came to the
// end.
bool skipUtf8(std::string_view text, std::size_t& at, std::size_t end) {
  while (at < end) {
    const std::size_t length = sequenceLength(text.substr(at));
    if (length == 0) {
      return false;
    }
    at += length;
  }
  return true;
}

// Copies a text and finds the first byte of it that is no UTF-8; npos when there is none.
std::size_t copyText(char* to, std::string_view text) {
  // Blocks that stay near the processor between the copy and the look at them.
  constexpr std::size_t kBlock = 4096;
  std::size_t checked = 0;
  bool isUtf8 = true;
  for (std::size_t at = 0; at < text.size(); at += kBlock) {
    const std::string_view block = text.substr(at, kBlock);
    std::memcpy(to + at, block.data(), block.size());
    if (isUtf8 && !isAscii(block)) {
      checked = std::max(checked, at);
      isUtf8 = skipUtf8(text, checked, at + block.size());
    }
  }
  return isUtf8 ? std::string_view::npos : checked;
}

std::string latin1ToUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size() + text.size() / 16 + 16);
  for (const char c : text) {
    appendUtf8(out, static_cast<unsigned char>(c));
  }
  return out;
}

DocumentText own(std::string_view text, bool cutAtFirstEnd) {
  const std::size_t size = documentSize(text, cutAtFirstEnd);
  const std::string_view behind = trim(text.substr(size));
  text = text.substr(0, size);
  const std::string_view document = trim(text);
  DocumentText out;
  out.isPreceded = !document.empty() && document.front() != '<';
  out.isFollowed = !behind.empty() && !behind.starts_with("<!--");
  out.data = std::make_unique_for_overwrite<char[]>(text.size() + 2 + kTextSlack);
  out.data[0] = '\0';
  out.firstNoUtf8 = copyText(out.data.get() + 1, text);
  std::fill_n(out.data.get() + text.size() + 1, 1 + kTextSlack, '\0');
  out.size = text.size();
  return out;
}

// A text that is UTF-8 or claims to be, without byte-order mark and up to its first NUL.
std::optional<std::string_view> unconverted(const void* data, std::size_t size) {
  const WideForm form = detectForm(static_cast<const unsigned char*>(data), size);
  if (form.width != 1) {
    return std::nullopt;
  }
  const std::string_view text(static_cast<const char*>(data) + form.mark, size - form.mark);
  const std::string_view whole = text.substr(0, std::min(text.find('\0'), text.size()));
  return declaresLatin1(whole) ? std::nullopt : std::optional(whole);
}

}  // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() &&
         (a == b || std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return lower(x) == lower(y); }));
}

bool parseYesNo(std::string_view text, bool otherwise) {
  text = trim(text);
  if (equalsIgnoringCase(text, "yes") || equalsIgnoringCase(text, "true") || text == "1") {
    return true;
  }
  if (equalsIgnoringCase(text, "no") || equalsIgnoringCase(text, "false") || text == "0") {
    return false;
  }
  return otherwise;
}

std::string toUtf8(std::string_view text) {
  std::size_t at = 0;
  return isAscii(text) || skipUtf8(text, at, text.size()) ? std::string(text) : latin1ToUtf8(text);
}

std::optional<std::string_view> plainText(const void* data, std::size_t size, bool cutAtFirstEnd) {
  const auto text = unconverted(data, size);
  return text ? std::optional(text->substr(0, documentSize(*text, cutAtFirstEnd))) : std::nullopt;
}

DocumentText prepareDocument(const void* data, std::size_t size, bool cutAtFirstEnd) {
  if (const auto text = unconverted(data, size)) {
    return own(*text, cutAtFirstEnd);
  }
  const auto* bytes = static_cast<const unsigned char*>(data);
  const WideForm form = detectForm(bytes, size);
  bytes += form.mark;
  size -= form.mark;
  if (form.width == 4) {
    return own(convertWide<4>(bytes, size, form.bigEndian), cutAtFirstEnd);
  }
  if (form.width == 2) {
    return own(convertWide<2>(bytes, size, form.bigEndian), cutAtFirstEnd);
  }
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  return own(latin1ToUtf8(text.substr(0, std::min(text.find('\0'), text.size()))), cutAtFirstEnd);
}

}  // namespace GenApiEngine
