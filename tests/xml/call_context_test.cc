// EncodingFlags, ZqXMLContextInfo and the start-up of the XML library.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/internal/xml_serializer_access.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_start_up.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <string>
#include <thread>
#include <type_traits>
#include <vector>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/RuntimeException.hpp>
#include <xercesc/util/XMLExceptMsgs.hpp>

#include "tests/support/log_capture.h"
#include "tests/support/settings.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* kValidation = "EventManager/nDisableXMLValidation";

/// The validation setting, with its questions counted.
class ValidationSetting : public TestSettings {
 public:
  explicit ValidationSetting(const char* value) : TestSettings({{kValidation, value}}) { count(kValidation); }
};

/// A start-up of the tests' own, over a library that starts or refuses to.
struct TestStartUp {
  static inline std::atomic<int> starts = 0;
  static inline bool refuse = false;

  TestStartUp() {
    starts = 0;
    refuse = false;
    xercesc::XMLPlatformUtils::Initialize();  // what a refusal's exception needs; counted by the library
  }
  static void start() {
    ++starts;
    if (refuse)
      throw xercesc::RuntimeException(__FILE__, __LINE__, xercesc::XMLExcepts::Gen_UnexpectedEOF,
                                      xercesc::XMLPlatformUtils::fgMemoryManager);
  }

  std::atomic<bool> started = false;
  XmlStartUp startUp{started, &start};
};

TEST(CallContext, ParameterOfEmptyOrUnknownNameIsNull) {
  ZqXMLContextInfo context;
  int value = 1;
  context.addParam("", &value);
  context.addParam("known", &value);
  EXPECT_EQ(context.getParam(""), nullptr);
  EXPECT_EQ(context.getParam("unknown"), nullptr);
  EXPECT_EQ(context.getParam("known"), &value);
}

TEST(CallContext, TwoErrorsLeaveTwoEntriesAndBothDetails) {
  ZqXMLContextInfo context;
  context.setError(7, "first");
  context.setError(7, "second");
  EXPECT_THAT(context.getErrorCodes(), ElementsAre(7, 7));
  EXPECT_EQ(context.getErrorDetails(), "first\nsecond\n");
}

TEST(CallContext, SecondInitializeNeitherReadsTheSettingNorStartsTheLibraryAgain) {
  const ValidationSetting setting("0");
  TestStartUp test;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_EQ(setting.lookUps(), 1);
  EXPECT_EQ(TestStartUp::starts, 1);

  // The process's own start-up, whichever call came first.
  ASSERT_EQ(XMLSerializerAccess::initialize(), XN_MSG_OK);
  const int before = setting.lookUps();
  EXPECT_EQ(XMLSerializerAccess::initialize(), XN_MSG_OK);
  EXPECT_EQ(setting.lookUps(), before);
}

TEST(CallContext, FlagsHaveTheirDefaultsAndWidths) {
  const EncodingFlags flags;
  EXPECT_TRUE(flags.reserved0);
  EXPECT_FALSE(flags.useElements);
  EXPECT_FALSE(flags.readable);
  EXPECT_EQ(flags.passwordEncType, 0);
  EXPECT_EQ(flags.reserved1, 0);
  EXPECT_EQ(flags.reserved2, -1);
  EXPECT_FALSE(flags.reserved3);
  EXPECT_FALSE(flags.keepPasswordEncType);
  EXPECT_TRUE(flags.reserved4);
  EXPECT_FALSE(flags.enumAsText);
  EXPECT_EQ(flags.encoding_options, 0u);
  static_assert(std::is_same_v<decltype(flags.passwordEncType), std::int32_t>);
  static_assert(std::is_same_v<decltype(flags.reserved1), std::int32_t>);
  static_assert(std::is_same_v<decltype(flags.reserved2), std::int32_t>);
  static_assert(std::is_same_v<decltype(flags.encoding_options), std::uint64_t>);
  static_assert(MASK_PASSWORDS == 1 && MASK_SENSITIVE == 2);
  static_assert(std::is_trivially_copyable_v<EncodingFlags>);
}

