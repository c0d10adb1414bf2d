// The factory of the public interface: where a description comes from, and making node maps of it.
#include "GenApi/NodeMapFactory.h"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "Base/GCUtilities.h"
#include "model/model_cache.h"
#include "nodemap/node_map.h"
#include "nodemap/unzip.h"

namespace GENAPI_NAMESPACE {

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

struct CNodeMapFactory::Data {
  std::string file;
  std::string owned;
  std::string_view text;  // in owned, or the caller's own memory
  ECacheUsage_t cacheUsage = CacheUsage_Automatic;
  std::vector<std::shared_ptr<Data>> injected;
  std::shared_ptr<const GenApiEngine::Model> model;
  bool released = false;

  bool isEmpty() const { return file.empty() && text.empty() && model == nullptr; }

  void fetch() {
    if (released) {
      throw RUNTIME_EXCEPTION("The camera description was released");
    }
    if (text.empty() && !file.empty()) {
      readFile();
    }
    if (GenApiEngine::isZip(text)) {
      owned = GenApiEngine::unzipDescription(text);
      text = owned;
    }
  }

  void readFile() {
    const std::filesystem::path path(std::u8string(file.begin(), file.end()));
    std::ifstream stream(path, std::ios::binary);
    std::stringstream content;
    if (!stream || !(content << stream.rdbuf())) {
      throw RUNTIME_EXCEPTION("File open failed in ParseXmlFile. Filename = '%s'", file.c_str());
    }
    owned = std::move(content).str();
    text = owned;
  }

  void load() {
    if (model != nullptr) {
      return;
    }
    if (isEmpty()) {
      throw RUNTIME_EXCEPTION("The factory holds no camera description");
    }
    std::vector<std::string_view> documents;
    fetch();
    documents.push_back(text);
    for (const std::shared_ptr<Data>& other : injected) {
      other->fetch();
      documents.push_back(other->text);
    }
    using GenApiEngine::CacheUse;
    const CacheUse use = cacheUsage == CacheUsage_Ignore      ? CacheUse::Bypass
                         : cacheUsage == CacheUsage_ForceRead ? CacheUse::OnlyCached
                                                              : CacheUse::Automatic;
    model = GenApiEngine::modelOf(documents, use);
    if (model == nullptr) {
      throw RUNTIME_EXCEPTION("The camera description is not in the cache");
    }
  }

