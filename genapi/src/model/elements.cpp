// The table behind the vocabulary and the search in it, which every element of a description goes through.
#include "model/elements.h"

#include <algorithm>
#include <array>
#include <bit>
#include <iterator>

#include "model/text.h"

namespace GenApiEngine {
namespace {

constexpr ElementInfo holder(std::string_view name, Element element) {
  return {name, element, Lexical::Text, Link::None, false};
}
constexpr ElementInfo text(std::string_view name, Element element) {
  return {name, element, Lexical::Text, Link::None, false};
}
constexpr ElementInfo integer(std::string_view name, Element element, bool essential = true) {
  return {name, element, Lexical::Integer, Link::None, essential};
}
// Integer or float, as the node's kind wants it.
constexpr ElementInfo number(std::string_view name, Element element, bool essential = true) {
  return {name, element, Lexical::Number, Link::None, essential};
}
constexpr ElementInfo reference(std::string_view name, Element element, Link link, bool essential) {
  return {name, element, Lexical::Reference, link, essential};
}

}  // namespace

constexpr ElementInfo kElements[static_cast<std::size_t>(Element::Unknown) + 1] = {
    holder("Node", Element::Node),
    holder("Category", Element::Category),
    holder("Integer", Element::Integer),
    holder("IntReg", Element::IntReg),
    holder("MaskedIntReg", Element::MaskedIntReg),
    holder("StructEntry", Element::StructEntry),
    holder("Boolean", Element::Boolean),
    holder("Command", Element::Command),
    holder("Enumeration", Element::Enumeration),
    holder("EnumEntry", Element::EnumEntry),
    holder("Float", Element::Float),
    holder("FloatReg", Element::FloatReg),
    holder("Converter", Element::Converter),
    holder("IntConverter", Element::IntConverter),
    holder("SwissKnife", Element::SwissKnife),
    reference("IntSwissKnife", Element::IntSwissKnife, Link::Computes, true),
    holder("String", Element::String),
    holder("StringReg", Element::StringReg),
    holder("Register", Element::Register),
    holder("Port", Element::Port),
    holder("ConfRom", Element::ConfRom),
    holder("TextDesc", Element::TextDesc),
    holder("IntKey", Element::IntKey),
    holder("AdvFeatureLock", Element::AdvFeatureLock),
    holder("SmartFeature", Element::SmartFeature),
    holder("StructReg", Element::StructReg),
    holder("Group", Element::Group),
    holder("RegisterDescription", Element::RegisterDescription),
    holder("Extension", Element::Extension),
    text("Name", Element::Name),
    text("NameSpace", Element::NameSpace),
    text("MergePriority", Element::MergePriority),
    text("ExposeStatic", Element::ExposeStatic),
    text("Comment", Element::Comment),
    text("ToolTip", Element::ToolTip),
    text("Description", Element::Description),
    text("DisplayName", Element::DisplayName),
    text("Visibility", Element::Visibility),
    text("DocuURL", Element::DocuURL),
    text("IsDeprecated", Element::IsDeprecated),
    text("EventID", Element::EventID),
    reference("pIsImplemented", Element::pIsImplemented, Link::Reads, true),
    reference("pIsAvailable", Element::pIsAvailable, Link::Reads, true),
    reference("pIsLocked", Element::pIsLocked, Link::Reads, true),
    reference("pBlockPolling", Element::pBlockPolling, Link::Reads, false),
    text("ImposedAccessMode", Element::ImposedAccessMode),
    reference("pError", Element::pError, Link::Reads, false),
    reference("pAlias", Element::pAlias, Link::None, false),
    reference("pCastAlias", Element::pCastAlias, Link::None, false),
    reference("pInvalidator", Element::pInvalidator, Link::Invalidates, false),
    text("Streamable", Element::Streamable),
    reference("pSelected", Element::pSelected, Link::None, false),
    integer("Address", Element::Address),
    reference("pAddress", Element::pAddress, Link::Computes, true),
    reference("pIndex", Element::pIndex, Link::Computes, true),
    reference("pOffset", Element::pOffset, Link::Computes, true),
    integer("Length", Element::Length),
    reference("pLength", Element::pLength, Link::Computes, true),
    text("AccessMode", Element::AccessMode),
    reference("pPort", Element::pPort, Link::Computes, true),
    text("Cachable", Element::Cachable),
    integer("PollingTime", Element::PollingTime, false),
    text("Sign", Element::Sign),
    text("Endianess", Element::Endianess),
    integer("Bit", Element::Bit),
    integer("LSB", Element::LSB),
    integer("MSB", Element::MSB),
    number("Value", Element::Value),
    reference("pValue", Element::pValue, Link::Writes, true),
    reference("pValueCopy", Element::pValueCopy, Link::Writes, true),
    number("ValueIndexed", Element::ValueIndexed),
    reference("pValueIndexed", Element::pValueIndexed, Link::Writes, true),
    number("ValueDefault", Element::ValueDefault),
    reference("pValueDefault", Element::pValueDefault, Link::Writes, true),
    number("Min", Element::Min),
    reference("pMin", Element::pMin, Link::Reads, true),
    number("Max", Element::Max),
    reference("pMax", Element::pMax, Link::Reads, true),
    number("Inc", Element::Inc),
    reference("pInc", Element::pInc, Link::Reads, true),
    text("Unit", Element::Unit),
    text("Representation", Element::Representation),
    text("DisplayNotation", Element::DisplayNotation),
    integer("DisplayPrecision", Element::DisplayPrecision, false),
    text("ValidValueSet", Element::ValidValueSet),
    integer("OnValue", Element::OnValue),
    integer("OffValue", Element::OffValue),
    integer("CommandValue", Element::CommandValue),
    reference("pCommandValue", Element::pCommandValue, Link::Computes, true),
    reference("pEnumEntry", Element::pEnumEntry, Link::Invalidates, false),
    number("NumericValue", Element::NumericValue, false),
    text("Symbolic", Element::Symbolic),
    text("IsSelfClearing", Element::IsSelfClearing),
    reference("pVariable", Element::pVariable, Link::Computes, true),
    number("Constant", Element::Constant),
    text("Expression", Element::Expression),
    text("Formula", Element::Formula),
    text("FormulaTo", Element::FormulaTo),
    text("FormulaFrom", Element::FormulaFrom),
    text("Slope", Element::Slope),
    text("IsLinear", Element::IsLinear),
    reference("pFeature", Element::pFeature, Link::Reads, false),
    text("ChunkID", Element::ChunkID),
    reference("pChunkID", Element::pChunkID, Link::Computes, true),
    text("SwapEndianess", Element::SwapEndianess),
    text("CacheChunkData", Element::CacheChunkData),
    reference("p1212Parser", Element::p1212Parser, Link::Computes, false),
    text("Key", Element::Key),
    text("FeatureID", Element::FeatureID),
    text("Timeout", Element::Timeout),
    text("", Element::Unknown),
};

namespace {

constexpr bool inOrder() {
  for (std::size_t i = 0; i < std::size(kElements); ++i) {
    if (static_cast<std::size_t>(kElements[i].element) != i) {
      return false;
    }
  }
  return true;
}
static_assert(inOrder());

struct Variant {
  std::string_view name;
  Element element;
};

// Spellings that real descriptions contain.
constexpr std::array kVariants{
    Variant{"ValidValuesSet", Element::ValidValueSet},
    Variant{"Endianness", Element::Endianess},
    Variant{"Cacheable", Element::Cachable},
    Variant{"SwapEndianness", Element::SwapEndianess},
};

constexpr unsigned kSlotBits = 10;
constexpr std::size_t slotOf(const NameWords& words) {
  constexpr std::uint64_t kMultiplier = 0xD4620A8BB728B7F9ULL;
  const std::uint64_t mixed = words.first ^ std::rotl(words.second, 23) ^ std::rotl(words.third, 41);
  return static_cast<std::size_t>((mixed * kMultiplier) >> (64 - kSlotBits));
}
static_assert(std::endian::native == std::endian::little, "names are read as little-endian words");

constexpr NameWords wordsOf(std::string_view name) {
  std::uint64_t words[3] = {};
  for (std::size_t i = 0; i < name.size(); ++i) {
    words[i / 8] |= std::uint64_t{static_cast<unsigned char>(name[i])} << (8 * (i % 8));
  }
  return {words[0], words[1], words[2]};
}

// The bytes of a word in front of the first zero byte.
constexpr std::uint64_t cut(std::uint64_t word, std::uint64_t zeros) {
  return word & ((~zeros & (zeros - 1)) >> 7);
}

}  // namespace

constexpr std::array<KnownName, static_cast<std::size_t>(Element::Unknown) + 1> kKnownNames = [] {
  std::array<KnownName, std::size(kElements)> all;
  std::ranges::transform(kElements, all.begin(), [](const ElementInfo& info) {
    constexpr std::string_view kOnes =
        "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
        "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF";
    return KnownName{wordsOf(info.name), wordsOf(kOnes.substr(0, info.name.size() + 1))};
  });
  return all;
}();

namespace {

// Each known name has a slot of its own.
constexpr auto kSlotTable = [] {
  std::array<Element, std::size_t{1} << kSlotBits> slots{};
  slots.fill(Element::Unknown);
  for (const ElementInfo& info : kElements) {
    slots[slotOf(wordsOf(info.name))] = info.element;
  }
  return slots;
}();
static_assert(std::ranges::all_of(kElements, [](const ElementInfo& info) {
  return info.name.size() <= NameWords::kLongest && kSlotTable[slotOf(wordsOf(info.name))] == info.element;
}));

Element findForgiving(std::string_view name) {
  if (const std::size_t colon = name.rfind(':'); colon != std::string_view::npos) {
    name.remove_prefix(colon + 1);
  }
  for (const ElementInfo& info : kElements) {
    if (equalsIgnoringCase(info.name, name)) {
      return info.element;
    }
  }
  const auto* variant =
      std::ranges::find_if(kVariants, [&](const Variant& v) { return equalsIgnoringCase(v.name, name); });
  return variant == kVariants.end() ? Element::Unknown : variant->element;
}

ElementMatch find(const NameWords& words, const char* name) {
  const Element found = kSlotTable[slotOf(words)];
  if (found != Element::Unknown && kKnownNames[static_cast<std::size_t>(found)].words == words) {
    return {found, true};
  }
  return {findForgiving(name), false};
}

}  // namespace

bool hasRegister(NodeKind kind) {
  switch (kind) {
    case NodeKind::IntReg:
    case NodeKind::MaskedIntReg:
    case NodeKind::StructEntry:
    case NodeKind::FloatReg:
    case NodeKind::StringReg:
    case NodeKind::Register:
      return true;
    default:
      return false;
  }
}

bool canRefer(Element reference, NodeKind owner, NodeKind target) {
  const auto isText = [target] {
    return target == NodeKind::String || target == NodeKind::StringReg || target == NodeKind::TextDesc;
  };
  const auto isNumber = [target, isText] {
    return !isText() && target != NodeKind::Node && target != NodeKind::Category && target != NodeKind::Register &&
           target != NodeKind::Port && target != NodeKind::ConfRom;
  };
  switch (reference) {
    case Element::pPort:
      return target == NodeKind::Port;
    case Element::pChunkID:
      return isText();
    case Element::pEnumEntry:
      return target == NodeKind::EnumEntry;
    case Element::pValue:
      return owner == NodeKind::String ? isText() : isNumber();
    case Element::pAlias:
    case Element::pCastAlias:
    case Element::pInvalidator:
    case Element::pSelected:
    case Element::pFeature:
    case Element::p1212Parser:
      return true;
    default:
      return isNumber();
  }
}

ElementMatch findElement(const char* name) {
  const auto first = wordAt<std::uint64_t>(name);
  if (const std::uint64_t zeros = zerosIn(first); zeros != 0) {
    return find({cut(first, zeros), 0, 0}, name);
  }
  const auto second = wordAt<std::uint64_t>(name + 8);
  if (const std::uint64_t zeros = zerosIn(second); zeros != 0) {
    return find({first, cut(second, zeros), 0}, name);
  }
  const auto third = wordAt<std::uint64_t>(name + 16);
  if (const std::uint64_t zeros = zerosIn(third); zeros != 0) {
    return find({first, second, cut(third, zeros)}, name);
  }
  return {findForgiving(name), false};
}

ElementMatch ElementFinder::search(const char* name, Element previous) {
  const ElementMatch match = findElement(name);
  if (match.exact) {
    followers_[static_cast<std::size_t>(previous)] = match.element;
  }
  return match;
}

}  // namespace GenApiEngine
