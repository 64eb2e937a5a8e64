#include "tools/zqmsg/annotations_text.h"

#include <zqxml/annotation/annotation_base.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zqxml::tool {
namespace {

constexpr std::size_t kNameColumn = 30;

std::string annotationText(const _ClassDef& record, const FieldDef& field, std::uint32_t tagId) {
  short subsystem = 0;
  int classIndex = 0;
  if (!XNMessageBase::getIndicesFromTagID(subsystem, classIndex, tagId)) return {};
  AnnotationBase annotation(subsystem, classIndex);
  if (!XMLDecoder::FillAnnotation(&record, annotation, field.getName())) return {};
  EncodingFlags flags;
  flags.enumAsText = true;
  std::string text;
  if (XMLSerializer(flags, nullptr).serialize(annotation, text, true) != XN_MSG_OK) return {};
  return text;
}

}  // namespace

std::string annotationsText(const _ClassDef& record) {
  std::string out;
  for (const FieldDef& field : record) {
    std::vector<std::uint32_t> tags;
    if (!field.hasAnnotation() || !XMLDecoder::FillAnnotationIds(field, tags)) continue;
    for (std::uint32_t tagId : tags) {
      std::string name = field.getName();
      name.resize(std::max(name.size(), kNameColumn), ' ');
      out += name + '\t' + annotationText(record, field, tagId) + '\n';
    }
  }
  return out;
}

}  // namespace zqxml::tool
