// BodyFrame: how far the reading of a body has come.
#pragma once

#include <zqxml/binary/internal/wire_form.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>

#include <cstdint>

namespace zqxml {

/// A body being read.
struct BodyFrame {
  BodyFrame(XNMessageBase& object, const _ClassDef* record, std::uint64_t endOfBody)
      : message(object), classDef(record), end(endOfBody) {
    if (record == nullptr) return;
    next = record->begin();
    last = record->end();
  }

  XNMessageBase& message;
  const _ClassDef* classDef;
  std::uint64_t end;
  /// Field behind the last match, where the next search starts: fields in declared order cost one comparison
  /// each.
  const FieldDef* next = nullptr;
  const FieldDef* last = nullptr;  ///< behind the last field
  /// Last count seen behind the marker. QUIRK: it is not cleared after use, and is the only count that a
  /// list or a map has: one without a marker of its own takes the count of an earlier one.
  std::uint32_t collectionCount = 0;

  /// The field with the key's hash, the search going on from the last match; null when there is none, for
  /// hash 0 and for the collection marker.
  const FieldDef* find(std::uint32_t key) {
    const std::uint32_t hash = wire::hashOfKey(key);
    if (hash == 0 || key == wire::kCollectionMarker) return nullptr;
    const FieldDef* field = next;
    if (field == last || !isIt(*field, hash)) [[unlikely]]
      field = search(classDef, field, hash);
    if (field != nullptr) next = field + 1;
    return field;
  }

 private:
  static bool isIt(const FieldDef& field, std::uint32_t hash) {
    return field.getFieldHashId() == hash && field.getType() != FDT_NONE;
  }

  /// From a field on, and round the end.
  [[gnu::noinline]] static const FieldDef* search(const _ClassDef* classDef, const FieldDef* from,
                                                  std::uint32_t hash) {
    if (classDef == nullptr) return nullptr;
    for (const FieldDef* field = from; field != classDef->end(); ++field)
      if (isIt(*field, hash)) return field;
    for (const FieldDef* field = classDef->begin(); field != from; ++field)
      if (isIt(*field, hash)) return field;
    return nullptr;
  }
};

}  // namespace zqxml
