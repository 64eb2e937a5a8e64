// Passwords: their encryption with a key file, and what happens without one.
#include <sys/stat.h>

#include <array>
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Passwords : public ZqmsgTest {
 protected:
  // Runs with a key file of these bytes.
  ProgramRun withKey(std::vector<std::string> arguments, const std::string& input,
                     const std::string& key = std::string(32, 'k')) const {
    chmod(folder_.write("key", key).c_str(), 0600);
    ProgramSetup setup;
    setup.input = input;
    setup.environment = {"ZQXML_KEY_FILE=" + folder_.path("key")};
    return zqmsg(std::move(arguments), setup);
  }
  static std::string sample(const std::string& field, const std::string& password) {
    return "<App_AnnotationSample " + field + "=\"" + password + "\"/>";
  }
};

/// A field whose annotation asks for an encryption that the program has routines for.
struct Type {
  const char* field;
  int type;
};

class PasswordTypes : public Passwords, public testing::WithParamInterface<Type> {};

/// Those of which the stored form is kept when they are read: all but Base64.
class StoredPasswordTypes : public PasswordTypes {};

TEST_P(StoredPasswordTypes, PlainPasswordIsEncryptedWithTheKey) {
  for (const char* form : {"xml", "binary", "objects"}) {
    const ProgramRun run = withKey({"convert", "--to", form}, sample(GetParam().field, "hush hush"));
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.err, IsEmpty());
    EXPECT_THAT(run.out, Not(HasSubstr("hush")));
    const ProgramRun difference =
        withKey({"diff", "-", folder_.write("plain", sample(GetParam().field, "hush hush"))}, run.out);
    EXPECT_THAT(difference, Exits(10)) << "the encrypted form is another one";
    EXPECT_THAT(difference.out, HasSubstr("a password of type " + std::to_string(GetParam().type) + " != "));
  }
}

TEST_P(StoredPasswordTypes, EncryptedPasswordTravelsWithoutAKey) {
  const std::string xml = withKey({"convert", "--to", "xml"}, sample(GetParam().field, "hush hush")).out;
  const std::string binary = zqmsg({"convert", "--to", "binary"}, xml).out;
  const ProgramRun run = zqmsg({"convert", "--to", "xml"}, binary);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, xml);
}

TEST_P(PasswordTypes, WithoutAKeyFileThereIsNoHandler) {
  folder_.write("out", "old");
  for (const char* form : {"xml", "xml16", "binary", "objects"}) {
    const ProgramRun run =
        zqmsg({"convert", "--to", form, "-o", "out"}, sample(GetParam().field, "hush hush"));
    EXPECT_THAT(run, Exits(6));
    EXPECT_THAT(run.err, HasSubstr("a password needs an encryption for which no key is configured"));
    EXPECT_THAT(run.err, HasSubstr(GetParam().field));
    EXPECT_THAT(run.err, HasSubstr("$ZQXML_KEY_FILE"));
    EXPECT_THAT(run.err, Not(HasSubstr("hush")));
  }
  EXPECT_EQ(folder_.read("out"), "old");
}

TEST_P(PasswordTypes, MaskNeedsNoKey) {
  const ProgramRun run =
      zqmsg({"convert", "--to", "xml", "--mask-passwords"}, sample(GetParam().field, "hush hush"));
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr(std::string(GetParam().field) + "=\"*******\""));
}

constexpr Type kBase64{"base64Password", 9};
constexpr std::array kStored{Type{"ver1Password", 3}, Type{"ver2Password", 4}, Type{"ver3Password", 5},
                             Type{"ver5Password", 10}};
const auto kName = [](const auto& type) { return std::string(type.param.field); };

INSTANTIATE_TEST_SUITE_P(Stored, StoredPasswordTypes, testing::ValuesIn(kStored), kName);
INSTANTIATE_TEST_SUITE_P(Stored, PasswordTypes, testing::ValuesIn(kStored), kName);
INSTANTIATE_TEST_SUITE_P(Base64, PasswordTypes, testing::Values(kBase64), kName);

TEST_F(Passwords, Base64IsReadBackAsThePlainPassword) {
  const std::string plain = sample(kBase64.field, "hush hush");
  const ProgramRun run = withKey({"convert", "--to", "xml"}, plain);
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, Not(HasSubstr("hush")));
  EXPECT_THAT(withKey({"diff", "-", folder_.write("plain", plain)}, run.out), Exits(0));
}

TEST_F(Passwords, PlainTypeNeedsNoKey) {
  const ProgramRun run = zqmsg({"convert", "--to", "xml"}, sample("plainPassword", "hush"));
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("plainPassword=\"hush\""));
}

TEST_F(Passwords, KeyFileThatIsNoKeyIsToldOf) {
  const ProgramRun run = withKey({"convert", "--to", "xml"}, sample("ver3Password", "hush"), "too short");
  EXPECT_THAT(run, Exits(6));
  EXPECT_THAT(run.err, HasSubstr("look at the key file that $ZQXML_KEY_FILE names"));
  EXPECT_THAT(run.out, IsEmpty());
}

TEST_F(Passwords, FieldWithoutAnnotationIsNotWrittenInBinary) {
  // What would be written could not be read beyond that field.
  const ProgramRun run = zqmsg({"convert", "--to", "binary"}, sample("noAnnotationPassword", "hush"));
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("No Password annotation found on member : noAnnotationPassword"));
  EXPECT_THAT(run.out, IsEmpty());
}

TEST_F(Passwords, FieldWithoutAnnotationIsLeftOutOfXmlWithAWarning) {
  const ProgramRun run = zqmsg({"convert", "--to", "xml"}, sample("noAnnotationPassword", "hush"));
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, Not(HasSubstr("noAnnotationPassword")));
  EXPECT_THAT(run.err, HasSubstr("warning: "));
}

}  // namespace
}  // namespace zqxml
