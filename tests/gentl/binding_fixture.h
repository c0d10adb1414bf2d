// The scripted producer, opened as far as a test wants it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "binding_script.h"
#include "gentl/buffer.h"
#include "gentl/data_stream.h"
#include "gentl/device.h"
#include "gentl/event.h"
#include "gentl/exceptions.h"
#include "gentl/feature_list.h"
#include "gentl/producer.h"
#include "gentl/tl_interface.h"
#include "gentl/transport_layer.h"
#include "platform/platform.h"

namespace binding {

inline std::string producerPath(const std::string& fileName) {
  const char* folder = std::getenv("BINDING_PRODUCERS");
  return (folder != nullptr ? folder : "") + fileName;
}

/** The text of the exception that work throws, of that type or derived from it; "" when it throws nothing. */
template<class Exception = GenTLCpp::GenTLException, class Work>
std::string thrownBy(Work&& work) {
  try {
    work();
    return "";
  } catch (const Exception& error) {
    return error.what();
  }
}

/** A description with a port "Device", "Root" over those features, and those nodes. */
inline std::string describe(const std::string& features, const std::string& nodes) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<RegisterDescription ModelName=\"M\" VendorName=\"V\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
         "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" "
         "SubMinorVersion=\"0\" ProductGuid=\"1\" VersionGuid=\"1\" "
         "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">\n"
         "<Category Name=\"Root\">" +
         features + "</Category>\n" + nodes + "<Port Name=\"Device\"/></RegisterDescription>";
}

class BindingTest : public testing::Test {
 protected:
  void SetUp() override {
    producer_ = GenTLCpp::GenTLProducer::create(producerPath("BindingProducer.cti"));
    const auto getScript = reinterpret_cast<GetScript>(
        GenTLCpp::GenTLProducer::resolveExport(producer_->getLibraryHandle(), "bindingScript"));
    ASSERT_NE(getScript, nullptr);
    // The library may be unloaded before the script is last looked at.
    library_ = OVI::platform::loadLibrary(producerPath("BindingProducer.cti"));
    script_ = getScript();
    forgetCalls();
  }
  void TearDown() override {
    stream_.reset();
    device_.reset();
    tlInterface_.reset();
    transportLayer_.reset();
    producer_.reset();
    OVI::platform::unload(library_);
  }

  void openDevice() {
    transportLayer_ = producer_->openTransportLayer();
    tlInterface_ = GenTLCpp::InterfaceInfo(transportLayer_, "If0", "", "").open();
    device_ = GenTLCpp::DeviceInfo(tlInterface_, "Dev").open(DEVICE_ACCESS_CONTROL);
  }
  void openStream() {
    openDevice();
    stream_ = device_->openDataStream(0);
  }
  /** Puts a description into the registers, from address 0x1000 on. */
  void describeModules(const std::string& xml) {
    const std::lock_guard lock(script_->mutex);
    script_->memory.assign(0x1000, '\0');
    script_->memory += xml;
    std::array<char, 64> url{};
    std::snprintf(url.data(), url.size(), "local:test.xml;1000;%zx", xml.size());
    script_->urls = {url.data()};
  }

  std::ptrdiff_t callsOf(const std::string& name) {
    const std::lock_guard lock(script_->mutex);
    return std::count(script_->calls.begin(), script_->calls.end(), name);
  }
  void forgetCalls() {
    const std::lock_guard lock(script_->mutex);
    script_->calls.clear();
  }

  Script* script_ = nullptr;
  std::shared_ptr<GenTLCpp::GenTLProducer> producer_;
  std::shared_ptr<GenTLCpp::TransportLayer> transportLayer_;
  std::shared_ptr<GenTLCpp::TLInterface> tlInterface_;
  std::shared_ptr<GenTLCpp::Device> device_;
  std::shared_ptr<GenTLCpp::DataStream> stream_;

 private:
  OVI::platform::LibraryHandle library_ = nullptr;
};

}  // namespace binding
