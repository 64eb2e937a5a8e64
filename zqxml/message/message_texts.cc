// The texts that travel with a message: last error, kept XML, CDATA body; and the processing instruction of
// field 0.
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/internal/kept_texts.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/text.h>

#include <utility>

namespace zqxml {
namespace {

using Info = ZqEntities::ProcessingInstructionInfo;

constexpr std::size_t kLastErrorUnits = 8191;
/// Subsystem of the annotation classes.
constexpr int kAnnotation = 27;

/// The text, made on first use.
template <class Text>
Text& made(std::unique_ptr<Text>& text) {
  if (text == nullptr) text = std::make_unique<Text>();
  return *text;
}

}  // namespace

XNMessageBase::KeptTexts& XNMessageBase::madeTexts() {
  return made(texts_);
}

const char16_t* XNMessageBase::getLastErrorEnglishW() const {
  return texts_ == nullptr || texts_->lastError == nullptr ? u"" : texts_->lastError->c_str();
}
std::u16string XNMessageBase::getLastErrorEnglishStrW() const {
  return getLastErrorEnglishW();
}

void XNMessageBase::formatLastErrorA(const char* format, std::span<const FormatArg> args) {
  if (format == nullptr) return;
  std::string text = formatText(std::string_view(format), args);
  if (text.size() > kLastErrorUnits) text.resize(kLastErrorUnits);
  made(madeTexts().lastError) = toUtf16(text);
}

void XNMessageBase::formatLastErrorW(const char16_t* format, std::span<const FormatArg> args) {
  if (format == nullptr) return;
  std::u16string text = toUtf16(formatText(toUtf8(format), args));
  if (text.size() > kLastErrorUnits) text.resize(kLastErrorUnits);
  made(madeTexts().lastError) = std::move(text);
}

// QUIRK: the text is taken for a format, as callers of this interface expect.
void XNMessageBase::setLastErrorEnglishStrA(const std::string& text) {
  formatLastErrorA(text.c_str(), {});
}
void XNMessageBase::setLastErrorEnglishStrW(const std::u16string& text) {
  formatLastErrorW(text.c_str(), {});
}

const char* XNMessageBase::getSerializedXMLString() const {
  return texts_ == nullptr || texts_->serializedXml == nullptr ? "" : texts_->serializedXml->c_str();
}
std::string& XNMessageBase::getSerializedXMLStringRef() {
  return made(madeTexts().serializedXml);
}

void XNMessageBase::setSerializedXMLString(const std::string& text, bool markSerialized) {
  made(madeTexts().serializedXml) = text;
  if (markSerialized) serialized_ = true;
}
void XNMessageBase::setLastSerializedXMLString(const std::string& text) {
  made(madeTexts().lastSerializedXml) = text;
}

void XNMessageBase::clearSerializedXMLString() {
  if (texts_ != nullptr && texts_->serializedXml != nullptr) texts_->serializedXml->clear();
  serialized_ = false;
}

void XNMessageBase::setCDATABuffer(const std::string& text) {
  cdata& body = made(madeTexts().cdataBuffer);
  body = text;
  body.set_ = true;
}
std::string XNMessageBase::getCDATABuffer() const {
  return texts_ == nullptr || texts_->cdataBuffer == nullptr ? "" : texts_->cdataBuffer->str();
}
bool XNMessageBase::isCDATABufferSet() const {
  return texts_ != nullptr && texts_->cdataBuffer != nullptr && texts_->cdataBuffer->set_;
}
void XNMessageBase::resetCDATABuffer() {
  cdata& body = made(madeTexts().cdataBuffer);
  body = std::string();
  body.set_ = false;
}

bool XNMessageBase::hasProcessingInstructionInfo() const {
  if (classDef_ == nullptr || classDef_->getNumberOfFields() == 0) return false;
  if (msgSysIndex_ == Info::kSubsystem || msgSysIndex_ == kAnnotation) return false;
  const FieldDef& first = classDef_->getFields()[0];
  if (first.getType() != FDT_OBJECT) return false;
  const ClassRef ref = ClassRef::read(first.namePointer());
  return ref.subsystem == Info::kSubsystem && ref.classIndex == Info::kClassIndex;
}

XNMessageBase*& XNMessageBase::getProcessinginstructioninfo(bool create) {
  if (!hasProcessingInstructionInfo()) return emptiedFallback<XNMessageBase*>();
  const bool set = MessageAccess::isSet(*this, 0);
  if (!set && !create) return emptiedFallback<XNMessageBase*>();
  XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(*this, classDef_->getFields()[0]);
  if (!set) {
    XNMessageBase* const made = new XNMessageBase(Info::kSubsystem, Info::kClassIndex);
    delete std::exchange(slot, made);
    MessageAccess::mark(*this, 0);
  }
  return slot;
}

void XNMessageBase::setProcessinginstructioninfo(const Info* info) {
  if (!hasProcessingInstructionInfo()) {
    logError("XNMessageBase::setProcessinginstructioninfo",
             "Calling this function on message [%s] is not valid", getTagName());
    return;
  }
  if (info == nullptr) {
    deleteMember(0, tagId_, 0, false);
    return;
  }
  XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(*this, classDef_->getFields()[0]);
  if (slot == nullptr)
    slot = new XNMessageBase(*info);
  else
    *slot = *info;
  MessageAccess::mark(*this, 0);
}

}  // namespace zqxml
