// What the tests of the XML writer share.
#pragma once

#include <gtest/gtest.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/xml_serializer.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

inline EncodingFlags withElements() {
  EncodingFlags flags;
  flags.useElements = true;
  return flags;
}

inline EncodingFlags withOptions(std::uint64_t options) {
  EncodingFlags flags;
  flags.encoding_options = options;
  return flags;
}

/// The text of `msg` without its declaration.
inline std::string xmlOf(XNMessageBase& msg, EncodingFlags flags = {}, ZqXMLContextInfo* context = nullptr) {
  std::string text;
  EXPECT_EQ(XMLSerializer(flags, context).serialize(msg, text, true), XN_MSG_OK);
  return text;
}

/// The text under `readable`, without the line ends and indentation of pretty printing.
inline std::string readableXmlOf(XNMessageBase& msg) {
  EncodingFlags flags;
  flags.readable = true;
  const std::string pretty = xmlOf(msg, flags);
  std::string text;
  bool atLineStart = true;
  for (const char c : pretty) {
    if (c == '\n') {
      atLineStart = true;
    } else if (c != ' ' || !atLineStart) {
      atLineStart = false;
      text += c;
    }
  }
  return text;
}

/// The text of `msg` in form version 1 or 2, without its declaration.
inline std::string xmlOfVersion(XNMessageBase& msg, int version) {
  std::string text;
  EXPECT_EQ(XMLSerializer().serialize(msg, text, version), XN_MSG_OK);
  return text.substr(text.find("?>") + 2);
}

/// Puts `msg` under a record of the test's own for as long as this object lives: a copy of its class's record
/// in which fields can be replaced. The storage stays as it is.
class PatchedRecord {
 public:
  explicit PatchedRecord(XNMessageBase& msg)
      : msg_(msg),
        own_(*MessageAccess::classDef(msg)),
        ownRecord_(MessageAccess::classDef(msg)),
        fields_(own_.begin(), own_.end()),
        record_(own_.getName(), fields_.data(), own_.getClassId(), own_.defaultsStart(),
                own_.getNumberOfFields(), own_.getNumberOfElements()) {
    MessageAccess::setClassDef(msg, &record_);
  }
  ~PatchedRecord() { MessageAccess::setClassDef(msg_, ownRecord_); }
  PatchedRecord(const PatchedRecord&) = delete;
  PatchedRecord& operator=(const PatchedRecord&) = delete;

  const FieldDef& field(int position) const { return fields_[static_cast<std::size_t>(position)]; }

  /// Another name; the references before it stay.
  void rename(int position, const std::string& name) {
    const FieldDef& old = field(position);
    names_.push_back(std::string(old.namePointer(), old.classRefBytes()) + name);
    replace(position, names_.back().c_str(), old.getAnnotationFlags(), old.getFieldHashId(), old.getType());
  }
  /// Another annotation record, of which the literal's own bytes count; null for none.
  void annotate(int position, const char* record) {
    const FieldDef& old = field(position);
    replace(position, old.namePointer(), record, old.getFieldHashId(), old.getType());
  }
  void setHash(int position, std::uint32_t hash) {
    const FieldDef& old = field(position);
    replace(position, old.namePointer(), old.getAnnotationFlags(), hash, old.getType());
  }
  /// Another type, of the same storage and with the same references, or none.
  void retype(int position, unsigned type) {
    const FieldDef& old = field(position);
    replace(position, old.namePointer(), old.getAnnotationFlags(), old.getFieldHashId(),
            static_cast<FieldDataType>(type));
  }

 private:
  void replace(int position, const char* name, const char* annotation, std::uint32_t hash,
               FieldDataType type) {
    FieldDef& place = fields_[static_cast<std::size_t>(position)];
    place = FieldDef(name, annotation, hash, place.getLoczId(), place.getMemNum(), place.getIndex(), type);
  }

  XNMessageBase& msg_;
  const _ClassDef own_;
  const _ClassDef* ownRecord_;
  std::vector<FieldDef> fields_;
  std::deque<std::string> names_;  // their addresses must not change
  const _ClassDef record_;
};

}  // namespace zqxml
