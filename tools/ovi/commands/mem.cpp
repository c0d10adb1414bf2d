// ovi mem: the memory of a camera, byte by byte.
#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "commands.h"
#include "hex.h"
#include "module_view.h"
#include "paths.h"
#include "picture.h"
#include "terminal.h"
#include "text.h"
#include "tool_error.h"

namespace tool {

namespace {

struct MemoryOptions {
  std::string address;
  std::string length = "4";
  std::vector<std::string> bytes;
  std::string output;
};

constexpr std::uint64_t kChunk = 512;
constexpr std::uint64_t kMaxLength = std::uint64_t{256} << 20U;

std::uint64_t numberOrFail(const Session& session, const std::string& text, const char* what,
                           const std::string& example) {
  if (const std::optional<std::uint64_t> number = numberFrom(text))
    return *number;
  throw ToolError("\"" + text + "\" is no " + what + ": decimal digits, or hexadecimal ones after 0x",
                  session.command(example), ExitCode::kUsage);
}

// The library gives the bytes of a big-endian camera in reverse; here they are wanted as they lie in the camera.
bool bytesAreReversed(const ovi::Device& device) {
  bool littleEndian = true;
  ovi::check(oviIsModuleLittleEndian(device.handle(), OVI_MODULE_REMOTE_DEVICE, &littleEndian),
             "oviIsModuleLittleEndian");
  return !littleEndian;
}

[[noreturn]] void fail(Session& session, const std::string& what, const ovi::Error& error) {
  const std::vector<std::string> messages = session.takeMessages();
  throw ToolError(
      what + " failed: " + error.code().message() + (messages.empty() ? std::string() : " (" + messages.back() + ")"),
      "does the camera have memory there? Addresses and lengths are often multiples of 4");
}

void read(Session& session, const MemoryOptions& options) {
  const std::uint64_t address = numberOrFail(session, options.address, "address", "mem read 0x0 16");
  const std::uint64_t length = numberOrFail(session, options.length, "length", "mem read " + options.address + " 16");
  if (length == 0 || length > kMaxLength)
    throw ToolError("the length " + options.length + " is out of range: 1 .. " + std::to_string(kMaxLength),
                    session.command("mem read " + options.address + " 16"), ExitCode::kUsage);
  const ovi::Device device = session.open({}, Use::kRead);
  const bool reversed = bytesAreReversed(device);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
  for (std::uint64_t done = 0; done < length && !interrupted(); done += kChunk) {
    const std::uint64_t part = std::min(kChunk, length - done);
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(done);
    try {
      device.readMemory(address + done, &*first, part);
    } catch (const ovi::Error& error) {
      fail(session, "reading " + std::to_string(part) + " bytes at " + hexNumber(address + done), error);
    }
    if (reversed)
      std::reverse(first, first + static_cast<std::ptrdiff_t>(part));
  }
  throwIfInterrupted();
  if (!options.output.empty()) {
    writeRaw(bytes, pathFromText(options.output));
    if (session.options().json)
      printJson(nlohmann::ordered_json{{"address", address}, {"length", length}, {"file", options.output}});
    else
      printNote("wrote " + std::to_string(bytes.size()) + " bytes to " + options.output);
    return;
  }
  if (session.options().json) {
    nlohmann::ordered_json json;
    json["address"] = address;
    json["length"] = length;
    json["bytes"] = hexFromBytes(bytes);
    printJson(json);
    return;
  }
  constexpr std::size_t kPerLine = 16;
  for (std::size_t at = 0; at < bytes.size(); at += kPerLine) {
    std::string line = hexNumber(address + at, 8) + "  ";
    std::string text;
    for (std::size_t i = 0; i < kPerLine; ++i) {
      const bool there = at + i < bytes.size();
      line += there ? hexFromBytes({&bytes[at + i], 1}) + " " : "   ";
      if (there)
        text += bytes[at + i] >= 0x20 && bytes[at + i] < 0x7F ? static_cast<char>(bytes[at + i]) : '.';
    }
    printData(line + " " + text);
  }
}

void write(Session& session, const MemoryOptions& options) {
  const std::uint64_t address = numberOrFail(session, options.address, "address", "mem write 0x0 01020304");
  std::optional<std::vector<std::uint8_t>> bytes = bytesFromHex(join(options.bytes, " "));
  if (!bytes || bytes->empty())
    throw ToolError("\"" + join(options.bytes, " ") + "\" is no row of bytes: two hexadecimal digits for each byte",
                    session.command("mem write " + options.address + " 01020304"), ExitCode::kUsage);
  const ovi::Device device = session.open();
  if (bytesAreReversed(device))
    std::reverse(bytes->begin(), bytes->end());
  try {
    device.writeMemory(address, bytes->data(), bytes->size());
  } catch (const ovi::Error& error) {
    fail(session, "writing " + std::to_string(bytes->size()) + " bytes at " + hexNumber(address), error);
  }
  if (session.options().json)
    printJson(nlohmann::ordered_json{{"address", address}, {"length", bytes->size()}});
  else
    printNote("wrote " + std::to_string(bytes->size()) + " bytes at " + hexNumber(address));
}

}  // namespace

void addMem(CLI::App& app, CommonOptions& common, Action& action) {
  CLI::App* command = app.add_subcommand("mem", "Read and write the memory of a camera");
  command->require_subcommand(1);
  command->footer(
      "Examples:\n  ovi mem read 0x10830 64\n  ovi mem read 0x10830 0x400 --output dump.bin\n"
      "  ovi mem write 0x10834 10000000");
  auto options = std::make_shared<MemoryOptions>();

  CLI::App* readCommand = command->add_subcommand("read", "Print bytes as they lie in the camera");
  readCommand->add_option("ADDRESS", options->address, "Decimal, or hexadecimal after 0x")->required();
  readCommand->add_option("LENGTH", options->length, "Bytes; 4 when not given");
  readCommand->add_option("-o,--output", options->output, "File to write the bytes to")->type_name("FILE");
  addCameraOption(*readCommand, common);
  readCommand->footer("Examples:\n  ovi mem read 0x10830 64\n  ovi mem read 0x10830 0x400 --output dump.bin");
  readCommand->callback([=, &action] { action = [=](Session& session) { read(session, *options); }; });

  CLI::App* writeCommand = command->add_subcommand("write", "Write bytes as they are to lie in the camera");
  writeCommand->add_option("ADDRESS", options->address, "Decimal, or hexadecimal after 0x")->required();
  writeCommand->add_option("BYTES", options->bytes, "Two hexadecimal digits for each byte")->required();
  addCameraOption(*writeCommand, common);
  writeCommand->footer("Examples:\n  ovi mem write 0x10834 10000000\n  ovi mem write 0x1000 de ad be ef");
  writeCommand->callback([=, &action] { action = [=](Session& session) { write(session, *options); }; });
}

}  // namespace tool
