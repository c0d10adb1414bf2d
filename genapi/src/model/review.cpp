// Compares a model with the schema, as far as loading did not.
#include "model/review.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "base/limits.h"
#include "base/number_text.h"

namespace GenApiEngine {
namespace {

struct Rank {
  Element element;
  int place;
};

// The order that the schema has for all kinds of nodes together. What stands at different places in different kinds is
// not here.
constexpr std::array kRanks{Rank{Element::ToolTip, 1},
                            Rank{Element::Description, 2},
                            Rank{Element::DisplayName, 3},
                            Rank{Element::Visibility, 4},
                            Rank{Element::DocuURL, 5},
                            Rank{Element::IsDeprecated, 6},
                            Rank{Element::EventID, 7},
                            Rank{Element::pIsImplemented, 8},
                            Rank{Element::pIsAvailable, 9},
                            Rank{Element::pIsLocked, 10},
                            Rank{Element::pBlockPolling, 11},
                            Rank{Element::ImposedAccessMode, 12},
                            Rank{Element::pError, 13},
                            Rank{Element::pAlias, 14},
                            Rank{Element::pCastAlias, 15},
                            Rank{Element::Address, 20},
                            Rank{Element::IntSwissKnife, 20},
                            Rank{Element::pAddress, 20},
                            Rank{Element::pIndex, 20},
                            Rank{Element::Length, 21},
                            Rank{Element::pLength, 21},
                            Rank{Element::AccessMode, 22},
                            Rank{Element::pPort, 23},
                            Rank{Element::Cachable, 24},
                            Rank{Element::pVariable, 30},
                            Rank{Element::Constant, 31},
                            Rank{Element::Expression, 32},
                            Rank{Element::Formula, 33},
                            Rank{Element::FormulaTo, 33},
                            Rank{Element::FormulaFrom, 34},
                            Rank{Element::pEnumEntry, 40},
                            Rank{Element::Value, 41},
                            Rank{Element::pValue, 41},
                            Rank{Element::pValueCopy, 41},
                            Rank{Element::ValueIndexed, 41},
                            Rank{Element::pValueIndexed, 41},
                            Rank{Element::ChunkID, 41},
                            Rank{Element::pChunkID, 41},
                            Rank{Element::ValueDefault, 42},
                            Rank{Element::pValueDefault, 42},
                            Rank{Element::NumericValue, 42},
                            Rank{Element::SwapEndianess, 42},
                            Rank{Element::OnValue, 43},
                            Rank{Element::CommandValue, 43},
                            Rank{Element::pCommandValue, 43},
                            Rank{Element::Symbolic, 43},
                            Rank{Element::CacheChunkData, 43},
                            Rank{Element::OffValue, 44},
                            Rank{Element::IsSelfClearing, 44},
                            Rank{Element::Min, 45},
                            Rank{Element::pMin, 45},
                            Rank{Element::Max, 46},
                            Rank{Element::pMax, 46},
                            Rank{Element::Inc, 47},
                            Rank{Element::pInc, 47},
                            Rank{Element::Bit, 50},
                            Rank{Element::LSB, 50},
                            Rank{Element::MSB, 51},
                            Rank{Element::Sign, 52},
                            Rank{Element::Endianess, 53},
                            Rank{Element::Unit, 54},
                            Rank{Element::Representation, 55},
                            Rank{Element::DisplayNotation, 56},
                            Rank{Element::DisplayPrecision, 57},
                            Rank{Element::Slope, 58},
                            Rank{Element::ValidValueSet, 58},
                            Rank{Element::IsLinear, 59}};

constexpr auto makePlaces() {
  std::array<int, static_cast<std::size_t>(Element::Unknown) + 1> places{};
  for (const Rank& rank : kRanks) {
    places[static_cast<std::size_t>(rank.element)] = rank.place;
  }
  return places;
}
constexpr auto kPlaces = makePlaces();

struct Words {
  Element element;
  std::string_view words;  // with a blank before and after each
};
constexpr std::string_view kYesNo = " Yes No ";
constexpr std::array kWords{
    Words{Element::Visibility, " Beginner Expert Guru Invisible "},
    Words{Element::IsDeprecated, kYesNo},
    Words{Element::ImposedAccessMode, " RO WO RW "},
    Words{Element::Streamable, kYesNo},
    Words{Element::AccessMode, " RO WO RW "},
    Words{Element::Cachable, " WriteThrough WriteAround NoCache "},
    Words{Element::Sign, " Signed Unsigned "},
    Words{Element::Endianess, " LittleEndian BigEndian "},
    Words{Element::Representation, " Linear Logarithmic Boolean PureNumber HexNumber IPV4Address MACAddress "},
    Words{Element::DisplayNotation, " Automatic Fixed Scientific "},
    Words{Element::IsSelfClearing, kYesNo},
    Words{Element::Slope, " Increasing Decreasing Varying Automatic "},
    Words{Element::IsLinear, kYesNo},
    Words{Element::SwapEndianess, kYesNo},
    Words{Element::CacheChunkData, kYesNo},
    Words{Element::NameSpace, " Standard Custom "},
};

bool isWord(std::string_view text, std::string_view words) {
  std::string padded = " ";
  padded.append(text).push_back(' ');
  return text.find(' ') == std::string_view::npos && words.find(padded) != std::string_view::npos;
}

bool isInteger(std::string_view text) {
  const bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const std::string_view digits = hex ? text.substr(2) : text;
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, hex ? 16 : 10);
  return error == std::errc{} && end == digits.data() + digits.size() && !(hex && digits.front() == '-');
}

bool isFloat(std::string_view text) {
  return text.find_first_of("xX") == std::string_view::npos && wholeFloat(text).has_value();
}

class Review {
 public:
  explicit Review(const Model& model) : model_(model) {}

