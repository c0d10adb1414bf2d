// From texts to a model: runs the XML parser in place over the model's own buffer and walks its tree.
#include "model/builder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>
#include <limits>
#include <utility>

#include "Base/GCException.h"
#include "base/limits.h"
#include "base/number_text.h"
#include "model/builder_detail.h"

namespace GenApiEngine {
namespace {

using Clock = std::chrono::steady_clock;

std::int64_t nanosecondsSince(Clock::time_point& from) {
  const Clock::time_point now = Clock::now();
  const std::int64_t passed = std::chrono::duration_cast<std::chrono::nanoseconds>(now - from).count();
  from = now;
  return passed;
}

constexpr unsigned kParseOptions = pugi::parse_escapes | pugi::parse_cdata | pugi::parse_eol |
                                   pugi::parse_wconv_attribute | pugi::parse_trim_pcdata | pugi::parse_embed_pcdata;

// What the XML parser's tree of a text takes at most: a node for each tag that is no end tag and for each text behind a
// tag, and the attributes.
std::size_t maxTreeBytes(std::string_view text) {
  constexpr std::size_t kNodeBytes = 64;
  constexpr std::size_t kAttributeBytes = 40;
  if (text.size() <= kMaxTreeBytes / kNodeBytes) {
    return text.size() * kNodeBytes;
  }
  std::size_t nodes = 0;
  std::size_t attributes = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '<') {
      ++nodes;
    } else if (text[at] == '/') {
      nodes -= at > 0 && text[at - 1] == '<' ? 1 : 0;
    } else if (text[at] == '=') {
      ++attributes;
    } else if (text[at] == '>') {
      const std::size_t next = text.find_first_not_of(" \t\r\n", at + 1);
      nodes += next != std::string_view::npos && text[next] != '<' ? 1 : 0;
    }
  }
  return nodes * kNodeBytes + attributes * kAttributeBytes;
}

// Gives back what was reserved in vain, where that is worth a copy.
template<class T>
void shrink(std::vector<T>& vector) {
  constexpr std::size_t kWorth = 16 * 1024;
  const std::size_t unused = vector.capacity() - vector.size();
  if (unused > vector.capacity() / 4 && unused * sizeof(T) > kWorth) {
    vector.shrink_to_fit();
  }
}

}  // namespace

std::shared_ptr<const Model> buildModel(std::span<const std::string_view> documents) {
  auto model = std::make_shared<Model>();
  if (!ModelBuilder::build(*model, documents, false)) {
    // Perhaps the remains of another document follow.
    model = std::make_shared<Model>();
    ModelBuilder::build(*model, documents, true);
  }
  return model;
}

bool ModelBuilder::build(Model& model, std::span<const std::string_view> texts, bool cutAtFirstEnd) {
  Clock::time_point clock = Clock::now();
  const auto tooLong = [](std::size_t size) {
    return RUNTIME_EXCEPTION("The camera description has %llu bytes, more than the %llu that are allowed",
                             static_cast<unsigned long long>(size),
                             static_cast<unsigned long long>(kMaxDescriptionBytes));
  };
  std::vector<DocumentText> prepared;
  std::size_t total = 0;
  for (const std::string_view text : texts) {
    if (text.size() > kMaxDescriptionBytes) {
      throw tooLong(text.size());
    }
    const DocumentText& document = prepared.emplace_back(prepareDocument(text.data(), text.size(), cutAtFirstEnd));
    if (const std::size_t bytes = maxTreeBytes({document.data.get() + 1, document.size}); bytes > kMaxTreeBytes) {
      throw RUNTIME_EXCEPTION(
          "The %llu bytes of the camera description are mostly tags: parsing them may take %llu "
          "bytes, more than the %llu that are allowed",
          static_cast<unsigned long long>(document.size), static_cast<unsigned long long>(bytes),
          static_cast<unsigned long long>(kMaxTreeBytes));
    }
    total += document.size + 2;
  }
  if (total > 2 * kMaxDescriptionBytes) {
    throw tooLong(total);
  }
  if (prepared.size() == 1) {
    model.text_ = std::move(prepared.front().data);
  } else {
    model.text_ = std::make_unique_for_overwrite<char[]>(total + kTextSlack);
    std::size_t at = 0;
    for (const DocumentText& document : prepared) {
      std::memcpy(model.text_.get() + at, document.data.get(), document.size + 2 + kTextSlack);
      at += document.size + 2;
    }
  }
  model.textSize_ = total - 2;

  const LineTable lines(texts, cutAtFirstEnd);
  WarningList warnings;
  ModelBuilder builder(model, lines, warnings);
  builder.reserve();
  std::uint32_t offset = 1;
  for (std::size_t i = 0; i < prepared.size(); ++i) {
    const std::size_t size = prepared[i].size;
    char* const begin = model.text_.get() + offset;
    model.times_.prepare += nanosecondsSince(clock);
    pugi::xml_document tree;
    const pugi::xml_parse_result result = tree.load_buffer_inplace(begin, size, kParseOptions, pugi::encoding_utf8);
    model.times_.parse += nanosecondsSince(clock);
    if (!result && !cutAtFirstEnd) {
      return false;
    }
    if (!result) {
      const auto [line, column] =
          lines.positionOf(offset + static_cast<std::uint32_t>(std::max<std::ptrdiff_t>(result.offset, 0)));
      throw RUNTIME_EXCEPTION("Error while parsing XML stream at line %u and column %u : '%s'", line, column,
                              result.description());
    }
    if (prepared[i].isPreceded) {
      warnings.add(lines.lineOf(offset), "text stands before the description and is skipped");
    }
    if (prepared[i].isFollowed) {
      warnings.add(lines.lineOf(offset + static_cast<std::uint32_t>(size)),
                   "what follows the end of the description is skipped");
    }
    if (prepared[i].firstNoUtf8 != std::string_view::npos) {
      warnings.add(lines.lineOf(offset + static_cast<std::uint32_t>(prepared[i].firstNoUtf8)),
                   "a byte that is no UTF-8 stands here, texts with such bytes are taken for Latin-1");
    }
    builder.addDocument(tree.document_element(), i == 0);
    model.times_.build += nanosecondsSince(clock);
    offset += static_cast<std::uint32_t>(size) + 2;
  }
  ModelLinker(model, lines, warnings, builder.documentOfNode_).link();
  model.warningsSuppressed_ = warnings.suppressed();
  model.warnings_ = warnings.take();
  shrink(model.nodes_);
  shrink(model.properties_);
  shrink(model.numbers_);
  model.times_.link = nanosecondsSince(clock);
  return true;
}

