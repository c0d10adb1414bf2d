// Codes, texts and sizes at their edges.
#include "core/result.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "core/bounded_copy.h"
#include "core/lifecycle.h"

namespace OVI {
namespace {

TEST(Result, GenTLCodesAreMappedAndOthersPassThrough) {
  const std::array expected = {-200, -100, -116, -115, -112, -117, -105, -104, -105, -118, -108,
                               -109, -114, -106, -105, -113, -105, -119, -120, -121, -122, -123};
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(mapGenTLError(-1001 - static_cast<std::int32_t>(i)), expected[i]) << i;
  }
  EXPECT_EQ(mapGenTLError(-10000), static_cast<std::int32_t>(0xF1000000));
  for (const std::int32_t code : {0, 1, -5, -1000, -1023, -9999, -10001, -251659240}) {
    EXPECT_EQ(mapGenTLError(code), code);
  }
}

TEST(Result, DescriptionsZeroTheWholeBufferAndAreCut) {
  std::array<char, 12> text;
  text.fill('x');
  EXPECT_EQ(oviGetErrorDescription(-111, text.data(), 8), OVI_SUCCESS);
  EXPECT_EQ(std::string(text.data(), text.size()), std::string("FileOpe\0xxxx", 12));
  text.fill('x');
  EXPECT_EQ(oviGetErrorDescription(0, text.data(), text.size()), OVI_SUCCESS);
  EXPECT_EQ(std::string(text.data(), text.size()), std::string("Success\0\0\0\0\0", 12));

  using Describe = oviErr (*)(std::int32_t, char*, std::uint64_t);
  for (const Describe describe :
       {&oviGetErrorDescription, &oviGetKitharaErrDescription, &oviGetEuresysErrDescription}) {
    EXPECT_EQ(describe(0, nullptr, 10), OVI_ERR_INVALID_PARAMETER);
    EXPECT_EQ(describe(0, text.data(), 0), OVI_ERR_INVALID_PARAMETER);
  }
}

TEST(Result, TheTwoTextTablesDiffer) {
  struct Case {
    std::int32_t code;
    const char* name;
    std::int32_t sentenceResult;
    const char* sentence;
  };
  const std::array cases = {
      Case{0, "Success", -200, "NOK: Undefined Error"},
      Case{-114, "ErrorNumber not yet defined", 0, "NOK: Buffer is not valid"},
      Case{-200, "Unknown", -200, "NOK: Undefined Error"},
      Case{-251658240, "ErrorNumber not yet defined", 0, "NOK: Custom Error"},
      Case{-118, "ErrorNumber not yet defined", 0, "NOK: IO-Error"},
      Case{-113, "WrongBufferSize", 0, "NOK: Wrong buffer size"},
      Case{7, "ErrorNumber not yet defined", -200, "NOK: Undefined Error"},
  };
  for (const Case& c : cases) {
    std::array<char, 300> text{};
    EXPECT_EQ(oviGetErrorDescription(c.code, text.data(), text.size()), OVI_SUCCESS);
    EXPECT_STREQ(text.data(), c.name);
    EXPECT_EQ(get_error_string(c.code, text.data()), c.sentenceResult);
    EXPECT_STREQ(text.data(), c.sentence);
  }
  EXPECT_EQ(get_error_string(-108, nullptr), -1);
  EXPECT_EQ(describeResult(-108), "Code: [-108] - Error description: Timeout");

  std::array<char, 64> text{};
  oviGetKitharaErrDescription(-251659241, text.data(), text.size());
  EXPECT_STREQ(text.data(), "No Kithara CPUs");
  oviGetKitharaErrDescription(-251659240, text.data(), text.size());
  EXPECT_STREQ(text.data(), "Hyper-v not disabled");
  oviGetEuresysErrDescription(-251659240, text.data(), text.size());
  EXPECT_STREQ(text.data(), "ErrorNumber not yet defined");
}

TEST(Result, RecordSizesAreKnownByTheirExactNames) {
  const std::array<std::pair<const char*, std::int32_t>, 14> sizes = {{{"oviFeatureParameter", 2696},
                                                                       {"oviMemTransferInfo", 40},
                                                                       {"oviTLProducerInfos", 2568},
                                                                       {"oviDeviceInfo", 7200},
                                                                       {"oviDiscoveryInfo", 115224},
                                                                       {"oviDataStreamInfo", 1028},
                                                                       {"oviImageInfo", 20},
                                                                       {"oviEventData", 64},
                                                                       {"oviNewBufferEventData", 128},
                                                                       {"oviAcquistionStatistics", 40},
                                                                       {"oviAcquisitionStatistics", -1},
                                                                       {"ovideviceinfo", -1},
                                                                       {"", -1},
                                                                       {nullptr, -1}}};
  for (const auto& [name, size] : sizes) {
    EXPECT_EQ(get_struct_size(name), size);
    std::uint32_t written = 0;
    EXPECT_EQ(oviGetStructSize(name, &written), size == -1 ? -1 : 0);
    EXPECT_EQ(written, static_cast<std::uint32_t>(size));
  }
  EXPECT_EQ(oviGetStructSize("oviImageInfo", nullptr), -1);
}

TEST(Result, VersionSkipsNullPointers) {
  std::uint32_t minor = 0;
  EXPECT_EQ(oviGetLibraryVersion(nullptr, &minor, nullptr, nullptr), OVI_SUCCESS);
  EXPECT_EQ(minor, 15U);
}

TEST(BoundedText, StopsAtTheNulOrAtTheEnd) {
  EXPECT_EQ(boundedText("ab\0cd", 5), "ab");
  EXPECT_EQ(boundedText("abcde", 3), "abc");
  std::array<char, 4> to = {'x', 'x', 'x', 'x'};
  boundedCopy(to.data(), 0, "abc");
  EXPECT_EQ(to[0], 'x');
  boundedCopy(to.data(), 3, "abc");
  EXPECT_EQ(std::string(to.data(), 4), std::string("ab\0x", 4));
}

}  // namespace
}  // namespace OVI