TEST(CallContext, NewContextIsEmpty) {
  const ZqXMLContextInfo context;
  EXPECT_FALSE(context.isErrorSet());
  EXPECT_THAT(context.getErrorCodes(), IsEmpty());
  EXPECT_EQ(context.getErrorDetails(), "");
  EXPECT_FALSE(context.getValidate());
  EXPECT_EQ(context.getPasswordEncType(), 0);
  EXPECT_EQ(context.getEncodingFlags().reserved2, -1);
}

TEST(CallContext, SetErrorRaisesTheFlag) {
  ZqXMLContextInfo context;
  context.setError(0, "");
  EXPECT_TRUE(context.isErrorSet());
  EXPECT_EQ(context.getErrorDetails(), "\n");
}

TEST(CallContext, AddParamKeepsTheFirstValueOfAName) {
  ZqXMLContextInfo context;
  int first = 1;
  int second = 2;
  context.addParam("name", &first);
  context.addParam("name", &second);
  EXPECT_EQ(context.getParam("name"), &first);
}

TEST(CallContext, PasswordTypeAndValidateAreStored) {
  ZqXMLContextInfo context;
  context.setPasswordEncType(6);
  context.setValidate(true);
  EXPECT_EQ(context.getPasswordEncType(), 6);
  EXPECT_EQ(context.getEncodingFlags().passwordEncType, 6);
  EXPECT_TRUE(context.getValidate());
}

TEST(XmlStartUp, SettingOtherThanZeroDisablesValidationAndIsLogged) {
  const ValidationSetting setting("2");
  LogCapture log;
  TestStartUp test;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_TRUE(test.startUp.validationDisabled());
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  "XMLSerializer::initialize", 0,
                  "Disabling XML Validation as [EventManager]/[nDisableXMLValidation] is set to [2]"}));
}

TEST(XmlStartUp, SettingOfZeroOrNoneLeavesValidationAlone) {
  {
    const ValidationSetting zero("0");
    LogCapture log;
    TestStartUp test;
    EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
    EXPECT_FALSE(test.startUp.validationDisabled());
    EXPECT_TRUE(log.empty());
  }
  const TestSettings none;
  TestStartUp test;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_FALSE(test.startUp.validationDisabled());
}

TEST(XmlStartUp, FastRoadsAreOpenUntilTheSettingClosesThem) {
  const auto open = [](const char* value) {
    const TestSettings settings{{"EventManager/XMLMessage_DISABLEFASTXML", value}};
    LogCapture log;
    TestStartUp test;
    EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
    EXPECT_TRUE(log.empty());
    return test.startUp.fastXml();
  };
  EXPECT_TRUE(open("0"));
  EXPECT_TRUE(open("no number"));
  EXPECT_FALSE(open("1"));
  const TestSettings none;
  TestStartUp test;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_TRUE(test.startUp.fastXml());
}

TEST(XmlStartUp, FailureIsALibraryErrorAndTheNextCallTriesAgain) {
  const ValidationSetting setting("1");
  LogCapture log;
  TestStartUp test;
  TestStartUp::refuse = true;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_FALSE(test.started);
  EXPECT_TRUE(log.hasPart("XMLSerializer::initialize", 0, "Error initializing Xerces library. Error : ["));

  TestStartUp::refuse = false;
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_TRUE(test.started);
  EXPECT_EQ(TestStartUp::starts, 2);
  EXPECT_EQ(setting.lookUps(), 1);
  EXPECT_TRUE(test.startUp.validationDisabled());
}

TEST(XmlStartUp, LibraryAloneDoesNotLookAtTheSetting) {
  const ValidationSetting setting("1");
  LogCapture log;
  TestStartUp test;
  EXPECT_TRUE(test.startUp.startLibrary("initialize"));
  EXPECT_EQ(setting.lookUps(), 0);
  EXPECT_FALSE(test.started);

  // The codec's start-up afterwards reads it and finds the library running.
  EXPECT_EQ(test.startUp.startCodec(), XN_MSG_OK);
  EXPECT_EQ(setting.lookUps(), 1);
  EXPECT_EQ(TestStartUp::starts, 1);
}

