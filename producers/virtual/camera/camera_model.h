// What distinguishes one camera of the producer from another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "camera.h"

namespace vcam {

struct CameraModel {
  Identity identity;
  std::string userDefinedName;
  std::string toolTip;
  std::uint32_t sensorWidth = 1280;
  std::uint32_t sensorHeight = 1024;
  bool colour = false;
  std::vector<std::string> pixelFormats;  // the first is the default
  double defaultFrameRate = 30;           // Hz
  double maxFrameRate = 60;               // Hz at full height
  double defaultExposure = 10000;         // us; shows the chart as it was drawn
  std::size_t streams = 1;
  bool bigEndian = false;
  bool zipped = false;
  bool scaledRegisters = false;  // exposure and gain are whole numbers of steps
  bool components = false;       // range and confidence beside intensity, as multi-part payload
  std::size_t channels = 0;      // blocks of the generated part of a large description
  std::size_t fileBuffer = 1024;
};

std::vector<CameraModel> defaultModels();

}  // namespace vcam
