// Decides by the file's own name which producer family to behave as.
#include "options.h"

namespace vcam {

Options loadOptions(const std::string& path) {
  Options options;
  options.variant = variantOf(path);
  return options;
}

Variant variantOf(const std::string& path) {
  const std::string name = path.substr(path.find_last_of("/\\") + 1);
  if (name == "gevtls2i.cti") {
    return Variant::GigE;
  }
  if (name.find("lsgentlgevkithara") != std::string::npos) {
    return Variant::RealTime;
  }
  if (name.find("nimbo_producer.cti") != std::string::npos) {
    return Variant::Recording;
  }
  return Variant::Plain;
}

}  // namespace vcam
