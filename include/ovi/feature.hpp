/// @file
/// One feature of a module in C++: reading, writing, what is known about it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "ovi/ovi.h"
#include "ovi/result.hpp"

namespace ovi {

/// Which module's features are meant.
enum class Module : std::uint32_t {
  kSystem = OVI_MODULE_SYSTEM,
  kInterface = OVI_MODULE_INTERFACE,
  kRemoteDevice = OVI_MODULE_REMOTE_DEVICE,
  kLocalDevice = OVI_MODULE_LOCAL_DEVICE,
  kDataStream = OVI_MODULE_DATA_STREAM,
  kBuffer = OVI_MODULE_BUFFER
};

/// Everything about one feature.
using FeatureParameter = oviFeatureParameter;

/// One feature by its name: a reference that costs nothing until it is used. Outlives neither its module nor the
/// library. `device["Width"].get<std::int64_t>()` reads it, `device["Width"].set(640)` writes it.
class Feature {
 public:
  /// The feature of that name of a module that is found from the handle.
  Feature(std::uint64_t handle, Module module, std::string name)
      : handle_(handle),
        module_(module),
        name_(std::move(name)) {}

  /// Its name.
  const std::string& name() const noexcept { return name_; }

  /// The value as the type that its kind of feature has: bool, an integer, a floating-point number, std::string (of
  /// enumerations too), or std::vector<std::uint8_t> of a register.
  template<class T>
  T get() const {
    if constexpr (std::is_same_v<T, bool>)
      return asBool();
    else if constexpr (std::is_integral_v<T>)
      return static_cast<T>(asInt());
    else if constexpr (std::is_floating_point_v<T>)
      return static_cast<T>(asFloat());
    else if constexpr (std::is_same_v<T, std::string>)
      return asString();
    else
      return T(asRegister());
  }
  /// An integer's value.
  std::int64_t asInt() const {
    std::int64_t value = 0;
    check(oviGetFeatureInt(handle_, name_.c_str(), &value, selector()), "oviGetFeatureInt", name_);
    return value;
  }
  /// A float's value.
  double asFloat() const {
    double value = 0;
    check(oviGetFeatureFloat(handle_, name_.c_str(), &value, selector()), "oviGetFeatureFloat", name_);
    return value;
  }
  /// A boolean's value.
  bool asBool() const {
    bool value = false;
    check(oviGetFeatureBool(handle_, name_.c_str(), &value, selector()), "oviGetFeatureBool", name_);
    return value;
  }
  /// A string's value, or the name of an enumeration's current entry.
  std::string asString() const {
    std::size_t size = 0;
    check(oviGetFeatureString(handle_, name_.c_str(), nullptr, &size, selector()), "oviGetFeatureString", name_);
    std::string value(size, '\0');
    check(oviGetFeatureString(handle_, name_.c_str(), value.data(), &size, selector()), "oviGetFeatureString", name_);
    value.resize(std::char_traits<char>::length(value.c_str()));
    return value;
  }
  /// The value of any kind of feature as text.
  std::string text() const {
    char value[512] = {};
    check(oviGetFeatureOnModule(handle_, name_.c_str(), value, selector()), "oviGetFeatureOnModule", name_);
    return value;
  }
  /// A register's bytes.
  std::vector<std::uint8_t> asRegister() const {
    std::int64_t length = 0;
    check(oviGetFeatureReg(handle_, name_.c_str(), nullptr, &length, selector()), "oviGetFeatureReg", name_);
    std::vector<std::uint8_t> value(static_cast<std::size_t>(length < 0 ? 0 : length));
    if (!value.empty())
      check(oviGetFeatureReg(handle_, name_.c_str(), value.data(), &length, selector()), "oviGetFeatureReg", name_);
    return value;
  }

