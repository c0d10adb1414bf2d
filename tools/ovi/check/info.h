// Queries of a producer: values and texts by the rules of size, type and terminator.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "check/checker.h"

namespace tool::check {

struct InfoCommand {
  std::int32_t command;
  const char* name;
  INFO_DATATYPE type;
  enum Need { kNeeded, kText, kOptional } need;  ///< must be there; must be there and not be empty; may be missing
};

/// A value as the producer gave it.
struct Info {
  GC_ERROR code = GC_ERR_ERROR;
  INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
  std::vector<std::uint8_t> bytes;

  bool exists() const { return code == GC_ERR_SUCCESS; }
  std::string text() const;
  std::uint64_t number() const;
};

/// The values of one module, by command.
using Infos = std::map<std::int32_t, Info>;

/// A query with all but what every query has: command, type, buffer and size.
using Query = std::function<GC_ERROR(std::int32_t command, INFO_DATATYPE* type, void* buffer, std::size_t* size)>;

/// Asks without judging.
Info ask(const Query& query, std::int32_t command);

/// Asks for all of them and reports every breach of the rules to the rule that is being checked.
Infos askAll(Checker& check, const std::string& function, const Query& query, const std::vector<InfoCommand>& commands);

/// Reports values that differ from those of another function.
void compare(Checker& check, const Infos& ours, const Infos& theirs, const std::vector<InfoCommand>& commands,
             const std::string& other);

/// A text by index or of a whole module: ID or URL.
using TextQuery = std::function<GC_ERROR(char* buffer, std::size_t* size)>;

/// Asks for a text by the rules; throws Broken.
std::string askText(const std::string& what, const TextQuery& query);

extern const std::vector<InfoCommand> kSystemInfos;
extern const std::vector<InfoCommand> kInterfaceInfos;
extern const std::vector<InfoCommand> kDeviceInfos;
extern const std::vector<InfoCommand> kStreamInfos;
extern const std::vector<InfoCommand> kPortInfos;
extern const std::vector<InfoCommand> kUrlInfos;
extern const std::vector<InfoCommand> kEventInfos;
extern const std::vector<InfoCommand> kBufferInfos;
/// What only a filled buffer has.
extern const std::vector<InfoCommand> kImageInfos;

}  // namespace tool::check
