// A register space with a description in it: what every module and the remote device offer.
#pragma once

#include <cstdint>
#include <string>

#include "camera/camera.h"
#include "modules/handle_table.h"
#include "modules/info.h"

namespace vcam {

struct PortIdentity {
  std::string id;
  std::string vendor;
  std::string model;
  std::string version;
  std::string tlType;
  std::string module;    // one of the module names of GenTL
  std::string portName;  // of the Port node in the description
  bool bigEndian = false;
  bool writable = true;
};

class Port : public Object {
 public:
  using Object::Object;

  virtual PortIdentity identity() = 0;
  virtual const DescriptionInfo& description() = 0;

  // Move all bytes or fail. A write that runs over several registers may fail behind the first: `moved` is set to the
  // bytes that were taken, also on failure.
  virtual void read(std::uint64_t address, void* data, std::size_t size) = 0;
  virtual void write(std::uint64_t address, const void* data, std::size_t size, std::size_t& moved) = 0;

  Info portInfo(PORT_INFO_CMD command);
  Info urlInfo(std::uint32_t index, URL_INFO_CMD command);
  // The URL with the schema version in it: who asks for nothing else would take 1.0.0 for granted.
  std::string legacyUrl();
};

}  // namespace vcam
