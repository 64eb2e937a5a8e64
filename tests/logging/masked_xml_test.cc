// The texts of messages for a log: what they hide, and what they say of a failure.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/logging/logged_message.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <tests/support/settings.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/USDKLogin.h>
#include <zqxml/logging/masked_xml.h>
#include <zqxml/message/xn_message_base.h>

#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

using Demo::Guarded;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kSetting[] = "EventManager/nDoNotMaskSensitiveDataInXML";
constexpr char kNotAMessage[] = "Error unserializing given object.";

// --- logXML

TEST(LogXml, EmptyTextWithoutAnObjectIsEmpty) {
  LogCapture capture(25);
  EXPECT_EQ(logXML("", nullptr), "");
  EXPECT_EQ(logXML(""), "");
  EXPECT_TRUE(capture.empty());
}

TEST(LogXml, TextThatIsNoMessageIsTold) {
  const LogCapture capture;
  for (const char* text :
       {"no message", "<Demo_Guarded", "<No_Class/>", "<Demo_Guarded></Demo_Sample>", "\xff"})
    EXPECT_EQ(logXML(text, nullptr), kNotAMessage) << text;
}

TEST(LogXml, SensitiveValuesAreMasked) {
  const TestSettings settings{{kSetting, "0"}};
  LogCapture capture(1);
  EXPECT_EQ(logXML(R"(<Demo_Guarded open="x" secretText="hush" secretNumber="5"/>)", nullptr),
            guardedXml(R"(open="x" secretNumber="########" secretText="########")"));
  EXPECT_TRUE(capture.empty());
}

TEST(LogXml, SensitiveValuesAreMaskedWithoutTheSetting) {
  const TestSettings settings;
  EXPECT_EQ(logXML(R"(<Demo_Guarded secretText="hush"/>)", nullptr), guardedXml(R"(secretText="########")"));
}

TEST(LogXml, SettingShowsSensitiveValuesAndSaysSo) {
  const TestSettings settings{{kSetting, "1"}};
  LogCapture capture(1);
  EXPECT_EQ(logXML(R"(<Demo_Guarded secretText="hush"/>)", nullptr), guardedXml(R"(secretText="hush")"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"logXML", 1,
                                       "NOT masking sensitive data to XML as additional setting "
                                       "nDoNotMaskSensitiveDataInXML is set to 1i"}));
}

TEST(LogXml, KeepsTheLetterBehindTheNumberOfTheNotice) {
  const TestSettings settings{{kSetting, "25"}};
  LogCapture capture(1);
  logXML("<Demo_Guarded/>", nullptr);
  EXPECT_TRUE(capture.hasPart("logXML", 1, " is set to 25i"));
}

TEST(LogXml, NoticeIsOfTheMessageLogsLevel) {
  const TestSettings settings{{kSetting, "1"}};
  LogCapture capture(0);
  EXPECT_EQ(logXML(R"(<Demo_Guarded secretText="hush"/>)", nullptr), guardedXml(R"(secretText="hush")"));
  EXPECT_TRUE(capture.empty());
}

TEST(LogXml, AnyNumberButZeroShowsSensitiveValues) {
  Guarded message;
  message.setSecretText("hush");
  for (const auto& [value, shown] : std::vector<std::pair<std::string, std::string>>{
           {"7", "7i"}, {"-1", "4294967295i"}, {"99999999999", "2147483647i"}}) {
    const TestSettings settings{{kSetting, value}};
    LogCapture capture(1);
    EXPECT_THAT(logXML("", &message), HasSubstr("hush")) << value;
    EXPECT_TRUE(capture.hasPart("logXML", 1, " is set to " + shown)) << value;
  }
  const TestSettings settings{{kSetting, "no number"}};
  EXPECT_THAT(logXML("", &message), Not(HasSubstr("hush")));
}

TEST(LogXml, SettingIsReadAtEveryCall) {
  Guarded message;
  message.setSecretText("hush");
  for (const char* value : {"0", "1", "0"}) {
    const TestSettings settings{{kSetting, value}};
    EXPECT_EQ(logXML("", &message).find("hush") != std::string::npos, *value == '1');
  }
}

TEST(LogXml, SettingIsReadOnlyForAMessage) {
  TestSettings settings{{kSetting, "1"}};
  settings.count(kSetting);
  const LogCapture capture(1);
  logXML("", nullptr);
  logXML("no message", nullptr);
  EXPECT_EQ(settings.lookUps(), 0);
  logXML("<Demo_Guarded/>", nullptr);
  EXPECT_EQ(settings.lookUps(), 1);
}

TEST(LogXml, KeepsShowingListsAndObjectsThatAreSensitive) {
  Guarded message;
  message.mutableSecretList() = {"seen"};
  message.mutableSecretChild().setOpen("seen too");
  message.mutableSecretChild().setSecret("hush");
  const std::string text = logXML("", &message);
  EXPECT_THAT(text, HasSubstr(R"(<secretList val="seen"/>)"));
  EXPECT_THAT(text, HasSubstr(R"(<secretChild open="seen too" secret="########"/>)"));
}

TEST(LogXml, PasswordsAreWrittenAsTheEncoderDoes) {
  Guarded message;
  message.setHiddenPassword("plain");
  message.setSecretPassword("hush");
  EXPECT_EQ(logXML("", &message), guardedXml(R"(hiddenPassword="plain" secretPassword="########")"));
}

TEST(LogXml, ObjectWinsOverTheText) {
  Guarded message;
  message.setOpen("object");
  const LogCapture capture;
  EXPECT_EQ(logXML(R"(<Demo_Guarded open="text"/>)", &message), guardedXml(R"(open="object")"));
  EXPECT_EQ(logXML("no message", &message), guardedXml(R"(open="object")"));
  EXPECT_TRUE(capture.empty()) << "the text is not even read";
}

TEST(LogXml, TextOnlyChoosesTheWordsOfAFailure) {
  const LogCapture capture;
  XNMessageBase none;
  EXPECT_EQ(logXML("", &none), "Error serializing XNMessageBase object and given empty input string");
  EXPECT_EQ(logXML("text", &none), "Error reserializing given object/string");
}

TEST(LogXml, ObjectOfTheCallerIsLeftAlone) {
  Guarded message;
  message.setSecretText("hush");
  const Guarded copy(message);
  logXML("", &message);
  EXPECT_TRUE(message == copy);
  EXPECT_EQ(message.getSecretText(), "hush");
}

TEST(LogXml, ConcurrentCallsDoNotDisturbEachOther) {
  std::vector<std::string> texts(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    threads.emplace_back([&text = texts[i], i] {
      for (int k = 0; k < 20; ++k)
        text = logXML("<Demo_Guarded open='" + std::to_string(i) + "' secretText='hush'/>", nullptr);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < texts.size(); ++i)
    EXPECT_EQ(texts[i], guardedXml("open=\"" + std::to_string(i) + "\" secretText=\"########\""));
}

// --- Token

/// A login's answer with these attributes, as it is written.
std::string loginWith(const std::vector<std::pair<std::string, std::string>>& attributes) {
  USDKLogin::LoginResp login;
  login.setUserName("operator");
  for (const auto& [name, value] : attributes) {
    USDKLogin::LoginAttribute& attribute = login.addToAttributes();
    attribute.setName(name);
    attribute.setValue(value);
  }
  return login.AsString();
}

TEST(TokenMask, HidesTheValueOfTheToken) {
  const std::string xml = loginWith({{"client", "a"}, {"USDKtoken", "0123456789abcdef"}, {"agent", "b"}});
  ASSERT_THAT(xml, HasSubstr(R"(<attributes name="USDKtoken" value="0123456789abcdef"/>)"));
  const std::string masked = logXMLWithUsdkTokenMask(xml);
  EXPECT_EQ(masked, loginWith({{"client", "a"}, {"USDKtoken", "***"}, {"agent", "b"}}));
}

TEST(TokenMask, HidesTheFirstOfTwoTokensOnly) {
  EXPECT_EQ(logXMLWithUsdkTokenMask(loginWith({{"USDKtoken", "first"}, {"USDKtoken", "second"}})),
            loginWith({{"USDKtoken", "***"}, {"USDKtoken", "second"}}));
}

TEST(TokenMask, WithoutATokenItIsTheTextOfLogXml) {
  const std::string login = loginWith({{"USDKtoke", "a"}, {"usdktoken", "b"}, {"USDKtoken2", "c"}});
  EXPECT_EQ(logXMLWithUsdkTokenMask(login), logXML(login, nullptr));
  const std::string guardedXml = R"(<Demo_Guarded open="x" secretText="hush"/>)";
  EXPECT_EQ(logXMLWithUsdkTokenMask(guardedXml), logXML(guardedXml, nullptr));
  EXPECT_THAT(logXMLWithUsdkTokenMask(guardedXml), Not(HasSubstr("hush")));
}

TEST(TokenMask, EmptyValueBecomesTheMask) {
  EXPECT_EQ(logXMLWithUsdkTokenMask(loginWith({{"USDKtoken", ""}})), loginWith({{"USDKtoken", "***"}}));
}

TEST(TokenMask, QuotesInTheValueAreHiddenWithIt) {
  // The encoder writes them as &quot;.
  EXPECT_EQ(logXMLWithUsdkTokenMask(loginWith({{"USDKtoken", "a\"b\"c"}})),
            loginWith({{"USDKtoken", "***"}}));
}

TEST(TokenMask, OtherSpellingsOfTheInputAreMaskedToo) {
  EXPECT_THAT(
      logXMLWithUsdkTokenMask(
          "<USDKLogin_LoginResp><attributes value='secret'\n name='USDKtoken' /></USDKLogin_LoginResp>"),
      Not(HasSubstr("secret")));
}

TEST(TokenMask, FailuresAreThoseOfLogXml) {
  const LogCapture capture;
  EXPECT_EQ(logXMLWithUsdkTokenMask(""), "");
  EXPECT_EQ(logXMLWithUsdkTokenMask(R"(<attributes name="USDKtoken" value="x"/>)"), kNotAMessage);
}

// --- Keywords

TEST(KeywordMask, HidesWhatIsBetweenTheKeywordsEverywhere) {
  EXPECT_EQ(logXmlWithKeywordMask("pwd=a; user=b; pwd=; pwd=long one; pwd=open", "pwd=", ";", false),
            "pwd=******; user=b; pwd=******; pwd=******; pwd=open");
}

TEST(KeywordMask, EmptyTextsGiveAnEmptyText) {
  const LogCapture capture;
  for (const bool applyLogXML : {false, true}) {
    EXPECT_EQ(logXmlWithKeywordMask("<a>", "<", "", applyLogXML), "");
    EXPECT_EQ(logXmlWithKeywordMask("<a>", "", ">", applyLogXML), "");
    EXPECT_EQ(logXmlWithKeywordMask("", "<", ">", applyLogXML), "");
  }
  EXPECT_TRUE(capture.empty());
}

TEST(KeywordMask, TextIsNotParsedUnlessAskedFor) {
  EXPECT_EQ(logXmlWithKeywordMask("no <message> at all", "<", ">", false), "no <******> at all");
  const LogCapture capture;
  EXPECT_EQ(logXmlWithKeywordMask("no <message> at all", "<", ">", true), kNotAMessage);
}

TEST(KeywordMask, MessageIsMaskedToo) {
  EXPECT_EQ(logXmlWithKeywordMask(R"(<Demo_Guarded open="key=a;b" secretText="hush"/>)", "key=", ";", true),
            guardedXml(R"(open="key=******;b" secretText="########")"));
}

TEST(KeywordMask, KeywordsThatBreakTheXmlAreTold) {
  const LogCapture capture;
  EXPECT_EQ(logXmlWithKeywordMask(R"(<Demo_Guarded open="x"/>)", "<", "x", true), kNotAMessage);
}

}  // namespace
}  // namespace zqxml
