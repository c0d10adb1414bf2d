/// A node map that ends with the object that holds it.
#pragma once

#include "GenApi/IDestroy.h"
#include "GenApi/INodeMap.h"
#include "GenApi/IPortStacked.h"
#include "GenApi/NodeMapFactory.h"

// NOLINTBEGIN(bugprone-reserved-identifier)
namespace GENAPI_NAMESPACE {

/// The parameters of a device whose features are only known at run time.
class CGeneric_XMLLoaderParams {
 protected:
  virtual void _Initialize(GENAPI_NAMESPACE::INodeMap*) {}

 public:
  virtual ~CGeneric_XMLLoaderParams() = default;
};

/// @tparam TCameraParams  references to features, bound by its _Initialize(INodeMap*)
///
/// Copies share the node map; the last one destroys it. Before a description is loaded every call throws
/// AccessException "Feature not present (reference not valid)".
template<class TCameraParams>
class CNodeMapRefT : public TCameraParams {
 public:
  CNodeMapRefT(const GENICAM_NAMESPACE::gcstring& DeviceName = "Device") : m_DeviceName(DeviceName) {}
  CNodeMapRefT(INodeMap* pNodeMap, const GENICAM_NAMESPACE::gcstring& DeviceName = "Device")
      : m_DeviceName(DeviceName) {
    Attach(pNodeMap);
  }

  void _LoadXMLFromFile(const GENICAM_NAMESPACE::gcstring& FileName) { Load({ContentType_Xml, FileName}); }
  void _LoadXMLFromZIPFile(const GENICAM_NAMESPACE::gcstring& FileName) { Load({ContentType_ZippedXml, FileName}); }
  void _LoadXMLFromZIPData(const void* pData, size_t DataSize) { Load({ContentType_ZippedXml, pData, DataSize}); }
  void _LoadXMLFromString(const GENICAM_NAMESPACE::gcstring& XmlData) { Load(CNodeMapFactory(XmlData)); }
  void _LoadXMLFromFileInject(const GENICAM_NAMESPACE::gcstring& TargetFileName,
                              const GENICAM_NAMESPACE::gcstring& InjectFileName) {
    CNodeMapFactory target(ContentType_Xml, TargetFileName);
    CNodeMapFactory injection(ContentType_Xml, InjectFileName);
    target.AddInjectionData(injection);
    Load(target);
  }
  void _LoadXMLFromStringInject(const GENICAM_NAMESPACE::gcstring& TargetXmlData,
                                const GENICAM_NAMESPACE::gcstring& InjectXmlData) {
    CNodeMapFactory target(TargetXmlData);
    CNodeMapFactory injection(InjectXmlData);
    target.AddInjectionData(injection);
    Load(target);
  }

  void _GetSupportedSchemaVersions(GENICAM_NAMESPACE::gcstring_vector& SchemaVersions) const {
    CNodeMapFactory().GetSupportedSchemaVersions(SchemaVersions);
  }
  GENICAM_NAMESPACE::gcstring _GetDeviceName() const { return Map().GetDeviceName(); }
  void _Poll(int64_t ElapsedTime) { Map().Poll(ElapsedTime); }
  void _Destroy() {
    m_pNodeMap.reset();
    this->_Ptr = nullptr;
  }
  static bool _ClearXMLCache() { return CNodeMapFactory::ClearCache(); }
  void _GetNodes(NodeList_t& Nodes) const { Map().GetNodes(Nodes); }
  INode* _GetNode(const GENICAM_NAMESPACE::gcstring& Name) const { return Map().GetNode(Name); }
  void _InvalidateNodes() const { Map().InvalidateNodes(); }
  bool _Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const {
    return Map().Connect(pPort, PortName);
  }
  bool _Connect(IPort* pPort) const { return Map().Connect(pPort); }
  bool _Connect(IPortStacked* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const {
    return Map().Connect(pPort, PortName);
  }
  bool _Connect(IPortStacked* pPort) const { return Map().Connect(pPort); }
  CLock& _GetLock() const { return Map().GetLock(); }
  uint64_t _GetNumNodes() const { return Map().GetNumNodes(); }
  bool _ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const {
    return Map().ParseSwissKnifes(pErrorList);
  }

  /// The node map; null before a description is loaded.
  INodeMap* _Ptr = nullptr;

 private:
  void Load(CNodeMapFactory factory) {
    if (_Ptr != nullptr)
      throw RUNTIME_EXCEPTION("Node map already created");
    Attach(factory.CreateNodeMap(m_DeviceName));
  }
  void Attach(INodeMap* pNodeMap) {
    m_pNodeMap = std::shared_ptr<INodeMap>(pNodeMap, [](INodeMap* map) {
      if (IDestroy* const destroy = dynamic_cast<IDestroy*>(map))
        destroy->Destroy();
    });
    _Ptr = pNodeMap;
    if (pNodeMap != nullptr)
      this->_Initialize(pNodeMap);
  }
  INodeMap& Map() const {
    if (_Ptr == nullptr)
      throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
    return *_Ptr;
  }

  GENICAM_NAMESPACE::gcstring m_DeviceName;
  std::shared_ptr<INodeMap> m_pNodeMap;
};

typedef CNodeMapRefT<CGeneric_XMLLoaderParams> CNodeMapRef;

}  // namespace GENAPI_NAMESPACE
// NOLINTEND(bugprone-reserved-identifier)
