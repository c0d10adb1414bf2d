// The log as an application meets it. The logger is made once per process, so the cases build on one another.
#include <gtest/gtest.h>

#include <filesystem>
#include <locale>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "core/global_state.h"
#include "core/lifecycle.h"
#include "core/log.h"
#include "core/log_setup.h"

namespace OVI {
namespace {

/** A line with a mark for each digit of its time, and one for each number behind it. */
std::string shapeOf(const std::string& line) {
  constexpr std::size_t kTimeLength = 23;
  std::string shape;
  for (const char c : line) {
    const bool isDigit = c >= '0' && c <= '9';
    if (!isDigit)
      shape += c;
    else if (shape.size() < kTimeLength || shape.back() != '#')
      shape += '#';
  }
  return shape;
}

using Messages = std::vector<std::pair<std::uint32_t, std::string>>;

void collect(std::uint32_t level, const char* message, void* userData) {
  static_cast<Messages*>(userData)->emplace_back(level, message);
}

/** Groups digits, as an application's locale may. */
template<class Char>
class Grouping : public std::numpunct<Char> {
 protected:
  Char do_thousands_sep() const override { return Char{'.'}; }
  std::string do_grouping() const override { return "\3"; }
};

int evaluations = 0;
int evaluated() {
  return ++evaluations;
}

TEST(Logging, LevelsOfTheInterface) {
  const std::vector<std::pair<std::uint32_t, Severity>> levels = {
      {0, Severity::None},     {1, Severity::Error},    {2, Severity::Warning},
      {3, Severity::Warning},  {4, Severity::Info},     {8, Severity::Debug},
      {16, Severity::Verbose}, {17, Severity::Warning}, {0xFFFFFFFF, Severity::Warning}};
  for (const auto& [level, severity] : levels) {
    EXPECT_EQ(severityFromLevel(level), severity) << level;
  }
  EXPECT_EQ(levelFromSeverity(Severity::Fatal), 1U);
  EXPECT_EQ(levelFromSeverity(static_cast<Severity>(99)), 2U);
}

TEST(Logging, FromTheFirstInitToARepeatedOne) {
  OVI_LOG_ERROR("OVI::early") << evaluated();
  EXPECT_EQ(evaluations, 0) << "without a logger a site builds nothing";

  Messages messages;
  ASSERT_EQ(oviInit(8, &collect, &messages), OVI_SUCCESS);
  EXPECT_EQ(messages,
            (Messages{{8, "=== Kestrova GenTL consumer library initialization ==="}, {8, "Version: 0.15.4 Rev: 0"}}));
  messages.clear();
  EXPECT_EQ(oviInit(16, nullptr, nullptr), OVI_SUCCESS);
  OVI_LOG_VERBOSE("OVI::test") << evaluated();
  EXPECT_EQ(evaluations, 0) << "the level of a second call is ignored";
  EXPECT_TRUE(messages.empty());

  const std::locale before =
      std::locale::global(std::locale(std::locale(std::locale::classic(), new Grouping<char>), new Grouping<wchar_t>));
  testing::internal::CaptureStdout();
  OVI_LOG_ERROR("OVI::test") << "Numbers: " << 1234567 << " " << std::uint64_t{18446744073709551615U} << " "
                             << static_cast<const char*>(nullptr);
  std::locale::global(before);
  EXPECT_EQ(shapeOf(testing::internal::GetCapturedStdout()),
            "####-##-## ##:##:##.### ERROR [#] [OVI::test@#] Numbers: # # (null)\n");
  oviSetIgnoreSubnetEnabled(1);
  EXPECT_EQ(messages,
            (Messages{{1, "Numbers: 1234567 18446744073709551615 (null)"}, {4, "Ignore subnet is now: Enabled"}}));
  EXPECT_TRUE(GlobalState::instance().ignoreSubnetEnabled());

  // After the end and a new start the callback is attached twice; without a callback the old one stays.
  messages.clear();
  setInitialized(false);
  ASSERT_EQ(oviInit(0, &collect, &messages), OVI_SUCCESS);
  EXPECT_EQ(messages.size(), 4U);
  setInitialized(false);
  messages.clear();
  ASSERT_EQ(oviInit(0, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(messages.size(), 4U);
  EXPECT_TRUE(std::filesystem::is_empty(".")) << "no log file";
}

TEST(Logging, ACallbackMayCallTheLibraryAndThrow) {
  struct Calls {
    static void log(std::uint32_t /*level*/, const char* message, void* userData) {
      static_cast<Messages*>(userData)->emplace_back(0, message);
      oviSetFeatureCachingDisabled(1);
      OVI_LOG_ERROR("OVI::nested") << "from inside";
      throw std::string("whatever");
    }
  };
  Messages messages;
  attachCallback(&Calls::log, &messages);
  OVI_LOG_ERROR("OVI::test") << "outer";
  std::thread([] { OVI_LOG_ERROR("OVI::test") << "other thread"; }).join();
  attachCallback(nullptr, nullptr);
  OVI_LOG_ERROR("OVI::test") << "nobody hears this";
  for (const auto& [level, message] : messages) {
    EXPECT_TRUE(message == "outer" || message == "other thread") << message;
  }
  EXPECT_FALSE(messages.empty());
}

}  // namespace
}  // namespace OVI
