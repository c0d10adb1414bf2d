// Loading of producers, good and bad, and the exceptions that their answers become.
#include <log4cpp/Category.hh>

#include <array>
#include <fstream>
#include <set>
#include <vector>

#include "Log/LogSink.h"
#include "binding_fixture.h"
#include "gentl/producer_family.h"

namespace binding {
namespace {

using namespace GenTLCpp;

TEST(Loading, WhatIsNoLibraryIsRefusedWithTheSystemsWords) {
  const std::string whole = OVI::platform::readFile(producerPath("NoProducer.cti")).value_or("");
  ASSERT_FALSE(whole.empty());
  std::vector<std::string> contents = {"not a library"};
  for (const std::size_t size : {std::size_t{0}, std::size_t{20}, std::size_t{64}, std::size_t{1000}, whole.size() / 2})
    contents.push_back(whole.substr(0, size));  // A copy that broke off.
  for (std::size_t i = 0; i <= contents.size(); ++i) {
    SCOPED_TRACE(i);
    const std::string path = i < contents.size() ? "./broken.cti" : "./missing.cti";
    if (i < contents.size())
      std::ofstream(path, std::ios::binary) << contents[i];
    try {
      GenTLProducer::create(path);
      FAIL();
    } catch (const LoadLibraryException& error) {
      const std::string text = error.what();
      EXPECT_EQ(error.code(), -10001);
      EXPECT_EQ(text.find("Failed to load CTI file; "), 0U) << text;
      EXPECT_GT(text.size(), std::string("Failed to load CTI file;  (ID: -10001)").size());
      EXPECT_EQ(text.substr(text.size() - 13), " (ID: -10001)");
    }
  }
  std::remove("broken.cti");
}

TEST(Loading, ALibraryWithoutEntryPointsIsNotAvailable) {
  static std::vector<std::string> warnings;
  warnings.clear();
  static_cast<void>(thrownBy([] { GenTLProducer::create(producerPath("NoProducer.cti")); }));
  GenICam::SetLogSink([](void*, const char* category, int priority,
                         const char* text) { warnings.push_back(category + std::to_string(priority) + text); },
                      nullptr);
  EXPECT_EQ(thrownBy<NotAvailableException>([] { GenTLProducer::create(producerPath("NoProducer.cti")); }),
            "Resource or information is not available. (Message from the source: ) (ID: -1014)");
  GenICam::SetLogSink(nullptr, nullptr);
  EXPECT_EQ(warnings,
            (std::vector<std::string>{"TLProxy400GCGetInfo not exported.", "TLProxy400GCGetLastError not exported.",
                                      "TLProxy400GCInitLib not exported.", "TLProxy400GCCloseLib not exported."}));
}

TEST(Loading, MissingEntryPointsAnswerInsteadOfCrashing) {
  // This one also needs a library that only its own folder holds.
  const auto producer = GenTLProducer::create(producerPath("PartialProducer.cti"));
  const auto transportLayer = producer->openTransportLayer();
  EXPECT_EQ(producer->getLastErrorText(), "");
  EXPECT_THROW(producer->getName(), NotAvailableException);
  EXPECT_THROW(transportLayer->updateInterfaceList(1), NotAvailableException);
  EXPECT_THROW(transportLayer->getInterfaceInfos(), NotAvailableException);
  EXPECT_THROW(transportLayer->registerEvent(EVENT_MODULE), NotAvailableException);
  EXPECT_THROW(transportLayer->getFeatureList(), NotAvailableException);
  EXPECT_EQ(transportLayer->close(), GC_ERR_NOT_AVAILABLE);
}

TEST(Families, AreToldByTheFileName) {
  EXPECT_TRUE(OVI::isS2iProducer("/opt/gevtls2i.cti"));
  EXPECT_TRUE(OVI::isS2iProducer("C:\\opt\\gevtls2i.cti"));
  for (const char* path : {"/opt/GEVTLS2I.cti", "/opt/xgevtls2i.cti", "/gevtls2i.cti/other.cti", ""}) {
    EXPECT_FALSE(OVI::isS2iProducer(path)) << path;
  }
  EXPECT_TRUE(OVI::isKitharaProducer("/opt/a_lsgentlgevkithara_64.cti"));
  EXPECT_FALSE(OVI::isKitharaProducer("/lsgentlgevkithara/a.cti"));
  EXPECT_TRUE(OVI::isNimboProducer("my_nimbo_producer.cti.bak"));
  EXPECT_FALSE(OVI::isNimboProducer("nimbo_producer.CTI"));
}

class ProducerTest : public BindingTest {};

TEST_F(ProducerTest, EveryStatusOfTheStandardHasItsException) {
  transportLayer_ = producer_->openTransportLayer();
  std::set<std::string> texts;
  for (GC_ERROR code = -1001; code >= -1022; --code) {
    script_->answers["TLUpdateInterfaceList"] = code;
    try {
      transportLayer_->updateInterfaceList(1);
      FAIL() << code;
    } catch (const GenTLException& error) {
      EXPECT_EQ(error.code(), code);
      const std::string text = error.what();
      const std::string tail = " (Message from the source: the producer's words) (ID: " + std::to_string(code) + ")";
      ASSERT_GT(text.size(), tail.size());
      EXPECT_EQ(text.substr(text.size() - tail.size()), tail);
      texts.insert(text.substr(0, text.size() - tail.size()));
    }
  }
  EXPECT_EQ(texts.size(), 22U);
  script_->answers["TLUpdateInterfaceList"] = GC_ERR_TIMEOUT;
  EXPECT_THROW(transportLayer_->updateInterfaceList(1), TimeoutException);
  script_->answers["TLUpdateInterfaceList"] = GC_ERR_INVALID_BUFFER;
  EXPECT_EQ(thrownBy<InvalidBufferException>([&] {
              transportLayer_->updateInterfaceList(1);
            }).find("Insufficient amount of announced buffers to start acquisition. (Message"),
            0U);
}

TEST_F(ProducerTest, OtherStatusesPassButAskForTheErrorText) {
  transportLayer_ = producer_->openTransportLayer();
  for (const GC_ERROR code : {0, 1, -1, -1000, -1023, -10000, -10005}) {
    script_->answers["TLUpdateInterfaceList"] = code;
    forgetCalls();
    EXPECT_TRUE(transportLayer_->updateInterfaceList(1)) << "any byte but 0 means true";
    EXPECT_EQ(callsOf("GCGetLastError"), code == 0 ? 0 : 1) << code;
  }
}

TEST_F(ProducerTest, ErrorTextsComeFromTheProducerConstructedLast) {
  transportLayer_ = producer_->openTransportLayer();
  script_->answers["TLUpdateInterfaceList"] = GC_ERR_BUSY;
  const auto failure = [&] { return thrownBy([&] { transportLayer_->updateInterfaceList(1); }); };
  auto second = GenTLProducer::create(producerPath("BindingProducer.cti"));
  EXPECT_EQ(second->id(), producer_->id() + 1);
  EXPECT_NE(failure().find("the producer's words"), std::string::npos);
  second.reset();
  EXPECT_NE(failure().find("(Message from the source: ) (ID: -1022)"), std::string::npos);
}

TEST_F(ProducerTest, FailingInitialisationThrowsWithoutTheProducersWords) {
  script_->answers["GCInitLib"] = GC_ERR_RESOURCE_IN_USE;
  EXPECT_EQ(thrownBy([] { GenTLProducer::create(producerPath("BindingProducer.cti")); }),
            "Requested resource is already in use. (Message from the source: ) (ID: -1004)");
  EXPECT_EQ(callsOf("GCCloseLib"), 0);
  script_->answers.clear();
}

TEST_F(ProducerTest, TextsWithoutNulEndWithTheirBuffer) {
  script_->unterminated = true;
  EXPECT_EQ(producer_->getName(), std::string(1024, 'u'));
  EXPECT_EQ(producer_->getLastErrorText(), std::string(1024, 'u'));
  transportLayer_ = producer_->openTransportLayer();
  EXPECT_EQ(transportLayer_->getPort(false)->getPortName(), std::string(2056, 'u'));
  script_->counter = 2;
  EXPECT_EQ(transportLayer_->getInterfaceIDs(), std::vector<std::string>(2, std::string(1024, 'u')));
  script_->unterminated = false;
}

TEST_F(ProducerTest, ClosesOnceAndStaysLoadedWhileInUse) {
  transportLayer_ = producer_->openTransportLayer();
  producer_->close();
  producer_->close();
  EXPECT_TRUE(producer_->isClosed());
  EXPECT_EQ(callsOf("GCCloseLib"), 1);
  EXPECT_EQ(thrownBy<ClosedException>([&] { transportLayer_->getInterfaceIDs(); }),
            "The parent GenTL Producer object has been closed. Cannot access anything the TransportLayer object "
            "provides us. (ID: -10002)");
  std::weak_ptr<GenTLProducer> watched = producer_;
  producer_.reset();
  EXPECT_FALSE(watched.expired());
  transportLayer_.reset();
  EXPECT_TRUE(watched.expired());
  EXPECT_EQ(callsOf("TLClose"), 0) << "the producer was closed before";
  EXPECT_EQ(callsOf("GCCloseLib"), 1);
}

}  // namespace
}  // namespace binding
