// Annotation records of any bytes, through every reader of them.

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/internal/annotation_sections.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/xml_decoder.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

namespace zqxml {
namespace {

/// Ends the run where a reader contradicts another.
void require(bool holds) {
  if (!holds) std::abort();
}

template <class AnnotationClass>
void fill(const _ClassDef& owner, const std::vector<std::uint32_t>& ids) {
  AnnotationClass annotation;
  const bool filled = XMLDecoder::FillAnnotation(&owner, annotation, "field");
  require(!filled || std::find(ids.begin(), ids.end(), AnnotationClass::kTagId) != ids.end());
}

template <class... AnnotationClasses>
void fillEach(const _ClassDef& owner, const std::vector<std::uint32_t>& ids) {
  (fill<AnnotationClasses>(owner, ids), ...);
}

void readAsField(const char* record) {
  const FieldDef field("field", record, nameHash("field"), 0, 0, 0, FDT_INT);
  const _ClassDef owner("Owner", &field, 1, -1, 1, 1);
  std::vector<std::uint32_t> ids;
  require(XMLDecoder::FillAnnotationIds(field, ids) == AnnotationRecord(field).exists());
  require(ids.size() <= 14);
  fillEach<Annotation::Password, Annotation::ZQTime, Annotation::Suppress, Annotation::XDate,
           Annotation::GenPath, Annotation::HideInReports, Annotation::SingleInstanced,
           Annotation::CommandParam, Annotation::Text, Annotation::SearchCriteriaDef,
           Annotation::StoredProcedure, Annotation::IndexAttr, Annotation::MarkAsCDATA, Annotation::Sensitive,
           Annotation::SummaryHeader>(owner, ids);
}

/// Every text that the sections give lies in the record.
void readSections(const AnnotationRecord& record) {
  const std::string_view bytes = record.bytes();
  AnnotationCursor cursor(record);
  for (const auto read :
       {getTextAnnotation, getCommandParamAnnotation, getSearchCriteriaDefAnnotation, getStoredProcedure}) {
    for (const AnnotationValue& value : read(cursor)) {
      require(value.text.empty() || (value.text.data() >= bytes.data() &&
                                     value.text.data() + value.text.size() <= bytes.data() + bytes.size()));
    }
  }
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::EvDebug::setDebugLevel(-1);
  zqxml::readSections(zqxml::AnnotationRecord(std::string_view(reinterpret_cast<const char*>(data), size)));
  if (size < 2) return 0;
  // A record of the catalogue has as many bytes as it says, and a block of just so many shows a read beyond
  // it.
  const std::size_t length = std::min<std::size_t>(size, static_cast<std::size_t>(data[0] << 8 | data[1]));
  const std::unique_ptr<char[]> record(new char[std::max<std::size_t>(length, 2)]);
  std::copy_n(reinterpret_cast<const char*>(data), std::max<std::size_t>(length, 2), record.get());
  record[0] = static_cast<char>(length >> 8);
  record[1] = static_cast<char>(length);
  zqxml::readAsField(record.get());
  return 0;
}
