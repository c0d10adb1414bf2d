// Strings, exceptions, enumerations, environment variables and log categories as programs around GenICam use them.
#include <GenICam.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

#include "GenApi/EnumClasses.h"
#include "Log/CLog.h"
#include "Log/LogSink.h"
#include "log4cpp/Category.hh"

#if defined(_WIN32)
#include <windows.h>
#undef ERROR  // A priority of the log has that name.
#endif

namespace {

using GenICam::gcstring;
using GenICam::gcstring_vector;
using testing::ElementsAre;
using testing::HasSubstr;

// As a program without the C library's help does it, whose copy of the environment does not see it on Windows.
void setVariable(const char* name, const char* value) {
#if defined(_WIN32)
  SetEnvironmentVariableA(name, value);
#else
  setenv(name, value, 1);
#endif
}

template<class E, class Throw>
std::string whatOf(Throw&& thrower) {
  try {
    thrower();
  } catch (const E& caught) {
    return caught.what();
  } catch (...) {
    return "another exception";
  }
  return "no exception";
}

TEST(Exceptions, SayWhatWhereAndWhile) {
  const GenICam::AccessException atNode("Node is not writable.", "/path/of\\CommandT.h", 61,
                                        "AcquisitionStart.Execute()", "AcquisitionStart", "AccessException");
  EXPECT_STREQ(atNode.what(),
               "Node is not writable. : AccessException thrown in node 'AcquisitionStart' while calling "
               "'AcquisitionStart.Execute()' (file 'CommandT.h', line 61)");
  EXPECT_STREQ(atNode.GetDescription(), "Node is not writable.");
  EXPECT_STREQ(atNode.GetSourceFileName(), "CommandT.h");
  EXPECT_EQ(atNode.GetSourceLine(), 61U);

  const GenICam::RuntimeException plain("broken", "a.cpp", 7, "RuntimeException");
  EXPECT_STREQ(plain.what(), "broken : RuntimeException thrown (file 'a.cpp', line 7)");
  const GenICam::GenericException bare(nullptr, nullptr, 0);
  EXPECT_STREQ(bare.what(), " : GenericException thrown (file '', line 0)");
}

TEST(Exceptions, AreMadeByTheirMacros) {
  EXPECT_THAT(whatOf<GenICam::TimeoutException>([] { throw TIMEOUT_EXCEPTION("%d of %s", 3, "four"); }),
              HasSubstr("3 of four : TimeoutException thrown (file 'base_test.cpp', line "));
  EXPECT_THAT(whatOf<GenICam::PropertyException>([] { throw PROPERTY_EXCEPTION(std::string("50% %s")); }),
              HasSubstr("50% %s :"));
  EXPECT_THAT(whatOf<GenICam::RuntimeException>([] { throw RUNTIME_EXCEPTION("50%% of %s"); }),
              HasSubstr("50% of %s :"));
  std::stringstream stream;
  stream << "value " << 5;
  EXPECT_THAT(whatOf<GenICam::GenericException>([&] { throw LOGICAL_ERROR_EXCEPTION(stream); }),
              HasSubstr("value 5 : Logical"));
  const std::string longText(10000, 'x');
  const std::string cut = whatOf<GenICam::AccessException>([&] { throw ACCESS_EXCEPTION("%s", longText.c_str()); });
  EXPECT_THAT(cut, HasSubstr(std::string(2047, 'x') + " : AccessException"));
}

TEST(Exceptions, ComeFromRangeChecks) {
  using GenICam::OutOfRangeException;
  EXPECT_THAT(whatOf<OutOfRangeException>([] { CHECK_RANGE_I64(1, 2, 9, 1); }),
              HasSubstr("Value = 1 must be equal or greater than Min = 2 :"));
  EXPECT_THAT(whatOf<OutOfRangeException>([] { CHECK_RANGE_I64(10, 2, 9, 1); }),
              HasSubstr("Value = 10 must be equal or smaller than Max = 9 :"));
  EXPECT_THAT(whatOf<OutOfRangeException>([] { CHECK_RANGE_I64(5, 2, 9, 2); }),
              HasSubstr("The difference between Value = 5 and Min = 2 must be dividable without rest by Inc = 2 :"));
  EXPECT_THAT(whatOf<GenICam::LogicalErrorException>([] { CHECK_RANGE_I64(5, 2, 9, 0); }),
              HasSubstr("Increment must not equal 0!"));
  EXPECT_EQ(whatOf<OutOfRangeException>([] { CHECK_RANGE_I64(GC_INT64_MAX, GC_INT64_MIN, GC_INT64_MAX, 5); }),
            "no exception");
  EXPECT_THAT(whatOf<OutOfRangeException>([] { CHECK_RANGE_FLT(1.0, 2.0, 3.0); }),
              HasSubstr("Value 1.000000 must be greater than or equal 2.000000 :"));
  EXPECT_EQ(GenICam::INTEGRAL_CAST<uint8_t>(255), 255);
  EXPECT_THAT(whatOf<GenICam::RuntimeException>([] { GenICam::INTEGRAL_CAST<uint8_t>(256); }),
              HasSubstr("INTEGRAL_CAST failed"));
  EXPECT_THAT(whatOf<GenICam::RuntimeException>([] { GenICam::INTEGRAL_CAST<uint64_t>(-1); }),
              HasSubstr("INTEGRAL_CAST failed"));
}

TEST(GcString, KeepsToItsBounds) {
  gcstring text("0123456789");
  EXPECT_STREQ(text.substr(7), "789");
  EXPECT_STREQ(text.substr(7, 2), "78");
  EXPECT_STREQ(text.substr(10), "");
  EXPECT_STREQ(text.substr(99, 1), "");
  EXPECT_EQ(text.find('5'), 5U);
  EXPECT_EQ(text.find("89", 9), gcstring::npos);
  EXPECT_EQ(text.find("45xx", 0, 2), 4U);
  EXPECT_EQ(text.find("45", 0, 99), 4U);
  EXPECT_EQ(text.find(gcstring("67")), 6U);
  EXPECT_EQ(text.find_first_of("97"), 7U);
  EXPECT_EQ(text.find_first_not_of("0123"), 4U);
  EXPECT_EQ(text.find_first_of("x"), GCSTRING_NPOS);
  EXPECT_EQ(gcstring::_npos(), gcstring::npos);

  const gcstring none(static_cast<const char*>(nullptr));
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none.find(static_cast<const char*>(nullptr)), gcstring::npos);
  EXPECT_FALSE(none == static_cast<const char*>(nullptr));
  const gcstring withNul("a\0b", 3);
  EXPECT_EQ(withNul.length(), 3U);
  EXPECT_TRUE(withNul != "a");
}

