// The examples of docs/xml-form.md are what the writer writes.
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/DistributedIDA.h>
#include <zqxml/catalogue/generated/ZqEntities.h>

#include <map>
#include <string>

#include "tests/support/markdown.h"
#include "tests/support/time_zone.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using App::AnnotationSample;
using Demo::Sample;

/// The examples of the page by name: its blocks of XML.
std::map<std::string, std::string> examplesOfThePage() {
  std::map<std::string, std::string> examples;
  for (const MarkdownBlock& block : blocksOf(ZQXML_SOURCE_DIR "/docs/xml-form.md")) {
    if (block.language != "xml") continue;
    EXPECT_FALSE(block.example.empty()) << "a block of XML without a name";
    EXPECT_TRUE(examples.emplace(block.example, block.text).second) << block.example;
  }
  return examples;
}

Sample picture() {
  Sample msg;
  msg.setId(7);
  msg.setTitle("a&b");
  msg.setMode(Demo::SampleMode::SAFE);
  msg.setTags({"x", "y"});
  msg.setSizes({{"k", 3}});
  msg.mutableChild().setN(5);
  return msg;
}

std::string titled(const std::string& title) {
  Sample msg;
  msg.setTitle(title);
  return xmlOf(msg);
}

std::string mapOfObjects() {
  Demo::EveryType msg;
  Demo::EveryChild child;
  child.setNumber(5);
  msg.setMapStringObjectField({{"k", child}});
  return xmlOf(msg);
}

std::string readable() {
  const ScopedTimeZone utc("UTC0");
  AnnotationSample msg;
  msg.setDateTime(1577836800);
  msg.setDay(1577836800);
  msg.setSecondsOfDay(3661);
  msg.mutableSensitiveObject().setUserName("admin");
  EncodingFlags flags;
  flags.readable = true;
  return xmlOf(msg, flags);
}

std::string cdata() {
  AnnotationSample msg;
  msg.setCdataText("a<b");
  msg.setCdataTexts({"x"});
  msg.setCdataNumber(-5);
  return xmlOf(msg);
}

std::string password() {
  AnnotationSample msg;
  msg.setVer3Password("stored", Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER3);
  return xmlOf(msg);
}

std::string masks() {
  AnnotationSample msg;
  msg.setPlainPassword("x");
  msg.setSensitiveText("x");
  msg.setSensitiveNumber(1);
  msg.setSensitiveTexts({"clear"});
  return xmlOf(msg, withOptions(MASK_PASSWORDS | MASK_SENSITIVE));
}

TEST(XmlFormPage, ExamplesAreWhatIsWritten) {
  Sample sample = picture();
  DistributedIDA::GenericEvent otherSubsystem;
  const std::map<std::string, std::string> written = {
      {"picture", xmlOf(sample)},
      {"other-subsystem", xmlOf(otherSubsystem)},
      {"empty", titled("")},
      {"map-of-objects", mapOfObjects()},
      {"elements", xmlOf(sample, withElements())},
      {"readable", readable()},
      {"cdata", cdata()},
      {"illegal-characters", titled("A\x01"
                                    "B")},
      {"password", password()},
      {"masks", masks()},
  };
  const std::map<std::string, std::string> examples = examplesOfThePage();
  for (const auto& [name, text] : written) {
    const auto example = examples.find(name);
    ASSERT_NE(example, examples.end()) << name;
    EXPECT_EQ(example->second, text + '\n') << name;
  }
  EXPECT_EQ(examples.size(), written.size()) << "an example that no test looks at";
}

}  // namespace
}  // namespace zqxml
