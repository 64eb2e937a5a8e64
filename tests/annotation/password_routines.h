#pragma once

#include <gtest/gtest.h>
#include <zqxml/message/bstring.h>
#include <zqxml/xml/xml_decoder.h>

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

}  // namespace zqxml
