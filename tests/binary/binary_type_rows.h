// What the records of the field types look like: the rows that the tests of the binary form run over.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <functional>
#include <string>
#include <vector>

namespace zqxml {

/// A field of Demo_EveryType with a value, and its record: `M` stands for the marker, `K` for the key.
struct BinaryTypeRow {
  FieldDataType type;
  const char* field;
  unsigned encoding;  ///< in the key
  const char* record;
  std::function<void(Demo::EveryType&)> fill;

  /// What the reader can take back: type 6 has no key, and type 18 no marker.
  bool readable() const { return type != FDT_ULONGLONG && type != FDT_LIST_ULONGLONG; }
};

/// One row for each type that stores something.
const std::vector<BinaryTypeRow>& binaryTypeRows();

/// The record's bytes, as toHex gives them.
std::string recordHex(const BinaryTypeRow& row);

}  // namespace zqxml
