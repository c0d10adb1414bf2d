// The vocabulary of a camera description: every element's number, its kind of value, and what a reference in it means.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "model/text.h"

namespace GenApiEngine {

/// Elements and attributes that the engine knows. Node kinds come first, so that a kind is an element's number.
enum class Element : std::uint8_t {
  Node,
  Category,
  Integer,
  IntReg,
  MaskedIntReg,
  StructEntry,
  Boolean,
  Command,
  Enumeration,
  EnumEntry,
  Float,
  FloatReg,
  Converter,
  IntConverter,
  SwissKnife,
  IntSwissKnife,
  String,
  StringReg,
  Register,
  Port,
  ConfRom,
  TextDesc,
  IntKey,
  AdvFeatureLock,
  SmartFeature,
  // Elements that only hold others.
  StructReg,
  Group,
  RegisterDescription,
  Extension,
  // Attributes.
  Name,
  NameSpace,
  MergePriority,
  ExposeStatic,
  Comment,
  // Common children.
  ToolTip,
  Description,
  DisplayName,
  Visibility,
  DocuURL,
  IsDeprecated,
  EventID,
  pIsImplemented,
  pIsAvailable,
  pIsLocked,
  pBlockPolling,
  ImposedAccessMode,
  pError,
  pAlias,
  pCastAlias,
  pInvalidator,
  Streamable,
  pSelected,
  // Registers.
  Address,
  pAddress,
  pIndex,
  pOffset,
  Length,
  pLength,
  AccessMode,
  pPort,
  Cachable,
  PollingTime,
  Sign,
  Endianess,
  Bit,
  LSB,
  MSB,
  // Values.
  Value,
  pValue,
  pValueCopy,
  ValueIndexed,
  pValueIndexed,
  ValueDefault,
  pValueDefault,
  Min,
  pMin,
  Max,
  pMax,
  Inc,
  pInc,
  Unit,
  Representation,
  DisplayNotation,
  DisplayPrecision,
  ValidValueSet,
  OnValue,
  OffValue,
  CommandValue,
  pCommandValue,
  pEnumEntry,
  NumericValue,
  Symbolic,
  IsSelfClearing,
  // Formulas.
  pVariable,
  Constant,
  Expression,
  Formula,
  FormulaTo,
  FormulaFrom,
  Slope,
  IsLinear,
  // Categories, ports and the rest.
  pFeature,
  ChunkID,
  pChunkID,
  SwapEndianess,
  CacheChunkData,
  p1212Parser,
  Key,
  FeatureID,
  Timeout,
  Unknown
};

using NodeKind = Element;
inline constexpr std::uint8_t kNodeKinds = static_cast<std::uint8_t>(Element::SmartFeature) + 1;
constexpr bool isNodeKind(Element e) {
  return static_cast<std::uint8_t>(e) < kNodeKinds;
}
/// Whether the element says something about the node that it stands in, rather than being a node or something to skip.
constexpr bool isPropertyElement(Element e) {
  return e > Element::Extension && e < Element::Unknown;
}

/// The elements of a node, as a set.
class ElementSet {
 public:
  void add(Element e) { words_[index(e) / 64] |= bit(e); }
  bool has(Element e) const { return (words_[index(e) / 64] & bit(e)) != 0; }

 private:
  static constexpr std::size_t index(Element e) { return static_cast<std::size_t>(e); }
  static constexpr std::uint64_t bit(Element e) { return std::uint64_t{1} << (index(e) % 64); }

  std::uint64_t words_[2] = {};
  static_assert(static_cast<std::size_t>(Element::Unknown) < 128);
};

/// What a reference is for. Each class contains the ones after it: what is written is also read, what is read
/// invalidates.
enum class Link : std::uint8_t {
  None,         ///< a relation without influence
  Invalidates,  ///< only drops caches
  Reads,        ///< guards, limits, members
  Computes,     ///< part of the value itself
  Writes        ///< where a write goes on to
};

/// How the text of an element is understood.
enum class Lexical : std::uint8_t { Text, Reference, Integer, Number, Name };

struct ElementInfo {
  std::string_view name;
  Element element;
  Lexical lexical;
  Link link;
  bool essential;  ///< a node whose element of this kind cannot be understood is not implemented
};

/// The facts of every element, in the order of the enumeration.
extern const ElementInfo kElements[static_cast<std::size_t>(Element::Unknown) + 1];

inline const ElementInfo& infoOf(Element element) {
  return kElements[static_cast<std::size_t>(element)];
}

/// Whether nodes of that kind lie in a register that holds one value.
bool hasRegister(NodeKind kind);
/// Whether a node of kind `target` has what a reference to it, in a node of kind `owner`, is there for.
bool canRefer(Element reference, NodeKind owner, NodeKind target);
/// How the text of an element is understood in a node of that kind.
inline Lexical lexicalOf(Element element, NodeKind kind) {
  if (element == Element::Value && kind == NodeKind::String) {
    return Lexical::Text;
  }
  const bool isFloat = kind == NodeKind::Float || kind == NodeKind::FloatReg || kind == NodeKind::SwissKnife ||
                       kind == NodeKind::Converter;
  const Lexical lexical = infoOf(element).lexical;
  return lexical == Lexical::Number && element != Element::NumericValue && !isFloat ? Lexical::Integer : lexical;
}

struct ElementMatch {
  Element element = Element::Unknown;
  bool exact = true;  ///< false when only another spelling of the name matched
};

/// Finds an element by its name; name spaces, spelling variants and the wrong case are forgiven.
///
/// @param name  not empty; ends with a NUL, behind which kTextSlack bytes can be read
ElementMatch findElement(const char* name);

/// A name as three words, zeros behind its end, so that names are compared and hashed by words.
struct NameWords {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  std::uint64_t third = 0;

  static constexpr std::size_t kLongest = 3 * sizeof(std::uint64_t) - 1;
  static_assert(kLongest <= kTextSlack);

  constexpr bool operator==(const NameWords&) const = default;
};

/// The name of an element as it stands in a text.
struct KnownName {
  NameWords words;
  NameWords mask;  ///< ones where the name and its NUL are

  bool matches(const char* name) const {
    return (((wordAt<std::uint64_t>(name) ^ words.first) & mask.first) |
            ((wordAt<std::uint64_t>(name + 8) ^ words.second) & mask.second) |
            ((wordAt<std::uint64_t>(name + 16) ^ words.third) & mask.third)) == 0;
  }
};

/// The names of all elements, in the order of the enumeration.
extern const std::array<KnownName, static_cast<std::size_t>(Element::Unknown) + 1> kKnownNames;

/// Finds elements that follow each other, in the order that the last ones had: descriptions say the same things of one
/// node after the other, and to compare with a name is faster than to search it.
class ElementFinder {
 public:
  ElementFinder() { followers_.fill(Element::Unknown); }

  /// As findElement.
  ///
  /// @param previous  the element before it, or the one around it
  ElementMatch find(const char* name, Element previous) {
    const Element follower = followers_[static_cast<std::size_t>(previous)];
    return kKnownNames[static_cast<std::size_t>(follower)].matches(name) ? ElementMatch{follower, true}
                                                                         : search(name, previous);
  }

 private:
  ElementMatch search(const char* name, Element previous);

  std::array<Element, static_cast<std::size_t>(Element::Unknown) + 1> followers_;
};

}  // namespace GenApiEngine