TEST(XmlStartUp, FailureOfTheLibraryAloneIsLoggedUnderInitialize) {
  LogCapture log;
  TestStartUp test;
  TestStartUp::refuse = true;
  EXPECT_FALSE(test.startUp.startLibrary("initialize"));
  EXPECT_TRUE(log.hasPart("initialize", 0, "Error initializing Xerces library. Error : ["));
  EXPECT_THAT(log.lines(), SizeIs(1));
}

TEST(XmlStartUp, ConcurrentCallsStartTheLibraryOnce) {
  const ValidationSetting setting("0");
  TestStartUp test;
  std::atomic<int> succeeded = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i)
    threads.emplace_back([&] { succeeded += test.startUp.startCodec() == XN_MSG_OK ? 1 : 0; });
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(succeeded, 8);
  EXPECT_EQ(TestStartUp::starts, 1);
  EXPECT_EQ(setting.lookUps(), 1);
}

TEST(XmlStartUp, FailureReachesEveryDoor) {
  TestStartUp test;
  TestStartUp::refuse = true;
  XmlStartUp::replacement = &test.startUp;
  LogCapture log;
  XNMessageBase msg;
  std::string text = "before";
  std::u16string wide = u"before";
  EXPECT_EQ(XNMessageBase::Initialize(), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(XMLSerializationSupport::initialize(), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(msg.serialize(text), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_FALSE(initialize());
  XmlStartUp::replacement = nullptr;
  EXPECT_EQ(text, "before");
  EXPECT_EQ(wide, u"before");
  EXPECT_THAT(log.lines(), SizeIs(5));
}

TEST(XmlStartUp, FailureReachesEveryReader) {
  TestStartUp test;
  TestStartUp::refuse = true;
  XNMessageBase msg;
  std::string text = "<a/>";
  std::u16string wide = u"<a/>";
  std::string tag = "before";
  unsigned tagId = 5;
  std::string bytes = "before";
  LogCapture log;
  XmlStartUp::replacement = &test.startUp;
  EXPECT_EQ(XMLSerializer().unserialize(msg, text, false), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_EQ(XMLSerializer().unserialize(text, false), nullptr);
  EXPECT_EQ(XMLSerializer().unserialize(msg, wide.c_str(), false, false), XN_MSG_XML_LIBRARY_ERROR);
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(text, tag, tagId));
  EXPECT_FALSE(XMLSerializer::GetTagAndTagIDFromXML(wide, tag, tagId));
  EXPECT_FALSE(base64DecodeXmlCh(u"YWJj", bytes));
  XmlStartUp::replacement = nullptr;
  EXPECT_EQ(tag, "before");
  EXPECT_EQ(tagId, 5u);
  EXPECT_EQ(bytes, "before");
  constexpr const char* kText = "Error initializing xerces library";
  EXPECT_EQ(log.count("XMLSerializer::parserHelper", 0, kText), 2u);
  EXPECT_EQ(log.count("XMLSerializer::parserHelperWideChar", 0, kText), 1u);
  EXPECT_EQ(log.count("XMLSerializer::GetTagAndTagIDFromXML", 0, kText), 2u);
}

TEST(XmlStartUp, EveryDoorStartsTheProcessesLibrary) {
  EXPECT_EQ(XNMessageBase::Initialize(), XN_MSG_OK);
  EXPECT_TRUE(XMLSerializer::isXercesInitialized);
  EXPECT_EQ(XMLSerializationSupport::initialize(), XN_MSG_OK);
  EXPECT_TRUE(initialize());
  EXPECT_FALSE(XmlStartUp::process().validationDisabled());
  EXPECT_EQ(XMLDecoder::initialize(), 0);
}

}  // namespace
}  // namespace zqxml
