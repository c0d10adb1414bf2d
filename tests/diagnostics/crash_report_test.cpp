// What a crash leaves behind: a report that an engineer can read, and an exit that the system sees.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Outcome {
  int exitStatus = 0;
  std::vector<fs::path> reports;
  std::string content;  // of the first report
};

Outcome crash(const std::string& mode, const fs::path& folder) {
  const std::string command = "\"" + std::string(CRASH_PROGRAM) + "\" " + mode + " " + folder.string();
  Outcome outcome;
  outcome.exitStatus = std::system(command.c_str());
  if (!fs::exists(folder))
    return outcome;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder))
    outcome.reports.push_back(entry.path());
  if (!outcome.reports.empty()) {
    std::ifstream stream(outcome.reports.front(), std::ios::binary);
    outcome.content.assign(std::istreambuf_iterator<char>(stream), {});
  }
  return outcome;
}

fs::path emptyFolder(const std::string& name) {
  fs::remove_all(name);
  fs::create_directories(name);
  return name;
}

#ifdef _WIN32

std::uint32_t wordAt(const std::string& text, std::size_t offset) {
  std::uint32_t value = 0;
  if (offset + sizeof(value) <= text.size())
    std::memcpy(&value, text.data() + offset, sizeof(value));
  return value;
}

TEST(CrashReport, IsAMiniDumpWithTheExceptionOfTheCrashingThread) {
  for (const std::string mode : {"null", "thread"}) {
    SCOPED_TRACE(mode);
    const Outcome outcome = crash(mode, emptyFolder("dump-" + mode));
    EXPECT_EQ(outcome.exitStatus, 0);
    ASSERT_EQ(outcome.reports.size(), 1U);
    EXPECT_EQ(outcome.reports.front().filename().string().rfind("crash_program.exe.", 0), 0U);
    EXPECT_EQ(outcome.content.substr(0, 4), "MDMP");
    constexpr std::uint32_t kExceptionStream = 6;
    constexpr std::uint32_t kAccessViolation = 0xC0000005;
    const std::uint32_t count = wordAt(outcome.content, 8);
    const std::uint32_t directory = wordAt(outcome.content, 12);
    std::uint32_t code = 0;
    for (std::uint32_t i = 0; i < count; ++i)
      if (wordAt(outcome.content, directory + 12 * i) == kExceptionStream)
        code = wordAt(outcome.content, wordAt(outcome.content, directory + 12 * i + 8) + 8);
    EXPECT_EQ(code, kAccessViolation);
  }
}

#else

TEST(CrashReport, NamesWhatCrashedAndLetsTheSystemEndTheProcess) {
  struct Case {
    const char* mode;
    int signal;
    std::vector<const char*> words;
  };
  const std::vector<Case> cases = {
      {"null", 11, {"SIGSEGV", "address: 0x10\n", "crashHere", "main", "libc.so"}},
      {"call", 11, {"SIGSEGV", "#0 0x10 ??\n", "#1 ", "callNowhere", "main"}},
      {"thread", 11, {"SIGSEGV", "crashHere"}},
      {"threads", 11, {"SIGSEGV", "crashHere", "ld-linux"}},  // All of it, the last module too.
      {"abort", 6, {"SIGABRT", "address: none", "main"}},
      {"throw", 6, {"SIGABRT", "nobody catches this", "main"}},
  };
  for (const Case& current : cases) {
    SCOPED_TRACE(current.mode);
    const Outcome outcome = crash(current.mode, emptyFolder(std::string("report-") + current.mode));
    // The shell between us reports a signal as 128 plus its number, or dies of it itself.
    EXPECT_TRUE(outcome.exitStatus == (128 + current.signal) << 8 || (outcome.exitStatus & 0x7F) == current.signal)
        << outcome.exitStatus;
    ASSERT_EQ(outcome.reports.size(), 1U);
    EXPECT_EQ(outcome.reports.front().filename().string().rfind("crash_program.", 0), 0U);
    EXPECT_EQ(outcome.reports.front().extension(), ".dmp");
    for (const char* word : current.words)
      EXPECT_NE(outcome.content.find(word), std::string::npos) << word << " is missing in\n" << outcome.content;
  }
}

TEST(CrashReport, TellsTheUserWhereItIsOrWhyThereIsNone) {
  const struct {
    const char* folder;
    const char* limits;
    const char* words[2];
  } cases[] = {
      {"told",
       "",
       {"There was an unexpected error:\n\n\nPlease send the following dump file to support@kestrova.example together "
        "with a short description of the error case:\n\nFilename: told/crash_program.",
        ".dmp\n"}},
      {"told/gone", "", {"Failed to create dump file 'told/gone/crash_program.", ".dmp' (error 2)\n"}},
      // As on a full disk.
      {"told",
       "trap '' XFSZ; ulimit -f 0;",
       {"Failed to save dump file to 'told/crash_program.", ".dmp' (error 27)\n"}},
  };
  emptyFolder("told");
  for (const auto& test : cases) {
    SCOPED_TRACE(test.words[0]);
    // The limit is not for the messages.
    const std::string command = std::string("( ") + test.limits + " exec \"" + CRASH_PROGRAM + "\" null " +
                                test.folder + " tell ) 2>&1 | cat >messages";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream stream("messages", std::ios::binary);
    const std::string messages{std::istreambuf_iterator<char>(stream), {}};
    const std::size_t begin = messages.find(test.words[0]);
    ASSERT_NE(begin, std::string::npos) << messages;
    EXPECT_NE(messages.find(test.words[1], begin), std::string::npos) << messages;
  }
}

#endif

TEST(CrashReport, ThatCannotBeWrittenStillEndsTheProcess) {
  const Outcome outcome = crash("null", "no-such-folder");
  EXPECT_TRUE(outcome.reports.empty());
  EXPECT_FALSE(fs::exists("no-such-folder"));
#ifndef _WIN32
  EXPECT_NE(outcome.exitStatus, 0);
#endif
}

}  // namespace
