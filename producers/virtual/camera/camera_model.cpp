// The cameras that are there by default.
#include "camera_model.h"

namespace vcam {
namespace {

CameraModel base(const char* model, const char* serial, const char* userName, const char* toolTip) {
  CameraModel m;
  m.identity.vendor = "Kestrova";
  m.identity.model = model;
  m.identity.serialNumber = serial;
  m.identity.id = std::string("VC-") + serial;
  m.identity.version = "1.0";
  m.identity.family = "Virtual";
  m.identity.displayName = std::string("KESTROVA ") + model;
  m.identity.manufacturerInfo = "Virtual camera; no hardware behind it";
  m.identity.tlType = "Custom";
  m.userDefinedName = userName;
  m.toolTip = toolTip;
  return m;
}

}  // namespace

std::vector<CameraModel> defaultModels() {
  const std::vector<std::string> mono{"Mono8", "Mono10", "Mono12", "Mono16", "Mono10p", "Mono12p"};
  const std::vector<std::string> colour{"RGB8",  "BGR8",     "RGBa8",    "BGRa8",    "RGB10",    "RGB12",
                                        "BGR12", "RGB10p32", "BayerRG8", "BayerGR8", "BayerGB8", "BayerBG8",
                                        "Mono8", "Mono10",   "Mono12",   "Mono16",   "Mono10p",  "Mono12p"};
  std::vector<CameraModel> models;

  CameraModel m = base("VC-1300M", "KV130001", "Mono", "Monochrome area-scan camera");
  m.pixelFormats = mono;
  models.push_back(m);

  m = base("VC-1200C", "KV120002", "Colour", "Colour area-scan camera");
  m.sensorHeight = 960;
  m.colour = true;
  m.pixelFormats = colour;
  m.defaultFrameRate = 25;
  m.fileBuffer = 4096;
  models.push_back(m);

  m = base("VC-320HS", "KV032003", "HighSpeed", "Small and fast monochrome camera");
  m.sensorWidth = 320;
  m.sensorHeight = 240;
  m.pixelFormats = mono;
  m.defaultFrameRate = 1000;
  m.maxFrameRate = 1200;
  m.defaultExposure = 500;
  models.push_back(m);

  m = base("VC-800BE", "KV080004", "BigEndian", "Monochrome camera with big-endian registers");
  m.sensorWidth = 800;
  m.sensorHeight = 600;
  m.pixelFormats = mono;
  m.bigEndian = true;
  m.scaledRegisters = true;
  m.fileBuffer = 512;
  models.push_back(m);

  m = base("VC-1024Z", "KV102405", "Zipped", "Colour camera with a zipped description");
  m.sensorWidth = 1024;
  m.sensorHeight = 768;
  m.colour = true;
  m.pixelFormats = colour;
  m.zipped = true;
  models.push_back(m);

  m = base("VC-1024D", "KV102406", "TwoStreams", "Monochrome camera with two streams; the second is the negative");
  m.sensorWidth = 1024;
  m.sensorHeight = 768;
  m.pixelFormats = mono;
  m.streams = 2;
  models.push_back(m);

  m = base("VC-640X", "KV064007", "ManyFeatures", "Camera with range, confidence and a very large description");
  m.sensorWidth = 640;
  m.sensorHeight = 480;
  m.colour = true;
  m.pixelFormats = colour;
  m.components = true;
  m.channels = 256;
  models.push_back(m);

  m = base("Observer 1", "OB000008", "Other", "Camera of another vendor");
  m.identity.vendor = "Halden Optik";
  m.identity.displayName = "HALDEN OBSERVER 1";
  m.identity.manufacturerInfo = "Virtual camera of another vendor";
  m.sensorWidth = 640;
  m.sensorHeight = 480;
  m.pixelFormats = mono;
  models.push_back(m);
  return models;
}

}  // namespace vcam
