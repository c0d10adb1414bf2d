// Mutates descriptions by their structure: elements, texts and references are exchanged, so that most results still
// parse.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Random = std::minstd_rand;

struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;
};

constexpr std::string_view kElements[] = {"Category",
                                          "Integer",
                                          "IntReg",
                                          "MaskedIntReg",
                                          "Boolean",
                                          "Command",
                                          "Enumeration",
                                          "EnumEntry",
                                          "Float",
                                          "FloatReg",
                                          "Converter",
                                          "IntConverter",
                                          "SwissKnife",
                                          "IntSwissKnife",
                                          "String",
                                          "StringReg",
                                          "Register",
                                          "Port",
                                          "StructReg",
                                          "StructEntry",
                                          "Node",
                                          "Group",
                                          "ConfRom",
                                          "Extension",
                                          "pFeature",
                                          "pValue",
                                          "Value",
                                          "pValueCopy",
                                          "pMin",
                                          "pMax",
                                          "pInc",
                                          "Min",
                                          "Max",
                                          "Inc",
                                          "pIndex",
                                          "ValueIndexed",
                                          "pValueIndexed",
                                          "ValueDefault",
                                          "pValueDefault",
                                          "pVariable",
                                          "Constant",
                                          "Expression",
                                          "Formula",
                                          "FormulaTo",
                                          "FormulaFrom",
                                          "Slope",
                                          "Address",
                                          "pAddress",
                                          "Length",
                                          "pLength",
                                          "pPort",
                                          "AccessMode",
                                          "Cachable",
                                          "PollingTime",
                                          "pInvalidator",
                                          "pSelected",
                                          "LSB",
                                          "MSB",
                                          "Bit",
                                          "Sign",
                                          "Endianess",
                                          "pIsImplemented",
                                          "pIsAvailable",
                                          "pIsLocked",
                                          "pError",
                                          "pAlias",
                                          "pCastAlias",
                                          "ChunkID",
                                          "pBlockPolling",
                                          "ImposedAccessMode",
                                          "Representation",
                                          "ValidValueSet",
                                          "OnValue",
                                          "OffValue",
                                          "CommandValue",
                                          "Symbolic",
                                          "NumericValue",
                                          "IsSelfClearing",
                                          "DisplayPrecision",
                                          "DisplayNotation"};
constexpr std::string_view kTexts[] = {"0",
                                       "1",
                                       "-1",
                                       "8",
                                       "0xFFFFFFFFFFFFFFFF",
                                       "-9223372036854775808",
                                       "9223372036854775807",
                                       "65",
                                       "1e308",
                                       "NaN",
                                       "INF",
                                       "RO",
                                       "WO",
                                       "RW",
                                       "Yes",
                                       "No",
                                       "NoCache",
                                       "WriteAround",
                                       "WriteThrough",
                                       "BigEndian",
                                       "LittleEndian",
                                       "Signed",
                                       "Unsigned",
                                       "Automatic",
                                       "Varying",
                                       "Decreasing",
                                       "HexNumber",
                                       "A/B",
                                       "TO*2",
                                       "FROM/0",
                                       "A<<B",
                                       "1;2;3",
                                       "Device",
                                       "",
                                       "4294967296"};

std::size_t below(Random& random, std::size_t limit) {
  return limit == 0 ? 0 : random() % limit;
}

// The texts between tags, or the values of Name and pName-like attributes.
std::vector<Span> texts(std::string_view xml) {
  std::vector<Span> found;
  for (std::size_t at = xml.find('>'); at != std::string_view::npos; at = xml.find('>', at + 1)) {
    const std::size_t end = xml.find('<', at);
    if (end != std::string_view::npos)
      found.push_back({at + 1, end});
  }
  return found;
}

std::vector<Span> names(std::string_view xml) {
  constexpr std::string_view kMark = "Name=\"";
  std::vector<Span> found;
  for (std::size_t at = xml.find(kMark); at != std::string_view::npos; at = xml.find(kMark, at + 1)) {
    const std::size_t begin = at + kMark.size();
    const std::size_t end = xml.find('"', begin);
    if (end != std::string_view::npos)
      found.push_back({begin, end});
  }
  return found;
}

struct Element {
  Span whole;
  Span openName;
  Span closeName;
};

