// Answers of the engine about itself.
#include "ovi_genapi/diagnostics.h"

#include "model/review.h"
#include "nodemap/node_map.h"

namespace GenApiEngine {

namespace {

const NodeMap& engineMapOf(const GENAPI_NAMESPACE::INodeMap& nodeMap) {
  const auto* const map = dynamic_cast<const NodeMap*>(&nodeMap);
  if (map == nullptr) {
    throw INVALID_ARGUMENT_EXCEPTION("The node map is not one of this engine's");
  }
  return *map;
}

}  // namespace

std::vector<DescriptionRemark> reviewOf(const GENAPI_NAMESPACE::INodeMap& nodeMap) {
  const Model& model = engineMapOf(nodeMap).model();
  std::vector<DescriptionRemark> remarks;
  for (ModelRemark& remark : review(model)) {
    remarks.push_back(
        {remark.node == kNoNode ? std::string() : model.fullName(model.node(remark.node)), std::move(remark.text)});
  }
  return remarks;
}

NodeMapDiagnostics diagnosticsOf(const GENAPI_NAMESPACE::INodeMap& nodeMap) {
  const NodeMap& map = engineMapOf(nodeMap);
  const Model& model = map.model();
  NodeMapDiagnostics result;
  for (const ModelWarning& warning : model.warnings()) {
    result.warnings.push_back({warning.line, warning.text});
  }
  result.warningsSuppressed = model.warningsSuppressed();
  result.nodes = model.nodes().size();
  result.textBytes = model.textBytes();
  result.modelBytes = model.memoryBytes();
  result.mapBytes = map.memoryBytes();
  result.prepareTime = model.times().prepare;
  result.parseTime = model.times().parse;
  result.buildTime = model.times().build;
  result.linkTime = model.times().link;
  result.mapTime = map.buildTime();
  return result;
}

std::string nodeKindOf(const GENAPI_NAMESPACE::INode& node) {
  const auto* const core = dynamic_cast<const NodeCore*>(&node);
  return core == nullptr ? std::string() : std::string(infoOf(core->record().kind).name);
}

}  // namespace GenApiEngine
