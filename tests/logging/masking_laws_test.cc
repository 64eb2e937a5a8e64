// Laws over random messages: what is to be masked reaches no line, at any level, and no text.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <tests/support/random_message.h>
#include <tests/support/settings.h>
#include <zqxml/annotation/annotation_record.h>
#include <zqxml/logging/masked_xml.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/xml/internal/root_element_name.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {
namespace {

constexpr char kSecret[] = "Secret-7b1f";
constexpr std::int32_t kSecretNumber = 1987654321;

/// Gives secret values to the fields that are to be masked, in a message and all below it.
class Secrets {
 public:
  Secrets(XNMessageBase& message, bool passwordsToo) : passwordsToo_(passwordsToo) { plantIn(message); }
  int count() const { return count_; }

 private:
  void plantIn(XNMessageBase& message) {
    const _ClassDef* record = MessageAccess::classDef(message);
    if (record == nullptr) return;
    for (const FieldDef& field : *record) {
      if (field.getType() == FDT_NONE || field.getFieldHashId() == 0) continue;
      if (MessageAccess::isSet(message, field.getMemNum())) plantBelow(message, field);
      plant(message, field);
    }
  }

  void plant(XNMessageBase& message, const FieldDef& field) {
    const unsigned type = field.getType();
    const AnnotationRecord annotation(field);
    const bool isSensitive = annotation.isSensitive() && FieldDef::isPrimitiveType(type);
    // Other passwords need routines of the application.
    const bool isPassword = type == FDT_PSTRING && annotation.passwordType() == 1;
    if (!isSensitive && !(isPassword && passwordsToo_)) return;
    if (type == FDT_PSTRING && !isPassword) return;
    const short memNum = field.getMemNum();
    const short index = field.getIndex();
    const std::uint32_t tag = message.getTagID();
    OpenMessage& opened = open(message);
    if (type == FDT_STRING) opened.setstring(memNum, index, kSecret, tag, 0);
    if (type == FDT_WSTRING) opened.setwstring(memNum, index, u"Secret-7b1f", tag, 0);
    if (type == FDT_BSTRING) opened.getbstringobjectByRef(memNum, index, tag, 0) = bstring(kSecret);
    if (type == FDT_PSTRING) opened.getpstringobjectByRef(memNum, index, tag, 0) = pstring(kSecret);
    if (type == FDT_INT || type == FDT_LONGLONG) MessageAccess::setInteger(message, field, kSecretNumber);
    count_ += MessageAccess::isSet(message, memNum) ? 1 : 0;
  }

  void plantBelow(XNMessageBase& message, const FieldDef& field) {
    const unsigned type = field.getType();
    if (type == FDT_OBJECT) {
      if (auto* object = MessageAccess::owned<XNMessageBase>(message, field)) plantIn(*object);
    }
    if (type == FDT_LIST_OBJECT) {
      if (auto* list = MessageAccess::owned<std::vector<XNMessageBase>>(message, field))
        for (XNMessageBase& object : *list) plantIn(object);
    }
    if (type == FDT_MAP_STRING_OBJECT) {
      if (auto* map = MessageAccess::owned<std::map<std::string, XNMessageBase>>(message, field))
        for (auto& [key, object] : *map) plantIn(object);
    }
  }

  const bool passwordsToo_;
  int count_ = 0;
};

bool tells(std::string_view text) {
  return text.find(kSecret) != std::string_view::npos || text.find("1987654321") != std::string_view::npos ||
         text.find("U2VjcmV0LTdiMW") != std::string_view::npos;  // in Base64
}

/// Whether a line has a secret in it; the lines are dropped.
bool anyTells(LogCapture& capture) {
  bool found = false;
  for (const CapturedLine& line : capture.lines()) found = found || tells(line.text) || tells(line.function);
  capture.clear();
  return found;
}

/// Messages of any class, and more often of those that have much to hide.
rc::Gen<OpenMessage> messages(Losses losses) {
  return rc::gen::weightedOneOf<OpenMessage>({
      {2, randomMessages(losses)},
      {3, randomMessagesOf(classNamed("Demo_Guarded"), losses)},
      {2, randomMessagesOf(classNamed("App_AnnotationSample"), losses)},
      {2, randomMessagesOf(classNamed("JobManager_Job"), losses)},
  });
}

RC_GTEST_PROP(MaskingLaw, NoSecretReachesALineOfTheLoggedMessage, ()) {
  static XmlBinaryLogger logger;
  OpenMessage message = *messages(kBinaryLosses);
  const Secrets secrets(message, true);
  RC_CLASSIFY(secrets.count() != 0, "has a secret");
  LogCapture capture(25);
  logger.Debug("Law", "%bxml_zq", &message);
  settle();
  RC_ASSERT(capture.hasPart("Law", 0, "<" + rootElementName(message)));
  if (secrets.count() != 0)
    RC_ASSERT(capture.hasPart("Law", 0, "=\"*******\"") || capture.hasPart("Law", 0, "=\"########\"") ||
              capture.hasPart("Law", 0, ">########<"));
  RC_ASSERT(!anyTells(capture));
}

RC_GTEST_PROP(MaskingLaw, NoSensitiveValueIsInTheTextOfAnObjectOrALine, ()) {
  const TestSettings settings;
  OpenMessage message = *messages(kXmlLosses);
  const Secrets secrets(message, false);
  RC_CLASSIFY(secrets.count() != 0, "has a secret");
  LogCapture capture(25);
  RC_ASSERT(!tells(logXML("", &message)));
  RC_ASSERT(!anyTells(capture));
}

RC_GTEST_PROP(MaskingLaw, NoSensitiveValueIsInTheTextOfAnXml, ()) {
  OpenMessage message = *messages(kXmlLosses);
  const Secrets secrets(message, false);
  std::string xml;
  RC_ASSERT(message.serialize(xml) == XN_MSG_OK);
  RC_ASSERT(tells(xml) == (secrets.count() != 0));
  {
    const TestSettings settings;
    LogCapture capture(15);
    const std::string masked = logXML(xml, nullptr);
    RC_ASSERT(!tells(masked));
    RC_ASSERT(masked.find("<" + rootElementName(message)) != std::string::npos);
    RC_ASSERT(logXMLWithUsdkTokenMask(xml) == masked);
  }
  const TestSettings settings{{"EventManager/nDoNotMaskSensitiveDataInXML", "1"}};
  const LogCapture capture;
  RC_ASSERT(tells(logXML(xml, nullptr)) == (secrets.count() != 0));
}

}  // namespace
}  // namespace zqxml
