// From an element to a record: what stands in the XML of one node becomes its properties.
#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>

#include "base/limits.h"
#include "base/number_text.h"
#include "model/builder_detail.h"

namespace GenApiEngine {
namespace {

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

}  // namespace

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
  if (present.has(Element::pIndex)) {
    checkIndices(record);
  }
  switch (record.kind) {
    case NodeKind::Integer:
    case NodeKind::Float:
      if (has({Element::ValueIndexed, Element::pValueIndexed, Element::ValueDefault, Element::pValueDefault}) &&
          !has({Element::Value, Element::pValue})) {
        require({Element::pIndex}, "pIndex");
      } else {
        require({Element::Value, Element::pValue}, "value");
      }
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

// The numbers beside the elements that an index chooses from, and the constant that an index counts in.
void ModelBuilder::checkIndices(NodeRecord& record) {
  for (const Property& property : model_.properties(record)) {
    const Element element = property.element();
    const bool isEntry = element == Element::ValueIndexed || element == Element::pValueIndexed;
    const std::string_view text = model_.attribute(property);
    if ((isEntry || (element == Element::pIndex && !text.empty())) && !describedInteger(text)) {
      warnings_.add(lines_.lineOf(record.name), std::string(isEntry ? "Index" : "Offset") + " of " +
                                                    quotedNameOf(record) + " is no number: '" +
                                                    std::string(text.substr(0, 100)) + "'");
      record.broken = true;
    }
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

}  // namespace GenApiEngine
