// Uses the installed library as a program outside this tree does: public headers, exported symbols, nothing
// else.

#include <zqxml/zqxml.h>

#include <cstdio>
#include <memory>
#include <string>

namespace {

using zqxml::ZQGui::SaveAlert;

int failures = 0;

void expect(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "consumer: %s\n", what);
  ++failures;
}

SaveAlert filledAlert() {
  SaveAlert alert;
  alert.setLoginName("operator");
  alert.setAlertLocation("/srv/alerts");
  alert.setUseNetworkShare(1);
  return alert;
}

void usePlatform() {
  std::string logged;
  zqxml::EvDebug::setSink([&](const zqxml::LogLine& line) { logged = line.text; });
  zqxml::logError("consumer", "text %d", 5);
  zqxml::EvDebug::setSink({});
  expect(logged == "text 5", "the host owns the log");
  expect(zqxml::UlBase64::Encode(zqxml::toUtf8(u"foo")) == "Zm9v", "platform classes are exported");
  expect(zqxml::parseInt64("42x") == 42, "numbers are read");
}

void useCatalogue() {
  std::string text;
  expect(zqxml::XNMessageBase::getMessageSchemaString(SaveAlert::kTagId, text, true, true) &&
             text.find("loginName") != std::string::npos,
         "the catalogue describes its classes");
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XNMessageBase::createObject(SaveAlert::kTagId));
  expect(SaveAlert::from(made.get()) != nullptr, "objects are made by tag id");
}

void useXml() {
  SaveAlert alert = filledAlert();
  std::string xml;
  std::u16string wide;
  expect(alert.serialize(xml) == zqxml::XN_MSG_OK && alert.serializeUTF16(wide) == zqxml::XN_MSG_OK,
         "a message becomes XML");
  SaveAlert read, readWide;
  expect(read.unserialize(xml) == zqxml::XN_MSG_OK && read == alert, "XML becomes a message");
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XMLDecoder().unSerialize(xml));
  expect(made != nullptr && *made == alert, "a decoder makes the object of the root tag");
  expect(readWide.unserialize(wide.c_str()) == zqxml::XN_MSG_OK && readWide == alert, "so does wide XML");
  zqxml::EncodingFlags flags;
  flags.useElements = true;
  expect(zqxml::XMLEncoder(flags, nullptr).serialize(alert, xml, true) == 0 &&
             xml.find("<loginName>operator</loginName>") != std::string::npos,
         "an encoder writes by its flags");
}

void useBinary() {
  SaveAlert alert = filledAlert();
  zqxml::BinaryBuffer buffer;
  expect(alert.SerializeBinary(buffer) != 0, "a message becomes bytes");
  SaveAlert read;
  expect(read.UnserializeBinary(buffer) == 0 && read == alert, "bytes become a message");
  const std::unique_ptr<zqxml::XNMessageBase> made(
      zqxml::BinarySerializer::unserialize(buffer, nullptr, false));
  expect(made != nullptr && *made == alert, "bytes name their class");
  int notes = 0;
  const std::string bytes(buffer.getBuffer(), buffer.getDataSize());
  expect(zqxml::explainBinary(bytes, [&](const zqxml::BinaryNote&) { ++notes; }) && notes > 2,
         "bytes are explained");
}

void useAnnotations() {
  const SaveAlert alert;
  zqxml::Annotation::Password password;
  expect(zqxml::XMLDecoder::FillAnnotation(&alert, password, "password") && password.isEncTypeSet(),
         "annotations are read");
  zqxml::registerPlatformPasswordRoutines();
  const zqxml::pstring plain("secret");
  expect(plain.getPlainPassword() == std::string("secret"), "passwords are read");
}

}  // namespace

int main() {
  usePlatform();
  useCatalogue();
  useXml();
  useBinary();
  useAnnotations();
  if (failures == 0) std::puts("consumer: good");
  return failures == 0 ? 0 : 1;
}
