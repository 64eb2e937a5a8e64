// A process that forks while its threads read and write: the child has one thread, and both roads.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <tests/support/every_type.h>
#include <tests/support/message_dump.h>
#include <tests/support/open_message.h>
#include <tests/support/xml_roads.h>
#include <unistd.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

OpenMessage filledMessage() {
  OpenMessage message = newMessage("Demo_EveryType");
  fillEveryType(message);
  return message;
}

/// Whether a message comes back from XML, in both widths, and from the binary form.
bool comesBack() {
  OpenMessage message = filledMessage();
  const std::string before = dump(message);
  std::string xml;
  std::u16string wide;
  OpenMessage read = newMessage("Demo_EveryType");
  if (message.serialize(xml) != XN_MSG_OK || read.unserialize(xml) != XN_MSG_OK || dump(read) != before)
    return false;
  if (message.serializeUTF16(wide) != XN_MSG_OK || read.unserialize(wide.c_str()) != XN_MSG_OK ||
      dump(read) != before)
    return false;
  clearBinaryLosses(message);
  BinaryBuffer buffer;
  if (BinarySerializer::serialize(message, buffer) == 0) return false;
  const std::unique_ptr<XNMessageBase> made(BinarySerializer::unserialize(buffer, nullptr, false));
  return made != nullptr && dump(*made) == dump(message);
}

/// Lets threads write and read until it ends.
class BusyThreads {
 public:
  BusyThreads() {
    for (int i = 0; i < 3; ++i)
      threads_.emplace_back([this] {
        while (!stop_) failures_ += comesBack() ? 0 : 1;
      });
  }
  ~BusyThreads() {
    stop_ = true;
    for (std::thread& thread : threads_) thread.join();
  }
  int failures() const { return failures_; }

 private:
  std::atomic<bool> stop_ = false;
  std::atomic<int> failures_ = 0;
  std::vector<std::thread> threads_;
};

/// The status of a child that tries both roads, and is killed when it hangs.
int statusOfChild() {
  const pid_t child = ::fork();
  if (child == 0) {
    ::alarm(60);
    bool good = comesBack();
    {
      const FastXmlRoads parser(false);
      good = comesBack() && good;
    }
    ::_exit(good ? 0 : 1);
  }
  int status = -1;
  return ::waitpid(child, &status, 0) == child ? status : -1;
}

TEST(Fork, ChildReadsAndWritesWhileTheParentsThreadsDo) {
  for (const bool fast : {true, false}) {
    const FastXmlRoads roads(fast);
    const BusyThreads threads;
    for (int i = 0; i < 20; ++i) ASSERT_EQ(statusOfChild(), 0);
    EXPECT_EQ(threads.failures(), 0);
  }
}

}  // namespace
}  // namespace zqxml
