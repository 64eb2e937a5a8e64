// ZqXMLContextInfo: the context of one codec call.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/xml/encoding_flags.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml {

/// The context of one codec call: parameters of password routines, errors, the password type. Owned by the
/// caller; whatever it is handed to only borrows it. No lock: it belongs to one call.
class ZQXML_EXPORT ZqXMLContextInfo {
 public:
  /// Appends an error; an earlier one is never replaced.
  void setError(int code, const std::string& details);
  /// Whether there is any error.
  bool isErrorSet() const { return errorSet_; }
  /// The codes of all errors, in the order in which they came.
  const std::vector<int>& getErrorCodes() const { return errorCodes_; }
  /// All details, each followed by one line feed.
  std::string getErrorDetails() const;

  /// Inserts a named value for password routines; a name that is there keeps its value. The value is not
  /// owned.
  void addParam(const std::string& name, void* value);
  /// Null for an empty name or an unknown one.
  void* getParam(const std::string& name) const;

  /// @{
  /// Password type of the call (Annotation::PasswordEncryptType as a number), 0 by default.
  void setPasswordEncType(int type) { encodingFlags_.passwordEncType = type; }
  int getPasswordEncType() const { return encodingFlags_.passwordEncType; }
  /// @}
  /// Default flags with that password type.
  const EncodingFlags& getEncodingFlags() const { return encodingFlags_; }

  /// @{
  /// For callers and routines; the codecs do not read it.
  void setValidate(bool validate) { validate_ = validate; }
  bool getValidate() const { return validate_; }
  /// @}

 private:
  std::map<std::string, void*> params_;
  EncodingFlags encodingFlags_;
  bool validate_ = false;
  bool errorSet_ = false;
  std::vector<int> errorCodes_;
  std::vector<std::string> errorDetails_;
};

}  // namespace zqxml
