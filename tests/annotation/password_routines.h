#pragma once

#include <gtest/gtest.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_decoder.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace zqxml {

/// A call of one of the routines that PasswordRoutinesTest registers.
struct RoutineCall {
  std::string routine;  ///< "enc5", "dec5", ...
  std::string text;
  const ZqXMLContextInfo* context = nullptr;
  int contextType = 0;
  const void* messageInfo = nullptr;
  int reEncrypt = 0;  ///< the number behind the parameter, 0 without it
};

/// A routine that has no way to do its work.
inline bstring failingRoutine(bstring, ZqXMLContextInfo*) {
  throw std::runtime_error("no cipher");
}

/// Registers routines that wrap the text ("enc5(secret)") and keep a record of their calls. At the end of a
/// test no routine is registered.
class PasswordRoutinesTest : public testing::Test {
 protected:
  PasswordRoutinesTest() { calls().clear(); }
  ~PasswordRoutinesTest() override {
    for (int type = 0; type < 11; ++type) {
      XMLDecoder::registerPasswordEncAlgo(typeOf(type), nullptr);
      XMLDecoder::registerPasswordDecAlgo(typeOf(type), nullptr);
    }
  }

  static Annotation::PasswordEncryptType typeOf(int type) {
    return static_cast<Annotation::PasswordEncryptType>(type);
  }
  template <int kType>
  static bstring encrypt(bstring text, ZqXMLContextInfo* context) {
    return called("enc" + std::to_string(kType), text.str(), *context);
  }
  template <int kType>
  static bstring decrypt(bstring text, ZqXMLContextInfo* context) {
    return called("dec" + std::to_string(kType), text.str(), *context);
  }
  template <int... kTypes>
  static void registerEncryption() {
    (XMLDecoder::registerPasswordEncAlgo(typeOf(kTypes), encrypt<kTypes>), ...);
  }
  template <int... kTypes>
  static void registerDecryption() {
    (XMLDecoder::registerPasswordDecAlgo(typeOf(kTypes), decrypt<kTypes>), ...);
  }
  static std::vector<RoutineCall>& calls() {
    static std::vector<RoutineCall> made;
    return made;
  }

 private:
  static bstring called(const std::string& routine, const std::string& text,
                        const ZqXMLContextInfo& context) {
    const auto* reEncrypt = static_cast<const int*>(context.getParam("reEncrypt"));
    calls().push_back({routine, text, &context, context.getPasswordEncType(), context.getParam("MessageInfo"),
                       reEncrypt == nullptr ? 0 : *reEncrypt});
    return routine + "(" + text + ")";
  }
};

inline constexpr FieldDef kField("secretField", nullptr, 1, 0, 0, 0, FDT_PSTRING);

/// The text form of stored bytes: mark and Base64.
inline std::string formOf(int type, const std::string& stored) {
  return static_cast<char>(type) + UlBase64::Encode(stored);
}

/// A context of a password type, or none for -1; with or without "MessageInfo".
class Context {
 public:
  explicit Context(int type, bool messageInfo = false) : used_(type != -1) {
    info_.setPasswordEncType(type);
    if (messageInfo) info_.addParam("MessageInfo", &marker_);
  }
  ZqXMLContextInfo* get() { return used_ ? &info_ : nullptr; }
  const void* messageInfo() const { return &marker_; }

 private:
  bool used_;
  int marker_ = 0;
  ZqXMLContextInfo info_;
};

/// Drives encryptPassword and decryptPassword.
class PasswordCodec : public PasswordRoutinesTest {
 protected:
  struct Encrypted {
    int result;
    std::string text;
  };
  static Encrypted encryptPassword(int type, const pstring& value, const XMLDecoder& decoder = XMLDecoder()) {
    Encrypted encrypted{-1, "untouched"};
    encrypted.result = decoder.encryptPassword(type, value, encrypted.text);
    return encrypted;
  }

  /// "type:text" of what was read, or "refused".
  static std::string decryptPassword(const std::string& text, ZqXMLContextInfo* context = nullptr) {
    XMLDecoder decoder(context);
    return decryptPassword(decoder, toUtf16(text));
  }
  static std::string decryptPassword(XMLDecoder& decoder, const std::u16string& text) {
    pstring* value = nullptr;
    const bool result = decoder.decryptPassword(kField, text.c_str(), value);
    const std::unique_ptr<pstring> owner(value);
    EXPECT_EQ(result, value != nullptr);
    return result ? std::to_string(value->getEncryptionType()) + ":" + value->str() : "refused";
  }
  static std::string decryptPassword(int mark, const std::string& stored, Context context) {
    return decryptPassword(formOf(mark, stored), context.get());
  }
  static std::vector<std::string> routinesCalled() {
    std::vector<std::string> names;
    for (const RoutineCall& call : calls()) names.push_back(call.routine);
    return names;
  }
};

}  // namespace zqxml
