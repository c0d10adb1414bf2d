// The registers of a module and the description that matches them, both made from one list of features.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "camera/camera.h"

namespace vcam {

class ModuleFeatures {
 public:
  struct Naming {
    std::string model;     // "VirtualCameraSystem"
    std::string portName;  // "TLPort"
    std::string toolTip;
  };

  // How a feature is presented.
  struct About {
    std::string_view name;
    std::string_view toolTip;
    std::string_view visibility = "Beginner";
    std::string_view unit = {};
  };

  using Number = std::function<std::uint64_t()>;
  using SetNumber = std::function<void(std::uint64_t)>;
  using Text = std::function<std::string()>;
  using Entries = std::vector<std::pair<std::string_view, std::uint64_t>>;

  struct Range {
    std::uint64_t minimum = 0;
    Number maximum;  // asked for each time
  };

  explicit ModuleFeatures(Naming naming);

  // Features go to the category that was opened last.
  void category(std::string_view name, std::string_view toolTip);
  void text(const About& about, Text get);
  void integer(const About& about, Number get, SetNumber set = nullptr);
  void integer(const About& about, Number get, SetNumber set, Range range);
  void boolean(const About& about, Number get, SetNumber set = nullptr);
  void enumeration(const About& about, const Entries& entries, Number get, SetNumber set = nullptr);
  void command(const About& about, std::function<void()> execute);
  // A block of bytes at an address of its own.
  void block(const About& about, Number length, std::function<void(std::size_t, void*, std::size_t)> get);
  // The last added features named belong to this selector, which must come before them.
  void select(std::string_view selector, std::initializer_list<std::string_view> features);

  // Events, once all are known: selector, notification and a port with its data for each. `data` are 64-bit numbers.
  struct ModuleEvent {
    std::string_view name;
    std::uint64_t id;
    std::string_view toolTip;
    std::vector<std::string_view> data;
  };
  void events(const std::vector<ModuleEvent>& list);
  // Whether the event's notification is on, as it is in the beginning.
  bool notifies(std::uint64_t id);

  // Ends the list: writes the description.
  void finish();

  const DescriptionInfo& description() const { return description_; }
  void read(std::uint64_t address, void* data, std::size_t size);
  void write(std::uint64_t address, const void* data, std::size_t size);

 private:
  struct Register {
    std::size_t size = 0;
    Number get;
    SetNumber set;
    Text text;
  };
  struct Category {
    std::string name;
    std::string toolTip;
    std::vector<std::string> members;
  };

  std::uint64_t place(std::size_t size, Register registers);
  void number(std::string_view name, Number get, SetNumber set);
  void open(std::string_view element, const About& about);
  void close(std::string_view element) { body_ += "</" + std::string(element) + ">\n"; }
  void element(std::string_view name, std::string_view value);

  Naming naming_;
  std::map<std::uint64_t, Register> registers_;
  std::uint64_t nextAddress_;
  Number blockLength_;
  std::function<void(std::size_t, void*, std::size_t)> blockGet_;

  std::string body_;
  std::vector<Category> categories_;
  std::map<std::string, std::vector<std::string>, std::less<>> selected_;
  std::string xml_;
  DescriptionInfo description_;

  std::mutex eventMutex_;
  std::vector<ModuleEvent> events_;
  std::vector<bool> notifying_;
  std::size_t selectedEvent_ = 0;
};

}  // namespace vcam
