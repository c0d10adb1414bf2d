/// Makes node maps from camera descriptions.
#pragma once

#include <memory>

#include "GenApi/INodeMap.h"
#include "GenApi/Synch.h"
#include "GenApi/Types.h"

// NOLINTBEGIN(bugprone-reserved-identifier)
namespace GENAPI_NAMESPACE {

/// Within a process descriptions are always shared by their content. Ignore bypasses that; ForceRead takes a
/// description only from there and throws RuntimeException otherwise.
typedef enum _ECacheUsage_t {
  CacheUsage_Automatic = 0,
  CacheUsage_ForceWrite = 1,
  CacheUsage_ForceRead = 2,
  CacheUsage_Ignore = 3
} ECacheUsage_t;

typedef enum _EContentType_t { ContentType_Xml = 0, ContentType_ZippedXml = 1 } EContentType_t;

/// A camera description on its way to a node map. Copies share the description. One thread at a time.
class GENAPI_DECL CNodeMapFactory {
 public:
  struct NodeStatistics_t {
    uint32_t NumNodes;
    uint32_t NumProperties;
    uint32_t NumLinks;
    uint32_t NumStrings;
  };

  /// Empty: can make nothing.
  CNodeMapFactory();
  /// Throws InvalidArgumentException for an empty file name. $(NAME) in it is replaced by the environment variable.
  CNodeMapFactory(EContentType_t ContentType, const GENICAM_NAMESPACE::gcstring& FileName,
                  ECacheUsage_t CacheUsage = CacheUsage_Automatic, bool SuppressStringsOnLoad = false);
  /// The data is not copied: it must stay until it is loaded or released. Throws InvalidArgumentException for no data.
  CNodeMapFactory(EContentType_t ContentType, const void* pData, size_t DataSize,
                  ECacheUsage_t CacheUsage = CacheUsage_Automatic, bool SuppressStringsOnLoad = false);
  /// @param XmlData                 the description itself; copied
  /// @param SuppressStringsOnLoad   has no effect: tool tips and descriptions cost nothing until they are asked for
  CNodeMapFactory(const GENICAM_NAMESPACE::gcstring& XmlData, ECacheUsage_t CacheUsage = CacheUsage_Automatic,
                  bool SuppressStringsOnLoad = false);
  CNodeMapFactory(const CNodeMapFactory& Other);
  CNodeMapFactory& operator=(const CNodeMapFactory& Other);
  virtual ~CNodeMapFactory();

  bool IsEmpty() const;
  /// Descriptions that are merged into this one, in the order added.
  void AddInjectionData(CNodeMapFactory& InjectionData);
  void LoadAndInject();
  bool IsLoaded() const;
  CNodeMapFactory ExtractSubtree(const GENICAM_NAMESPACE::gcstring& SubTreeRootNodeName, bool doRenameToRoot = false);
  void Preprocess();
  bool IsPreprocessed() const;
  void ReleaseCameraDescriptionFileData();
  bool IsCameraDescriptionFileDataReleased() const;

  /// The caller ends the map by IDestroy::Destroy. May be called several times.
  INodeMap* CreateNodeMap(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
                          bool DoReleaseCameraDescriptionFileData = true);
  /// @param UserProvidedLock  used instead of a lock of the map's own; must outlive the map
  INodeMap* CreateNodeMap(CLock& UserProvidedLock, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device",
                          bool DoReleaseCameraDescriptionFileData = true);
  static INodeMap* CreateEmptyNodeMap();
  static bool ClearCache();

  void GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const;
  GENICAM_NAMESPACE::gcstring ToString() const;
  GENICAM_NAMESPACE::gcstring ToXml() const;
  const GENICAM_NAMESPACE::gcstring ApplyStyleSheet(const GENICAM_NAMESPACE::gcstring& StyleSheetFileName);
  void GetNodeStatistics(NodeStatistics_t& Statistics);

 private:
  struct Data;
  std::shared_ptr<Data> m_pData;
};

}  // namespace GENAPI_NAMESPACE
// NOLINTEND(bugprone-reserved-identifier)
