#include <zqxml/catalogue/lookup.h>
#include <zqxml/xml/internal/attribute_guide.h>
#include <zqxml/xml/internal/field_finder.h>
#include <zqxml/xml/internal/message_reader_names.h>
#include <zqxml/xml/internal/name_view.h>
#include <zqxml/xml/internal/per_class.h>
#include <zqxml/xml/internal/root_class.h>
#include <zqxml/xml/internal/scanned_text.h>
#include <zqxml/xml/internal/xml_characters.h>

#include <algorithm>
#include <limits>
#include <memory>

namespace zqxml {
namespace {

/// What stands between an attribute's name and its value: `="`.
constexpr std::uint32_t kGap = 2;
constexpr std::size_t kLongest = std::numeric_limits<std::uint8_t>::max();

}  // namespace

AttributeGuide::AttributeGuide(const _ClassDef& classDef) : classDef_(classDef) {
  const auto text = [](const Name& name) { return std::string_view(name.attribute, name.length); };
  // A name begins as the catalogue has it, and gets what stands around it when all are in order.
  for (const FieldDef& field : classDef) {
    const std::string_view name = field.getName() == nullptr ? "" : field.getName();
    const std::uint32_t hash = field.getFieldHashId();
    if (!FieldDef::isPrimitiveType(field.getType()) || !isPlainName(name) || name.size() > kLongest ||
        hash != nameHash(name))
      continue;
    const auto position = static_cast<std::size_t>(&field - classDef.getFields());
    names_.push_back({name.data(), TextPart::marksOf(hash, TextPart::Kind::attribute, false, kGap),
                      static_cast<std::uint8_t>(name.size()),
                      static_cast<std::uint8_t>(std::min<std::size_t>(position, kNoPosition))});
  }
  std::ranges::sort(names_, {}, text);
  // Not std::ranges::unique: clang 14 does not compile what libstdc++ 12 gives for it.
  const auto same = [text](const Name& a, const Name& b) { return text(a) == text(b); };
  names_.erase(std::unique(names_.begin(), names_.end(), same), names_.end());
  names_.resize(std::min(names_.size(), TextPart::kMostAttributes));
  for (const Name& name : names_) text_.append(1, ' ').append(text(name)).append("=\"");
  const char* next = text_.data();
  for (Name& name : names_) {
    name.attribute = next;
    next += name.attributeLength();
  }
}

const AttributeGuide* AttributeGuide::of(int subsystem, int classIndex) {
  static constinit PerClass<AttributeGuide> guides;
  const _ClassDef* classDef = catalogue::classAt(subsystem, classIndex);
  if (classDef == nullptr) return nullptr;
  return guides.of(subsystem, classIndex,
                   [=] { return std::unique_ptr<const AttributeGuide>(new AttributeGuide(*classDef)); });
}

const AttributeGuide* AttributeGuide::ofRoot(std::string_view name, std::uint32_t hash) {
  const auto root = rootClassOf(name, hash);
  return root.has_value() ? of(root->subsystem, root->classIndex) : nullptr;
}

const AttributeGuide* AttributeGuide::ofField(std::uint32_t hash) const {
  const FieldDef* field = FieldFinder().find(&classDef_, hash);
  if (field == nullptr || !kObjectFields.contains(field->getType())) return nullptr;
  const ClassRef ref = ClassRef::read(field->namePointer());
  return of(ref.subsystem, ref.classIndex);
}

}  // namespace zqxml
