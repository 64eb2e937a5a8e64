#include <zqxml/annotation/annotation_record.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/internal/nesting_limit.h>
#include <zqxml/traverse/xml_meta_data.h>
#include <zqxml/xml/value_text.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstddef>
#include <utility>

namespace zqxml {
namespace {

constexpr char kGet[] = "XMLMetaData::getXpathMetaData";
constexpr char kGetHelper[] = "XMLMetaData::getXPathMetaDataHelper";

/// The kinds of values; every other type is of kind 0.
struct AppTypeRow {
  FieldTypeSet types;
  int appType;
};
constexpr AppTypeRow kAppTypes[] = {
    {{FDT_INT, FDT_ENUM, FDT_LIST_INT, FDT_LIST_ENUM, FDT_TIME32}, 7},
    {{FDT_UINT, FDT_LIST_UINT}, 8},
    {{FDT_LONG, FDT_LONGLONG, FDT_LIST_LONG, FDT_LIST_LONGLONG, FDT_TIME64}, 9},
    {{FDT_ULONG, FDT_LIST_ULONG}, 10},
    {{FDT_ULONGLONG, FDT_LIST_ULONGLONG}, 16},
    {{FDT_BOOL, FDT_LIST_BOOL}, 2},
    {{FDT_STRING, FDT_WSTRING, FDT_LIST_STRING, FDT_LIST_WSTRING, FDT_BSTRING, FDT_RESERVED_29,
      FDT_LIST_BSTRING, FDT_PSTRING},
     1},
    {{FDT_DOUBLE, FDT_LIST_DOUBLE}, 12},
    {{FDT_FLOAT, FDT_LIST_FLOAT}, 11},
};
constexpr int kFirstType = 10000;

/// Adds to a text for its own lifetime.
class Appended {
 public:
  template <class... Parts>
  explicit Appended(std::string& text, Parts... parts) : text_(text), size_(text.size()) {
    (text.append(parts), ...);
  }
  ~Appended() { text_.resize(size_); }
  Appended(const Appended&) = delete;
  Appended& operator=(const Appended&) = delete;

