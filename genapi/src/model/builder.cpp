// From text to records: runs the XML parser in place over the model's own buffer and turns its tree into properties.
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

// What most numbers are: some decimal digits. Nothing for any other text.
std::optional<std::int64_t> fewDigits(std::string_view text) {
  constexpr std::size_t kDigitsThatFit = 18;
  if (text.empty() || text.size() > kDigitsThatFit) {
    return std::nullopt;
  }
  std::int64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') {
      return std::nullopt;
    }
    value = value * 10 + (c - '0');
  }
  return value;
}

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
    Document& document = documents_.emplace_back();
    document.offset = offset;
    const std::optional<std::string_view> plain = plainText(text.data(), text.size(), cutAtFirstEnd_);
    if (!plain) {
      document.converted = prepareDocument(text.data(), text.size(), cutAtFirstEnd_);
    }
    document.text = plain ? *plain : std::string_view(document.converted.data.get() + 1, document.converted.size);
    std::uint32_t lines = 0;
    for (std::size_t at = 0; at < document.text.size(); at += kBlock) {
      document.linesBefore.push_back(lines);
      lines += countLines(document.text.substr(at, kBlock));
    }
    document.linesBefore.push_back(lines);
    offset += static_cast<std::uint32_t>(document.text.size()) + 2;
  }
}

std::uint32_t LineTable::countLines(std::string_view text) {
  // Pieces whose sum fits into a byte, so that the compiler counts in many bytes at once.
  constexpr std::size_t kPiece = 128;
  std::uint32_t lines = 0;
  for (; text.size() >= kPiece; text.remove_prefix(kPiece)) {
    std::uint8_t inPiece = 0;
    for (std::size_t i = 0; i < kPiece; ++i) {
      inPiece = static_cast<std::uint8_t>(inPiece + (text[i] == '\n' ? 1 : 0));
    }
    lines += inPiece;
  }
  return lines + static_cast<std::uint32_t>(std::ranges::count(text, '\n'));
}

std::string_view LineTable::textBefore(std::uint32_t offset, const Document*& document) const {
  if (documents_.empty()) {
    readTexts();
  }
  const auto after = std::ranges::upper_bound(documents_, offset, {}, &Document::offset);
  document = after == documents_.begin() ? documents_.data() : &*std::prev(after);
  return document->text.substr(0, offset - std::min(offset, document->offset));
}

std::uint32_t LineTable::lineOf(std::uint32_t offset) const {
  const Document* document = nullptr;
  const std::string_view before = textBefore(offset, document);
  const std::size_t block = before.size() / kBlock;
  return document->linesBefore[block] + countLines(before.substr(block * kBlock)) + 1;
}

LineTable::Position LineTable::positionOf(std::uint32_t offset) const {
  const Document* document = nullptr;
  const std::string_view before = textBefore(offset, document);
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 when there is none
  return {lineOf(offset), static_cast<std::uint32_t>(before.size() - lineStart) + 1};
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
  Draft draft;
  draft.element = kind;
  NodeRecord& record = draft.record;
  record.kind = kind;
  record.owner = owner;
  record.firstProperty = static_cast<std::uint32_t>(model_.properties_.size());
  emitAttributes(xml, draft);
  if (record.nameLength == 0 || record.nameLength > kMaxNameLength) {
    warn(xml, std::string(xml.name()) + (record.nameLength == 0 ? " without a name" : " with a name that is too long") +
                  " is skipped");
    model_.properties_.resize(record.firstProperty);
    return kNoNode;
  }
  emitChildren(xml, draft);
  const ElementSet own = draft.present;
  for (const Property& property : inherited) {
    if (!own.has(property.element())) {
      draft.present.add(property.element());
      model_.properties_.push_back(property);
    }
  }
  if (hasRegister(kind)) {
    completeRegister(xml, draft);
  }
  const ElementSet& present = draft.present;
  record.guarded = present.has(Element::pIsImplemented) || present.has(Element::pIsAvailable) ||
                   present.has(Element::pIsLocked) || present.has(Element::ImposedAccessMode);
  record.hasErrors = present.has(Element::pError);
  record.polled = present.has(Element::PollingTime);
  record.propertyCount = static_cast<std::uint32_t>(model_.properties_.size() - record.firstProperty);
  model_.nodes_.push_back(record);
  documentOfNode_.push_back(document_);
  buildNested(draft.nested, index);
  checkRequired(index, present);
  return index;
}

// Real descriptions forget a register's port or length; what is meant is plain.
void ModelBuilder::completeRegister(pugi::xml_node xml, Draft& draft) {
  if (!draft.present.has(Element::Length) && !draft.present.has(Element::pLength)) {
    warn(xml, quotedNameOf(draft.record) + " has no Length, 4 bytes are assumed");
  }
  if (!draft.present.has(Element::pPort)) {
    warn(xml, quotedNameOf(draft.record) + " has no pPort, the device's port is assumed");
    emit(draft, Element::pPort, {});
  }
}

