/// Features stored as text: one name and value a line.
#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "GenApi/Container.h"
#include "GenApi/INodeMap.h"
#include "GenApi/Types.h"

namespace GENAPI_NAMESPACE {

class CFeatureBagger;

/// The streamable features of a node map with their values, for every combination of their selectors.
class GENAPI_DECL CFeatureBag {
 public:
  CFeatureBag() = default;
  virtual ~CFeatureBag() = default;

  /// Values that cannot be read are left out.
  ///
  /// @param MaxNumPersistScript  at most so many features; negative for all
  /// @param pFeatureFilter       only these features; null for all
  /// @return                     how many features were stored
  virtual int64_t StoreToBag(INodeMap* pNodeMap, int MaxNumPersistScript = -1,
                             GENICAM_NAMESPACE::gcstring_vector* pFeatureFilter = nullptr);
  /// Writes the values in their order.
  ///
  /// @param Verify      read each value back and compare
  /// @param pErrorList  receives one text per failure; without it the first failure throws
  /// @return            false if one failed
  virtual bool LoadFromBag(INodeMap* pNodeMap, bool Verify = true,
                           GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);

  bool operator==(const CFeatureBag& rBag) const { return m_Features == rBag.m_Features; }
  void Clear();
  GENICAM_NAMESPACE::gcstring ToString();

  friend GENAPI_DECL std::ostream& operator<<(std::ostream& os, const CFeatureBag& FeatureBag);
  /// Throws RuntimeException if the first line lacks the mark of a feature stream.
  friend GENAPI_DECL std::istream& operator>>(std::istream& is, CFeatureBag& FeatureBag);

 private:
  friend class CFeatureBagger;
  friend GENAPI_DECL std::ostream& operator<<(std::ostream& os, const CFeatureBagger& FeatureBagger);
  friend GENAPI_DECL std::istream& operator>>(std::istream& is, CFeatureBagger& FeatureBagger);
  std::ostream& Write(std::ostream& os, const char* magic) const;
  bool ReadLine(const std::string& line);

  std::vector<std::string> m_Info;
  std::vector<std::pair<std::string, std::string>> m_Features;
};

/// Several bags in one stream, each under its own name.
class GENAPI_DECL CFeatureBagger {
 public:
  /// Stores the present state under a name, beside those that are there.
  int64_t Store(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& BagName, int MaxNumPersistScript = -1,
                GENICAM_NAMESPACE::gcstring_vector* pFeatureFilter = nullptr);
  /// Throws InvalidArgumentException for a name that is not there.
  bool Load(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& BagName, bool Verify = true,
            GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);
  void GetBagNames(GENICAM_NAMESPACE::gcstring_vector& Names) const;
  void Clear() { m_Bags.clear(); }

  friend GENAPI_DECL std::ostream& operator<<(std::ostream& os, const CFeatureBagger& FeatureBagger);
  friend GENAPI_DECL std::istream& operator>>(std::istream& is, CFeatureBagger& FeatureBagger);

 private:
  std::vector<std::pair<std::string, CFeatureBag>> m_Bags;
};

}  // namespace GENAPI_NAMESPACE