  void release() {
    load();
    owned = std::string();
    text = std::string_view();
    injected.clear();
    released = true;
  }
};

CNodeMapFactory::CNodeMapFactory() : m_pData(std::make_shared<Data>()) {}

// What the data is, zip or text, is seen from its first bytes; producers are wrong about it too often.
CNodeMapFactory::CNodeMapFactory(EContentType_t /*ContentType*/, const gcstring& FileName, ECacheUsage_t CacheUsage,
                                 bool /*SuppressStringsOnLoad*/)
    : m_pData(std::make_shared<Data>()) {
  if (FileName.empty()) {
    throw INVALID_ARGUMENT_EXCEPTION("The file name of the camera description is empty");
  }
  gcstring file = FileName;
  GENICAM_NAMESPACE::ReplaceEnvironmentVariables(file);
  m_pData->file = file.c_str();
  m_pData->cacheUsage = CacheUsage;
}

CNodeMapFactory::CNodeMapFactory(EContentType_t /*ContentType*/, const void* pData, size_t DataSize,
                                 ECacheUsage_t CacheUsage, bool /*SuppressStringsOnLoad*/)
    : m_pData(std::make_shared<Data>()) {
  if (pData == nullptr || DataSize == 0) {
    throw INVALID_ARGUMENT_EXCEPTION("The camera description is empty");
  }
  m_pData->text = {static_cast<const char*>(pData), DataSize};
  m_pData->cacheUsage = CacheUsage;
}

CNodeMapFactory::CNodeMapFactory(const gcstring& XmlData, ECacheUsage_t CacheUsage, bool /*SuppressStringsOnLoad*/)
    : m_pData(std::make_shared<Data>()) {
  if (XmlData.empty()) {
    throw INVALID_ARGUMENT_EXCEPTION("The camera description is empty");
  }
  m_pData->owned.assign(XmlData.c_str(), XmlData.size());
  m_pData->text = m_pData->owned;
  m_pData->cacheUsage = CacheUsage;
}

CNodeMapFactory::CNodeMapFactory(const CNodeMapFactory&) = default;
CNodeMapFactory& CNodeMapFactory::operator=(const CNodeMapFactory&) = default;
CNodeMapFactory::~CNodeMapFactory() = default;

bool CNodeMapFactory::IsEmpty() const {
  return m_pData->isEmpty();
}

void CNodeMapFactory::AddInjectionData(CNodeMapFactory& InjectionData) {
  if (m_pData->model != nullptr) {
    throw LOGICAL_ERROR_EXCEPTION("The camera description is already loaded, nothing can be injected");
  }
  if (InjectionData.IsEmpty() || InjectionData.IsPreprocessed() || InjectionData.m_pData == m_pData) {
    throw INVALID_ARGUMENT_EXCEPTION("Only a description that is not preprocessed can be injected");
  }
  m_pData->injected.push_back(InjectionData.m_pData);
}

void CNodeMapFactory::LoadAndInject() {
  m_pData->load();
}
bool CNodeMapFactory::IsLoaded() const {
  return m_pData->model != nullptr;
}
void CNodeMapFactory::Preprocess() {
  m_pData->load();
}
bool CNodeMapFactory::IsPreprocessed() const {
  return m_pData->model != nullptr;
}
void CNodeMapFactory::ReleaseCameraDescriptionFileData() {
  m_pData->release();
}
bool CNodeMapFactory::IsCameraDescriptionFileDataReleased() const {
  return m_pData->released;
}

CNodeMapFactory CNodeMapFactory::ExtractSubtree(const gcstring& /*SubTreeRootNodeName*/, bool /*doRenameToRoot*/) {
  throw RUNTIME_EXCEPTION("Extracting a part of a camera description is not supported");
}

// NOLINTNEXTLINE(readability-const-return-type): the interface has it so.
const gcstring CNodeMapFactory::ApplyStyleSheet(const gcstring& /*StyleSheetFileName*/) {
  throw RUNTIME_EXCEPTION("Style sheets are not supported");
}

INodeMap* CNodeMapFactory::CreateNodeMap(const gcstring& DeviceName, bool DoReleaseCameraDescriptionFileData) {
  m_pData->load();
  INodeMap* const map = new GenApiEngine::NodeMap(m_pData->model, DeviceName.c_str(), nullptr);
  if (DoReleaseCameraDescriptionFileData) {
    m_pData->release();
  }
  return map;
}

INodeMap* CNodeMapFactory::CreateNodeMap(CLock& UserProvidedLock, const gcstring& DeviceName,
                                         bool DoReleaseCameraDescriptionFileData) {
  m_pData->load();
  INodeMap* const map = new GenApiEngine::NodeMap(m_pData->model, DeviceName.c_str(), &UserProvidedLock);
  if (DoReleaseCameraDescriptionFileData) {
    m_pData->release();
  }
  return map;
}

INodeMap* CNodeMapFactory::CreateEmptyNodeMap() {
  return new GenApiEngine::NodeMap(std::make_shared<GenApiEngine::Model>(), "Device", nullptr);
}

bool CNodeMapFactory::ClearCache() {
  GenApiEngine::clearModelCache();
  return true;
}

void CNodeMapFactory::GetSupportedSchemaVersions(gcstring_vector& SchemaVersions) const {
  SchemaVersions.clear();
  SchemaVersions.push_back("1.0");
  SchemaVersions.push_back("1.1");
}

gcstring CNodeMapFactory::ToString() const {
  return ToXml();
}

gcstring CNodeMapFactory::ToXml() const {
  m_pData->fetch();
  return gcstring(m_pData->text.data(), m_pData->text.size());
}

void CNodeMapFactory::GetNodeStatistics(NodeStatistics_t& Statistics) {
  m_pData->load();
  const GenApiEngine::Model& model = *m_pData->model;
  Statistics.NumNodes = static_cast<uint32_t>(model.nodes().size());
  Statistics.NumProperties = static_cast<uint32_t>(model.propertyCount());
  Statistics.NumLinks = static_cast<uint32_t>(model.linkCount());
  Statistics.NumStrings = Statistics.NumProperties;
}

}  // namespace GENAPI_NAMESPACE
