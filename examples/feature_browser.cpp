// Every feature of a camera as a tree: its access, its value and what it may be set to.
#include <iostream>
#include <ovi/ovi.hpp>

namespace {

const char* accessText(std::uint32_t mode) {
  switch (mode) {
    case OVI_ACCESS_READ_ONLY:
      return "ro";
    case OVI_ACCESS_READ_WRITE:
      return "rw";
    case OVI_ACCESS_WRITE_ONLY:
      return "wo";
    default:
      return "--";  // not available now, or not implemented
  }
}

void printLimits(const ovi::Feature& feature, const ovi::FeatureParameter& record) {
  if (record.featureType == OVI_FEATURE_INTEGER)
    std::cout << "  [" << record.intMin << " .. " << record.intMax << ", step " << record.intInc << "]";
  if (record.featureType == OVI_FEATURE_FLOAT)
    std::cout << "  [" << record.floatMin << " .. " << record.floatMax << "]";
  if (record.featureType == OVI_FEATURE_ENUMERATION)
    for (const ovi::FeatureParameter& entry : feature.entries())
      std::cout << "  " << entry.stringValue;
}

void print(const ovi::TreeFeature& node) {
  const std::string indent(2 * std::size_t{node.depth}, ' ');
  if (node.type == OVI_FEATURE_CATEGORY) {
    std::cout << indent << node.feature.name() << '\n';
    return;
  }
  const ovi::FeatureParameter record = node.feature.parameter();
  const bool readable = record.accessMode == OVI_ACCESS_READ_ONLY || record.accessMode == OVI_ACCESS_READ_WRITE;
  std::cout << indent << accessText(record.accessMode) << ' ' << record.name;
  if (readable && record.featureType != OVI_FEATURE_REGISTER && record.featureType != OVI_FEATURE_COMMAND) {
    std::cout << " = " << node.feature.text() << ' ' << record.unit;
    printLimits(node.feature, record);
  }
  std::cout << '\n';
}

}  // namespace

int main() {
  try {
    const ovi::Library library(ovi::LogLevel::kError);
    const auto cameras = library.discover();
    if (cameras.empty()) {
      std::cerr << "no camera was found\n";
      return 1;
    }
    const ovi::Device camera(cameras.front().deviceID, ovi::Access::kReadOnly);
    for (const ovi::TreeFeature& node : camera.features()) {
      try {
        print(node);
      } catch (const ovi::Error& error) {  // One feature that cannot be read does not hide the others.
        std::cout << "  ! " << error.what() << '\n';
      }
    }
    return 0;
  } catch (const ovi::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
