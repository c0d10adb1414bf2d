// A node map over a description written in the test, with a port of plain memory behind it that counts what reaches it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "GenApi/GenApi.h"
#include "ovi_genapi/diagnostics.h"

class MemoryPort : public GenApi::IPort {
 public:
  std::map<std::int64_t, std::uint8_t> bytes;
  int reads = 0;
  int writes = 0;
  bool fails = false;
  GenApi::EAccessMode mode = GenApi::RW;
  std::function<void()> onRead;

  GenApi::EAccessMode GetAccessMode() const override { return mode; }
  void Read(void* buffer, std::int64_t address, std::int64_t length) override {
    ++reads;
    if (onRead) {
      onRead();
    }
    if (fails) {
      throw RUNTIME_EXCEPTION("the port fails");
    }
    for (std::int64_t i = 0; i < length; ++i) {
      const auto found = bytes.find(address + i);
      static_cast<std::uint8_t*>(buffer)[i] = found == bytes.end() ? std::uint8_t{0} : found->second;
    }
  }
  void Write(const void* buffer, std::int64_t address, std::int64_t length) override {
    ++writes;
    if (fails) {
      throw RUNTIME_EXCEPTION("the port fails");
    }
    for (std::int64_t i = 0; i < length; ++i) {
      bytes[address + i] = static_cast<const std::uint8_t*>(buffer)[i];
    }
  }
  void put(std::int64_t address, std::initializer_list<int> values) {
    for (const int value : values) {
      bytes[address++] = static_cast<std::uint8_t>(value);
    }
  }
};

/// A whole description around nodes.
inline std::string describe(const std::string& nodes) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<RegisterDescription ModelName=\"Model\" VendorName=\"Vendor\" "
         "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"2\" "
         "MinorVersion=\"3\" "
         "SubMinorVersion=\"4\" ProductGuid=\"p\" VersionGuid=\"v\">\n" +
         nodes + "<Port Name=\"Device\"/></RegisterDescription>";
}

/// One register node with the elements that are always the same.
inline std::string reg(const std::string& kind, const std::string& name, const std::string& address,
                       const std::string& rest = {}, const std::string& length = "4",
                       const std::string& access = "RW") {
  return "<" + kind + " Name=\"" + name + "\">" + address + "<Length>" + length + "</Length><AccessMode>" + access +
         "</AccessMode><pPort>Device</pPort>" + rest + "</" + kind + ">";
}
inline std::string at(int address) {
  return "<Address>" + std::to_string(address) + "</Address>";
}

class TestMap {
 public:
  explicit TestMap(const std::string& nodes, bool connect = true) : TestMap(RawText{describe(nodes)}, connect) {}

  struct RawText {
    std::string text;
  };
  explicit TestMap(const RawText& raw, bool connect = true) {
    GenApi::CNodeMapFactory factory(GenApi::ContentType_Xml, raw.text.data(), raw.text.size(),
                                    GenApi::CacheUsage_Ignore);
    map_ = factory.CreateNodeMap();
    if (connect) {
      map_->Connect(&port);
    }
  }
  TestMap(const TestMap&) = delete;
  TestMap& operator=(const TestMap&) = delete;
  ~TestMap() { dynamic_cast<GenApi::IDestroy*>(map_)->Destroy(); }

  GenApi::INodeMap& operator*() const { return *map_; }
  GenApi::INodeMap* operator->() const { return map_; }
  GenApi::INode& node(const char* name) const {
    GenApi::INode* const found = map_->GetNode(name);
    if (found == nullptr) {
      throw std::runtime_error(std::string("no node ") + name);
    }
    return *found;
  }
  template<class T>
  T& get(const char* name) const {
    return dynamic_cast<T&>(node(name));
  }
  GenApi::IInteger& integer(const char* name) const { return get<GenApi::IInteger>(name); }
  GenApi::IFloat& number(const char* name) const { return get<GenApi::IFloat>(name); }
  GenApi::EAccessMode mode(const char* name) const { return node(name).GetAccessMode(); }
  std::string text(const char* name) const { return get<GenApi::IValue>(name).ToString().c_str(); }
  std::vector<GenApiEngine::DescriptionWarning> warnings() const { return GenApiEngine::diagnosticsOf(*map_).warnings; }

  MemoryPort port;

 private:
  GenApi::INodeMap* map_ = nullptr;
};

/// Names of the nodes in a list.
template<class List>
std::vector<std::string> namesOf(const List& list) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < list.size(); ++i) {
    names.emplace_back(dynamic_cast<GenApi::INode&>(*list.at(i)).GetName().c_str());
  }
  return names;
}

/// Expects an exception of a type whose description contains a text.
template<class E, class F>
void expectThrow(F&& work, const std::string& text) {
  try {
    work();
    ADD_FAILURE() << "nothing was thrown, expected: " << text;
  } catch (const E& error) {
    EXPECT_THAT(error.GetDescription(), testing::HasSubstr(text)) << error.what();
  } catch (const GenICam::GenericException& error) {
    ADD_FAILURE() << "another exception: " << error.what();
  }
}