TEST(GcString, WorksLikeAString) {
  gcstring text = gcstring("a") + "b" + gcstring("c");
  text = "<" + text;
  text += '>';
  text += static_cast<const char*>(nullptr);
  EXPECT_TRUE(text == "<abc>");
  EXPECT_EQ(std::string(text), "<abc>");
  EXPECT_EQ(text.compare("<abd>"), gcstring("<abc>") < gcstring("<abd>") ? -1 : 1);
  text = 'x';
  text.append(2, 'y').append("z");
  EXPECT_STREQ(text, "xyyz");
  gcstring other("other");
  text.swap(other);
  EXPECT_STREQ(other, "xyyz");

  std::stringstream stream("one two\nline two;rest");
  gcstring word;
  stream >> word;
  EXPECT_STREQ(word, "one");
  GenICam::getline(stream, word);
  EXPECT_STREQ(word, " two");
  GenICam::getline(stream, word, ';');
  EXPECT_STREQ(word, "line two");
  std::ostringstream out;
  out << gcstring("a\0b", 3) << word;
  EXPECT_EQ(out.str(), std::string("a\0bline two", 11));
}

TEST(Vectors, CanBeEditedByIndexAndByIterator) {
  gcstring_vector list;
  list.push_back("b");
  list.insert(list.begin(), "a");
  list.insert(size_t{2}, "d");
  list.insert(size_t{2}, "c");
  EXPECT_TRUE(list.contains("c"));
  list.erase(list.begin());
  list.erase(size_t{2});
  EXPECT_FALSE(list.contains("d"));
  ASSERT_EQ(list.size(), 2U);
  EXPECT_STREQ(list.front(), "b");
  EXPECT_STREQ(list.back(), "c");
  EXPECT_THROW(static_cast<void>(list.at(2)), std::out_of_range);

  GenApi::int64_autovector_t numbers(3);
  GenApi::int64_autovector_t copy = numbers;
  copy[1] = 7;
  EXPECT_EQ(numbers[1], 7);
  EXPECT_EQ(GenApi::int64_autovector_t().size(), 0U);
}

TEST(EnumClasses, SpellAsDescriptionsDo) {
  using namespace GenApi;
  EAccessMode mode = NI;
  EXPECT_TRUE(EAccessModeClass::FromString("RW", &mode));
  EXPECT_EQ(mode, RW);
  EXPECT_FALSE(EAccessModeClass::FromString("rw", &mode));
  EXPECT_FALSE(EAccessModeClass::FromString("_UndefinedAccessMode", &mode));
  EXPECT_EQ(mode, RW);
  EXPECT_STREQ(EAccessModeClass::ToString(_CycleDetectAccesMode), "_UndefinedAccessMode");
  EXPECT_STREQ(EDisplayNotationClass::ToString(fnScientific), "Scientific");
  EXPECT_STREQ(EInputDirectionClass::ToString(idNone), "None");
  EXPECT_STREQ(EVisibilityClass::ToString(_UndefinedVisibility), "_UndefinedVisibility");
  gcstring text;
  ERepresentation representation = MACAddress;
  ERepresentationClass::ToString(text, &representation);
  EXPECT_STREQ(text, "MACAddress");
}

