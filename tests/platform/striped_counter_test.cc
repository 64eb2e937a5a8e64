#include <gtest/gtest.h>
#include <zqxml/platform/striped_counter.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <latch>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace zqxml {
namespace {

// Nothing runs for it at the start of a program, nor at its end.
constinit StripedCounter countOfProgram;
static_assert(std::is_trivially_destructible_v<StripedCounter>);
static_assert(std::is_convertible_v<StripedCounter, int>);
static_assert(!std::is_copy_constructible_v<StripedCounter> && !std::is_copy_assignable_v<StripedCounter>);

void raise(StripedCounter& counter, int times) {
  for (int i = 0; i < times; ++i) ++counter;
}

/// So many threads at once, each of which raises as often.
void raiseInThreads(StripedCounter& counter, std::size_t count, int times) {
  std::latch start(static_cast<std::ptrdiff_t>(count));
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < count; ++i) {
    threads.emplace_back([&] {
      start.arrive_and_wait();
      raise(counter, times);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

std::string bytesOf(const StripedCounter& counter) {
  return {reinterpret_cast<const char*>(&counter), sizeof counter};
}

/// The number of each cache line, from the start of the counter, that is written when this thread raises it.
std::set<std::size_t> linesOfARaise(StripedCounter& counter) {
  const std::string before = bytesOf(counter);
  ++counter;
  const std::string after = bytesOf(counter);
  std::set<std::size_t> lines;
  for (std::size_t i = 0; i < before.size(); ++i)
    if (before[i] != after[i]) lines.insert(i / StripedCounter::kCacheLine);
  return lines;
}

TEST(StripedCounter, BeginsWithZero) {
  EXPECT_EQ(StripedCounter(), 0);
}

TEST(StripedCounter, ReadsAsAnInt) {
  StripedCounter counter;
  raise(counter, 3);
  const int number = counter;
  EXPECT_EQ(number, 3);
  EXPECT_EQ(counter + 1, 4);
  EXPECT_EQ(std::to_string(counter), "3");
}

TEST(StripedCounter, SumIsExactWithEightThreads) {
  StripedCounter counter;
  raiseInThreads(counter, 8, 20'000);
  EXPECT_EQ(counter, 160'000);
}

TEST(StripedCounter, SumIsExactWhenThreadsShareACell) {
  constexpr int kTimes = 1'000'000;
  StripedCounter counter;
  std::latch start(2);
  const auto work = [&] {
    ++counter;  // takes a turn
    start.arrive_and_wait();
    raise(counter, kTimes);
  };
  std::thread first(work);
  while (counter == 0) std::this_thread::yield();
  raiseInThreads(counter, StripedCounter::kCells - 1, 1);
  std::thread ofTheSameCell(work);
  first.join();
  ofTheSameCell.join();
  EXPECT_EQ(counter, 2 * kTimes + 1 + static_cast<int>(StripedCounter::kCells));
}

TEST(StripedCounter, CountersOfAThreadAreRaisedEachForItself) {
  StripedCounter one, other;
  raise(one, 2);
  raise(other, 5);
  EXPECT_EQ(one, 2);
  EXPECT_EQ(other, 5);
}

TEST(StripedCounter, AssignmentReplacesWhatAllThreadsRaised) {
  StripedCounter counter;
  raiseInThreads(counter, StripedCounter::kCells, 10);
  raise(counter, 10);
  counter = 7;
  EXPECT_EQ(counter, 7);
  counter = 0;
  EXPECT_EQ(counter, 0);
}

TEST(StripedCounter, AssignmentTakesNegativeNumbers) {
  StripedCounter counter;
  raise(counter, 4);
  EXPECT_EQ(counter = -40, -40);
}

TEST(StripedCounter, RaisesGoOnFromAnAssignedNumber) {
  StripedCounter counter;
  raise(counter, 9);
  counter = 100;
  raiseInThreads(counter, 4, 25);
  EXPECT_EQ(counter, 200);
}

TEST(StripedCounter, SmallestIntFollowsTheLargest) {
  StripedCounter counter;
  counter = std::numeric_limits<int>::max();
  EXPECT_EQ(++counter, std::numeric_limits<int>::min());
}

TEST(StripedCounter, ReadConcurrentWithAnAssignmentSeesAllOfItOrNothing) {
  StripedCounter counter;
  std::atomic<bool> done = false;
  std::thread writer([&] {
    for (int i = 1; i <= 100'000; ++i) {
      ++counter;
      counter = i;  // which it is
    }
    done = true;
  });
  int last = 0;
  bool wentBack = false;
  while (!done) {
    const int number = counter;
    wentBack |= number < last;
    last = number;
  }
  writer.join();
  EXPECT_FALSE(wentBack);
}

TEST(StripedCounter, ThreadsRaiseCellsOfTheirOwn) {
  StripedCounter counter;
  std::set<std::size_t> lines;
  for (std::size_t i = 0; i < StripedCounter::kCells; ++i) {
    const std::set<std::size_t> own = std::async(std::launch::async, linesOfARaise, std::ref(counter)).get();
    EXPECT_EQ(own.size(), 1U);
    lines.insert(own.begin(), own.end());
  }
  EXPECT_EQ(lines.size(), StripedCounter::kCells);
}

TEST(StripedCounter, ThreadKeepsItsCell) {
  StripedCounter one, other;
  const std::set<std::size_t> lines = linesOfARaise(one);
  EXPECT_EQ(linesOfARaise(one), lines);
  EXPECT_EQ(linesOfARaise(other), lines);
}

TEST(StripedCounter, BeginsAtACacheLineAndSharesTheLastWithNothing) {
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&countOfProgram) % StripedCounter::kCacheLine, 0U);
  EXPECT_EQ(sizeof(StripedCounter) % StripedCounter::kCacheLine, 0U);
}

}  // namespace
}  // namespace zqxml
