// The operations on files; a failed one leaves status Failure and result 0, as the convention has it.
#include "file_access.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "analog_control.h"

namespace vcam {
namespace {

constexpr const char* kFileCategory = "FileAccessControl";

enum Operation : std::uint8_t { kOpen, kClose, kRead, kWrite, kDelete };
enum Status : std::uint8_t { kSuccess, kFailure, kFatalError };

struct FileDeclaration {
  const char* name;
  const char* toolTip;
  std::size_t capacity;
};

constexpr std::array<FileDeclaration, 6> kFiles{{
    {"UserSet1", "Stored settings", 1U << 20U},
    {"UserSet2", "Stored settings", 1U << 20U},
    {"UserSet3", "Stored settings", 1U << 20U},
    {"GammaLut", "The luminance table: \"DD\", two bytes, 256 little-endian 16-bit values", 1U << 20U},
    {"Firmware", "Firmware: 37 bytes or more, with the mark of a firmware at byte 32 and the version at byte 36",
     1U << 24U},
    {"UserData", "Whatever the user keeps in the camera", 1U << 24U},
}};
constexpr std::size_t kFirmware = 4;

constexpr std::size_t kLutHeader = 4;
constexpr std::array<std::byte, 4> kFirmwareMark{std::byte{'V'}, std::byte{0xEF}, std::byte{0xEF}, std::byte{0xEF}};
constexpr std::size_t kFirmwareMarkAt = 32;
constexpr std::size_t kFirmwareVersionAt = 36;

bool isFirmware(const FileContent& content) {
  return content.size() > kFirmwareVersionAt &&
         std::equal(kFirmwareMark.begin(), kFirmwareMark.end(), content.begin() + kFirmwareMarkAt);
}

FileContent firstFirmware() {
  FileContent content(4096);
  for (std::size_t i = 0; i < content.size(); ++i) {
    content[i] = static_cast<std::byte>(i * 7 + i / 256);
  }
  std::ranges::copy(kFirmwareMark, content.begin() + kFirmwareMarkAt);
  content[kFirmwareVersionAt] = std::byte{0};
  return content;
}

}  // namespace

std::uint32_t fileChecksum(const FileContent& content) {
  std::uint32_t sum = 0;
  for (std::size_t i = 0; i < content.size(); ++i) {
    sum += std::to_integer<std::uint32_t>(content[i]) << (8 * (i % 4));
  }
  return sum;
}

void FileAccess::declare() {
  core_.map.category(kFileCategory, "Files inside the camera");
  declareOperations();
  declareData();
}

void FileAccess::declareOperations() {
  FeatureMap& map = core_.map;
  selector_ = &map.enumeration("FileSelector", kFileCategory, "The file to work on").visibility("Guru");
  for (std::size_t i = 0; i < kFiles.size(); ++i) {
    selector_->entry(kFiles[i].name, static_cast<std::int64_t>(i), kFiles[i].toolTip);
  }
  operation_ = &map.enumeration("FileOperationSelector", kFileCategory, "What FileOperationExecute does")
                    .sharedBy({"FileSelector"})
                    .visibility("Guru")
                    .entry("Open", kOpen)
                    .entry("Close", kClose)
                    .entry("Read", kRead)
                    .entry("Write", kWrite)
                    .entry("Delete", kDelete);
  map.command("FileOperationExecute", kFileCategory, "Performs the selected operation; stays active until it is done")
      .sharedBy({"FileSelector", "FileOperationSelector"})
      .visibility("Guru")
      .onWrite([this](std::size_t) { return execute(); })
      .computed([this](std::size_t) { return busy_ ? 1 : 0; });
  openMode_ = &map.enumeration("FileOpenMode", kFileCategory, "How Open opens the file")
                   .sharedBy({"FileSelector"})
                   .visibility("Guru")
                   .entry("Read", 0)
                   .entry("Write", 1, "Begins with an empty file")
                   .entry("ReadWrite", 2, "Keeps what is in the file");
  map.enumeration("FileOperationStatus", kFileCategory, "How the last operation ended")
      .readOnly()
      .uncached()
      .sharedBy({"FileSelector", "FileOperationSelector"})
      .visibility("Guru")
      .entry("Success", kSuccess)
      .entry("Failure", kFailure)
      .entry("FatalError", kFatalError, "The file's memory is exhausted")
      .computed([this](std::size_t) { return status_; });
  map.integer("FileOperationResult", kFileCategory, "Bytes that the last operation moved")
      .length(8)
      .readOnly()
      .uncached()
      .sharedBy({"FileSelector", "FileOperationSelector"})
      .visibility("Guru")
      .computed([this](std::size_t) { return result_; });
}

void FileAccess::declareData() {
  FeatureMap& map = core_.map;
  const auto bufferLength = static_cast<std::int64_t>(core_.model.fileBuffer);
  buffer_ = &map.bytes("FileAccessBuffer", kFileCategory, "Data of the block to read or write", core_.model.fileBuffer)
                 .uncached()
                 .sharedBy({"FileSelector", "FileOperationSelector"})
                 .visibility("Guru");
  offset_ = &map.integer("FileAccessOffset", kFileCategory, "Place of the block in the file")
                 .unit("B")
                 .length(8)
                 .min("0")
                 .max("16777216")
                 .sharedBy({"FileSelector", "FileOperationSelector"})
                 .uncached()
                 .visibility("Guru");
  length_ = &map.integer("FileAccessLength", kFileCategory, "Length of the block")
                 .unit("B")
                 .length(8)
                 .min("0")
                 .max(std::to_string(bufferLength))
                 .value(bufferLength)
                 .sharedBy({"FileSelector", "FileOperationSelector"})
                 .uncached()
                 .visibility("Guru");
  map.integer("FileSize", kFileCategory, "Size of the selected file")
      .unit("B")
      .length(8)
      .readOnly()
      .uncached()
      .sharedBy({"FileSelector"})
      .visibility("Guru")
      .computed([this](std::size_t) {
        const std::string name = selectedName();
        const bool isOpen = mode_ != Mode::Closed && name == openName_;
        return static_cast<std::int64_t>(isOpen ? content_.size() : stored(name).size());
      });
  checksum_ = &map.integer("FileChecksum", kFileCategory, "Sum of the file's little-endian 32-bit words")
                   .describe(
                       "Reads as the checksum of the selected file. What is written to it while the file is open for "
                       "writing is compared when it is closed; when it differs, the file is dropped.")
                   .sharedBy({"FileSelector"})
                   .uncached()
                   .vendorSpecific()
                   .representation("HexNumber")
                   .visibility("Guru");
  checksum_->onWrite([this](std::size_t) {
    checksumGiven_ = true;
    givenChecksum_ = checksum_->setting();
    return kOk;
  });
  checksum_->computed([this](std::size_t) {
    const std::string name = selectedName();
    const bool isOpen = mode_ != Mode::Closed && name == openName_;
    return checksumGiven_ ? givenChecksum_ : std::int64_t{fileChecksum(isOpen ? content_ : stored(name))};
  });
}

void FileAccess::close() {
  mode_ = Mode::Closed;
  checksumGiven_ = false;
  content_.clear();
}

GC_ERROR FileAccess::execute() {
  if (busy_) {
    return GC_ERR_BUSY;
  }
  result_ = 0;
  fatal_ = false;
  bool done = false;
  switch (operation_->integer()) {
    case kOpen:
      done = open();
      break;
    case kClose:
      done = closeFile();
      break;
    case kRead:
      done = readBlock();
      break;
    case kWrite:
      done = writeBlock();
      break;
    case kDelete:
      done = deleteFile();
      break;
    default:
      break;
  }
  status_ = done ? kSuccess : fatal_ ? kFatalError : kFailure;
  return kOk;
}

bool FileAccess::open() {
  if (mode_ != Mode::Closed) {
    return false;
  }
  openName_ = selectedName();
  mode_ = openMode_->integer() == 0 ? Mode::Read : openMode_->integer() == 1 ? Mode::Write : Mode::ReadWrite;
  content_ = mode_ == Mode::Write ? FileContent{} : stored(openName_);
  changed_ = mode_ == Mode::Write;
  checksumGiven_ = false;
  return true;
}

bool FileAccess::closeFile() {
  if (mode_ == Mode::Closed) {
    return false;
  }
  const bool sound = !checksumGiven_ || fileChecksum(content_) == static_cast<std::uint32_t>(givenChecksum_);
  const bool done = !changed_ || (sound && apply(openName_));
  close();
  return done;
}

bool FileAccess::readBlock() {
  const auto offset = static_cast<std::size_t>(offset_->integer());
  if ((mode_ != Mode::Read && mode_ != Mode::ReadWrite) || selectedName() != openName_ || offset > content_.size()) {
    return false;
  }
  const std::size_t count = std::min(static_cast<std::size_t>(length_->integer()), content_.size() - offset);
  std::fill(buffer_->bytes().begin(), buffer_->bytes().end(), std::byte{0});
  std::memcpy(buffer_->bytes().data(), content_.data() + offset, count);
  result_ = static_cast<std::int64_t>(count);
  return true;
}

bool FileAccess::writeBlock() {
  if ((mode_ != Mode::Write && mode_ != Mode::ReadWrite) || selectedName() != openName_) {
    return false;
  }
  const auto offset = static_cast<std::size_t>(offset_->integer());
  const auto count = static_cast<std::size_t>(length_->integer());
  if (offset + count > kFiles[static_cast<std::size_t>(selector_->integer())].capacity) {
    fatal_ = true;
    return false;
  }
  content_.resize(std::max(content_.size(), offset + count));
  std::memcpy(content_.data() + offset, buffer_->bytes().data(), count);
  changed_ = true;
  result_ = static_cast<std::int64_t>(count);
  return true;
}

bool FileAccess::deleteFile() {
  if (mode_ != Mode::Closed || selectedName() == kFiles[kFirmware].name) {
    return false;
  }
  store_.remove(selectedName());
  return true;
}

// A file that was written takes effect when it is closed.
bool FileAccess::apply(const std::string& name) {
  if (name == kFiles[kFirmware].name) {
    if (!isFirmware(content_)) {
      return false;
    }
    busy_ = true;
    const std::string version = "1." + std::to_string(std::to_integer<int>(content_[kFirmwareVersionAt])) + ".0";
    core_.schedule(Clock::now() + std::chrono::milliseconds(core_.config.firmwareApplyMs), [this, version] {
      busy_ = false;
      hooks_.firmware(version);
    });
  }
  if (name == "GammaLut") {
    applyLut(content_);
  }
  store_.write(name, content_);
  return true;
}

std::string FileAccess::selectedName() const {
  return kFiles[static_cast<std::size_t>(selector_->integer())].name;
}

FileContent FileAccess::stored(const std::string& name) {
  if (name.starts_with("UserSet")) {
    return hooks_.userSet(name);
  }
  if (auto content = store_.read(name)) {
    return *content;
  }
  if (name == "GammaLut") {
    return lutFile();
  }
  return name == kFiles[kFirmware].name ? firstFirmware() : FileContent{};
}

FileContent FileAccess::lutFile() const {
  FileContent content{std::byte{'D'}, std::byte{'D'}, std::byte{1}, std::byte{0}};
  for (std::size_t i = 0; i < kLutEntries; ++i) {
    const std::int64_t value = hooks_.lut().integer(i);
    content.push_back(static_cast<std::byte>(value));
    content.push_back(static_cast<std::byte>(value >> 8));
  }
  return content;
}

// Content of another form is kept without effect.
void FileAccess::applyLut(const FileContent& content) const {
  if (content.size() != kLutHeader + 2 * kLutEntries || content[0] != std::byte{'D'} || content[1] != std::byte{'D'}) {
    return;
  }
  for (std::size_t i = 0; i < kLutEntries; ++i) {
    const auto low = std::to_integer<std::int64_t>(content[kLutHeader + 2 * i]);
    const auto high = std::to_integer<std::int64_t>(content[kLutHeader + 2 * i + 1]);
    hooks_.lut().set((low | high << 8) & 0xFFF, i);
  }
}

}  // namespace vcam