 private:
  std::string& text_;
  std::size_t size_;
};

const char* nameOf(const FieldDef& field) {
  return field.getName() == nullptr ? "" : field.getName();
}

}  // namespace

int XMLMetaData::getAppType(char fieldType) {
  for (const AppTypeRow& row : kAppTypes)
    if (row.types.contains(static_cast<unsigned char>(fieldType))) return row.appType;
  return 0;
}

bool XMLMetaData::hasXPath(const FieldDef& field) {
  return AnnotationRecord(field).generatesPaths();
}

int XMLMetaData::getXPathIDFromXPath(const std::string& xpath) const {
  const int place = catalogue::xpathIndexOfPath(*data_, xpath);
  return place < 0 ? -1 : data_->paths[place].id;
}

int XMLMetaData::getXPathFieldsInfoIndex(const XPathIDHelper* helper, int count, int id) {
  if (helper == nullptr) {
    logError("XMLMetaData::getFieldNumbers", "Subsytem XPath Metadata not provided");
    return -1;
  }
  return catalogue::xpathIndexOfId(helper, count, id);
}

bool XMLMetaData::doesXPathIDExist(short subsystem, int id) {
  const XPathData* data = XNMessageBase::getXPathData(subsystem);
  if (data == nullptr) {
    logDebug("XMLMetaData::doesXPathIDExist", 10, "XPath Metadata does not exist for subsystem [%d]",
             subsystem);
    return false;
  }
  return getXPathFieldsInfoIndex(data->idHelper, data->count, id) >= 0;
}

bool XMLMetaData::getXPathFromID(short subsystem, int id, std::string& xpath) {
  const XPathData* data = XNMessageBase::getXPathData(subsystem);
  if (data == nullptr) {
    logError("XMLMetaData::getXPathFromID", "Error retrieving metadata for Subsystem ID [%d]", subsystem);
    xpath.clear();
    return false;
  }
  const int place = getXPathFieldsInfoIndex(data->idHelper, data->count, id);
  if (place < 0) return false;
  xpath = data->paths[place].xpath;
  return true;
}

XMLSubsystemStatus XMLMetaData::getXpathMetaData(XNMessageBase* msg, std::vector<XPathMetaData>& out,
                                                 bool all) {
  if (msg == nullptr) {
    logError(kGet, "Received NULL as pointer to object.");
    return XML_SUBSYSTEM_FAILED;
  }
  if (data_ == nullptr) data_ = XNMessageBase::getXPathData(static_cast<short>(msg->getSubsysID()));
  if (data_ == nullptr) {
    logError(kGet, "No XPath metadata exists for given subsystem id : [%lu]", msg->getSubsysID());
    return XML_SUBSYSTEM_FAILED;
  }
  const _ClassDef* record = XNMessageBase::GetClassDef(msg);
  if (record == nullptr) {
    logError(kGet, "Unable to get Metadata for Object : [%s]", msg->getTagName());
    return XML_SUBSYSTEM_FAILED;
  }
  std::string prefix;
  for (const FieldDef& field : *record) {
    if (!MessageAccess::isSet(*msg, field.getMemNum()) || (!all && !hasXPath(field))) continue;
    if (field.getType() != FDT_OBJECT) continue;
    const XNMessageBase* object = MessageAccess::owned<XNMessageBase>(std::as_const(*msg), field);
    const Appended step(prefix, nameOf(field), "[1]/");
    if (object != nullptr) getXPathMetaDataHelper(*object, out, prefix, 1);
  }
  return XML_SUBSYSTEM_OK;
}

void XMLMetaData::getXPathMetaDataHelper(const XNMessageBase& msg, std::vector<XPathMetaData>& out,
                                         std::string& prefix, int level) const {
  const _ClassDef* record = XNMessageBase::GetClassDef(&msg);
  if (record == nullptr) return logError(kGetHelper, "Unable to get Metadata for Object");
  if (level >= NestingLimit::kDefault)
    return logError(kGetHelper, "Objects nest [%d] levels deep: no paths are told below", level);
  for (const FieldDef& field : *record) {
    if (!MessageAccess::isSet(msg, field.getMemNum())) continue;
    const auto object = [&](Object) {
      const Appended step(prefix, nameOf(field), "[1]/");
      if (const XNMessageBase* child = MessageAccess::owned<XNMessageBase>(msg, field))
        getXPathMetaDataHelper(*child, out, prefix, level + 1);
    };
    // QUIRK: whoever reads the list does not expect objects in lists, although such paths can be set.
    const auto objects = [&](List<element::Obj>) {
      if (!debugEnabled(25)) return;
      const Appended path(prefix, nameOf(field));
      logDebug(kGetHelper, 25, "Type:[complex List] Found Xpath[%s]. This is yet to be implemented.", prefix);
    };
    visitStorage(field.getType(),
                 Overloaded{object, objects, [&](auto) { addValues(msg, field, out, prefix); }});
  }
}

void XMLMetaData::addValues(const XNMessageBase& msg, const FieldDef& field, std::vector<XPathMetaData>& out,
                            std::string& prefix) const {
  const bool isList = kXPathListTypes.contains(field.getType());
  if (!isList && !kXPathScalarTypes.contains(field.getType())) return;
  const Appended path(prefix, isList ? "" : "@", nameOf(field));
  const int id = getXPathIDFromXPath(prefix);
  if (id == -1) return;
  const auto add = [&](const void* value, bool singleInstanced) {
    out.push_back({id, prefix, getStringFromFld(field.getType(), value),
                   kFirstType + getAppType(static_cast<char>(field.getType())), singleInstanced, false});
  };
  if (!isList) return add(field.getFieldAddrResolved(&msg), AnnotationRecord(field).isSingleInstanced());
  std::vector<const void*> elements;
  XMLDecoder::ReadFromList(&msg, nameOf(field), elements);
  out.reserve(out.size() + elements.size());
  for (const void* element : elements) add(element, false);
}

}  // namespace zqxml