// About one property in 32 bytes, as real descriptions have it. Too much costs nothing before it is used.
void ModelBuilder::reserve() {
  model_.nodes_.reserve(model_.textSize_ / 160);
  documentOfNode_.reserve(model_.textSize_ / 160);
  model_.properties_.reserve(model_.textSize_ / 32);
  model_.numbers_.reserve(model_.textSize_ / 100);
}

void ModelBuilder::addDocument(pugi::xml_node root, bool first) {
  if (!root || findElement(root.name()).element != Element::RegisterDescription) {
    throw RUNTIME_EXCEPTION(
        "The text is no camera description: its first element is '%.100s' instead of RegisterDescription", root.name());
  }
  if (first) {
    readRoot(root);
  } else {
    ++document_;
  }
  // Groups may be nested deeper than a stack reaches, so the walk goes along the tree's own links.
  pugi::xml_node at = root.first_child();
  while (at) {
    if (at.type() == pugi::node_element) {
      const ElementMatch kind = findElement(at.name());
      if (kind.element == Element::Group) {
        if (const pugi::xml_node child = at.first_child()) {
          at = child;
          continue;
        }
      } else {
        addAny(at, kind);
      }
    }
    while (at && !at.next_sibling()) {
      at = at.parent();
      if (at == root) {
        at = {};
      }
    }
    at = at.next_sibling();
  }
}

void ModelBuilder::readRoot(pugi::xml_node root) {
  DescriptionInfo& info = model_.info_;
  struct Field {
    std::string_view name;
    std::string* text = nullptr;
    std::uint16_t* number = nullptr;
    bool known = false;
  };
  std::array fields{
      Field{"ModelName", &info.modelName},
      Field{"VendorName", &info.vendorName},
      Field{"ToolTip", &info.toolTip},
      Field{"StandardNameSpace", &info.standardNameSpace},
      Field{"ProductGuid", &info.productGuid},
      Field{"VersionGuid", &info.versionGuid},
      Field{"SchemaMajorVersion", nullptr, &info.schema[0]},
      Field{"SchemaMinorVersion", nullptr, &info.schema[1]},
      Field{"SchemaSubMinorVersion", nullptr, &info.schema[2]},
      Field{"MajorVersion", nullptr, &info.version[0]},
      Field{"MinorVersion", nullptr, &info.version[1]},
      Field{"SubMinorVersion", nullptr, &info.version[2]},
  };
  bool hasSchema = false;
  for (const pugi::xml_attribute attribute : root.attributes()) {
    const std::string_view name = attribute.name();
    const auto field =
        std::ranges::find_if(fields, [name](const Field& known) { return equalsIgnoringCase(known.name, name); });
    if (field == fields.end()) {
      continue;
    }
    if (std::exchange(field->known, true)) {
      warnRepeated(root, attribute);
    } else if (field->text != nullptr) {
      *field->text = toUtf8(trim(attribute.value()));
    } else {
      hasSchema = hasSchema || field->number == &info.schema[0];
      const auto value = describedInteger(attribute.value());
      if (value && *value >= 0 && *value <= std::numeric_limits<std::uint16_t>::max()) {
        *field->number = static_cast<std::uint16_t>(*value);
      } else {
        warn(root, std::string(name) + " is no version number: '" + attribute.value() + "'");
      }
    }
  }
  if (!hasSchema) {
    warn(root, "there is no SchemaMajorVersion, schema 1.1 is assumed");
  }
  if (info.schema[0] != 1) {
    throw RUNTIME_EXCEPTION("The camera description needs schema version %d.%d, supported are 1.0 and 1.1",
                            int{info.schema[0]}, int{info.schema[1]});
  }
}

void ModelBuilder::warnRepeated(pugi::xml_node xml, pugi::xml_attribute attribute) {
  warn(xml, std::string(xml.name()) + " has another attribute '" + attribute.name() + "', only the first counts");
}

void ModelBuilder::warn(pugi::xml_node xml, std::string text) {
  warnings_.add(lines_.lineOf(static_cast<std::uint32_t>(xml.name() - model_.text_.get())), std::move(text));
}

}  // namespace GenApiEngine
