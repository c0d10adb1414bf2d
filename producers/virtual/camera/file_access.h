// Access to the files of a camera in blocks, with a checksum that is checked when a written file is closed.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "camera_core.h"
#include "file_store.h"

namespace vcam {

// The sum of a content taken as little-endian 32-bit words, the last one filled up with zeros, modulo 2^32.
std::uint32_t fileChecksum(const FileContent& content);

class FileAccess {
 public:
  struct Hooks {
    std::function<FileContent(const std::string& set)> userSet;
    std::function<Feature&()> lut;                             // 256 values of 12 bits, the luminance first
    std::function<void(const std::string& version)> firmware;  // a new firmware has been applied
  };

  FileAccess(CameraCore& core, FileStore& store, Hooks hooks) : core_(core), store_(store), hooks_(std::move(hooks)) {}

  void declare();
  void close();

 private:
  enum class Mode : std::uint8_t { Closed, Read, Write, ReadWrite };

  void declareOperations();
  void declareData();
  GC_ERROR execute();
  bool open();
  bool closeFile();
  bool readBlock();
  bool writeBlock();
  bool deleteFile();
  bool apply(const std::string& name);
  std::string selectedName() const;
  FileContent stored(const std::string& name);
  FileContent lutFile() const;
  void applyLut(const FileContent& content) const;
  void finish(std::int64_t status);

  CameraCore& core_;
  FileStore& store_;
  Hooks hooks_;
  Mode mode_ = Mode::Closed;
  std::string openName_;
  FileContent content_;
  bool changed_ = false;
  bool checksumGiven_ = false;
  std::int64_t givenChecksum_ = 0;
  bool fatal_ = false;
  bool busy_ = false;
  std::int64_t status_ = 0;
  std::int64_t result_ = 0;

  Feature* selector_ = nullptr;
  Feature* operation_ = nullptr;
  Feature* openMode_ = nullptr;
  Feature* buffer_ = nullptr;
  Feature* offset_ = nullptr;
  Feature* length_ = nullptr;
  Feature* checksum_ = nullptr;
};

}  // namespace vcam
