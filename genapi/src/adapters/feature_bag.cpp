// Features stored as text and written back.
#include <algorithm>
#include <cmath>
#include <sstream>
#include <string>

#include "GenApi/GenApi.h"
#include "base/number_text.h"

namespace GENAPI_NAMESPACE {
namespace {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;
using GENICAM_NAMESPACE::GenericException;

constexpr char kBagMagic[] = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";
constexpr char kBaggerMagic[] = "{4709CB3C-7322-4460-84C3-DA11DDA09939}";

bool readLine(std::istream& stream, std::string& line) {
  if (!std::getline(stream, line))
    return false;
  if (!line.empty() && line.back() == '\r')
    line.pop_back();
  return true;
}

void expectMagic(std::istream& stream, const char* magic) {
  std::string line;
  if (!readLine(stream, line) || line.find(magic) == std::string::npos)
    throw RUNTIME_EXCEPTION(
        "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line");
}

bool isStored(INode* node, const gcstring_vector* filter) {
  if (!node->IsStreamable() || (filter != nullptr && !filter->contains(node->GetName())))
    return false;
  const EInterfaceType type = node->GetPrincipalInterfaceType();
  return type != intfICommand && type != intfICategory && type != intfIPort && type != intfIEnumEntry &&
         dynamic_cast<IValue*>(node) != nullptr;
}

// Whether a device that rounds may answer the second text when the first was written.
bool meansTheSame(IValue* feature, const gcstring& written, const gcstring& read) {
  if (written == read)
    return true;
  if (dynamic_cast<IFloat*>(feature) != nullptr) {
    constexpr double kPrintedDigits = 1e-5;
    const auto a = GenApiEngine::wholeFloat(written.c_str());
    const auto b = GenApiEngine::wholeFloat(read.c_str());
    return a && b && std::fabs(*a - *b) <= kPrintedDigits * std::max(std::fabs(*a), std::fabs(*b));
  }
  if (auto* const integer = dynamic_cast<IInteger*>(feature)) {
    const auto a = GenApiEngine::integerFromText(written.c_str(), integer->GetRepresentation());
    const auto b = GenApiEngine::integerFromText(read.c_str(), integer->GetRepresentation());
    return a && a == b;
  }
  return false;
}

}  // namespace

int64_t CFeatureBag::StoreToBag(INodeMap* pNodeMap, int MaxNumPersistScript, gcstring_vector* pFeatureFilter) {
  Clear();
  auto* const device = dynamic_cast<IDeviceInfo*>(pNodeMap);
  if (device != nullptr)
    m_Info.push_back(std::string("Device = ") + device->GetVendorName().c_str() +
                     "::" + device->GetModelName().c_str());
  int64_t stored = 0;
  const auto store = [&](INode* node) {
    CValuePtr value(node);
    if (!IsReadable(value) || !IsWritable(value))
      return false;
    try {
      const gcstring text = value->ToString();
      // A value of several lines would be read back as something else.
      if (text.find_first_of("\r\n") != gcstring::npos)
        return false;
      m_Features.emplace_back(node->GetName().c_str(), text.c_str());
      return true;
    } catch (const GenericException&) {
      return false;
    }
  };

  const auto storeSelected = [&](INode* node) {
    CSelectorSet selectors(node);
    if (selectors.IsEmpty())
      return store(node);
    FeatureList_t selectorList;
    selectors.GetSelectorList(selectorList);
    const auto storeSelectors = [&] {
      for (IValue* const selector : selectorList)
        m_Features.emplace_back(selector->GetNode()->GetName().c_str(), selector->ToString().c_str());
    };
    bool any = false;
    for (bool more = selectors.SetFirst(); more; more = selectors.SetNext()) {
      const size_t before = m_Features.size();
      storeSelectors();
      if (store(node))
        any = true;
      else
        m_Features.resize(before);
    }
    selectors.Restore();
    if (any)
      storeSelectors();
    return any;
  };

  NodeList_t nodes;
  pNodeMap->GetNodes(nodes);
  for (INode* const node : nodes) {
    if (MaxNumPersistScript >= 0 && stored >= MaxNumPersistScript)
      break;
    if (!isStored(node, pFeatureFilter))
      continue;
    const size_t before = m_Features.size();
    try {
      stored += storeSelected(node) ? 1 : 0;
    } catch (const GenericException&) {
      // Without its selectors' values a value means nothing.
      m_Features.resize(before);
    }
  }
  return stored;
}

bool CFeatureBag::LoadFromBag(INodeMap* pNodeMap, bool Verify, gcstring_vector* pErrorList) {
  bool succeeded = true;
  for (const auto& [name, value] : m_Features) {
    try {
      INode* const node = pNodeMap->GetNode(name.c_str());
      CValuePtr feature(node);
      if (!feature.IsValid())
        throw RUNTIME_EXCEPTION("The node map has no feature '%s'", name.c_str());
      const gcstring text(value.data(), value.size());
      feature->FromString(text);
      if (Verify && IsReadable(feature)) {
        const gcstring read = feature->ToString(false, true);
        if (!meansTheSame(feature, text, read))
          throw RUNTIME_EXCEPTION("Feature '%s' was set to '%s' but reads '%s'", name.c_str(), value.c_str(),
                                  read.c_str());
      }
    } catch (const GenericException& failure) {
      if (pErrorList == nullptr)
        throw;
      pErrorList->push_back(gcstring(name.c_str()) + ": " + failure.GetDescription());
      succeeded = false;
    }
  }
  return succeeded;
}

void CFeatureBag::Clear() {
  m_Info.clear();
  m_Features.clear();
}

// NOLINTNEXTLINE(readability-make-member-function-const): the interface has it so.
gcstring CFeatureBag::ToString() {
  std::ostringstream stream;
  stream << *this;
  const std::string text = stream.str();
  return {text.data(), text.size()};
}

std::ostream& CFeatureBag::Write(std::ostream& os, const char* magic) const {
  if (magic != nullptr)
    os << "# " << magic
       << "\n# GenApi persistence file (version " GENAPI_VERSION_MAJOR_STR "." GENAPI_VERSION_MINOR_STR
          "." GENAPI_VERSION_SUBMINOR_STR ")\n";
  for (const std::string& line : m_Info)
    os << "# " << line << '\n';
  for (const auto& [name, value] : m_Features)
    os << name << '\t' << value << '\n';
  return os;
}

bool CFeatureBag::ReadLine(const std::string& line) {
  if (line.empty() || line.front() == '#')
    return true;
  const size_t tab = line.find('\t');
  if (tab == std::string::npos || tab == 0)
    return false;
  m_Features.emplace_back(line.substr(0, tab), line.substr(tab + 1));
  return true;
}

std::ostream& operator<<(std::ostream& os, const CFeatureBag& FeatureBag) {
  return FeatureBag.Write(os, kBagMagic);
}

std::istream& operator>>(std::istream& is, CFeatureBag& FeatureBag) {
  expectMagic(is, kBagMagic);
  FeatureBag.Clear();
  for (std::string line; readLine(is, line);) {
    if (!FeatureBag.ReadLine(line))
      throw RUNTIME_EXCEPTION("The feature stream has a line without a name and a value: '%s'", line.c_str());
  }
  return is;
}

int64_t CFeatureBagger::Store(INodeMap* pNodeMap, const gcstring& BagName, int MaxNumPersistScript,
                              gcstring_vector* pFeatureFilter) {
  CFeatureBag bag;
  const int64_t stored = bag.StoreToBag(pNodeMap, MaxNumPersistScript, pFeatureFilter);
  const auto same = std::ranges::find_if(m_Bags, [&](const auto& known) { return BagName == known.first.c_str(); });
  if (same != m_Bags.end())
    same->second = bag;
  else
    m_Bags.emplace_back(BagName.c_str(), bag);
  return stored;
}

bool CFeatureBagger::Load(INodeMap* pNodeMap, const gcstring& BagName, bool Verify, gcstring_vector* pErrorList) {
  for (auto& [name, bag] : m_Bags) {
    if (BagName == name.c_str())
      return bag.LoadFromBag(pNodeMap, Verify, pErrorList);
  }
  throw INVALID_ARGUMENT_EXCEPTION("There is no feature bag '%s'", BagName.c_str());
}

void CFeatureBagger::GetBagNames(gcstring_vector& Names) const {
  for (const auto& [name, bag] : m_Bags)
    Names.push_back(name.c_str());
}

std::ostream& operator<<(std::ostream& os, const CFeatureBagger& FeatureBagger) {
  os << "# " << kBaggerMagic << '\n';
  for (const auto& [name, bag] : FeatureBagger.m_Bags) {
    os << '[' << name << "]\n";
    bag.Write(os, nullptr);
  }
  return os;
}

std::istream& operator>>(std::istream& is, CFeatureBagger& FeatureBagger) {
  expectMagic(is, kBaggerMagic);
  FeatureBagger.Clear();
  for (std::string line; readLine(is, line);) {
    if (line.size() > 1 && line.front() == '[' && line.back() == ']')
      FeatureBagger.m_Bags.emplace_back(line.substr(1, line.size() - 2), CFeatureBag());
    else if (line.empty() || line.front() == '#')
      continue;
    else if (FeatureBagger.m_Bags.empty() || !FeatureBagger.m_Bags.back().second.ReadLine(line))
      throw RUNTIME_EXCEPTION("The feature stream has a line without a name and a value: '%s'", line.c_str());
  }
  return is;
}

}  // namespace GENAPI_NAMESPACE
