// The description behind a module's port.
#include "check/port_description.h"

#include <charconv>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

#include "check/info.h"
#include "platform/file_url.h"
#include "text.h"

namespace tool::check {

namespace {

std::vector<std::string> urlsOf(Checker& check, PORT_HANDLE port) {
  const ProducerFunctions& gentl = check.gentl();
  if (!gentl.GCGetNumPortURLs.exists() || !gentl.GCGetPortURLInfo.exists())
    return {
        askText("GCGetPortURL", [&](char* text, std::size_t* size) { return gentl.GCGetPortURL(port, text, size); })};
  std::uint32_t count = 0;
  check.need(gentl.GCGetNumPortURLs, port, &count);
  if (count == 0)
    throw Broken("GCGetNumPortURLs tells no description");
  std::vector<std::string> urls;
  for (std::uint32_t i = 0; i < count; ++i) {
    const Info url =
        ask([&](std::int32_t command, INFO_DATATYPE* type, void* buffer,
                std::size_t* size) { return gentl.GCGetPortURLInfo(port, i, command, type, buffer, size); },
            URL_INFO_URL);
    if (!url.exists())
      throw Broken("GCGetPortURLInfo(URL_INFO_URL) returned " + codeText(url.code));
    urls.push_back(url.text());
  }
  return urls;
}

std::optional<std::uint64_t> hexFrom(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X"))
    text.remove_prefix(2);
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, 16);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// What an address of the form local:NAME;ADDRESS;LENGTH means.
std::string readLocal(Checker& check, PORT_HANDLE port, const std::string& url) {
  const std::string plain = url.substr(0, url.find('?'));
  const std::size_t first = plain.find(';');
  const std::size_t second = first == std::string::npos ? first : plain.find(';', first + 1);
  if (second == std::string::npos)
    throw Broken("the description's address \"" + url + "\" is not of the form local:NAME;ADDRESS;LENGTH");
  const std::optional<std::uint64_t> address = hexFrom(std::string_view(plain).substr(first + 1));
  const std::optional<std::uint64_t> length = hexFrom(std::string_view(plain).substr(second + 1));
  constexpr std::uint64_t kLongest = 256U << 20U;
  if (!address || !length || *length == 0 || *length > kLongest)
    throw Broken("the description's address \"" + url + "\" tells no address and length that can be");
  std::string content(static_cast<std::size_t>(*length), '\0');
  std::size_t moved = content.size();
  check.need(check.gentl().GCReadPort, port, *address, static_cast<void*>(content.data()), &moved);
  if (moved != content.size())
    throw Broken("GCReadPort moved " + std::to_string(moved) + " of the description's " +
                 std::to_string(content.size()) + " bytes and reported success");
  return content;
}

std::string readFile(const std::string& url) {
  std::ifstream stream(pathOfUrl(url), std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(stream), {}};
  if (content.empty())
    throw Broken("the file of the description, \"" + url + "\", cannot be read");
  return content;
}

}  // namespace

std::string descriptionOf(Checker& check, PORT_HANDLE port) {
  const std::vector<std::string> urls = urlsOf(check, port);
  std::string reason =
      "the description is neither in the module itself (local:) nor in a file (file:): " + join(urls, ", ");
  for (const std::string& url : urls) {
    try {
      if (equalsIgnoringCase(url.substr(0, 6), "local:"))
        return readLocal(check, port, url);
      if (equalsIgnoringCase(url.substr(0, 6), "file:/"))
        return readFile(url);
    } catch (const Broken& broken) {
      reason = broken.what();
    }
  }
  throw Broken(reason);
}

}  // namespace tool::check
