// Tables of the words that descriptions use.
#include "nodes/property_values.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>

#include "base/number_text.h"
#include "model/text.h"

namespace GenApiEngine {
namespace {

template<class T>
struct Word {
  std::string_view text;
  T value;
};

template<class T>
T find(std::span<const Word<T>> words, std::string_view text, T otherwise) {
  const auto found = std::find_if(words.begin(), words.end(),
                                  [text](const Word<T>& word) { return equalsIgnoringCase(word.text, text); });
  return found == words.end() ? otherwise : found->value;
}

template<class T>
std::vector<T> numbersIn(std::string_view text, std::optional<T> (*numberOf)(std::string_view)) {
  std::vector<T> numbers;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of(";,"), text.size());
    if (const auto number = numberOf(text.substr(0, end))) {
      numbers.push_back(*number);
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return numbers;
}

constexpr std::array<Word<Api::ERepresentation>, 7> kRepresentations{{{"Linear", Api::Linear},
                                                                      {"Logarithmic", Api::Logarithmic},
                                                                      {"Boolean", Api::Boolean},
                                                                      {"PureNumber", Api::PureNumber},
                                                                      {"HexNumber", Api::HexNumber},
                                                                      {"IPV4Address", Api::IPV4Address},
                                                                      {"MACAddress", Api::MACAddress}}};
constexpr std::array<Word<Api::EDisplayNotation>, 3> kNotations{
    {{"Automatic", Api::fnAutomatic}, {"Fixed", Api::fnFixed}, {"Scientific", Api::fnScientific}}};
constexpr std::array<Word<Api::ECachingMode>, 6> kCachingModes{{{"WriteThrough", Api::WriteThrough},
                                                                {"WriteAround", Api::WriteAround},
                                                                {"NoCache", Api::NoCache},
                                                                {"No", Api::NoCache},
                                                                {"false", Api::NoCache},
                                                                {"Yes", Api::WriteThrough}}};
constexpr std::array<Word<Api::ESlope>, 4> kSlopes{{{"Increasing", Api::Increasing},
                                                    {"Decreasing", Api::Decreasing},
                                                    {"Varying", Api::Varying},
                                                    {"Automatic", Api::Automatic}}};

}  // namespace

Api::ERepresentation representationFrom(std::string_view text) {
  return find<Api::ERepresentation>(kRepresentations, text, Api::_UndefinedRepresentation);
}
Api::EDisplayNotation notationFrom(std::string_view text) {
  return find<Api::EDisplayNotation>(kNotations, text, Api::_UndefinedEDisplayNotation);
}
Api::ECachingMode cachingFrom(std::string_view text) {
  return find<Api::ECachingMode>(kCachingModes, text, Api::WriteThrough);
}
Api::ESlope slopeFrom(std::string_view text) {
  return find<Api::ESlope>(kSlopes, text, Api::_UndefinedESlope);
}

std::vector<std::int64_t> validIntegersFrom(std::string_view text) {
  return numbersIn<std::int64_t>(text, describedInteger);
}
std::vector<double> validFloatsFrom(std::string_view text) {
  return numbersIn<double>(text, describedFloat);
}

}  // namespace GenApiEngine
