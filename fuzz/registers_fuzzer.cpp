// Any register contents behind a description that uses every kind of node.
#include <cstdint>
#include <memory>
#include <string>

#include "exercise.h"
#include "support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string description = fuzz::contentOf(OVI_FUZZ_DESCRIPTION);
  const std::unique_ptr<GenApi::INodeMap, fuzz::Destroy> map(
      GenApi::CNodeMapFactory(GenApi::ContentType_Xml, description.data(), description.size()).CreateNodeMap());
  fuzz::BytesPort port(data, size);
  map->Connect(&port);
  fuzz::exercise(*map);
  return 0;
}
