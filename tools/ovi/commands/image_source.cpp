// Where a benchmark takes its images from: the library, or the producer without it.
#include "commands/image_source.h"

#include <array>

#include "camera_start.h"
#include "check/stream_session.h"
#include "paths.h"
#include "tool_error.h"

namespace tool {

namespace {

class LibrarySource : public ImageSource {
 public:
  LibrarySource(const ModuleView& view, std::uint32_t buffers)
      : device_(view.device()),
        stream_(openStream(view, buffers)) {
    startCamera(view, stream_);
  }
  ~LibrarySource() override {
    image_.reset();
    oviStopAcquisition(device_.handle());
  }

  Got take(std::chrono::milliseconds timeout) override {
    std::error_code error;
    image_ = stream_.tryNext(timeout, error);
    if (error.value() == OVI_ERR_INVALID_BUFFER)
      return Got::kIncomplete;
    if (error && error.value() != OVI_ERR_TIMEOUT)
      throw ToolError("waiting for an image failed: " + error.message(), "ovi stream --frames 100");
    return image_ ? Got::kImage : Got::kNothing;
  }
  void giveBack() override {
    if (const std::error_code refused = image_->release())
      throw ToolError("the producer refused to take a buffer back: " + refused.message(), "ovi stream --frames 100");
  }
  const std::uint8_t* data() const override { return image_->data(); }
  std::size_t size() const override { return image_->size(); }

 private:
  const ovi::Device& device_;
  ovi::Stream stream_;
  std::unique_ptr<ovi::Image> image_;
};

class ProducerSource : public ImageSource {
 public:
  ProducerSource(const std::string& file, const std::string& camera, const std::vector<std::string>& assignments,
                 std::uint32_t buffers)
      : library_(pathFromText(file)),
        functions_(library_),
        checker_(
            functions_, camera, [](const std::string&) {}, [](const check::RuleLine&) {}),
        session_(checker_,
                 [&](check::PortMap& map) {
                   for (const std::string& assignment : assignments)
                     map.assign(assignment);
                 }),
        getData_(functions_.EventGetData.unwatched()),
        getDataInfo_(functions_.EventGetDataInfo.unwatched()),
        getBufferInfo_(functions_.DSGetBufferInfo.unwatched()),
        queue_(functions_.DSQueueBuffer.unwatched()) {
    event_ = session_.prepare(buffers);
    session_.start();
  }

  Got take(std::chrono::milliseconds timeout) override {
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    const GC_ERROR code = getData_(event_, &data, &size, static_cast<std::uint64_t>(timeout.count()));
    if (code == GC_ERR_TIMEOUT)
      return Got::kNothing;
    if (code != GC_ERR_SUCCESS)
      throw ToolError("EventGetData returned " + check::codeText(code));
    buffer_ = data.BufferHandle;
    std::uint64_t id = 0;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    size = sizeof id;
    getDataInfo_(event_, &data, sizeof data, EVENT_DATA_ID, &type, &id, &size);
    for (std::size_t i = 0; i < kInfos.size(); ++i) {
      size = sizeof answers_[i];
      getBufferInfo_(session_.stream(), buffer_, kInfos[i], &type, &answers_[i], &size);
    }
    return Got::kImage;
  }
  void giveBack() override { queue_(session_.stream(), buffer_); }
  const std::uint8_t* data() const override {
    return reinterpret_cast<const std::uint8_t*>(static_cast<std::uintptr_t>(answers_.front()));  // NOLINT
  }
  std::size_t size() const override { return static_cast<std::size_t>(answers_.back()); }

 private:
  static constexpr std::array<BUFFER_INFO_CMD, 7> kInfos = {
      BUFFER_INFO_BASE,  BUFFER_INFO_FRAMEID, BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_HEIGHT,
      BUFFER_INFO_WIDTH, BUFFER_INFO_SIZE,    BUFFER_INFO_SIZE_FILLED};

  DynamicLibrary library_;
  check::ProducerFunctions functions_;
  check::Checker checker_;
  check::StreamSession session_;
  PEventGetData getData_;
  PEventGetDataInfo getDataInfo_;
  PDSGetBufferInfo getBufferInfo_;
  PDSQueueBuffer queue_;
  EVENT_HANDLE event_ = nullptr;
  BUFFER_HANDLE buffer_ = nullptr;
  std::array<std::uint64_t, kInfos.size()> answers_{};
};

}  // namespace

std::unique_ptr<ImageSource> openSource(const ModuleView& view, std::uint32_t buffers) {
  return std::make_unique<LibrarySource>(view, buffers);
}

std::unique_ptr<ImageSource> openProducerSource(const std::string& file, const std::string& camera,
                                                const std::vector<std::string>& assignments, std::uint32_t buffers) {
  return std::make_unique<ProducerSource>(file, camera, assignments, buffers);
}

}  // namespace tool
