// What the writer does when something fails: a field, the document, its text.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/catalogue/generated/ZqDFMImport.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/xml_serializer_access.h>

#include <string>

#include "tests/support/failed_writing.h"
#include "tests/support/log_capture.h"
#include "tests/xml/dom_faults.h"
#include "tests/xml/xml_writing.h"

namespace zqxml {
namespace {

using Demo::EveryType;
using Demo::Sample;
using Number = EveryType::FieldNumber;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kWalk = "XMLSerializer::serializeXMLRecur";

Sample titled() {
  Sample msg;
  msg.setTitle("t");
  return msg;
}

// --- fields

TEST(XmlFieldFailure, NullDocumentOrElementWritesNothing) {
  Sample msg = titled();
  XMLSerializer serializer;
  LogCapture log;
  XMLSerializerAccess::serializeXMLRecur(serializer, msg, nullptr, nullptr, 2);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Received NULL document"}));
}

TEST(XmlFieldFailure, CdataUnderAnIllegalNameIsMissing) {
  EveryType msg;
  msg.setStringField("x");
  msg.setIntField(1);
  PatchedRecord record(msg);
  record.annotate(Number::kStringField, "\x00\x05\x00\x00\x80");
  record.rename(Number::kStringField, "no name");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType intField="1"/>)");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XMLSerializer::writeAsCDATA", 0,
                                       "Exception occurred while constructing tag : [no name]"}));
}

TEST(XmlFieldFailure, MaskedFieldUnderAnIllegalNameIsMissing) {
  Demo::Guarded msg;
  msg.setSecretText("x");
  PatchedRecord record(msg);
  // FillAnnotation finds a field by the hash of its name.
  record.rename(Demo::Guarded::FieldNumber::kSecretText, "no name");
  record.setHash(Demo::Guarded::FieldNumber::kSecretText, nameHash("no name"));
  LogCapture log;
  EXPECT_EQ(xmlOf(msg, withOptions(MASK_SENSITIVE)), "<Demo_Guarded/>");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XMLSerializer::writeNodeToXML", 0,
                                       "Exception occurred while constructing tag : [no name]"}));
}

TEST(XmlFieldFailure, SubObjectUnderAnIllegalNameIsMissing) {
  EveryType msg;
  msg.mutableObjectField().setNumber(1);
  msg.setTime32Field(1);
  PatchedRecord record(msg);
  record.rename(Number::kObjectField, "no name");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), R"(<Demo_EveryType time32Field="1"/>)");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Error constructing subobject : [no name]"}));
}

TEST(XmlFieldFailure, ListEntriesUnderAnIllegalNameAreMissing) {
  EveryType msg;
  msg.setListIntField({1, 2});
  msg.setListObjectField({Demo::EveryChild()});
  PatchedRecord record(msg);
  record.rename(Number::kListIntField, "no name");
  record.rename(Number::kListObjectField, "none too");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType/>");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Error constructing list object [no name]."},
                                       CapturedLine{kWalk, 0, "Error constructing list object [no name]."},
                                       CapturedLine{kWalk, 0, "Error constructing list object [none too]."}));
}

TEST(XmlFieldFailure, EachMapEntryUnderAnIllegalNameIsMissingWithItsKey) {
  EveryType msg;
  msg.setMapInt64StringField({{-1, "a"}, {2, "b"}});
  msg.setMapStringInt64Field({{"k", 1}});
  msg.mutableMapObjectObjectField().emplace(Demo::EveryChild(), Demo::EveryChild());
  PatchedRecord record(msg);
  for (const short position :
       {Number::kMapInt64StringField, Number::kMapStringInt64Field, Number::kMapObjectObjectField})
    record.rename(position, "no name");
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType/>");
  const CapturedLine notMade{"XMLSerializer::constructMapElements", 0,
                             "Error constructing map object [no name]."};
  EXPECT_THAT(
      log.lines(),
      ElementsAre(notMade, CapturedLine{kWalk, 0, "Error for map field [no name], key : [-1]"}, notMade,
                  CapturedLine{kWalk, 0, "Error for map field [no name], key : [2]"}, notMade,
                  CapturedLine{kWalk, 0, "Error for map field [no name], key : [k]"}, notMade,
                  CapturedLine{kWalk, 0, "Error for map field [no name], key : [Demo_EveryChild]"}));
}

