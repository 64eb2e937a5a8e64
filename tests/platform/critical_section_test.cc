#include <gtest/gtest.h>
#include <zqxml/platform/critical_section.h>

#include <thread>
#include <vector>

namespace zqxml {
namespace {

TEST(ZqCriticalSection, MayBeTakenAgainByItsThread) {
  ZqCriticalSection section;
  const ZqCriticalSectionLock outer(section);
  const ZqCriticalSectionLock inner(section);
  EXPECT_TRUE(section.tryEnter());
  section.leave();
}

TEST(ZqCriticalSection, KeepsOtherThreadsOut) {
  ZqCriticalSection section;
  section.enter();
  bool entered = true;
  std::thread([&] { entered = section.tryEnter(); }).join();
  EXPECT_FALSE(entered);
  section.leave();
  std::thread([&] {
    entered = section.tryEnter();
    if (entered) section.leave();
  }).join();
  EXPECT_TRUE(entered);
}

TEST(ZqCriticalSection, ThreadsTakeTurns) {
  ZqCriticalSection section;
  int count = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int k = 0; k < 1000; ++k) {
        const ZqCriticalSectionLock lock(section);
        ++count;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count, 4000);
}

}  // namespace
}  // namespace zqxml
