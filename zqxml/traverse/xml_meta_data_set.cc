// XMLMetaData: a message from paths and texts.
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/platform/text.h>
#include <zqxml/traverse/msg_field_context.h>
#include <zqxml/traverse/xml_meta_data.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace zqxml {
namespace {

constexpr char kSet[] = "XMLMetaData::setXpathMetaData";
constexpr char kSetHelper[] = "XMLMetaData::setXpathMetaDataHelper";

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [lower](char x, char y) { return lower(x) == lower(y); });
}

// Setters: read a text and hand the value to the overload of replaceValue. False when the text is no such
// value.

template <class Value, class Overload = Value>
bool setNumber(MsgFieldContext& field, const std::string& text) {
  Value value{};
  if (!readNumber(text, value)) return false;
  field.replaceValue(static_cast<Overload>(value));
  return true;
}
bool setBool(MsgFieldContext& field, const std::string& text) {
  // What a bool is told as is read too.
  field.replaceValue(equalsIgnoringCase(text, "true") || text == "1");
  return true;
}
bool setString(MsgFieldContext& field, const std::string& text) {
  field.replaceValue(text);
  return true;
}
bool setWideString(MsgFieldContext& field, const std::string& text) {
  field.replaceValue(toUtf16(text));
  return true;
}
// QUIRK: bytes and passwords are told in Base64 and taken as they stand, since the consumers of the list hand
// in plain text.
bool setBytes(MsgFieldContext& field, const std::string& text) {
  field.replaceValue(bstring(text), false);
  return true;
}
bool setPassword(MsgFieldContext& field, const std::string& text) {
  field.replaceValue(pstring(text));
  return true;
}

/// Which setter a type has. QUIRK: the types that are not here are left alone: ulonglong and the maps have no
/// overload.
struct SetterRow {
  FieldTypeSet types;
  bool (*set)(MsgFieldContext& field, const std::string& text);
};
constexpr SetterRow kSetters[] = {
    {{FDT_INT, FDT_LIST_INT, FDT_TIME32}, setNumber<std::int32_t>},
    {{FDT_UINT, FDT_ENUM, FDT_LIST_UINT, FDT_LIST_ENUM}, setNumber<std::uint32_t>},
    {{FDT_LONG, FDT_LIST_LONG}, setNumber<std::int32_t, long>},
    {{FDT_ULONG, FDT_LIST_ULONG}, setNumber<std::uint32_t, unsigned long>},
    {{FDT_LONGLONG, FDT_LIST_LONGLONG, FDT_TIME64}, setNumber<std::int64_t, long long>},
    {{FDT_BOOL, FDT_LIST_BOOL}, setBool},
    {{FDT_STRING, FDT_LIST_STRING}, setString},
    {{FDT_WSTRING, FDT_LIST_WSTRING}, setWideString},
    {{FDT_DOUBLE, FDT_LIST_DOUBLE}, setNumber<double>},
    {{FDT_FLOAT, FDT_LIST_FLOAT}, setNumber<float>},
    {{FDT_BSTRING, FDT_LIST_BSTRING}, setBytes},
    {{FDT_PSTRING}, setPassword},
};

bool setValue(XNMessageBase& msg, const FieldDef& field, const std::string& text) {
  const SetterRow* row = std::find_if(
      std::begin(kSetters), std::end(kSetters),
      [&field](const SetterRow& candidate) { return candidate.types.contains(field.getType()); });
  if (row == std::end(kSetters)) return true;
  MsgFieldContext context(field, &msg);
  if (row->set(context, text)) return true;
  logDebug(kSetHelper, 15, "Unable to set value for Message [%s] : Field [%s] value :[%s]", msg.getTagName(),
           field.getName(), text);
  return false;
}

std::unique_ptr<XNMessageBase> build(const FieldDef& field) {
  return std::unique_ptr<XNMessageBase>(XNMessageBase::createObjectFromClassID(field.namePointer()));
}

}  // namespace

XMLSubsystemStatus XMLMetaData::setXpathMetaData(XNMessageBase*& msg, std::vector<XPathMetaData> items,
                                                 short subsystem) {
  if (msg == nullptr) {
    logError(kSet, "Received NULL as pointer to object.");
    return XML_SUBSYSTEM_FAILED;
  }
  if (data_ == nullptr) data_ = XNMessageBase::getXPathData(subsystem);
  if (data_ == nullptr) {
    logError(kSet, "No XPath metadata exists for given subsystem index: [%d]", subsystem);
    return XML_SUBSYSTEM_FAILED;
  }
  if (XNMessageBase::GetClassDef(msg) == nullptr) {
    logError(kSet, "Unable to get Metadata for Object : [%s]", msg->getTagName());
    return XML_SUBSYSTEM_FAILED;
  }
  for (const XPathMetaData& item : items) {
    const int place = getXPathFieldsInfoIndex(data_->idHelper, data_->count, item.id);
    if (place < 0) {
      logError(kSet, "No MetaData exists for XPath ID :[%lu]", static_cast<std::uint32_t>(item.id));
      continue;
    }
    const XPathFieldsInfo& way = data_->fieldsInfo[place];
    if (!setXpathMetaDataHelper(msg, way.fieldPath, 0, way.depth, item.value)) return XML_SUBSYSTEM_FAILED;
  }
  return XML_SUBSYSTEM_OK;
}

bool XMLMetaData::setXpathMetaDataHelper(XNMessageBase* msg, const short* fieldPath, int level, int depth,
                                         const std::string& value) {
  if (msg == nullptr) {
    logError(kSetHelper, "The object pointer received is NULL");
    return false;
  }
  const _ClassDef* record = XNMessageBase::GetClassDef(msg);
  if (record == nullptr) {
    logError(kSetHelper, "Unable to get Metadata for Object : [%s]", msg->getTagName());
    return false;
  }
  const int number = fieldPath == nullptr || level >= depth ? -1 : fieldPath[level];
  if (number < 0 || number >= record->getNumberOfFields()) {
    logError(kSetHelper, "Error while reconstruction of object from XPathID");
    return false;
  }
  const FieldDef& field = record->getFields()[number];
  const auto object = [&](Object) {
    XNMessageBase* child = MessageAccess::owned<XNMessageBase>(*msg, field);
    std::unique_ptr<XNMessageBase> built = child == nullptr ? build(field) : nullptr;
    if (child == nullptr) child = built.get();
    if (!setXpathMetaDataHelper(child, fieldPath, level + 1, depth, value)) return false;
    if (built != nullptr) MessageAccess::owned<XNMessageBase>(*msg, field) = built.release();
    MessageAccess::mark(*msg, field.getMemNum());
    return true;
  };
  const auto objects = [&](List<element::Obj>) {
    const std::unique_ptr<XNMessageBase> element = build(field);
    if (!setXpathMetaDataHelper(element.get(), fieldPath, level + 1, depth, value)) return false;
    MessageAccess::make<std::vector<XNMessageBase>>(*msg, field, true).push_back(std::move(*element));
    return true;
  };
  return visitStorage(field.getType(),
                      Overloaded{object, objects, [&](auto) { return setValue(*msg, field, value); }});
}

}  // namespace zqxml
