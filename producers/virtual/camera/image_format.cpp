// Declaration of the image format features, and what they make of the picture.
#include "image_format.h"

#include <algorithm>
#include <array>
#include <string>

#include "../picture/image_folder.h"

namespace vcam {
namespace {

constexpr const char* kImageFormatCategory = "ImageFormatControl";

struct PatternName {
  const char* name;
  Pattern pattern;
  const char* toolTip;
};

constexpr std::array<PatternName, 13> kPatterns{{
    {"Off", Pattern::Chart, "The test chart with the frame ID in it"},
    {"Black", Pattern::Black, "All pixels are 0"},
    {"White", Pattern::White, "All pixels have the largest value"},
    {"GreyHorizontalRamp", Pattern::GreyHorizontalRamp, "Column modulo 256"},
    {"GreyVerticalRamp", Pattern::GreyVerticalRamp, "Line modulo 256"},
    {"GreyHorizontalRampMoving", Pattern::GreyHorizontalRampMoving, "Column plus frame ID, modulo 256, in every byte"},
    {"GreyVerticalRampMoving", Pattern::GreyVerticalRampMoving, "Line plus frame ID, modulo 256"},
    {"HorizontalLineMoving", Pattern::HorizontalLineMoving, "A white line that moves down by one line a frame"},
    {"VerticalLineMoving", Pattern::VerticalLineMoving, "A white line that moves right by one column a frame"},
    {"GreyDiagonalRampMoving", Pattern::GreyDiagonalRampMoving, "Column plus line plus frame ID, modulo 256"},
    {"ColorBar", Pattern::ColorBar, "Eight vertical colour bars"},
    {"FrameCounter", Pattern::FrameCounter, "All pixels are the frame ID modulo 256"},
    {"ImageFolder", Pattern::ImageFolder, "The images of the configured folder, one after another"},
}};

}  // namespace

void ImageFormat::declare() {
  core_.map.category(kImageFormatCategory, "Size, position and format of the image");
  declareGeometry();
  declareFormat();
  if (core_.model.components) {
    declareComponents();
  }
}

void ImageFormat::declareGeometry() {
  FeatureMap& map = core_.map;
  const std::int64_t sensorWidth = core_.model.sensorWidth;
  const std::int64_t sensorHeight = core_.model.sensorHeight;
  map.integer("SensorWidth", kImageFormatCategory, "Columns of the sensor")
      .unit("px")
      .readOnly()
      .value(sensorWidth)
      .visibility("Expert");
  map.integer("SensorHeight", kImageFormatCategory, "Lines of the sensor")
      .unit("px")
      .readOnly()
      .value(sensorHeight)
      .visibility("Expert");
  const auto shrink = [this](std::size_t) {
    shrinkToSensor();
    return GC_ERROR{GC_ERR_SUCCESS};
  };
  struct Axis {
    const char* suffix;
    const char* what;
    Feature** binning;
    Feature** decimation;
  };
  for (const Axis& axis : {Axis{"Horizontal", "columns", &binningX_, &decimationX_},
                           Axis{"Vertical", "lines", &binningY_, &decimationY_}}) {
    *axis.binning = &map.integer(std::string("Binning") + axis.suffix, kImageFormatCategory,
                                 std::string("Number of ") + axis.what + " that are combined into one")
                         .min("1")
                         .max("4")
                         .value(1)
                         .lockedWhileStreaming()
                         .stored()
                         .visibility("Expert")
                         .onWrite(shrink);
    *axis.decimation = &map.integer(std::string("Decimation") + axis.suffix, kImageFormatCategory,
                                    std::string("Of so many ") + axis.what + " one is kept")
                            .min("1")
                            .max("4")
                            .value(1)
                            .lockedWhileStreaming()
                            .stored()
                            .visibility("Expert")
                            .onWrite(shrink);
  }
  binningMode_ = &map.enumeration("BinningHorizontalMode", kImageFormatCategory,
                                  "How binned pixels are combined, in both directions")
                      .entry("Sum", 0, "Added up; the picture becomes brighter")
                      .entry("Average", 1, "Averaged")
                      .value(1)
                      .lockedWhileStreaming()
                      .stored()
                      .visibility("Expert");

  widthMax_ = &map.integer("WidthMax", kImageFormatCategory, "Largest width with the present binning and decimation")
                   .unit("px")
                   .readOnly()
                   .visibility("Expert")
                   .dependsOn({"BinningHorizontal", "DecimationHorizontal"})
                   .computed([this](std::size_t) {
                     return core_.model.sensorWidth / (binningX_->integer() * decimationX_->integer()) / 4 * 4;
                   });
  heightMax_ = &map.integer("HeightMax", kImageFormatCategory, "Largest height with the present binning and decimation")
                    .unit("px")
                    .readOnly()
                    .visibility("Expert")
                    .dependsOn({"BinningVertical", "DecimationVertical"})
                    .computed([this](std::size_t) {
                      return core_.model.sensorHeight / (binningY_->integer() * decimationY_->integer()) / 2 * 2;
                    });
  width_ = &map.integer("Width", kImageFormatCategory, "Width of the image")
                .unit("px")
                .min("16")
                .max("WidthMax - OffsetX")
                .inc("4")
                .value(sensorWidth)
                .lockedWhileStreaming()
                .stored()
                .dependsOn({"BinningHorizontal", "DecimationHorizontal"});
  height_ = &map.integer("Height", kImageFormatCategory, "Height of the image")
                 .unit("px")
                 .min("2")
                 .max("HeightMax - OffsetY")
                 .inc("2")
                 .value(sensorHeight)
                 .lockedWhileStreaming()
                 .stored()
                 .dependsOn({"BinningVertical", "DecimationVertical"});
  offsetX_ = &map.integer("OffsetX", kImageFormatCategory, "First column of the image")
                  .unit("px")
                  .min("0")
                  .max("WidthMax - Width")
                  .inc("4")
                  .stored()
                  .dependsOn({"BinningHorizontal", "DecimationHorizontal"});
  offsetY_ = &map.integer("OffsetY", kImageFormatCategory, "First line of the image")
                  .unit("px")
                  .min("0")
                  .max("HeightMax - Height")
                  .inc("2")
                  .stored()
                  .dependsOn({"BinningVertical", "DecimationVertical"});
  reverseX_ = &map.boolean("ReverseX", kImageFormatCategory, "Mirrors the picture left to right")
                   .stored()
                   .lockedWhileStreaming();
  reverseY_ =
      &map.boolean("ReverseY", kImageFormatCategory, "Turns the picture upside down").stored().lockedWhileStreaming();
}

void ImageFormat::declareFormat() {
  FeatureMap& map = core_.map;
  pixelFormat_ = &map.enumeration("PixelFormat", kImageFormatCategory, "Format of the pixels")
                      .lockedWhileStreaming()
                      .stored()
                      .value(std::int64_t{findPixelFormat(core_.model.pixelFormats.front())->code});
  Feature& size = map.enumeration("PixelSize", kImageFormatCategory, "Bits that a pixel occupies")
                      .readOnly()
                      .visibility("Expert")
                      .dependsOn({"PixelFormat"})
                      .computed([this](std::size_t) {
                        return findPixelFormat(static_cast<std::uint32_t>(pixelFormat_->integer()))->bits;
                      });
  std::vector<unsigned> sizes;
  for (const std::string& name : core_.model.pixelFormats) {
    const PixelFormat& format = *findPixelFormat(name);
    pixelFormat_->entry(name, std::int64_t{format.code}, std::to_string(format.bits) + " bits per pixel");
    if (std::ranges::find(sizes, format.bits) == sizes.end()) {
      sizes.push_back(format.bits);
      size.entry("Bpp" + std::to_string(format.bits), format.bits);
    }
  }
  pattern_ =
      &map.enumeration("TestPattern", kImageFormatCategory, "What the camera shows instead of what it sees").stored();
  for (const PatternName& entry : kPatterns) {
    pattern_->entry(entry.name, static_cast<std::int64_t>(entry.pattern), entry.toolTip);
  }
}

void ImageFormat::declareComponents() {
  FeatureMap& map = core_.map;
  map.enumeration("ComponentSelector", kImageFormatCategory, "The component that ComponentEnable acts on")
      .entry("Intensity", 0, "The picture")
      .entry("Range", 1, "Distance of each pixel")
      .entry("Confidence", 2, "Trust in each distance")
      .visibility("Expert");
  component_ =
      &map.boolean("ComponentEnable", kImageFormatCategory,
                   "Sends the component; more than the intensity makes a multi-part payload")
           .selectedBy({"ComponentSelector"})
           .lockedWhileStreaming()
           .visibility("Expert")
           .onWrite([this](std::size_t slot) {
             // The intensity is always sent.
             return slot == 0 && !component_->on(0) ? GC_ERROR{GC_ERR_INVALID_VALUE} : GC_ERROR{GC_ERR_SUCCESS};
           });
}

// After a change of binning or decimation: a size that no longer fits becomes the largest possible.
void ImageFormat::shrinkToSensor() {
  const auto fit = [](Feature& size, Feature& offset, std::int64_t limit) {
    size.set(std::min(size.integer(), limit));
    offset.set(std::min(offset.integer(), limit - size.integer()));
  };
  fit(*width_, *offsetX_, widthMax_->integer());
  fit(*height_, *offsetY_, heightMax_->integer());
}

std::size_t ImageFormat::imageSize() const {
  const PixelFormat& format = *findPixelFormat(static_cast<std::uint32_t>(pixelFormat_->integer()));
  return lineBytes(format, static_cast<std::size_t>(width_->integer())) * static_cast<std::size_t>(height_->integer());
}

PictureSettings ImageFormat::settings() {
  const CameraModel& model = core_.model;
  PictureSettings settings;
  settings.pattern = static_cast<Pattern>(pattern_->integer());
  if (chart_ == nullptr) {
    chart_ = std::make_shared<const Scene>(
        Scene::chart(model.sensorWidth, model.sensorHeight, model.colour, model.identity.displayName));
  }
  if (settings.pattern == Pattern::ImageFolder && !folderRead_) {
    folderRead_ = true;
    if (!core_.config.imageFolder.empty()) {
      folder_ = readImageFolder(core_.config.imageFolder, model.sensorWidth, model.sensorHeight, core_.config.report);
    }
  }
  const auto number = [](const Feature* feature) { return static_cast<std::uint32_t>(feature->integer()); };
  settings.format = findPixelFormat(number(pixelFormat_));
  settings.width = number(width_);
  settings.height = number(height_);
  settings.offsetX = number(offsetX_);
  settings.offsetY = number(offsetY_);
  settings.binningX = number(binningX_);
  settings.binningY = number(binningY_);
  settings.binningSums = number(binningMode_) == 0;
  settings.decimationX = number(decimationX_);
  settings.decimationY = number(decimationY_);
  settings.reverseX = reverseX_->on();
  settings.reverseY = reverseY_->on();
  settings.chart = chart_;
  settings.folder = folder_;
  return settings;
}

}  // namespace vcam
