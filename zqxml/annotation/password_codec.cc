#include <zqxml/annotation/internal/password_registry.h>
#include <zqxml/annotation/internal/password_type.h>
#include <zqxml/annotation/internal/wiped_text.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_decoder.h>

#include <string_view>

namespace zqxml {
namespace {

/// Types with a session layer; their routines need "MessageInfo".
constexpr PasswordTypeSet kSessionForms{kSession, kSessionPlusVersion2, kSessionPlusVersion3};
/// Types of a context that ask a session routine to re-encrypt.
constexpr PasswordTypeSet kReEncrypting{kUnknown, kVersion2, kVersion3, kVersion5, kVersion8};
/// Types of a context that take a password as the decryption left it.
constexpr PasswordTypeSet kTakenAsDecrypted{kUnknown,     kPlainText, kVersion2, kVersion3,
                                            kPassThrough, kVersion5,  kVersion8};

/// First characters of a text that are no type mark: the text is a plain password.
constexpr bool isTypeMark(char16_t first) {
  return first > kPlainText && first <= kVersion8 && first != kPassThrough;
}

/// Puts the result of the routine into `text` and overwrites what it held.
void transform(PasswordRoutine routine, bstring& text, ZqXMLContextInfo* context) {
  bstring result = routine(text, context);
  replaceWiping(text.str(), result.str());
}

/// Runs a routine with a context of its own that knows nothing but the type.
void transform(PasswordRoutine routine, bstring& text, int type) {
  ZqXMLContextInfo context;
  context.setPasswordEncType(type);
  transform(routine, text, &context);
}

/// Takes off the encryption of `type`; without a routine, which is logged, the text stays.
void DecryptPasswordString(bstring& text, int type) {
  const PasswordRoutine routine = decryptionRoutine(type);
  if (routine == nullptr) {
    logError("DecryptPasswordString", "Handler is not Registered for the encryption type:[%d][%s]", type,
             passwordTypeName(type));
    return;
  }
  transform(routine, text, type);
}

/// Type of a password once its routine has run.
int typeAfterDecryption(int type, bool reEncrypt) {
  if ((type == kSession && reEncrypt) || type == kSessionPlusVersion3) return kVersion3;
  return type == kSessionPlusVersion2 ? kVersion2 : kPlainText;
}

}  // namespace

eXNMsgRet XMLDecoder::encryptPassword(int type, const pstring& value, std::string& text) const {
  bstring work(value.str());
  const WipeAtExit wipe(work.str());
  const int stored = value.getEncryptionType();
  const int target = writtenType(flags_, type);
  if (stored != target) {
    if (stored != kPlainText) DecryptPasswordString(work, stored);
    if (const PasswordRoutine routine = encryptionRoutine(target); routine == nullptr) {
      if (target != kPlainText) return XN_MSG_NO_PASSWORD_HANDLER;
    } else if (context_ != nullptr) {
      transform(routine, work, context_);
    } else {
      transform(routine, work, target);
    }
  }
  if (target == kPlainText) {
    text = work.str();
  } else {
    // QUIRK: an encrypted text ends at its first NUL.
    text = static_cast<char>(target) + UlBase64::Encode(work.c_str());
  }
  return XN_MSG_OK;
}

bool XMLDecoder::decryptPassword(const FieldDef& field, const char16_t* text, pstring*& value) {
  if (text == nullptr) return false;
  const auto give = [&value](const std::string& password, int type) {
    auto* made = new pstring(password);
    made->setEncryptionType(type);
    value = made;
    return true;
  };
  const std::u16string_view form(text);
  if (!isTypeMark(*text)) {
    logDebug("XMLDecoder::decryptPassword", 10,
             "Encryption Type Not Found for Pstring Field %s. Marking it As Plain ", field.getName());
    setEncryptionTypeUsed(kPlainText);
    std::string plain = toUtf8(form);
    const WipeAtExit wipe(plain);
    return give(plain, kPlainText);
  }

  int type = *text;
  setEncryptionTypeUsed(type);
  bstring password;
  const WipeAtExit wipe(password.str());
  if (!UlBase64::Decode(toUtf8(form.substr(1)), password.str())) return false;
  const int wanted = context_ == nullptr ? kUnknown : context_->getPasswordEncType();
  if (wanted == kPassThrough) {
    logDebug("XMLDecoder::decryptPassword", 10, "Password Encryption Type Marked as PassThrough");
    return give(password.str(), type);
  }
  // Without a context a stored form stays as it is; getPlainPassword can open it later.
  if (context_ != nullptr || !kStoredForms.contains(type)) {
    const bool reEncrypt = context_ != nullptr && kReEncrypting.contains(wanted);
    // QUIRK: any failure but a missing routine counts as done; the text stays and is taken for plain.
    if (ProcessPasswordAnnotation(password, reEncrypt) == XN_MSG_NO_PASSWORD_HANDLER) {
      logError("XMLDecoder::decryptPassword", "Password Decryption Handler Not Found for Type %d", type);
      return false;
    }
    type = typeAfterDecryption(type, reEncrypt);
  }
  if (context_ != nullptr && !kTakenAsDecrypted.contains(wanted)) {
    const PasswordRoutine routine = encryptionRoutine(wanted);
    if (routine == nullptr) {
      logError("XMLDecoder::decryptPassword", " Password Encryption Handler Not Registered for Type %d",
               wanted);
      return false;
    }
    transform(routine, password, wanted);
    type = wanted;
  }
  return give(password.str(), type);
}

eXNMsgRet XMLDecoder::ProcessPasswordAnnotation(bstring& text, bool reEncrypt) {
  if (text.empty()) {
    logError("XMLDecoder::ProcessPasswordAnnotation", "Empty Password Input String");
    return XN_MSG_FAILED;
  }
  const int type = getEncryptionTypeUsed();
  if (type < kSession || type > kVersion8) {
    logError("XMLDecoder::ProcessPasswordAnnotation",
             "Password Encryption Type[%d] is not Valid. Exiting Decoding", type);
    return XN_MSG_FAILED;
  }
  ZqXMLContextInfo context;
  context.setPasswordEncType(type);
  if (kSessionForms.contains(type)) {
    void* const messageInfo = context_ == nullptr ? nullptr : context_->getParam("MessageInfo");
    if (messageInfo == nullptr) {
      logError(
          "XMLDecoder::ProcessPasswordAnnotation",
          "Password Encryption Type is SESSION_ENCRYPTION. Context Object Not Passed.Exiting Decryption");
      return XN_MSG_FAILED;
    }
    context.addParam("MessageInfo", messageInfo);
    // Only a plain session form may be re-encrypted by its routine.
    reEncrypt = reEncrypt && type == kSession;
  }
  int one = 1;
  if (reEncrypt) context.addParam("reEncrypt", &one);
  const PasswordRoutine routine = decryptionRoutine(type);
  if (routine == nullptr) {
    logError("XMLDecoder::ProcessPasswordAnnotation", "Password Decryption Handler Not Found for type [%d]",
             type);
    return XN_MSG_NO_PASSWORD_HANDLER;
  }
  transform(routine, text, &context);
  return XN_MSG_OK;
}

}  // namespace zqxml
