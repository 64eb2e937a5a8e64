#include <zqxml/annotation/internal/annotation_sections.h>

namespace zqxml {
namespace {

constexpr bool bit(std::uint32_t flags, unsigned number) {
  return ((flags >> number) & 1) != 0;
}

/// Three bytes as one number, the first on top.
std::uint32_t word24(AnnotationCursor& cursor) {
  const std::uint32_t first = cursor.byte();
  const std::uint32_t second = cursor.byte();
  return first << 16 | second << 8 | cursor.byte();
}

}  // namespace

AnnotationValues getTextAnnotation(AnnotationCursor& cursor) {
  AnnotationValues values;
  const std::uint32_t flags = cursor.byte();
  if (bit(flags, 7)) values.add("text", cursor.text());
  if (bit(flags, 6)) values.add("comment", cursor.text());
  if (bit(flags, 5)) values.add("falseText", cursor.text());
  if (bit(flags, 4)) values.add("commentID", cursor.word32());
  if (bit(flags, 3)) values.add("localise", std::uint32_t{bit(flags, 2)});
  return values;
}

AnnotationValues getCommandParamAnnotation(AnnotationCursor& cursor) {
  AnnotationValues values;
  const std::uint32_t flags = cursor.byte();
  if (bit(flags, 7)) values.add("name", cursor.text());
  if (bit(flags, 6)) values.add("useDefault", std::uint32_t{bit(flags, 4)});
  if (bit(flags, 2) || bit(flags, 0)) values.add("ignoreReplace", std::uint32_t{bit(flags, 3)});
  cursor.skip(1);
  return values;
}

AnnotationValues getSearchCriteriaDefAnnotation(AnnotationCursor& cursor) {
  AnnotationValues values;
  const std::uint32_t presence = word24(cursor);
  const std::uint32_t types = cursor.byte();
  const std::string_view text = bit(presence, 3) ? cursor.text() : std::string_view();
  const std::uint32_t rest = word24(cursor);

  if (bit(presence, 21)) values.add("type", types >> 4);
  for (const SearchCriterion& criterion : kSearchCriteria)
    if (bit(presence, criterion.presence))
      values.add(criterion.field, std::uint32_t{bit(rest, criterion.value)});
  if (bit(presence, 7)) values.add("searchGroupType", types & 0xf);
  if (bit(presence, 6)) values.add("filteredSearchGroup", rest >> 19);
  if (bit(presence, 5)) values.add("searchType", presence & 0x7);
  if (bit(presence, 4)) values.add("filterSupportedVersion", (rest >> 11) & 0x1f);
  if (bit(presence, 3)) values.add("text", text);
  return values;
}

AnnotationValues getStoredProcedure(AnnotationCursor& cursor) {
  AnnotationValues values;
  values.add("name", cursor.text());
  return values;
}

}  // namespace zqxml
