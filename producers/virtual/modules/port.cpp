// The port's infos, the same for all kinds of ports.
#include "modules/port.h"

#include "modules/sha1.h"

namespace vcam {

Info Port::portInfo(PORT_INFO_CMD command) {
  const PortIdentity me = identity();
  switch (command) {
    case PORT_INFO_ID:
      return Info::text(me.id);
    case PORT_INFO_VENDOR:
      return Info::text(me.vendor);
    case PORT_INFO_MODEL:
      return Info::text(me.model);
    case PORT_INFO_TLTYPE:
      return Info::text(me.tlType);
    case PORT_INFO_MODULE:
      return Info::text(me.module);
    case PORT_INFO_LITTLE_ENDIAN:
      return Info::boolean(!me.bigEndian);
    case PORT_INFO_BIG_ENDIAN:
      return Info::boolean(me.bigEndian);
    case PORT_INFO_ACCESS_READ:
      return Info::boolean(true);
    case PORT_INFO_ACCESS_WRITE:
      return Info::boolean(me.writable);
    case PORT_INFO_ACCESS_NA:
    case PORT_INFO_ACCESS_NI:
      return Info::boolean(false);
    case PORT_INFO_VERSION:
      return Info::text(me.version);
    case PORT_INFO_PORTNAME:
      return Info::text(me.portName);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a port has no info ", command);
  }
}

std::string Port::legacyUrl() {
  const DescriptionInfo& me = description();
  return me.url.find('?') != std::string::npos
             ? me.url
             : join(me.url, "?SchemaVersion=", me.schemaMajor, ".", me.schemaMinor, ".0");
}

Info Port::urlInfo(std::uint32_t index, URL_INFO_CMD command) {
  if (index != 0) {
    fail(GC_ERR_INVALID_INDEX, "URL ", index, " of 1");
  }
  const DescriptionInfo& me = description();
  switch (command) {
    case URL_INFO_URL:
      return Info::text(me.url);
    case URL_INFO_SCHEMA_VER_MAJOR:
      return Info::int32(static_cast<std::int32_t>(me.schemaMajor));
    case URL_INFO_SCHEMA_VER_MINOR:
      return Info::int32(static_cast<std::int32_t>(me.schemaMinor));
    case URL_INFO_FILE_VER_MAJOR:
      return Info::int32(static_cast<std::int32_t>(me.fileMajor));
    case URL_INFO_FILE_VER_MINOR:
      return Info::int32(static_cast<std::int32_t>(me.fileMinor));
    case URL_INFO_FILE_VER_SUBMINOR:
      return Info::int32(static_cast<std::int32_t>(me.fileSubMinor));
    case URL_INFO_FILE_SHA1_HASH: {
      std::string content(me.size, '\0');
      read(me.address, content.data(), content.size());
      return Info::bytes(sha1(content));
    }
    case URL_INFO_FILE_REGISTER_ADDRESS:
      return Info::uint64(me.address);
    case URL_INFO_FILE_SIZE:
      return Info::uint64(me.size);
    case URL_INFO_SCHEME:
      return Info::int32(URL_SCHEME_LOCAL);
    case URL_INFO_FILENAME:
      return Info::text(me.fileName);
    default:
      fail(GC_ERR_NOT_IMPLEMENTED, "a URL has no info ", command);
  }
}

}  // namespace vcam
