#include <zqxml/annotation/internal/password_type.h>
#include <zqxml/annotation/internal/wiped_text.h>
#include <zqxml/annotation/platform_password_routines.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/zq_password.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>
#include <string_view>

namespace zqxml {
namespace {

/// A routine per type: the context that it is called with can be one of another type.
template <PasswordType kType>
bstring encryptInForm(bstring text, ZqXMLContextInfo*) {
  const WipeAtExit wipe(text.str());
  std::string stored;
  const secure_string plain{std::string_view(text.str())};
  if (ZQPassword().encrypt(ZQPassword::versionOfType(kType), plain, stored) == 0) return {};
  return stored;
}

bstring decryptAnyForm(bstring text, ZqXMLContextInfo*) {
  secure_string plain;
  if (ZQPassword().decrypt(secure_string(std::string_view(text.str())), plain) == 0) return {};
  return std::string(plain.view());
}

bstring encodeBase64(bstring text, ZqXMLContextInfo*) {
  const WipeAtExit wipe(text.str());
  return UlBase64::Encode(text.str());
}

bstring decodeBase64(bstring text, ZqXMLContextInfo*) {
  std::string plain;
  const WipeAtExit wipe(plain);
  if (!UlBase64::Decode(text.str(), plain)) return {};
  return plain;
}

struct TypeRoutines {
  PasswordType type;
  PasswordRoutine encrypt;
  PasswordRoutine decrypt;
};

constexpr TypeRoutines kRoutines[] = {
    {kVersion1, encryptInForm<kVersion1>, decryptAnyForm},
    {kVersion2, encryptInForm<kVersion2>, decryptAnyForm},
    {kVersion3, encryptInForm<kVersion3>, decryptAnyForm},
    {kBase64, encodeBase64, decodeBase64},
    {kVersion5, encryptInForm<kVersion5>, decryptAnyForm},
};

}  // namespace

void registerPlatformPasswordRoutines() {
  for (const TypeRoutines& routines : kRoutines) {
    const auto type = static_cast<Annotation::PasswordEncryptType>(routines.type);
    XMLDecoder::registerPasswordEncAlgo(type, routines.encrypt);
    XMLDecoder::registerPasswordDecAlgo(type, routines.decrypt);
  }
}

}  // namespace zqxml