TEST(XmlFieldFailure, KeepsAskingToCheckANullObject) {
  EveryType msg;
  MessageAccess::mark(msg, Number::kObjectField);
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<Demo_EveryType/>");
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kWalk, 0, "Please check"}));
}

TEST(XmlFieldFailure, NullProcessingInstructionInfoIsTheNormalCase) {
  ZqDFMImport::OldLists msg;
  LogCapture log;
  EXPECT_EQ(xmlOf(msg), "<ZqDFMImport_OldLists/>");
  EXPECT_THAT(log.lines(), IsEmpty());
}

// --- the document

TEST(XmlDocumentFailure, ObjectWithoutAClassFails) {
  XNMessageBase msg;
  EXPECT_THAT(linesOfFailedWriting(msg),
              ElementsAre(CapturedLine{"XMLSerializer::serialize", 0, "Error creating XML root node."}));
}

TEST(XmlDocumentFailure, NoImplementationFails) {
  const ScopedDomFault fault(DomFault::kNoImplementation);
  Sample msg = titled();
  LogCapture log;
  std::string text = "before";
  EXPECT_EQ(XMLSerializer().serialize(msg, text), XN_MSG_FAILED);
  EXPECT_EQ(XMLSerializer().serialize(msg, text, 1), XN_MSG_FAILED);
  EXPECT_EQ(XMLSerializer().serialize(msg, text, true), XN_MSG_FAILED);
  EXPECT_EQ(text, "before");
  EXPECT_EQ(log.count("XMLSerializer::serialize", 0, "Error initializing xerces library"), 3u);

  std::u16string wide;
  EXPECT_EQ(XMLSerializer().serializeUTF16(msg, wide, false), XN_MSG_FAILED);
  EXPECT_TRUE(log.has("XMLSerializer::serializeUTF16", 0, "Error initializing Xerces library"));
}

TEST(XmlDocumentFailure, ExceptionOfTheLibraryHasABlankAtItsEnd) {
  for (const DomException exception : {DomException::kDom, DomException::kXml}) {
    const ScopedDomFault fault(DomFault::kCreateDocument, exception);
    Sample msg = titled();
    EXPECT_THAT(linesOfFailedWriting(msg),
                ElementsAre(CapturedLine{"XMLSerializer::serialize", 0, "Error creating XML root node. "}));
  }
}

TEST(XmlDocumentFailure, AnyOtherExceptionHasNone) {
  for (const DomException exception : {DomException::kSaxParse, DomException::kStandard}) {
    const ScopedDomFault fault(DomFault::kCreateDocument, exception);
    Sample msg = titled();
    EXPECT_THAT(linesOfFailedWriting(msg),
                ElementsAre(CapturedLine{"XMLSerializer::serialize", 0, "Error creating XML root node."}));
  }
}

TEST(XmlDocumentFailure, RootNameThatIsNoXmlNameFails) {
  Sample msg = titled();
  const _ClassDef& own = *MessageAccess::classDef(msg);
  const _ClassDef renamed("no name", own.getFields(), own.getClassId(), -1, own.getNumberOfFields(),
                          own.getNumberOfElements());
  MessageAccess::setClassDef(msg, &renamed);
  EXPECT_THAT(linesOfFailedWriting(msg), testing::Contains(CapturedLine{"XMLSerializer::serialize", 0,
                                                                        "Error creating XML root node. "}));
  MessageAccess::setClassDef(msg, &own);
}

TEST(XmlDocumentFailure, ExceptionInReleaseIsOnlyATrace) {
  const ScopedDomFault fault(DomFault::kRelease);
  Sample msg = titled();
  LogCapture log(15);
  std::string text;
  EXPECT_EQ(XMLSerializer().serialize(msg, text, true), XN_MSG_OK);
  EXPECT_EQ(text, R"(<Demo_Sample title="t"/>)");
  EXPECT_EQ(log.count("XMLSerializer::serialize", 15, "Exception releasing DOMDocument."), 1u);
}