  std::vector<ModelRemark> run() {
    std::size_t padded = 0;
    for (node_ = 0; node_ < model_.nodes().size(); ++node_) {
      const NodeRecord& record = model_.node(node_);
      checkOrder(record);
      checkWords(record);
      checkRegister(record);
      const auto own = model_.properties(record);
      padded += static_cast<std::size_t>(std::ranges::count_if(own, [&](const Property& property) {
        return isNumber(property, record.kind) && isOwn(record, property) && model_.isPadded(property);
      }));
    }
    node_ = kNoNode;
    if (padded > 0) {
      remark(std::to_string(padded) + (padded == 1 ? " number stands" : " numbers stand") + " between blanks");
    }
    return std::move(remarks_);
  }

 private:
  static bool isNumber(const Property& property, NodeKind kind) {
    const Lexical lexical = lexicalOf(property.element(), kind);
    return lexical == Lexical::Integer || lexical == Lexical::Number;
  }

  // Not taken over from a StructReg, whose text stands before that of its entries.
  static bool isOwn(const NodeRecord& record, const Property& property) { return property.text > record.name; }

  void checkOrder(const NodeRecord& record) {
    if (record.kind == NodeKind::SmartFeature || record.kind == NodeKind::ConfRom) {
      return;  // have an order of their own
    }
    Element last = Element::Unknown;
    for (const Property& property : model_.properties(record)) {
      const int place = kPlaces[static_cast<std::size_t>(property.element())];
      if (place == 0 || !isOwn(record, property)) {
        continue;
      }
      if (last != Element::Unknown && place < kPlaces[static_cast<std::size_t>(last)]) {
        remark(nameOf(property.element()) + " stands behind " + nameOf(last));
        return;
      }
      last = property.element();
    }
  }

  void checkWords(const NodeRecord& record) {
    for (const Property& property : model_.properties(record)) {
      const Element element = property.element();
      const std::string_view text = model_.text(property);
      const auto words = std::ranges::find(kWords, element, &Words::element);
      if (words != kWords.end() && !isWord(text, words->words)) {
        remarkOn(property, "which is none of" + std::string(words->words.substr(0, words->words.size() - 1)));
      } else if (record.kind == NodeKind::Boolean && element == Element::Value) {
        if (!isWord(text, " true false 1 0 ")) {
          remarkOn(property, "which is neither true nor false");
        }
      } else if (isNumber(property, record.kind) && model_.hasNumber(property) && element != Element::Constant) {
        const bool isFraction = lexicalOf(element, record.kind) == Lexical::Number;
        if (isFraction ? !isFloat(text) : !isInteger(text)) {
          remarkOn(property, isFraction ? "which is no float of the schema" : "which is no integer of the schema");
        }
      }
    }
  }

  void checkRegister(const NodeRecord& record) {
    if (!hasRegister(record.kind)) {
      return;
    }
    if (model_.find(record, Element::AccessMode) == nullptr) {
      remark("there is no AccessMode, RO is assumed");
    }
    const Property* const endianess = model_.find(record, Element::Endianess);
    const bool ordered = record.kind != NodeKind::StringReg && record.kind != NodeKind::Register;
    if (ordered && endianess == nullptr) {
      remark("there is no Endianess, LittleEndian is assumed");
    }
    const auto bit = [&](Element element) -> std::optional<std::int64_t> {
      const Property* const found = model_.find(record, element);
      return found != nullptr && model_.hasNumber(*found) ? std::optional(model_.integer(*found)) : std::nullopt;
    };
    const auto lsb = bit(Element::LSB);
    const auto msb = bit(Element::MSB);
    const bool big = endianess != nullptr && equalsIgnoringCase(model_.text(*endianess), "BigEndian");
    if (lsb && msb && (big ? *lsb < *msb : *msb < *lsb)) {
      remark(std::string("LSB and MSB are exchanged, ") +
             (big ? "BigEndian counts from the highest bit" : "LittleEndian counts from the lowest bit"));
    }
  }

  static std::string nameOf(Element element) { return std::string(infoOf(element).name); }
  void remarkOn(const Property& property, const std::string& what) {
    constexpr std::size_t kLongest = 100;
    remark(nameOf(property.element()) + " is '" + std::string(model_.text(property).substr(0, kLongest)) + "', " +
           what);
  }
  void remark(std::string text) {
    if (remarks_.size() < kMaxWarnings) {
      remarks_.push_back({node_, std::move(text)});
    }
  }

  const Model& model_;
  NodeIndex node_ = 0;
  std::vector<ModelRemark> remarks_;
};

}  // namespace

std::vector<ModelRemark> review(const Model& model) {
  return Review(model).run();
}

}  // namespace GenApiEngine