// The elements that close under their own name, found by a stack of open tags.
std::vector<Element> elements(std::string_view xml) {
  std::vector<Element> found;
  std::vector<Span> open;
  for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
    const std::size_t end = xml.find('>', at);
    if (end == std::string_view::npos)
      break;
    const bool closes = at + 1 < xml.size() && xml[at + 1] == '/';
    const std::size_t name = at + (closes ? 2 : 1);
    const std::size_t nameEnd = std::min(xml.find_first_of(" \t\r\n/>", name), end);
    if (closes && !open.empty()) {
      const Span begin = open.back();
      open.pop_back();
      found.push_back({{begin.begin - 1, end + 1}, begin, {name, nameEnd}});
    } else if (!closes && xml[end - 1] != '/' && xml[at + 1] != '?' && xml[at + 1] != '!') {
      open.push_back({name, nameEnd});
    }
  }
  return found;
}

std::string_view part(const std::string& xml, Span span) {
  return std::string_view(xml).substr(span.begin, span.end - span.begin);
}

bool changeText(std::string& xml, Random& random) {
  const std::vector<Span> all = texts(xml);
  if (all.empty())
    return false;
  const Span target = all[below(random, all.size())];
  const std::vector<Span> known = names(xml);
  std::string replacement;
  switch (below(random, 3)) {
    case 0:
      replacement = kTexts[below(random, std::size(kTexts))];
      break;
    case 1:
      replacement = part(xml, all[below(random, all.size())]);
      break;
    default:
      if (!known.empty())
        replacement = part(xml, known[below(random, known.size())]);
  }
  xml.replace(target.begin, target.end - target.begin, replacement);
  return true;
}

bool renameNode(std::string& xml, Random& random) {
  const std::vector<Span> known = names(xml);
  if (known.empty())
    return false;
  const Span target = known[below(random, known.size())];
  const std::string replacement(part(xml, known[below(random, known.size())]));
  xml.replace(target.begin, target.end - target.begin, replacement);
  return true;
}

bool copyElement(std::string& xml, Random& random) {
  const std::vector<Element> all = elements(xml);
  if (all.empty())
    return false;
  const std::string copied(part(xml, all[below(random, all.size())].whole));
  const Span target = all[below(random, all.size())].whole;
  xml.insert(below(random, 2) == 0 ? target.begin : target.end, copied);
  return true;
}

bool removeElement(std::string& xml, Random& random) {
  const std::vector<Element> all = elements(xml);
  if (all.empty())
    return false;
  const Span target = all[below(random, all.size())].whole;
  xml.erase(target.begin, target.end - target.begin);
  return true;
}

bool renameElement(std::string& xml, Random& random) {
  const std::vector<Element> all = elements(xml);
  if (all.empty())
    return false;
  const Element target = all[below(random, all.size())];
  const std::string_view name = kElements[below(random, std::size(kElements))];
  xml.replace(target.closeName.begin, target.closeName.end - target.closeName.begin, name);
  xml.replace(target.openName.begin, target.openName.end - target.openName.begin, name);
  return true;
}

bool addElement(std::string& xml, Random& random) {
  const std::vector<Element> all = elements(xml);
  if (all.empty())
    return false;
  const Element target = all[below(random, all.size())];
  const std::string name(kElements[below(random, std::size(kElements))]);
  const std::vector<Span> known = names(xml);
  const std::string text(below(random, 2) == 0 || known.empty() ? kTexts[below(random, std::size(kTexts))]
                                                                : part(xml, known[below(random, known.size())]));
  xml.insert(target.closeName.begin - 2, "<" + name + ">" + text + "</" + name + ">");
  return true;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed) {
  constexpr bool (*kMutations[])(std::string&, Random&) = {changeText,    changeText,    renameNode, copyElement,
                                                           removeElement, renameElement, addElement, addElement};
  Random random(seed);
  // Some inputs are spoilt byte by byte as well, as not every description is well formed.
  if (below(random, 16) == 0)
    return LLVMFuzzerMutate(data, size, maxSize);
  std::string xml(reinterpret_cast<const char*>(data), size);
  const std::size_t count = 1 + below(random, 4);
  for (std::size_t i = 0; i < count; ++i) {
    if (!kMutations[below(random, std::size(kMutations))](xml, random))
      return LLVMFuzzerMutate(data, size, maxSize);
  }
  if (xml.size() > maxSize)
    return LLVMFuzzerMutate(data, size, maxSize);
  std::memcpy(data, xml.data(), xml.size());
  return xml.size();
}
