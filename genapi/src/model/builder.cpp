// From text to records: runs the XML parser in place over the model's own buffer and turns its tree into properties.
#include "model/builder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "Base/GCException.h"
#include "base/number_text.h"
#include "model/builder_detail.h"
#include "model/limits.h"

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

std::optional<std::int64_t> parseBits(std::string_view text, Lexical lexical, NodeKind kind) {
  if (lexical == Lexical::Number) {
    const auto number = describedFloat(text);
    return number ? std::optional(std::bit_cast<std::int64_t>(*number)) : std::nullopt;
  }
  if (kind == NodeKind::Boolean) {
    if (equalsIgnoringCase(text, "true") || equalsIgnoringCase(text, "yes")) {
      return 1;
    }
    if (equalsIgnoringCase(text, "false") || equalsIgnoringCase(text, "no")) {
      return 0;
    }
  }
  return describedInteger(text);
}

}  // namespace

void WarningList::add(std::uint32_t line, std::string text) {
  if (warnings_.size() < kMaxWarnings) {
    warnings_.push_back({line, std::move(text)});
  } else {
    ++suppressed_;
  }
}

void LineTable::readTexts() const {
  std::uint32_t offset = 1;
  for (const std::string_view text : texts_) {
    const DocumentText document = prepareDocument(text.data(), text.size(), cutAtFirstEnd_);
    documents_.push_back({ends_.size(), offset});
    const std::string_view lines(document.data.get() + 1, document.size);
    for (std::size_t at = lines.find('\n'); at != std::string_view::npos; at = lines.find('\n', at + 1)) {
      ends_.push_back(offset + static_cast<std::uint32_t>(at));
    }
    offset += static_cast<std::uint32_t>(document.size) + 2;
  }
}

LineTable::Position LineTable::positionOf(std::uint32_t offset) const {
  if (documents_.empty()) {
    readTexts();
  }
  const auto after = std::ranges::upper_bound(documents_, offset, {}, &Document::offset);
  const Document document = after == documents_.begin() ? Document{0, 0} : *std::prev(after);
  const auto first = ends_.begin() + static_cast<std::ptrdiff_t>(document.firstEnd);
  const auto end = std::lower_bound(first, ends_.end(), offset);
  const std::uint32_t start = end == first ? document.offset : *std::prev(end) + 1;
  return {static_cast<std::uint32_t>(end - first) + 1, offset - start + 1};
}

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
    prepared.push_back(prepareDocument(text.data(), text.size(), cutAtFirstEnd));
    total += prepared.back().size + 2;
  }
  if (total > 2 * kMaxDescriptionBytes) {
    throw tooLong(total);
  }
  if (prepared.size() == 1) {
    model.text_ = std::move(prepared.front().data);
  } else {
    model.text_ = std::make_unique_for_overwrite<char[]>(total);
    std::size_t at = 0;
    for (const DocumentText& document : prepared) {
      std::memcpy(model.text_.get() + at, document.data.get(), document.size + 2);
      at += document.size + 2;
    }
  }
  model.textSize_ = total - 2;

  const LineTable lines(texts, cutAtFirstEnd);
  WarningList warnings;
  ModelBuilder builder(model, lines, warnings);
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
    builder.addDocument(tree.document_element(), i == 0);
    model.times_.build += nanosecondsSince(clock);
    offset += static_cast<std::uint32_t>(size) + 2;
  }
  ModelLinker(model, lines, warnings, builder.documentOfNode_).link();
  model.warningsSuppressed_ = warnings.suppressed();
  model.warnings_ = warnings.take();
  model.nodes_.shrink_to_fit();
  model.properties_.shrink_to_fit();
  model.numbers_.shrink_to_fit();
  model.times_.link = nanosecondsSince(clock);
  return true;
}