TEST(Utilities, ReplaceEnvironmentVariables) {
  setVariable("OVI_TEST_ONE", "first value");
  setVariable("OVI_TEST_LOOP", "$(OVI_TEST_LOOP)");
  const std::string longValue(1000, 'v');
  setVariable("OVI_TEST_LONG", longValue.c_str());
  struct Case {
    const char* text;
    const char* expected;
  };
  const std::vector<Case> cases = {
      {"plain $ ( text", "plain $ ( text"},
      {"$(OVI_TEST_ONE)", "first value"},
      {"a$(OVI_TEST_ONE)b$(OVI_TEST_ONE)", "afirst valuebfirst value"},
      {"$(OVI_TEST_LOOP)", "$(OVI_TEST_LOOP)"},
      {"$(OVI_TEST_LONG)", longValue.c_str()},
      {"open $(OVI_TEST_ONE", "open $(OVI_TEST_ONE"},
      {"", ""},
  };
  for (const Case& test : cases) {
    gcstring text = test.text;
    GenICam::ReplaceEnvironmentVariables(text);
    EXPECT_STREQ(text, test.expected);
  }
  gcstring text = "x y$(OVI_TEST_ONE)";
  GenICam::ReplaceEnvironmentVariables(text, true);
  EXPECT_STREQ(text, "x%20yfirst%20value");

  gcstring missing = "a $(OVI_TEST_NOT_SET) b";
  EXPECT_THAT(whatOf<GenICam::RuntimeException>([&] { GenICam::ReplaceEnvironmentVariables(missing); }),
              HasSubstr("OVI_TEST_NOT_SET"));
  EXPECT_STREQ(missing, "a $(OVI_TEST_NOT_SET) b");
  EXPECT_TRUE(GenICam::DoesEnvironmentVariableExist("OVI_TEST_ONE"));
  EXPECT_FALSE(GenICam::GetValueOfEnvironmentVariable("OVI_TEST_NOT_SET", missing));
}

TEST(Utilities, EncodeAndSplit) {
  EXPECT_STREQ(GenICam::UrlEncode("C:\\my file%.xml"), "C:/my%20file%25.xml");
  EXPECT_STREQ(GenICam::UrlDecode("my%20file%2"), "my file%2");
  EXPECT_STREQ(GenICam::UrlDecode("%zz%41%"), "%zzA%");
  gcstring_vector tokens;
  GenICam::Tokenize(";;a;b c;", tokens, "; ");
  EXPECT_THAT(std::vector<std::string>(tokens.begin(), tokens.end()), ElementsAre("a", "b", "c"));
  gcstring_vector none;
  GenICam::Tokenize("", none);
  EXPECT_TRUE(none.empty());
}

struct LogLines {
  std::vector<std::string> lines;
  LogLines() {
    GenICam::SetLogSink(
        [](void* context, const char* category, int priority, const char* text) {
          static_cast<LogLines*>(context)->lines.push_back(std::string(category) + ":" + std::to_string(priority) +
                                                           ":" + text);
        },
        this);
  }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;
  ~LogLines() { GenICam::SetLogSink(nullptr, nullptr); }
};

TEST(Logging, GoesFromCategoriesToTheSink) {
  log4cpp::Category& category = log4cpp::Category::getInstance("TLProxy");
  EXPECT_EQ(&category, &log4cpp::Category::getInstance("TLProxy"));
  category.warn("dropped without a sink");
  LogLines log;
  category.warn("%s not exported", "GCGetPortURL");
  category.warn(std::string("100% as it is"));
  category.debug("below the root's priority");
  category.setPriority(log4cpp::Priority::ERROR);
  category.warn("below its own priority");
  EXPECT_FALSE(category.isWarnEnabled());
  category.setPriority(log4cpp::Priority::NOTSET);
  GenICam::CLog::GetLogger("TLProxy").Log(GenICam::ILogger::ERR, "%d", 5);
  GenICam::CLog::OmitLogger().Log(GenICam::ILogger::ERR, "nothing");
  GCLOGINFO(&GenICam::CLog::GetLogger("TLProxy"), "through the macro");
  EXPECT_THAT(log.lines, ElementsAre("TLProxy:400:GCGetPortURL not exported", "TLProxy:400:100% as it is",
                                     "TLProxy:300:5", "TLProxy:600:through the macro"));
  EXPECT_TRUE(GenICam::CLog::Exist("TLProxy"));
  EXPECT_FALSE(GenICam::CLog::Exist("a name that nobody uses"));
}

}  // namespace
