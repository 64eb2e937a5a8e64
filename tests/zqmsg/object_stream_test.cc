#include "tools/zqmsg/object_stream.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tools/zqmsg/byte_source.h"
#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/output.h"

namespace zqxml::tool {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::HasSubstr;

class ObjectStream : public testing::Test {
 protected:
  // All records of a file, and what the failure at its end says, if there is one.
  std::vector<std::string> read(const std::string& bytes) {
    ByteSource source(folder_.write("objects", bytes));
    ObjectReader reader(source);
    std::vector<std::string> records;
    std::string data;
    try {
      while (reader.next(data)) records.push_back(data);
      failure_.clear();
    } catch (const Failure& failure) {
      failure_ = failure.what();
      EXPECT_EQ(failure.status(), kFailed);
    }
    return records;
  }

  ScratchFolder folder_;
  std::string failure_;
};

TEST_F(ObjectStream, EmptyFileHoldsNoRecord) {
  EXPECT_TRUE(read("").empty());
  EXPECT_EQ(failure_, "");
}

TEST_F(ObjectStream, WrittenRecordsComeBackInOrder) {
  const std::string path = folder_.path("written");
  Output output(path);
  writeObjectRecord(output, "abc");
  writeObjectRecord(output, std::string(300, 'x'));
  output.commit();
  std::string expected =
      "\0\0\0\x03"
      "abc\0\0\x01\x2c"s;
  expected.append(300, 'x');
  EXPECT_EQ(folder_.read("written"), expected);
  EXPECT_EQ(read(folder_.read("written")), (std::vector<std::string>{"abc", std::string(300, 'x')}));
}

TEST_F(ObjectStream, FileThatEndsInsideALengthFails) {
  EXPECT_EQ(read("\0\0\0\x01z\0\0"s).size(), 1u);
  EXPECT_EQ(failure_, "object 2, at byte 5, ends inside its length");
}

TEST_F(ObjectStream, FileThatEndsInsideARecordFails) {
  EXPECT_EQ(read("\0\0\0\x05"
                 "abc"s)
                .size(),
            0u);
  EXPECT_EQ(failure_, "object 1, at byte 0, ends after 3 of 5 bytes");
}

TEST_F(ObjectStream, LengthZeroFails) {
  EXPECT_EQ(read("\0\0\0\0abcd"s).size(), 0u);
  EXPECT_EQ(failure_, "object 1, at byte 0, has the length 0");
}

TEST_F(ObjectStream, LengthThatTheFileCannotHoldTakesNoMemory) {
  EXPECT_EQ(read("\xff\xff\xff\xff"
                 "abc"s)
                .size(),
            0u);
  EXPECT_THAT(failure_, HasSubstr("ends after 3 of 4294967295 bytes"));
}

TEST_F(ObjectStream, RecordLargerThanTheBufferComesWhole) {
  const std::string data(3 << 20, 'q');
  std::string file = "\0\x30\0\0"s;
  file += data;
  file += "\0\0\0\x01z"s;
  EXPECT_THAT(read(file), ElementsAre(data, "z"));
}

TEST_F(ObjectStream, NumberAndLengthAreThoseOfTheRecordAtHand) {
  ByteSource source(folder_.write("objects", "\0\0\0\x01z\0\0\0\x02yy"s));
  ObjectReader reader(source);
  std::string data;
  ASSERT_TRUE(reader.next(data));
  EXPECT_EQ(reader.number(), 1u);
  ASSERT_TRUE(reader.next(data));
  EXPECT_EQ(reader.number(), 2u);
  EXPECT_EQ(reader.length(), 2u);
  EXPECT_EQ(source.position(), 11u);
}

TEST(ByteSource, PeekTakesNothing) {
  const ScratchFolder folder;
  ByteSource source(folder.write("file", "abcdef"));
  EXPECT_EQ(source.peek(3), "abc");
  EXPECT_EQ(source.peek(100), "abcdef");
  std::string out;
  EXPECT_EQ(source.read(out, 4), 4u);
  EXPECT_EQ(out, "abcd");
  EXPECT_EQ(source.position(), 4u);
  EXPECT_EQ(source.peek(3), "ef");
}

TEST(ByteSource, MissingFileFailsWithItsNameAndTheReason) {
  try {
    const ByteSource source("no/such/file");
    ADD_FAILURE() << "the file was opened";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.where(), "no/such/file");
    EXPECT_STREQ(failure.what(), "cannot be read: No such file or directory");
    EXPECT_EQ(failure.status(), kFailed);
  }
}

}  // namespace
}  // namespace zqxml::tool
