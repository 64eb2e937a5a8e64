#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <tests/support/gate.h>
#include <unistd.h>
#include <zqxml/platform/thread_pool.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

using std::chrono::milliseconds;
constexpr milliseconds kLong{20'000};

unsigned countUp(void* counter) {
  ++*static_cast<std::atomic<int>*>(counter);
  return 0;
}

TEST(ZqThreadPool, UnpreparedPoolTakesNothing) {
  ZqThreadPool pool;
  std::atomic<int> count{0};
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 0U);
  EXPECT_EQ(pool.doWork(&countUp, &count), 0xFFFFFFFFU);
  EXPECT_TRUE(pool.waitUntilIdle(milliseconds(0)));
  EXPECT_EQ(count, 0);
}

TEST(ZqThreadPool, IsPreparedOnce) {
  ZqThreadPool pool;
  EXPECT_FALSE(pool.initThreadPool("pool", 300, 20, 20, 0));
  EXPECT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 20));
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 20U);
  EXPECT_FALSE(pool.initThreadPool("pool", 300, 20, 20, 30));
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 20U);
}

TEST(ZqThreadPool, RunsJobsOnAnotherThread) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("a name longer than the system's", 300, 20, 20, 2));
  struct Seen {
    std::thread::id id;
    std::string name;
  } seen;
  const auto look = [](void* argument) {
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    *static_cast<Seen*>(argument) = {std::this_thread::get_id(), name};
    return 0U;
  };
  EXPECT_EQ(pool.doWork(look, &seen), 0U);
  ASSERT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_NE(seen.id, std::this_thread::get_id());
  EXPECT_EQ(seen.name, "a name longer t");
}

TEST(ZqThreadPool, RefusesWhenAllThreadsAreBusy) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 2));
  Gate gate;
  std::atomic<int> count{0};
  EXPECT_EQ(pool.doWork(&Gate::job, &gate), 0U);
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 1U);
  EXPECT_EQ(pool.doWork(&Gate::job, &gate), 0U);
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 0U);
  EXPECT_TRUE(gate.waitForArrivals(2)) << "both run at once";
  EXPECT_EQ(pool.doWork(&countUp, &count), ZqThreadPool::kRefused);
  EXPECT_FALSE(pool.waitUntilIdle(milliseconds(1)));
  gate.open();
  EXPECT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_EQ(pool.getCurrentAvailableThreadCount(), 2U);
  EXPECT_EQ(pool.doWork(&countUp, &count), 0U);
  EXPECT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_EQ(count, 1);
}

TEST(ZqThreadPool, NullJobIsRefused) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 2));
  EXPECT_EQ(pool.doWork(nullptr, nullptr), ZqThreadPool::kRefused);
}

TEST(ZqThreadPool, WhatAJobThrowsIsDropped) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool(nullptr, 300, 20, 20, 1));
  EXPECT_EQ(pool.doWork([](void*) -> unsigned { throw std::runtime_error("job"); }, nullptr), 0U);
  ASSERT_TRUE(pool.waitUntilIdle(kLong));
  std::atomic<int> count{0};
  EXPECT_EQ(pool.doWork(&countUp, &count), 0U);
  EXPECT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_EQ(count, 1);
}

TEST(ZqThreadPool, IdleThreadsEndAndNewOnesStart) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 0, 20, 20, 2));
  std::atomic<int> count{0};
  for (int i = 0; i < 20; ++i) {
    while (pool.doWork(&countUp, &count) != 0) std::this_thread::yield();
    ASSERT_TRUE(pool.waitUntilIdle(kLong));
  }
  EXPECT_EQ(count, 20);
}

TEST(ZqThreadPool, DestructionWaitsForRunningJobs) {
  std::atomic<int> count{0};
  {
    ZqThreadPool pool;
    ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 4));
    for (int i = 0; i < 4; ++i) {
      const auto slow = [](void* counter) {
        std::this_thread::sleep_for(milliseconds(20));
        return countUp(counter);
      };
      EXPECT_EQ(pool.doWork(slow, &count), 0U);
    }
  }
  EXPECT_EQ(count, 4);
}

TEST(ZqThreadPool, SignalsAreNotDeliveredToItsThreads) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 1));
  bool blocked = false;
  const auto look = [](void* result) {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    *static_cast<bool*>(result) = sigismember(&mask, SIGTERM) == 1 && sigismember(&mask, SIGUSR1) == 1;
    return 0U;
  };
  EXPECT_EQ(pool.doWork(look, &blocked), 0U);
  ASSERT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_TRUE(blocked);
}

TEST(ZqThreadPool, ThreadsSubmitAtOnce) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 3));
  std::atomic<int> count{0};
  std::atomic<int> taken{0};
  {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        for (int k = 0; k < 300; ++k) {
          EXPECT_LE(pool.getCurrentAvailableThreadCount(), 3U);
          if (pool.doWork(&countUp, &count) == 0) ++taken;
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_TRUE(pool.waitUntilIdle(kLong));
  EXPECT_EQ(count, taken);
  EXPECT_GT(taken, 0);
}

TEST(ZqThreadPool, ChildOfAForkFindsItReady) {
  ZqThreadPool pool;
  ASSERT_TRUE(pool.initThreadPool("pool", 300, 20, 20, 2));
  Gate gate;
  EXPECT_EQ(pool.doWork(&Gate::job, &gate), 0U);
  EXPECT_TRUE(gate.waitForArrivals(1));
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    std::atomic<int> count{0};
    const bool ready = pool.getCurrentAvailableThreadCount() == 2 && pool.doWork(&countUp, &count) == 0 &&
                       pool.waitUntilIdle(kLong) && count == 1;
    _exit(ready ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  gate.open();
  EXPECT_TRUE(pool.waitUntilIdle(kLong));
}

TEST(ZqThreadPool, PoolThatIsNeverDestroyedDoesNotHinderExit) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(20);
    auto* const pool = new ZqThreadPool;
    auto* const gate = new Gate;
    pool->initThreadPool("pool", 300, 20, 20, 2);
    pool->doWork(&Gate::job, gate);
    gate->waitForArrivals(1);
    // Objects with static lifetime are destroyed here, while the job still runs.
    std::exit(0);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace zqxml
