// Accessors of lists. Each body is one line over the shared shape of collection_access.h.
#include <zqxml/message/internal/collection_access.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {

std::vector<std::int32_t>*& XNMessageBase::getlistint(short memNum, short index, std::uint32_t msgTag,
                                                      std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::int32_t>>(*this, "XNMessageBase::getlistint",
                                                {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::int32_t>* XNMessageBase::getlistint_const(short memNum, short index,
                                                                 std::uint32_t msgTag,
                                                                 std::uint32_t fieldHash) const {
  return content<std::vector<std::int32_t>>(*this, "XNMessageBase::getlistint_const",
                                            {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistint(short memNum, short index, const std::vector<std::int32_t>* value,
                               std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistint", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::uint32_t>*& XNMessageBase::getlistuint(short memNum, short index, std::uint32_t msgTag,
                                                        std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::uint32_t>>(*this, "XNMessageBase::getlistuint",
                                                 {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::uint32_t>* XNMessageBase::getlistuint_const(short memNum, short index,
                                                                   std::uint32_t msgTag,
                                                                   std::uint32_t fieldHash) const {
  return content<std::vector<std::uint32_t>>(*this, "XNMessageBase::getlistuint_const",
                                             {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistuint(short memNum, short index, const std::vector<std::uint32_t>* value,
                                std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistuint", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::int32_t>*& XNMessageBase::getlistlong(short memNum, short index, std::uint32_t msgTag,
                                                       std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::int32_t>>(*this, "XNMessageBase::getlistlong",
                                                {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::int32_t>* XNMessageBase::getlistlong_const(short memNum, short index,
                                                                  std::uint32_t msgTag,
                                                                  std::uint32_t fieldHash) const {
  return content<std::vector<std::int32_t>>(*this, "XNMessageBase::getlistlong_const",
                                            {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistlong(short memNum, short index, const std::vector<std::int32_t>* value,
                                std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistlong", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::uint32_t>*& XNMessageBase::getlistulong(short memNum, short index, std::uint32_t msgTag,
                                                         std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::uint32_t>>(*this, "XNMessageBase::getlistulong",
                                                 {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::uint32_t>* XNMessageBase::getlistulong_const(short memNum, short index,
                                                                    std::uint32_t msgTag,
                                                                    std::uint32_t fieldHash) const {
  return content<std::vector<std::uint32_t>>(*this, "XNMessageBase::getlistulong_const",
                                             {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistulong(short memNum, short index, const std::vector<std::uint32_t>* value,
                                 std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistulong", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::int64_t>*& XNMessageBase::getlistlonglong(short memNum, short index, std::uint32_t msgTag,
                                                           std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::int64_t>>(*this, "XNMessageBase::getlistlonglong",
                                                {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::int64_t>* XNMessageBase::getlistlonglong_const(short memNum, short index,
                                                                      std::uint32_t msgTag,
                                                                      std::uint32_t fieldHash) const {
  return content<std::vector<std::int64_t>>(*this, "XNMessageBase::getlistlonglong_const",
                                            {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistlonglong(short memNum, short index, const std::vector<std::int64_t>* value,
                                    std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistlonglong", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::uint64_t>*& XNMessageBase::getlistulonglong(short memNum, short index, std::uint32_t msgTag,
                                                             std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::uint64_t>>(*this, "XNMessageBase::getlistulonglong",
                                                 {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::uint64_t>* XNMessageBase::getlistulonglong_const(short memNum, short index,
                                                                        std::uint32_t msgTag,
                                                                        std::uint32_t fieldHash) const {
  return content<std::vector<std::uint64_t>>(*this, "XNMessageBase::getlistulonglong_const",
                                             {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistulonglong(short memNum, short index, const std::vector<std::uint64_t>* value,
                                     std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistulonglong", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<float>*& XNMessageBase::getlistfloat(short memNum, short index, std::uint32_t msgTag,
                                                 std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<float>>(*this, "XNMessageBase::getlistfloat",
                                         {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<float>* XNMessageBase::getlistfloat_const(short memNum, short index, std::uint32_t msgTag,
                                                            std::uint32_t fieldHash) const {
  return content<std::vector<float>>(*this, "XNMessageBase::getlistfloat_const",
                                     {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistfloat(short memNum, short index, const std::vector<float>* value,
                                 std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistfloat", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<double>*& XNMessageBase::getlistdouble(short memNum, short index, std::uint32_t msgTag,
                                                   std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<double>>(*this, "XNMessageBase::getlistdouble",
                                          {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<double>* XNMessageBase::getlistdouble_const(short memNum, short index, std::uint32_t msgTag,
                                                              std::uint32_t fieldHash) const {
  return content<std::vector<double>>(*this, "XNMessageBase::getlistdouble_const",
                                      {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistdouble(short memNum, short index, const std::vector<double>* value,
                                  std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistdouble", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::string>*& XNMessageBase::getliststring(short memNum, short index, std::uint32_t msgTag,
                                                        std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::string>>(*this, "XNMessageBase::getliststring",
                                               {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::string>* XNMessageBase::getliststring_const(short memNum, short index,
                                                                   std::uint32_t msgTag,
                                                                   std::uint32_t fieldHash) const {
  return content<std::vector<std::string>>(*this, "XNMessageBase::getliststring_const",
                                           {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setliststring(short memNum, short index, const std::vector<std::string>* value,
                                  std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setliststring", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<std::u16string>*& XNMessageBase::getlistwstring(short memNum, short index, std::uint32_t msgTag,
                                                            std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<std::u16string>>(*this, "XNMessageBase::getlistwstring",
                                                  {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<std::u16string>* XNMessageBase::getlistwstring_const(short memNum, short index,
                                                                       std::uint32_t msgTag,
                                                                       std::uint32_t fieldHash) const {
  return content<std::vector<std::u16string>>(*this, "XNMessageBase::getlistwstring_const",
                                              {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistwstring(short memNum, short index, const std::vector<std::u16string>* value,
                                   std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistwstring", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<bstring>*& XNMessageBase::getlistbstring(short memNum, short index, std::uint32_t msgTag,
                                                     std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<bstring>>(*this, "XNMessageBase::getlistbstring",
                                           {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<bstring>* XNMessageBase::getlistbstring_const(short memNum, short index,
                                                                std::uint32_t msgTag,
                                                                std::uint32_t fieldHash) const {
  return content<std::vector<bstring>>(*this, "XNMessageBase::getlistbstring_const",
                                       {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistbstring(short memNum, short index, const std::vector<bstring>* value,
                                   std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistbstring", {memNum, index, msgTag, fieldHash}, value);
}

std::vector<XNMessageBase>*& XNMessageBase::getlistobject(short memNum, short index, std::uint32_t msgTag,
                                                          std::uint32_t fieldHash, bool markSet) {
  return contentMade<std::vector<XNMessageBase>>(*this, "XNMessageBase::getlistobject",
                                                 {memNum, index, msgTag, fieldHash}, markSet);
}
const std::vector<XNMessageBase>* XNMessageBase::getlistobject_const(short memNum, short index,
                                                                     std::uint32_t msgTag,
                                                                     std::uint32_t fieldHash) const {
  return content<std::vector<XNMessageBase>>(*this, "XNMessageBase::getlistobject_const",
                                             {memNum, index, msgTag, fieldHash});
}
void XNMessageBase::setlistobject(short memNum, short index, const std::vector<XNMessageBase>* value,
                                  std::uint32_t msgTag, std::uint32_t fieldHash) {
  setContent(*this, "XNMessageBase::setlistobject", {memNum, index, msgTag, fieldHash}, value);
}

}  // namespace zqxml