void ModelBuilder::addStruct(pugi::xml_node xml) {
  // The common part is made once, as the properties of no node, and handed to every entry.
  Draft draft;
  draft.element = Element::StructReg;
  const std::size_t first = model_.properties_.size();
  emitChildren(xml, draft);
  std::vector<Property> common(model_.properties_.begin() + static_cast<std::ptrdiff_t>(first),
                               model_.properties_.end());
  model_.properties_.resize(first);
  if (common.size() * draft.nested.size() > kMaxProperties - std::min(first, kMaxProperties)) {
    warn(xml, "StructReg has " + std::to_string(common.size()) + " elements for each of " +
                  std::to_string(draft.nested.size()) + " entries, which is too much, and is skipped");
    return;
  }
  for (const Nested& inner : draft.nested) {
    if (inner.kind != NodeKind::StructEntry) {
      common[inner.property - first].target = addNode(inner.xml, inner.kind, kNoNode);
    }
  }
  for (const Nested& inner : draft.nested) {
    if (inner.kind == NodeKind::StructEntry) {
      const NodeIndex entry = addNode(inner.xml, NodeKind::StructEntry, kNoNode, common);
      if (entry != kNoNode && draft.record.broken) {
        model_.nodes_[entry].broken = true;
      }
    }
  }
}

void ModelBuilder::buildNested(const std::vector<Nested>& nested, NodeIndex owner) {
  repeatedNameBytes_ += std::size_t{model_.nodes_[owner].nameLength} * nested.size();
  const bool isTooMuch = repeatedNameBytes_ > kMaxRepeatedNameBytes && !nested.empty();
  if (isTooMuch) {
    warn(nested.front().xml, quotedNameOf(model_.nodes_[owner]) + " has too long a name for its " +
                                 std::to_string(nested.size()) + " entries, which are skipped");
  }
  for (const Nested& inner : nested) {
    const NodeIndex node =
        isTooMuch ? kNoNode : addNode(inner.xml, inner.kind, inner.kind == NodeKind::EnumEntry ? owner : kNoNode);
    if (inner.property != kNoNode) {
      model_.properties_[inner.property].target = node;
    }
    if (node == kNoNode && inner.kind == NodeKind::IntSwissKnife) {
      model_.nodes_[owner].broken = true;
    }
  }
}

void ModelBuilder::emitAttributes(pugi::xml_node xml, Draft& draft) {
  NodeRecord& record = draft.record;
  Element element = Element::Unknown;
  for (pugi::xml_attribute attribute = xml.first_attribute();; attribute = attribute.next_attribute()) {
    const char* const name = attribute.name();
    if (*name == '\0') {
      return;
    }
    const char* const value = attribute.value();
    const Span span = *value == '\0' ? Span{} : spanOf({value, textLength(value)});
    if (span.length == 0) {
      continue;
    }
    element = finder_.find(name, element).element;
    if (element != Element::Unknown &&
        (element == Element::Name ? record.nameLength != 0 : draft.present.has(element))) {
      warnRepeated(xml, attribute);
      continue;
    }
    if (element == Element::Name) {
      record.name = span.offset;
      record.nameLength = span.length;
      continue;
    }
    if (element == Element::NameSpace) {
      record.standard = equalsIgnoringCase({model_.text_.get() + span.offset, span.length}, "Standard");
    }
    if (element == Element::NameSpace || element == Element::MergePriority || element == Element::ExposeStatic) {
      emit(draft, element, span);
    }
  }
}

void ModelBuilder::emitChildren(pugi::xml_node xml, Draft& draft) {
  Element previous = draft.element;
  for (pugi::xml_node child = xml.first_child();; child = child.next_sibling()) {
    const char* const name = child.name();
    if (*name == '\0') {
      if (!child) {
        return;
      }
      continue;  // text between the elements
    }
    const ElementMatch match = finder_.find(name, previous);
    previous = match.element;
    if (!isPropertyElement(match.element)) {
      emitOther(child, match.element, draft);
      continue;
    }
    if (!match.exact) {
      warn(child, "element '" + std::string(name) + "' in '" + nameOf(draft.record) + "' is taken for " +
                      std::string(infoOf(match.element).name));
    }
    const Span text = textOf(child);
    if (text.length == 0) {
      continue;  // as if it were not there
    }
    const ElementInfo& info = infoOf(match.element);
    std::uint32_t number = kNoNode;
    if (info.lexical == Lexical::Integer || info.lexical == Lexical::Number) {
      const auto place = addNumber(child, match.element, text, draft);
      if (!place) {
        continue;
      }
      number = *place;
    }
    emit(draft, match.element, text).target = number;
    // Where the text begins right behind the bracket of the tag, which the parser has made a NUL, nothing is between it
    // and the name; to ask the tree takes longer.
    const bool hasNoRoom = match.exact && model_.text_.get() + text.offset == name + info.name.size() + 1;
    if (!hasNoRoom && child.first_attribute()) {
      emitAttributesOfChild(child, draft);
    }
  }
}

