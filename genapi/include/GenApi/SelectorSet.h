/// Runs through all combinations of the selectors of a feature.
#pragma once

#include <memory>
#include <vector>

#include "GenApi/IBase.h"
#include "GenApi/ISelectorDigit.h"

namespace GENAPI_NAMESPACE {

class GENAPI_DECL CSelectorSet : public ISelectorDigit {
 public:
  /// @param pBase  the selected feature; the selectors of its selectors count too
  explicit CSelectorSet(IBase* pBase);
  CSelectorSet(const CSelectorSet&) = delete;
  CSelectorSet& operator=(const CSelectorSet&) = delete;
  ~CSelectorSet() override;

  /// Whether the feature has no selectors.
  bool IsEmpty();
  bool SetFirst() override;
  bool SetNext(bool Tick = true) override;
  /// Writes back the selector values from before SetFirst.
  void Restore() override;
  /// "SelectorA=Value\tSelectorB=Value"
  GENICAM_NAMESPACE::gcstring ToString() override;
  void GetSelectorList(FeatureList_t& SelectorList, bool Incremental = false) override;

 private:
  std::vector<std::unique_ptr<ISelectorDigit>> m_digits;
};

}  // namespace GENAPI_NAMESPACE
