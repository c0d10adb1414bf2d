// File URLs, as producers name their descriptions with them.
#include "platform/file_url.h"

#include "paths.h"
#include "platform/console.h"
#include "platform/platform.h"

namespace tool {

std::filesystem::path pathOfUrl(const std::string& url) {
  return pathFromText(fromLibraryText(OVI::platform::urlToPath(url)));
}

}  // namespace tool