  /// Writes a boolean, an integer or a float, as the argument is a bool, an integer or a floating-point number.
  template<class T, std::enable_if_t<std::is_arithmetic_v<T>, int> = 0>
  void set(T value) const {
    if constexpr (std::is_same_v<T, bool>)
      check(oviSetFeatureBool(handle_, name_.c_str(), value, selector()), "oviSetFeatureBool", name_);
    else if constexpr (std::is_integral_v<T>)
      check(oviSetFeatureInt(handle_, name_.c_str(), static_cast<std::int64_t>(value), selector()), "oviSetFeatureInt",
            name_);
    else
      check(oviSetFeatureFloat(handle_, name_.c_str(), static_cast<double>(value), selector()), "oviSetFeatureFloat",
            name_);
  }
  /// A string's value, or the name of an enumeration's entry.
  void set(const std::string& value) const {
    check(oviSetFeatureString(handle_, name_.c_str(), value.c_str(), selector()), "oviSetFeatureString", name_);
  }
  /// The same.
  void set(std::string_view value) const { set(std::string(value)); }
  /// The same.
  void set(const char* value) const { set(std::string(value)); }
  /// A register's bytes.
  void set(const std::vector<std::uint8_t>& value) const {
    check(oviSetFeatureReg(handle_, name_.c_str(), value.data(), static_cast<std::int64_t>(value.size()), selector()),
          "oviSetFeatureReg", name_);
  }

  /// Any kind of feature from text.
  void setText(const std::string& value) const {
    check(oviSetFeatureOnModule(handle_, name_.c_str(), value.c_str(), selector()), "oviSetFeatureOnModule", name_);
  }

  /// Executes a command; does not wait until it is done.
  void execute() const { check(oviExecuteCommand(handle_, name_.c_str(), selector()), "oviExecuteCommand", name_); }
  /// Whether a command is still being executed.
  bool isActive() const {
    bool active = false;
    check(oviIsCommandActive(handle_, name_.c_str(), &active, selector()), "oviIsCommandActive", name_);
    return active;
  }

  /// Kind, access, value, limits, texts.
  FeatureParameter parameter() const {
    FeatureParameter record{};
    check(oviGetFeatureParameter(handle_, name_.c_str(), &record, selector()), "oviGetFeatureParameter", name_);
    return record;
  }
  /// What may be done with it now: OVI_ACCESS_...
  std::uint32_t accessMode() const {
    std::uint32_t mode = 0;
    check(oviGetFeatureAccessMode(handle_, name_.c_str(), &mode, selector()), "oviGetFeatureAccessMode", name_);
    return mode;
  }
  /// Whether the module has a feature of that name.
  bool exists() const {
    FeatureParameter record{};
    return oviGetFeatureParameter(handle_, name_.c_str(), &record, selector()) != OVI_ERR_NOT_FOUND;
  }
  /// The available entries of an enumeration.
  std::vector<FeatureParameter> entries() const {
    std::uint32_t count = 0;
    check(oviGetFeatureEnumEntryCount(handle_, name_.c_str(), &count, selector()), "oviGetFeatureEnumEntryCount",
          name_);
    std::vector<FeatureParameter> list;
    for (std::uint32_t i = 0; i < count; ++i) {
      FeatureParameter record{};
      if (oviGetFeatureEnumEntryByIndex(handle_, name_.c_str(), static_cast<std::int32_t>(i), &record, selector()) ==
          OVI_SUCCESS)
        list.push_back(record);
    }
    return list;
  }
  /// The current entry of an enumeration.
  FeatureParameter entry() const {
    FeatureParameter record{};
    check(oviGetFeatureEnum(handle_, name_.c_str(), &record, selector()), "oviGetFeatureEnum", name_);
    return record;
  }
  /// The entry of that name of an enumeration.
  FeatureParameter entry(const std::string& entryName) const {
    FeatureParameter record{};
    check(oviGetFeatureEnumEntryByName(handle_, name_.c_str(), entryName.c_str(), &record, selector()),
          "oviGetFeatureEnumEntryByName", name_);
    return record;
  }
  /// The features below a category or behind a selector.
  std::vector<std::string> children() const {
    std::vector<std::string> names;
    char name[512] = {};
    std::uint32_t type = 0;
    for (std::uint32_t i = 0;
         oviIterateFeatureTree(handle_, name_.c_str(), i, name, sizeof(name), &type, selector()) == OVI_SUCCESS; ++i)
      names.emplace_back(name);
    return names;
  }

 private:
  std::uint32_t selector() const noexcept { return static_cast<std::uint32_t>(module_); }

  std::uint64_t handle_;
  Module module_;
  std::string name_;
};

}  // namespace ovi