void ModelBuilder::addDocument(pugi::xml_node root, bool first) {
  const ElementMatch match = findElement(root.name());
  if (match.element != Element::RegisterDescription) {
    throw RUNTIME_EXCEPTION(
        "The text is no camera description: its first element is '%.100s' instead of RegisterDescription", root.name());
  }
  if (first) {
    readRoot(root);
    // About one node in 150 bytes and one property in 30, as real descriptions have it.
    model_.nodes_.reserve(model_.textSize_ / 180);
    model_.properties_.reserve(model_.textSize_ / 30);
    model_.numbers_.reserve(model_.textSize_ / 100);
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
  struct TextField {
    std::string_view name;
    std::string DescriptionInfo::*field;
  };
  constexpr std::array kTexts{
      TextField{"ModelName", &DescriptionInfo::modelName},
      TextField{"VendorName", &DescriptionInfo::vendorName},
      TextField{"ToolTip", &DescriptionInfo::toolTip},
      TextField{"StandardNameSpace", &DescriptionInfo::standardNameSpace},
      TextField{"ProductGuid", &DescriptionInfo::productGuid},
      TextField{"VersionGuid", &DescriptionInfo::versionGuid},
  };
  DescriptionInfo& info = model_.info_;
  struct NumberField {
    std::string_view name;
    std::uint16_t* field;
  };
  const std::array numbers{
      NumberField{"SchemaMajorVersion", &info.schema[0]},    NumberField{"SchemaMinorVersion", &info.schema[1]},
      NumberField{"SchemaSubMinorVersion", &info.schema[2]}, NumberField{"MajorVersion", &info.version[0]},
      NumberField{"MinorVersion", &info.version[1]},         NumberField{"SubMinorVersion", &info.version[2]},
  };
  for (const pugi::xml_attribute attribute : root.attributes()) {
    const std::string_view name = attribute.name();
    const auto isName = [name](const auto& field) { return equalsIgnoringCase(field.name, name); };
    if (const auto text = std::ranges::find_if(kTexts, isName); text != kTexts.end()) {
      info.*text->field = toUtf8(trim(attribute.value()));
    } else if (const auto number = std::ranges::find_if(numbers, isName); number != numbers.end()) {
      const auto value = describedInteger(attribute.value());
      if (value && *value >= 0 && *value <= std::numeric_limits<std::uint16_t>::max()) {
        *number->field = static_cast<std::uint16_t>(*value);
      } else {
        warn(root, std::string(name) + " is no version number: '" + attribute.value() + "'");
      }
    }
  }
  if (info.schema[0] != 1) {
    throw RUNTIME_EXCEPTION("The camera description needs schema version %d.%d, supported are 1.0 and 1.1",
                            int{info.schema[0]}, int{info.schema[1]});
  }
}

void ModelBuilder::addAny(pugi::xml_node xml, ElementMatch match) {
  if (match.element == Element::StructReg) {
    addStruct(xml);
  } else if (isNodeKind(match.element) && match.element != NodeKind::StructEntry) {
    if (!match.exact) {
      warn(xml, "element '" + std::string(xml.name()) + "' is taken for " + std::string(infoOf(match.element).name));
    }
    addNode(xml, match.element, kNoNode);
  } else if (match.element != Element::Extension) {
    warn(xml, "element '" + std::string(xml.name()) + "' is no node and is skipped");
  }
}

NodeIndex ModelBuilder::addNode(pugi::xml_node xml, NodeKind kind, NodeIndex owner,
                                std::span<const Property> inherited) {
  const auto index = static_cast<NodeIndex>(model_.nodes_.size());
  NodeRecord record;
  record.kind = kind;
  record.owner = owner;
  record.firstProperty = static_cast<std::uint32_t>(model_.properties_.size());
  emitAttributes(xml, record);
  if (record.nameLength == 0) {
    warn(xml, std::string(xml.name()) + " without a name is skipped");
    model_.properties_.resize(record.firstProperty);
    return kNoNode;
  }
  std::vector<Nested> nested;
  emitChildren(xml, kind, record, nested);
  ElementSet present;
  for (const Property& property : std::span(model_.properties_).subspan(record.firstProperty)) {
    present.set(static_cast<std::size_t>(property.element()));
  }
  const ElementSet own = present;
  for (const Property& property : inherited) {
    const auto element = static_cast<std::size_t>(property.element());
    if (!own.test(element)) {
      present.set(element);
      model_.properties_.push_back(property);
    }
  }
  completeRegister(xml, record, present);
  record.propertyCount = static_cast<std::uint32_t>(model_.properties_.size() - record.firstProperty);
  model_.nodes_.push_back(record);
  documentOfNode_.push_back(document_);
  buildNested(nested, index);
  checkRequired(index, present);
  return index;
}

// Real descriptions forget a register's port or length; what is meant is plain.
void ModelBuilder::completeRegister(pugi::xml_node xml, const NodeRecord& record, const ElementSet& present) {
  if (!hasRegister(record.kind)) {
    return;
  }
  const auto has = [&present](Element element) { return present.test(static_cast<std::size_t>(element)); };
  if (!has(Element::Length) && !has(Element::pLength)) {
    warn(xml, quotedNameOf(record) + " has no Length, 4 bytes are assumed");
  }
  if (!has(Element::pPort)) {
    warn(xml, quotedNameOf(record) + " has no pPort, the device's port is assumed");
    model_.properties_.push_back(makeProperty(Element::pPort, {}));
  }
}

void ModelBuilder::addStruct(pugi::xml_node xml) {
  // The common part is made once, as the properties of no node, and handed to every entry.
  NodeRecord record;
  record.kind = NodeKind::StructEntry;
  const std::size_t first = model_.properties_.size();
  std::vector<Nested> nested;
  emitChildren(xml, NodeKind::StructReg, record, nested);
  std::vector<Property> common(model_.properties_.begin() + static_cast<std::ptrdiff_t>(first),
                               model_.properties_.end());
  model_.properties_.resize(first);
  for (const Nested& inner : nested) {
    if (inner.kind != NodeKind::StructEntry) {
      common[inner.property - first].target = addNode(inner.xml, inner.kind, kNoNode);
    }
  }
  for (const Nested& inner : nested) {
    if (inner.kind == NodeKind::StructEntry) {
      const NodeIndex entry = addNode(inner.xml, NodeKind::StructEntry, kNoNode, common);
      if (entry != kNoNode && record.broken) {
        model_.nodes_[entry].broken = true;
      }
    }
  }
}

void ModelBuilder::buildNested(const std::vector<Nested>& nested, NodeIndex owner) {
  for (const Nested& inner : nested) {
    const NodeIndex node = addNode(inner.xml, inner.kind, inner.kind == NodeKind::EnumEntry ? owner : kNoNode);
    if (inner.property != kNoNode) {
      model_.properties_[inner.property].target = node;
    }
    if (node == kNoNode && inner.kind == NodeKind::IntSwissKnife) {
      model_.nodes_[owner].broken = true;
    }
  }
}

void ModelBuilder::emitAttributes(pugi::xml_node xml, NodeRecord& record) {
  for (pugi::xml_attribute attribute = xml.first_attribute(); attribute; attribute = attribute.next_attribute()) {
    const Span span = spanOf(attribute.value());
    if (span.length == 0) {
      continue;
    }
    const Element element = findElement(attribute.name()).element;
    if (element == Element::Name) {
      record.name = span.offset;
      record.nameLength = span.length;
      continue;
    }
    if (element == Element::NameSpace) {
      record.standard = equalsIgnoringCase({model_.text_.get() + span.offset, span.length}, "Standard");
    }
    if (element == Element::NameSpace || element == Element::MergePriority || element == Element::ExposeStatic) {
      model_.properties_.push_back(makeProperty(element, span));
    }
  }
}

void ModelBuilder::emitChildren(pugi::xml_node xml, NodeKind kind, NodeRecord& record, std::vector<Nested>& nested) {
  for (pugi::xml_node child = xml.first_child(); child; child = child.next_sibling()) {
    if (child.type() != pugi::node_element) {
      continue;
    }
    const ElementMatch match = findElement(child.name());
    const Element element = match.element;
    if (element == Element::Extension) {
      continue;
    }
    const bool entry = element == Element::EnumEntry && kind == NodeKind::Enumeration;
    const bool member = element == Element::StructEntry && kind == NodeKind::StructReg;
    const bool knife = element == Element::IntSwissKnife && kind != NodeKind::IntSwissKnife;
    const bool key = (element == Element::TextDesc || element == Element::IntKey) && kind == NodeKind::ConfRom;
    if (entry || knife) {
      nested.push_back({child, element, static_cast<std::uint32_t>(model_.properties_.size())});
      const pugi::xml_attribute name = child.attribute("Name");
      model_.properties_.push_back(
          makeProperty(entry ? Element::pEnumEntry : element, *name.value() == '\0' ? Span{} : spanOf(name.value())));
    } else if (member || key) {
      nested.push_back({child, element, kNoNode});
    } else if (element == Element::Unknown || isNodeKind(element) || element == Element::Group) {
      warn(child,
           "element '" + std::string(child.name()) + "' in '" + nameOf(record) + "' is not known and is skipped");
    } else {
      if (!match.exact) {
        warn(child, "element '" + std::string(child.name()) + "' in '" + nameOf(record) + "' is taken for " +
                        std::string(infoOf(element).name));
      }
      emitChild(child, element, kind, record);
    }
  }
}

void ModelBuilder::emitChild(pugi::xml_node child, Element element, NodeKind kind, NodeRecord& record) {
  const Span span = textOf(child);
  if (span.length == 0) {
    return;
  }
  Property property = makeProperty(element, span);
  const ElementInfo& info = infoOf(element);
  const Lexical lexical = lexicalOf(element, kind);
  const std::string_view text = model_.text(property);
  if (lexical == Lexical::Integer || lexical == Lexical::Number) {
    if (const auto bits = parseBits(text, lexical, kind)) {
      property.target = static_cast<std::uint32_t>(model_.numbers_.size());
      model_.numbers_.push_back(*bits);
    } else {
      warn(child, std::string(info.name) + " of '" + nameOf(record) + "' is no number: '" +
                      std::string(text.substr(0, 100)) + "'");
      if (!info.essential) {
        return;
      }
      record.broken = true;
    }
  }
  for (pugi::xml_attribute attribute = child.first_attribute(); attribute; attribute = attribute.next_attribute()) {
    if (*attribute.value() != '\0' && equalsIgnoringCase(attribute.name(), "pOffset")) {
      Property offset = makeProperty(Element::pOffset, spanOf(attribute.value()));
      model_.properties_.push_back(property);
      model_.properties_.push_back(offset);
      return;
    }
    if (*attribute.value() != '\0' &&
        (equalsIgnoringCase(attribute.name(), "Name") || equalsIgnoringCase(attribute.name(), "Index") ||
         equalsIgnoringCase(attribute.name(), "Offset"))) {
      property.attribute = spanOf(attribute.value()).offset;
    }
  }
  model_.properties_.push_back(property);
}

void ModelBuilder::checkRequired(NodeIndex index, const ElementSet& present) {
  NodeRecord& record = model_.nodes_[index];
  const auto has = [&present](std::initializer_list<Element> elements) {
    return std::ranges::any_of(elements,
                               [&present](Element element) { return present.test(static_cast<std::size_t>(element)); });
  };
  const auto require = [&](std::initializer_list<Element> elements, const char* what) {
    if (!has(elements)) {
      warnings_.add(lines_.lineOf(record.name), quotedNameOf(record) + " has no " + what + " and is not implemented");
      record.broken = true;
    }
  };
  switch (record.kind) {
    case NodeKind::Integer:
    case NodeKind::Float:
      require({Element::Value, Element::pValue, Element::ValueIndexed, Element::pValueIndexed, Element::ValueDefault,
               Element::pValueDefault},
              "value");
      break;
    case NodeKind::Boolean:
    case NodeKind::Command:
    case NodeKind::Enumeration:
      require({Element::Value, Element::pValue}, "value");
      break;
    case NodeKind::EnumEntry:
      require({Element::Value}, "value");
      break;
    case NodeKind::Converter:
    case NodeKind::IntConverter:
      require({Element::pValue}, "pValue");
      break;
    default:
      if (hasRegister(record.kind)) {
        require({Element::Address, Element::pAddress, Element::IntSwissKnife, Element::pIndex}, "address");
      }
      break;
  }
}

Property ModelBuilder::makeProperty(Element element, Span span) {
  Property property;
  property.text = span.offset;
  property.lengthAndElement = (std::min(span.length, kMaxTextLength) << 8) | static_cast<std::uint32_t>(element);
  return property;
}

ModelBuilder::Span ModelBuilder::textOf(pugi::xml_node element) {
  const pugi::xml_node first = element.first_child();
  if (!first) {
    return *element.value() == '\0' ? Span{} : spanOf(element.value());
  }
  // Comments and CDATA sections split a text into parts that lie behind each other in the buffer; they are moved
  // together.
  char* begin = nullptr;
  std::size_t length = 0;
  const auto append = [&](const char* part) {
    const std::size_t size = std::strlen(part);
    if (size == 0) {
      return;
    }
    char* const from = model_.text_.get() + (part - model_.text_.get());
    if (begin == nullptr) {
      begin = from;
    } else {
      std::memmove(begin + length, from, size);
    }
    length += size;
  };
  append(element.value());
  for (pugi::xml_node child = first; child; child = child.next_sibling()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
      append(child.value());
    }
  }
  const std::string_view trimmed = trim({begin, length});
  if (trimmed.empty()) {
    return {};
  }
  return {static_cast<std::uint32_t>(trimmed.data() - model_.text_.get()), static_cast<std::uint32_t>(trimmed.size())};
}

ModelBuilder::Span ModelBuilder::spanOf(const char* text) const {
  const std::string_view trimmed = trim(text);
  return {static_cast<std::uint32_t>(trimmed.data() - model_.text_.get()), static_cast<std::uint32_t>(trimmed.size())};
}

void ModelBuilder::warn(pugi::xml_node xml, std::string text) {
  warnings_.add(lines_.lineOf(static_cast<std::uint32_t>(xml.name() - model_.text_.get())), std::move(text));
}

}  // namespace GenApiEngine
