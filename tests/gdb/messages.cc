// Messages to look at in a debugger: good ones, and memory that is none.
#include <zqxml/catalogue/generated/App.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

using zqxml::App::AnnotationSample;
using zqxml::App::TestMessage1;
using zqxml::App::TestMessage2;

namespace {

void fill(TestMessage2& message) {
  message.setIntField(-5);
  message.setStrField("te\"xt\n\xc3\xbc");
  message.setListInt({1, -2});
  message.mutableM1().setStrFieldM1(std::string(300, 'x'));
  message.setMapStr_LL({{"a", 1}, {"b", 2}, {"c", 3}});
  message.setUlonglongField(~std::uint64_t{0});
  message.setBoolField(true);
  message.setWstrField(u"wide \u00fc");
  message.setEnumField(zqxml::App::TestEnum::TEST_TWO);
  message.setDoubleField(2.5);
  message.setFloatField(-1.5f);
  message.setListEnum({1, 9});
  message.setListString({"a", ""});
  message.addToListM1().setIntFieldM1(1);
  message.addToListM1();
  message.setBstrField(std::string("a\0\xff", 3));
  message.addToMapLL_M1(-4).setIntFieldM1(4);
  message.addToMapStr_M1("k").setIntFieldM1(5);
  TestMessage1 value;
  value.setIntFieldM1(6);
  message.mutableMapM1_M1().emplace(TestMessage1(), std::move(value));
  message.setTime64(4000000000);
}

/// The debugger stops here and looks at what it is given.
void look(TestMessage2& message, AnnotationSample& secrets, TestMessage1& small,
          const zqxml::pstring& password, std::vector<TestMessage1>& several, zqxml::XNMessageBase* none,
          zqxml::XNMessageBase* ended) {
  asm volatile(""
               :
               : "r"(&message), "r"(&secrets), "r"(&small), "r"(&password), "r"(&several), "r"(none),
                 "r"(ended)
               : "memory");
}

}  // namespace

int main() {
  TestMessage2 message;
  fill(message);
  AnnotationSample secrets;
  secrets.setDay(5);
  secrets.setSensitiveText("hidden 1");
  secrets.setSensitiveNumber(4711);
  secrets.setPlainPassword("hidden 2");
  secrets.setVer5Password("hidden 3", zqxml::Annotation::PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER5);
  TestMessage1 small;
  small.setStrFieldM1("small");
  small.setListIntM1({});
  std::vector<TestMessage1> several(2);
  several[0] = std::move(several[1]);
  alignas(zqxml::XNMessageBase) unsigned char bytes[sizeof(zqxml::XNMessageBase)];
  std::memset(bytes, 0xa5, sizeof bytes);
  auto* ended = new TestMessage2(message);
  delete ended;
  look(message, secrets, small, secrets.getVer5Password(), several,
       reinterpret_cast<zqxml::XNMessageBase*>(bytes), ended);
  return 0;
}
