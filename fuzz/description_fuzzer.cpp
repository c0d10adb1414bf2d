// Any text as a description: it either loads, and its nodes answer, or is refused with a GenICam exception.
#include <cstdint>
#include <memory>

#include "exercise.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::unique_ptr<GenApi::INodeMap, fuzz::Destroy> map;
  try {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, data, size, GenApi::CacheUsage_Ignore);
    map.reset(factory.CreateNodeMap());
  } catch (const GenICam::GenericException&) {
    return 0;
  }
  fuzz::BytesPort port(data, size < 64 ? size : 64);
  map->Connect(&port);
  fuzz::exercise(*map);
  return 0;
}
