// The questions that the fuzzers ask.
#include "exercise.h"

#include <algorithm>
#include <cstring>

namespace fuzz {
namespace {

using namespace GenApi;
using GenICam::gcstring;

// A question whose answer may be a GenICam exception, which must explain itself.
template<class Question>
void ask(Question&& question) {
  try {
    question();
  } catch (const GenICam::GenericException& refusal) {
    if (std::strlen(refusal.what()) == 0)
      __builtin_trap();
  }
}

void askNode(INode* node) {
  ask([&] { node->GetAccessMode(); });
  ask([&] {
    node->GetName(true);
    node->GetVisibility();
    node->GetCachingMode();
    node->IsCachable();
    node->IsAccessModeCacheable();
    node->GetPollingTime();
    node->GetToolTip();
    node->GetDescription();
    node->GetDisplayName();
    node->GetEventID();
    node->GetAlias();
    node->GetCastAlias();
    node->IsFeature();
    node->IsStreamable();
  });
  ask([&] {
    NodeList_t nodes;
    for (int type = ctParentNodes; type <= ctValueChangingChildren; ++type)
      node->GetChildren(nodes, static_cast<ELinkType>(type));
  });
  ask([&] {
    GenICam::gcstring_vector names;
    node->GetPropertyNames(names);
    gcstring value;
    gcstring attribute;
    for (const gcstring& name : names)
      node->GetProperty(name, value, attribute);
  });
  ask([&] {
    FeatureList_t features;
    auto* const selector = dynamic_cast<ISelector*>(node);
    if (selector->IsSelector())
      selector->GetSelectedFeatures(features);
    selector->GetSelectingFeatures(features);
  });
}

void askInteger(IInteger* integer) {
  for (const bool verify : {false, true}) {
    std::int64_t value = 0;
    ask([&] { value = integer->GetValue(verify, verify); });
    const auto next = static_cast<std::int64_t>(static_cast<std::uint64_t>(value) + (verify ? 0U : 1U));
    ask([&] { integer->SetValue(next, verify); });
  }
  ask([&] { integer->SetValue(integer->GetMax()); });
  ask([&] { integer->SetValue(integer->GetMin()); });
  ask([&] { integer->GetInc(); });
  ask([&] { integer->GetIncMode(); });
  ask([&] { integer->GetListOfValidValues(); });
  ask([&] { integer->GetUnit(); });
  ask([&] { integer->GetRepresentation(); });
}

void askFloat(IFloat* number) {
  for (const bool verify : {false, true}) {
    double value = 0;
    ask([&] { value = number->GetValue(verify, verify); });
    ask([&] { number->SetValue(value * 1.5, verify); });
  }
  ask([&] { number->SetValue(number->GetMax()); });
  ask([&] { number->SetValue(number->GetMin()); });
  ask([&] { number->GetInc(); });
  ask([&] { number->GetIncMode(); });
  ask([&] { number->GetListOfValidValues(); });
  ask([&] { number->GetUnit(); });
  ask([&] { number->GetDisplayPrecision(); });
}

void askEnumeration(IEnumeration* enumeration) {
  ask([&] { enumeration->GetIntValue(); });
  ask([&] { enumeration->GetCurrentEntry(true, true); });
  NodeList_t entries;
  StringList_t symbolics;
  ask([&] { enumeration->GetEntries(entries); });
  ask([&] { enumeration->GetSymbolics(symbolics); });
  for (const gcstring& symbolic : symbolics)
    ask([&] { *enumeration = symbolic; });
  ask([&] { enumeration->SetIntValue(77, false); });
}

void askRegister(IRegister* bytes) {
  ask([&] { bytes->GetAddress(); });
  ask([&] {
    constexpr std::int64_t kEnough = 4096;
    std::uint8_t buffer[kEnough] = {};
    const std::int64_t length = std::min(bytes->GetLength(), kEnough);
    bytes->Get(buffer, length);
    bytes->Set(buffer, length);
    bytes->Set(buffer, length / 2, false);
  });
}

void askValue(INode* node) {
  if (auto* const value = dynamic_cast<IValue*>(node)) {
    gcstring text = "1";
    ask([&] { text = value->ToString(); });
    ask([&] { value->FromString(text); });
    ask([&] { value->IsValueCacheValid(); });
  }
  if (auto* const integer = dynamic_cast<IInteger*>(node))
    askInteger(integer);
  if (auto* const number = dynamic_cast<IFloat*>(node))
    askFloat(number);
  if (auto* const enumeration = dynamic_cast<IEnumeration*>(node))
    askEnumeration(enumeration);
  if (auto* const bytes = dynamic_cast<IRegister*>(node))
    askRegister(bytes);
  if (auto* const text = dynamic_cast<IString*>(node)) {
    ask([&] { text->GetMaxLength(); });
    ask([&] { text->SetValue(text->GetValue() + "x"); });
  }
  if (auto* const boolean = dynamic_cast<IBoolean*>(node)) {
    ask([&] { boolean->SetValue(!boolean->GetValue()); });
    ask([&] { boolean->GetValue(true, true); });
  }
  if (auto* const command = dynamic_cast<ICommand*>(node)) {
    ask([&] { command->Execute(); });
    ask([&] { command->IsDone(); });
  }
  if (auto* const category = dynamic_cast<ICategory*>(node)) {
    FeatureList_t features;
    ask([&] { category->GetFeatures(features); });
  }
}

}  // namespace

void BytesPort::count() {
  constexpr unsigned kFailing = 4;
  if (!bytes_.empty() && bytes_.front() == 0xFF && ++accesses_ % kFailing == 0)
    throw RUNTIME_EXCEPTION("The device does not answer");
}

void BytesPort::Read(void* pBuffer, std::int64_t Address, std::int64_t Length) {
  count();
  auto* const out = static_cast<std::uint8_t*>(pBuffer);
  for (std::int64_t i = 0; i < Length; ++i) {
    const auto place = static_cast<std::uint64_t>(Address) + static_cast<std::uint64_t>(i);
    out[i] = bytes_.empty() ? std::uint8_t{0} : bytes_[place % bytes_.size()];
  }
}

void BytesPort::Write(const void* pBuffer, std::int64_t Address, std::int64_t Length) {
  count();
  const auto* const in = static_cast<const std::uint8_t*>(pBuffer);
  for (std::int64_t i = 0; i < Length && !bytes_.empty(); ++i) {
    const auto place = static_cast<std::uint64_t>(Address) + static_cast<std::uint64_t>(i);
    bytes_[place % bytes_.size()] = in[i];
  }
}

void exercise(INodeMap& map) {
  constexpr std::size_t kMaxNodes = 300;
  NodeList_t nodes;
  map.GetNodes(nodes);
  const std::size_t count = std::min(nodes.size(), kMaxNodes);
  int calls = 0;
  intptr_t handle = 0;
  if (count > 0)
    handle = Register(nodes[0], [&calls](INode*) { ++calls; });
  for (std::size_t i = 0; i < count; ++i) {
    askNode(nodes[i]);
    askValue(nodes[i]);
  }
  ask([&] { map.Poll(1000); });
  ask([&] { map.InvalidateNodes(); });
  for (std::size_t i = 0; i < count; ++i) {
    ask([&] { nodes[i]->InvalidateNode(); });
    ask([&] { nodes[i]->GetAccessMode(); });
  }
  Deregister(handle);
  GenICam::gcstring_vector errors;
  map.ParseSwissKnifes(&errors);
}

}  // namespace fuzz