// Nodes within nodes, and what does not belong there.
void ModelBuilder::emitOther(pugi::xml_node child, Element element, Draft& draft) {
  if (element == Element::Extension) {
    return;
  }
  const bool entry = element == Element::EnumEntry && draft.element == Element::Enumeration;
  const bool member = element == Element::StructEntry && draft.element == Element::StructReg;
  const bool knife = element == Element::IntSwissKnife && draft.element != Element::IntSwissKnife;
  const bool key = (element == Element::TextDesc || element == Element::IntKey) && draft.element == Element::ConfRom;
  if (entry || knife) {
    draft.nested.push_back({child, element, static_cast<std::uint32_t>(model_.properties_.size())});
    const pugi::xml_attribute name = child.attribute("Name");
    emit(draft, entry ? Element::pEnumEntry : element, *name.value() == '\0' ? Span{} : spanOf(name.value()));
  } else if (member || key) {
    draft.nested.push_back({child, element, kNoNode});
  } else {
    warn(child,
         "element '" + std::string(child.name()) + "' in '" + nameOf(draft.record) + "' is not known and is skipped");
  }
}

// What an attribute of an element says belongs to the element's property, the last one that there is; the offset that
// another node gives becomes one of its own.
void ModelBuilder::emitAttributesOfChild(pugi::xml_node child, Draft& draft) {
  for (pugi::xml_attribute attribute = child.first_attribute(); attribute; attribute = attribute.next_attribute()) {
    if (*attribute.value() == '\0') {
      continue;
    }
    const std::string_view name = attribute.name();
    if (equalsIgnoringCase(name, "Name") || equalsIgnoringCase(name, "Index") || equalsIgnoringCase(name, "Offset")) {
      std::uint32_t& place = model_.properties_.back().attribute;
      if (place != 0) {
        warnRepeated(child, attribute);
      } else {
        place = spanOf(attribute.value()).offset;
      }
    } else if (equalsIgnoringCase(name, "pOffset")) {
      emit(draft, Element::pOffset, spanOf(attribute.value()));
      return;
    }
  }
}

// The place of the number that a text is; kNoNode with a warning when it is none, or nothing when the node is better
// off without the element.
std::optional<std::uint32_t> ModelBuilder::addNumber(pugi::xml_node child, Element element, Span span, Draft& draft) {
  const std::string_view text(model_.text_.get() + span.offset, span.length);
  const Lexical lexical = lexicalOf(element, draft.element);
  if (lexical == Lexical::Text) {
    return kNoNode;
  }
  auto bits = fewDigits(text);
  if (bits && lexical == Lexical::Number) {
    bits = std::bit_cast<std::int64_t>(static_cast<double>(*bits));
  } else if (!bits) {
    bits = parseBits(text, lexical, draft.element);
  }
  if (bits) {
    model_.numbers_.push_back(*bits);
    return static_cast<std::uint32_t>(model_.numbers_.size() - 1);
  }
  const ElementInfo& info = infoOf(element);
  warn(child, std::string(info.name) + " of '" + nameOf(draft.record) + "' is no number: '" +
                  std::string(text.substr(0, 100)) + "'");
  if (!info.essential) {
    return std::nullopt;
  }
  draft.record.broken = true;
  return kNoNode;
}

void ModelBuilder::checkRequired(NodeIndex index, const ElementSet& present) {
  NodeRecord& record = model_.nodes_[index];
  const auto has = [&present](std::initializer_list<Element> elements) {
    return std::ranges::any_of(elements, [&present](Element element) { return present.has(element); });
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

// Comments and CDATA sections split a text into parts that lie behind each other in the buffer; they are moved
// together.
ModelBuilder::Span ModelBuilder::joinedTextOf(pugi::xml_node element, pugi::xml_node first) const {
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
  return length == 0 ? Span{} : spanOf({begin, length});
}

void ModelBuilder::warnRepeated(pugi::xml_node xml, pugi::xml_attribute attribute) {
  warn(xml, std::string(xml.name()) + " has another attribute '" + attribute.name() + "', only the first counts");
}

void ModelBuilder::warn(pugi::xml_node xml, std::string text) {
  warnings_.add(lines_.lineOf(static_cast<std::uint32_t>(xml.name() - model_.text_.get())), std::move(text));
}

}  // namespace GenApiEngine
