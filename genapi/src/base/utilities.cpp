// Environment variables, URLs, folders and files.
#include <algorithm>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Base/GCUtilities.h"
#include "GenICamVersion.h"
#include "platform/environment_variable.h"

namespace GENICAM_NAMESPACE {
namespace {

namespace fs = std::filesystem;

std::string_view view(const gcstring& text) {
  return {text.c_str(), text.length()};
}
gcstring toGc(std::string_view text) {
  return {text.data(), text.size()};
}

// A folder that the application sets or the environment names.
class Setting {
 public:
  explicit Setting(const char* variable) : variable_(variable) {}

  gcstring get() const {
    {
      const std::lock_guard lock(mutex_);
      if (value_)
        return *value_;
    }
    return GetValueOfEnvironmentVariable(variable_);
  }
  void set(const gcstring& value) {
    const std::lock_guard lock(mutex_);
    value_ = value;
  }

 private:
  const char* variable_;
  mutable std::mutex mutex_;
  std::optional<gcstring> value_;
};

Setting& cacheFolder() {
  static Setting setting(GENICAM_CACHE_VERSION);
  return setting;
}
Setting& logConfig() {
  static Setting setting(GENICAM_LOG_CONFIG_VERSION);
  return setting;
}
Setting& clProtocolFolder() {
  static Setting setting(GENICAM_CLPROTOCOL);
  return setting;
}

void replaceAll(std::string& text, std::string_view what, std::string_view by) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  if (c >= 'A' && c <= 'F')
    return c - 'A' + 10;
  return -1;
}

// '*' stands for any text, '?' for any character.
bool matches(std::string_view pattern, std::string_view name) {
  size_t p = 0;
  size_t n = 0;
  size_t star = std::string_view::npos;
  size_t resume = 0;
  while (n < name.size()) {
    if (p < pattern.size() && (pattern[p] == '?' || (pattern[p] == name[n] && pattern[p] != '*'))) {
      ++p;
      ++n;
    } else if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = n;
    } else if (star != std::string_view::npos) {
      p = star + 1;
      n = ++resume;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

bool DoesEnvironmentVariableExist(const gcstring& VariableName) {
  return GenApiEngine::environmentVariable(VariableName.c_str()).has_value();
}

gcstring GetValueOfEnvironmentVariable(const gcstring& VariableName) {
  gcstring value;
  if (!GetValueOfEnvironmentVariable(VariableName, value))
    throw RUNTIME_EXCEPTION("Environment variable '%s' is not set", VariableName.c_str());
  return value;
}

bool GetValueOfEnvironmentVariable(const gcstring& VariableName, gcstring& VariableContent) {
  const std::optional<std::string> value = GenApiEngine::environmentVariable(VariableName.c_str());
  if (value)
    VariableContent = toGc(*value);
  return value.has_value();
}

gcstring UrlEncode(const gcstring& Input) {
  constexpr std::string_view kSafe = "-_.!~*'()/:@&=+$,;?";
  constexpr char kHex[] = "0123456789ABCDEF";
  std::string result;
  for (const char c : view(Input)) {
    const auto byte = static_cast<unsigned char>(c);
    const bool alphanumeric = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (c == '\\')
      result += '/';
    else if (alphanumeric || kSafe.find(c) != std::string_view::npos)
      result += c;
    else
      result += {'%', kHex[byte >> 4U], kHex[byte & 0xFU]};
  }
  return toGc(result);
}

gcstring UrlDecode(const gcstring& Input) {
  const std::string_view text = view(Input);
  std::string result;
  for (size_t i = 0; i < text.size(); ++i) {
    const int high = text[i] == '%' && i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
    const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
    if (low >= 0) {
      result += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      result += text[i];
    }
  }
  return toGc(result);
}

void ReplaceEnvironmentVariables(gcstring& Buffer, bool ReplaceBlankBy20) {
  constexpr std::string_view kOpen = "$(";
  const std::string_view text = view(Buffer);
  std::string result;
  size_t done = 0;
  for (size_t open = text.find(kOpen); open != std::string_view::npos; open = text.find(kOpen, done)) {
    const size_t close = text.find(')', open);
    if (close == std::string_view::npos)
      break;
    result += text.substr(done, open - done);
    const size_t name = open + kOpen.size();
    result += view(GetValueOfEnvironmentVariable(toGc(text.substr(name, close - name))));
    done = close + 1;
  }
  result += text.substr(done);
  if (ReplaceBlankBy20)
    replaceAll(result, " ", "%20");
  Buffer = toGc(result);
}

gcstring GetGenICamCacheFolder() {
  return cacheFolder().get();
}
void SetGenICamCacheFolder(const gcstring& path) {
  cacheFolder().set(path);
}
gcstring GetGenICamLogConfig() {
  return logConfig().get();
}
void SetGenICamLogConfig(const gcstring& path) {
  logConfig().set(path);
}
gcstring GetGenICamCLProtocolFolder() {
  return clProtocolFolder().get();
}
void SetGenICamCLProtocolFolder(const gcstring& path) {
  clProtocolFolder().set(path);
}

void Tokenize(const gcstring& str, gcstring_vector& tokens, const gcstring& delimiters) {
  for (size_t begin = str.find_first_not_of(delimiters); begin != gcstring::npos;) {
    const size_t end = std::min(str.find_first_of(delimiters, begin), str.length());
    tokens.push_back(str.substr(begin, end - begin));
    begin = str.find_first_not_of(delimiters, end);
  }
}

void GetFiles(const gcstring& FileTemplate, gcstring_vector& FileNames, const bool DirectoriesOnly) {
  gcstring expanded = FileTemplate;
  ReplaceEnvironmentVariables(expanded);
  const fs::path wanted(expanded.c_str());
  const fs::path folder = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
  const std::string pattern = wanted.filename().string();
  std::vector<std::string> found;
  std::error_code failure;
  for (fs::directory_iterator entry(folder, failure), end; !failure && entry != end; entry.increment(failure)) {
    std::error_code unknown;
    if (matches(pattern, entry->path().filename().string()) && entry->is_directory(unknown) == DirectoriesOnly)
      found.push_back(entry->path().string());
  }
  std::ranges::sort(found);
  for (const std::string& name : found)
    FileNames.push_back(toGc(name));
}

}  // namespace GENICAM_NAMESPACE
