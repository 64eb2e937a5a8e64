// Accessors of maps. Each body is one line over the shared shape of collection_access.h.
#include <zqxml/message/internal/collection_access.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {

std::map<std::int64_t, std::int64_t>*& XNMessageBase::getMapInt64AndInt64(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash,
                                                                          bool markSet) {
  return contentMade<std::map<std::int64_t, std::int64_t>>(*this, "XNMessageBase::getMapInt64AndInt64",
                                                           {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::int64_t, std::int64_t>* XNMessageBase::getMapInt64AndInt64_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::int64_t, std::int64_t>>(*this, "XNMessageBase::getMapInt64AndInt64_const",
                                                       {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapInt64AndInt64(short memNum, short index,
                                        const std::map<std::int64_t, std::int64_t>* value,
                                        std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapInt64AndInt64", {memNum, index, msgTag, fieldHash}, value);
}

std::map<std::int64_t, std::string>*& XNMessageBase::getMapInt64AndString(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash,
                                                                          bool markSet) {
  return contentMade<std::map<std::int64_t, std::string>>(*this, "XNMessageBase::getMapInt64AndString",
                                                          {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::int64_t, std::string>* XNMessageBase::getMapInt64AndString_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::int64_t, std::string>>(*this, "XNMessageBase::getMapInt64AndString_const",
                                                      {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapInt64AndString(short memNum, short index,
                                         const std::map<std::int64_t, std::string>* value,
                                         std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapInt64AndString", {memNum, index, msgTag, fieldHash}, value);
}

std::map<std::int64_t, XNMessageBase>*& XNMessageBase::getMapInt64AndObject(short memNum, short index,
                                                                            std::uint32_t msgTag,
                                                                            std::uint32_t fieldHash,
                                                                            bool markSet) {
  return contentMade<std::map<std::int64_t, XNMessageBase>>(*this, "XNMessageBase::getMapInt64AndObject",
                                                            {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::int64_t, XNMessageBase>* XNMessageBase::getMapInt64AndObject_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::int64_t, XNMessageBase>>(*this, "XNMessageBase::getMapInt64AndObject_const",
                                                        {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapInt64AndObject(short memNum, short index,
                                         const std::map<std::int64_t, XNMessageBase>* value,
                                         std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapInt64AndObject", {memNum, index, msgTag, fieldHash}, value);
}

std::map<std::string, std::int64_t>*& XNMessageBase::getMapStringAndInt64(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash,
                                                                          bool markSet) {
  return contentMade<std::map<std::string, std::int64_t>>(*this, "XNMessageBase::getMapStringAndInt64",
                                                          {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::string, std::int64_t>* XNMessageBase::getMapStringAndInt64_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::string, std::int64_t>>(*this, "XNMessageBase::getMapStringAndInt64_const",
                                                      {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapStringAndInt64(short memNum, short index,
                                         const std::map<std::string, std::int64_t>* value,
                                         std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapStringAndInt64", {memNum, index, msgTag, fieldHash}, value);
}

std::map<std::string, std::string>*& XNMessageBase::getMapStringAndString(short memNum, short index,
                                                                          std::uint32_t msgTag,
                                                                          std::uint32_t fieldHash,
                                                                          bool markSet) {
  return contentMade<std::map<std::string, std::string>>(*this, "XNMessageBase::getMapStringAndString",
                                                         {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::string, std::string>* XNMessageBase::getMapStringAndString_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::string, std::string>>(*this, "XNMessageBase::getMapStringAndString_const",
                                                     {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapStringAndString(short memNum, short index,
                                          const std::map<std::string, std::string>* value,
                                          std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapStringAndString", {memNum, index, msgTag, fieldHash}, value);
}

std::map<std::string, XNMessageBase>*& XNMessageBase::getMapStringAndObject(short memNum, short index,
                                                                            std::uint32_t msgTag,
                                                                            std::uint32_t fieldHash,
                                                                            bool markSet) {
  return contentMade<std::map<std::string, XNMessageBase>>(*this, "XNMessageBase::getMapStringAndObject",
                                                           {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<std::string, XNMessageBase>* XNMessageBase::getMapStringAndObject_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<std::string, XNMessageBase>>(*this, "XNMessageBase::getMapStringAndObject_const",
                                                       {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapStringAndObject(short memNum, short index,
                                          const std::map<std::string, XNMessageBase>* value,
                                          std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapStringAndObject", {memNum, index, msgTag, fieldHash}, value);
}

std::map<XNMessageBase, XNMessageBase>*& XNMessageBase::getMapObjectAndObject(short memNum, short index,
                                                                              std::uint32_t msgTag,
                                                                              std::uint32_t fieldHash,
                                                                              bool markSet) {
  return contentMade<std::map<XNMessageBase, XNMessageBase>>(*this, "XNMessageBase::getMapObjectAndObject",
                                                             {memNum, index, msgTag, fieldHash}, markSet);
}
const std::map<XNMessageBase, XNMessageBase>* XNMessageBase::getMapObjectAndObject_const(
    short memNum, short index, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  return content<std::map<XNMessageBase, XNMessageBase>>(*this, "XNMessageBase::getMapObjectAndObject_const",
                                                         {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setMapObjectAndObject(short memNum, short index,
                                          const std::map<XNMessageBase, XNMessageBase>* value,
                                          std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setMapObjectAndObject", {memNum, index, msgTag, fieldHash}, value);
}

}  // namespace zqxml
