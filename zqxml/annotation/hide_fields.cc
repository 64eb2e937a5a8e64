#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/message/internal/message_access.h>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace zqxml {
namespace {

constexpr std::int64_t kHubCellEntity = 1;
/// Values of `_type_` whose entities keep it.
constexpr std::int64_t kShownEntities[] = {2, 10, 27, 34, 42, 43, 71, 72, 95, 113, 114};

/// The field's number in the message; 0 unless an integer type stores it.
std::int64_t integerValue(const XNMessageBase& message, const FieldDef& field) {
  return visitStorage(field.getType(), Overloaded{[&]<element::Integer E>(Scalar<E>) {
                                                    return MessageAccess::slot(message, field);
                                                  },
                                                  [](auto) { return std::int64_t{0}; }});
}

}  // namespace

bool hideFields(ListenerCbData& data) {
  data.flags = 0;
  const std::uint32_t tagId = data.msg == nullptr ? 0 : data.msg->getTagID();
  const _ClassDef* classDef = catalogue::classDef(tagId);
  if (classDef == nullptr) return false;

  const char* name = data.field.getName();
  const bool isType =
      tagId == ZqEntities::GenericEntity::kTagId && name != nullptr && std::strcmp(name, "_type_") == 0;
  const std::int64_t type = isType ? integerValue(*data.msg, data.field) : 0;
  if (type == 0) {
    data.flags = XMLCB_SKIP_PROCESSING;
    return true;
  }
  if (std::find(std::begin(kShownEntities), std::end(kShownEntities), type) != std::end(kShownEntities))
    return true;
  for (const FieldDef& field : *classDef) {
    if (field.getType() != FDT_INT) continue;
    if (field.getFieldHashId() != nameHash("hubCellId") || type == kHubCellEntity) {
      data.flags = XMLCB_SKIP_PROCESSING;
      return true;
    }
  }
  return true;
}

}  // namespace zqxml
