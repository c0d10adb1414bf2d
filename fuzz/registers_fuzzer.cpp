// Any register contents behind a description that uses every kind of node.
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "exercise.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string description = [] {
    std::ifstream file(OVI_FUZZ_DESCRIPTION, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  }();
  const std::unique_ptr<GenApi::INodeMap, fuzz::Destroy> map(
      GenApi::CNodeMapFactory(GenApi::ContentType_Xml, description.data(), description.size()).CreateNodeMap());
  fuzz::BytesPort port(data, size);
  map->Connect(&port);
  fuzz::exercise(*map);
  return 0;
}