TEST(XmlDocumentFailure, ExceptionInReleaseOfAWideCallIsItsTrace) {
  const ScopedDomFault fault(DomFault::kRelease);
  Sample msg = titled();
  LogCapture log(15);
  std::u16string text;
  EXPECT_EQ(XMLSerializer().serializeUTF16(msg, text, true), XN_MSG_OK);
  EXPECT_EQ(text, uR"(<Demo_Sample title="t"/>)");
  EXPECT_EQ(log.count("XMLSerializer::serializeUTF16", 15, "Exception releasing DOMDocument."), 1u);
}

// --- the text

TEST(XmlDumpFailure, KeepsAnsweringOkWhenTheLibraryThrows) {
  for (const DomException exception : {DomException::kDom, DomException::kXml}) {
    const ScopedDomFault fault(DomFault::kWrite, exception);
    Sample msg = titled();
    LogCapture log;
    std::string text = "before";
    EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
    EXPECT_EQ(text, "before");
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLEncoder::DOMDumpTostringUTF8", 0,
                                                      "Error Dumping Xml String from DomTree to String"}));

    log.clear();
    std::u16string wide = u"before";
    EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_OK);
    EXPECT_EQ(wide, u"before");
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"XMLEncoder::DOMDumpTostringUTF16", 0,
                                                      "Error Dumping Xml String From DomTree to String"}));
  }
}

TEST(XmlDumpFailure, OtherExceptionsHaveTheirOwnLines) {
  Sample msg = titled();
  std::string text = "before";
  std::u16string wide = u"before";
  LogCapture log;
  {
    const ScopedDomFault fault(DomFault::kWrite, DomException::kSaxParse);
    EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
    EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_OK);
  }
  {
    const ScopedDomFault fault(DomFault::kWrite, DomException::kStandard);
    EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
    EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_OK);
  }
  EXPECT_EQ(text, "before");
  EXPECT_EQ(wide, u"before");
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{"XMLEncoder::DOMDumpTostringUTF8", 0, "SAXParseException: told"},
                          CapturedLine{"XMLEncoder::DOMDumpTostringUTF16", 0, "SAXParseException: told"},
                          CapturedLine{"XMLEncoder::DOMDumpTostringUTF8", 0, "Unknown Exception!"},
                          CapturedLine{"XMLEncoder::DOMDumpTostringUTF16", 0, "Unknown Exception!"}));
}

TEST(XmlDumpFailure, WhatTheWriterLeftIsTakenWhenItAnswersFalse) {
  const ScopedDomFault fault(DomFault::kWriteIsFalse);
  Sample msg = titled();
  std::string text = "before";
  std::u16string wide = u"before";
  LogCapture log;
  EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
  EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_OK);
  EXPECT_EQ(text, "half");
  EXPECT_EQ(wide, u"half");
  EXPECT_THAT(
      log.lines(),
      ElementsAre(
          CapturedLine{"XMLSerializer::DumpDOMDocumentToStringUTF8", 0, "Error Writing Xml to String"},
          CapturedLine{"XMLSerializer::DumpDOMDocumentToWStringUTF16", 0, "Error Writing Xml to String"}));
}

TEST(XmlDumpFailure, TextEndsAtItsFirstNul) {
  const ScopedDomFault fault(DomFault::kWriteHasNul);
  Sample msg = titled();
  std::string text;
  std::u16string wide;
  EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
  EXPECT_EQ(msg.serializeUTF16(wide), XN_MSG_OK);
  EXPECT_EQ(text, "cut");
  EXPECT_EQ(wide, u"cut");
}

TEST(XmlDumpFailure, WriterThatCannotBeMadeLeavesAnEmptyText) {
  const ScopedDomFault fault(DomFault::kNoWriterImplementation);
  Sample msg = titled();
  std::string text = "before";
  LogCapture log;
  EXPECT_EQ(msg.serialize(text), XN_MSG_OK);
  EXPECT_EQ(text, "");
  EXPECT_TRUE(log.has("XMLSerializer::DumpDOMDocumentToStringUTF8", 0, "Error Writing Xml to String"));
  XMLSerializer serializer;
  EXPECT_EQ(XMLSerializerAccess::createWriterUTF8(serializer), nullptr);
  EXPECT_EQ(XMLSerializerAccess::createWriterUTF16(serializer), nullptr);
}

}  // namespace
}  // namespace zqxml
