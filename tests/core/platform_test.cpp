// What the library asks of the system.
#include "platform/platform.h"

#include <gtest/gtest.h>
#ifndef _WIN32
#include <sys/stat.h>
#endif

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <fstream>
#include <string>
#include <utility>

#include "platform/ascii.h"

namespace OVI::platform {
namespace {

TEST(Platform, FileUrlsBecomePaths) {
  const char* const kLocal = pathSeparator() == '/' ? "/c:/c.xml" : "c:/c.xml";
  const std::array<std::pair<const char*, const char*>, 8> cases = {{{"file:///opt/a%20b/c.xml", "/opt/a b/c.xml"},
                                                                     {"FILE:/opt/c.xml", "/opt/c.xml"},
                                                                     {"File://localhost/c:/c.xml", kLocal},
                                                                     {"file://elsewhere/c.xml", ""},
                                                                     {"file:///c.xml?SchemaVersion=1.1.0", "/c.xml"},
                                                                     {"file:///100%.xml", "/100%.xml"},
                                                                     {"http://host/c.xml", ""},
                                                                     {"", ""}}};
  for (const auto& [url, path] : cases) {
    std::string slashes = urlToPath(url);
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    EXPECT_EQ(slashes, path) << url;
  }
}

TEST(Platform, LettersOfNamesDoNotFollowTheLocale) {
  std::setlocale(LC_CTYPE, "tr_TR.UTF-8");  // Where "i" and "I" are different letters, if the machine knows it.
  EXPECT_EQ(upperCase("file:/x.zip\xFC"), "FILE:/X.ZIP\xFC");
  EXPECT_EQ(urlToPath("FILE:/x"), urlToPath("file:/x"));
  std::setlocale(LC_CTYPE, "C");
  EXPECT_TRUE(equalsIgnoringCase("GammaLut", "gAMMAlUT"));
  EXPECT_FALSE(equalsIgnoringCase("Lut", "Lut1"));
  EXPECT_FALSE(equalsIgnoringCase("[", "{"));
}

TEST(Platform, FilesAreReadWholeOrNotAtAll) {
  const std::string content("a\0b\r\n\xFF", 6);
  std::ofstream("read.bin", std::ios::binary) << content;
  EXPECT_EQ(readFile("read.bin"), content);
  EXPECT_EQ(readFile("read.bin", 6), content);
  EXPECT_EQ(readFile("read.bin", 5), std::nullopt);
  EXPECT_EQ(readFile("missing.bin"), std::nullopt);
  std::remove("read.bin");
#ifndef _WIN32
  ASSERT_EQ(mkfifo("read.pipe", 0600), 0);
  EXPECT_EQ(readFile("read.pipe"), std::nullopt) << "without waiting for somebody to write into it";
  std::remove("read.pipe");
#endif
}

TEST(Platform, CommandsAreRunAndTheirOutputIsRead) {
  const auto output = runAndRead("echo", "(it's a query).Of False");
  ASSERT_TRUE(output);
  EXPECT_EQ(output->substr(0, 23), "(it's a query).Of False");
  EXPECT_EQ(runAndRead("a-command-that-does-not-exist", "False").value_or("").find("False"), std::string::npos);
}

TEST(Platform, ALibraryThatCannotBeLoadedSaysWhy) {
  EXPECT_EQ(loadLibrary("./no such library.cti"), nullptr);
  EXPECT_FALSE(lastErrorText().empty());
}

TEST(Platform, WideTextIsNarrowed) {
  EXPECT_EQ(narrow(std::wstring(L"abc")), "abc");
  EXPECT_EQ(toUtf8(narrow(std::wstring(L"\u00FC"))), "\xC3\xBC");
}

}  // namespace
}  // namespace OVI::platform
