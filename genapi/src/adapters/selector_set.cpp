// Selectors as the digits of a counter.
#include "GenApi/SelectorSet.h"

#include <algorithm>
#include <string>

#include "GenApi/IBoolean.h"
#include "GenApi/IEnumeration.h"
#include "GenApi/IInteger.h"
#include "GenApi/ISelector.h"
#include "base/limits.h"

namespace GENAPI_NAMESPACE {
namespace {

using GENICAM_NAMESPACE::gcstring;

class Digit : public ISelectorDigit {
 public:
  explicit Digit(IValue* selector) : selector_(selector), original_(selector->ToString()) {}

  bool SetFirst() override {
    values_ = values();
    position_ = 0;
    return write();
  }
  bool SetNext(bool Tick) override {
    if (Tick)
      ++position_;
    return write();
  }
  void Restore() override {
    if (IsWritable(selector_))
      selector_->FromString(original_);
  }
  gcstring ToString() override { return selector_->GetNode()->GetName() + "=" + selector_->ToString(); }
  void GetSelectorList(FeatureList_t& SelectorList, bool Incremental) override {
    if (!Incremental || position_ > 0)
      SelectorList.push_back(selector_);
  }
  IValue* selector() const { return selector_; }

 private:
  std::vector<gcstring> values() const {
    std::vector<gcstring> result;
    if (auto* const enumeration = dynamic_cast<IEnumeration*>(selector_)) {
      NodeList_t entries;
      enumeration->GetEntries(entries);
      for (INode* const entry : entries) {
        if (IsAvailable(entry))
          result.push_back(CEnumEntryPtr(entry)->GetSymbolic());
      }
    } else if (auto* const integer = dynamic_cast<IInteger*>(selector_)) {
      const int64_t maximum = integer->GetMax();
      const int64_t increment = std::max<int64_t>(integer->GetInc(), 1);
      int64_t value = integer->GetMin();
      while (value <= maximum && static_cast<int64_t>(result.size()) < GenApiEngine::kMaxSelectorValues) {
        result.emplace_back(std::to_string(value).c_str());
        if (static_cast<uint64_t>(maximum) - static_cast<uint64_t>(value) < static_cast<uint64_t>(increment))
          break;
        value += increment;
      }
    } else if (dynamic_cast<IBoolean*>(selector_) != nullptr) {
      result = {"0", "1"};
    }
    return result;
  }

  // Takes the first value from the position on that the device accepts.
  bool write() {
    for (; position_ < values_.size(); ++position_) {
      try {
        selector_->FromString(values_[position_]);
        return true;
      } catch (const GENICAM_NAMESPACE::GenericException&) {
        continue;
      }
    }
    return false;
  }

  IValue* selector_;
  gcstring original_;
  std::vector<gcstring> values_;
  size_t position_ = 0;
};

// Selectors of selectors stand before those that they select, so that they turn last.
void collect(IBase* feature, std::vector<IValue*>& selectors) {
  auto* const node = dynamic_cast<ISelector*>(feature);
  if (node == nullptr)
    return;
  FeatureList_t selecting;
  node->GetSelectingFeatures(selecting);
  for (IValue* const selector : selecting) {
    if (selector == dynamic_cast<IValue*>(feature) || std::ranges::find(selectors, selector) != selectors.end())
      continue;
    // Entered before its own selectors are looked for, so that a circle of them ends.
    selectors.push_back(selector);
    const size_t own = selectors.size() - 1;
    collect(selector, selectors);
    std::rotate(selectors.begin() + static_cast<std::ptrdiff_t>(own),
                selectors.begin() + static_cast<std::ptrdiff_t>(own) + 1, selectors.end());
  }
}

}  // namespace

CSelectorSet::CSelectorSet(IBase* pBase) {
  std::vector<IValue*> selectors;
  collect(pBase, selectors);
  for (IValue* const selector : selectors) {
    if (IsReadable(selector) && IsWritable(selector))
      m_digits.push_back(std::make_unique<Digit>(selector));
  }
}

CSelectorSet::~CSelectorSet() = default;

bool CSelectorSet::IsEmpty() {
  return m_digits.empty();
}

bool CSelectorSet::SetFirst() {
  return std::ranges::all_of(m_digits, [](const auto& digit) { return digit->SetFirst(); });
}

bool CSelectorSet::SetNext(bool Tick) {
  if (!Tick)
    return std::ranges::all_of(m_digits, [](const auto& digit) { return digit->SetNext(false); });
  for (size_t turning = m_digits.size(); turning-- > 0;) {
    while (m_digits[turning]->SetNext(true)) {
      if (std::all_of(m_digits.begin() + static_cast<std::ptrdiff_t>(turning) + 1, m_digits.end(),
                      [](const auto& digit) { return digit->SetFirst(); }))
        return true;
    }
  }
  return false;
}

void CSelectorSet::Restore() {
  for (const auto& digit : m_digits)
    digit->Restore();
}

gcstring CSelectorSet::ToString() {
  gcstring text;
  for (const auto& digit : m_digits) {
    if (!text.empty())
      text += '\t';
    text += digit->ToString();
  }
  return text;
}

void CSelectorSet::GetSelectorList(FeatureList_t& SelectorList, bool Incremental) {
  for (const auto& digit : m_digits)
    digit->GetSelectorList(SelectorList, Incremental);
}

}  // namespace GENAPI_NAMESPACE
