// What two threads get done on two cores beside one, on every road; or on those alone whose names begin with
// an argument.
//
// A sample is a while of one thread's work, or of two at once, each with a message of its own. One and two
// take turns, and so do the roads. Times are those of the wall: a thread that waits for a lock uses no
// processor.
//
// A sample is taken at many places of the stack: a thread that stayed on slow pages would count as disturbed.
#include <bench/report.h>
#include <bench/roads.h>
#include <bench/stack_place.h>
#include <bench/subject.h>
#include <sched.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <barrier>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr double kReach = 1.9;
constexpr std::size_t kThreads = 2;
using Work = std::function<void()>;

/// Nanoseconds, of the wall and of this thread's processor.
struct Cost {
  double wall = 0;
  double processor = 0;

  static Cost now() { return {read(CLOCK_MONOTONIC), read(CLOCK_THREAD_CPUTIME_ID)}; }

 private:
  static double read(clockid_t clock) {
    timespec time = {};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
  }
};

/// When a thread began its work, and when it ended it.
struct Span {
  Cost begin, end;

  /// Of so many calls, spread over the places of the stack.
  static Span of(const Work& work, std::size_t calls) {
    Span span{Cost::now(), {}};
    std::size_t done = 0;
    for (std::size_t place = 1; place <= kStackPlaces; ++place) {
      callAtPlace(place, [&] {
        for (; done < calls * place / kStackPlaces; ++done) work();
      });
    }
    span.end = Cost::now();
    return span;
  }
  double processor() const { return end.processor - begin.processor; }
};

/// Keeps this thread, the one of that number, on a processor of its own, of those that the program may use:
/// the system could leave all threads on one. They are far apart, where fewer of them share a core.
void stayOnProcessor(std::size_t number) {
  cpu_set_t usable, own;
  require(sched_getaffinity(0, sizeof usable, &usable) == 0, "the processors are not known");
  auto before = number * (static_cast<std::size_t>(CPU_COUNT(&usable)) - 1) / (kThreads - 1);
  std::size_t processor = 0;
  while (!CPU_ISSET(processor, &usable) || before-- != 0) ++processor;
  CPU_ZERO(&own);
  CPU_SET(processor, &own);
  require(sched_setaffinity(0, sizeof own, &own) == 0, "a thread is not kept on a processor");
}

/// Threads that wait for work and begin it together.
class Crew {
 public:
  Crew() {
    for (std::size_t i = 0; i < kThreads; ++i) threads_[i] = std::thread([this, i] { serve(i); });
  }
  ~Crew() {
    ended_ = true;
    start_.arrive_and_wait();
    for (std::thread& thread : threads_) thread.join();
  }
  Crew(const Crew&) = delete;
  Crew& operator=(const Crew&) = delete;

  /// Every thread does its task once; one without a task waits.
  void run(std::array<Work, kThreads> tasks) {
    tasks_ = std::move(tasks);
    start_.arrive_and_wait();
    end_.arrive_and_wait();
  }

 private:
  void serve(std::size_t i) {
    stayOnProcessor(i);
    for (;;) {
      start_.arrive_and_wait();
      if (ended_) return;
      if (tasks_[i]) tasks_[i]();
      end_.arrive_and_wait();
    }
  }

  std::array<std::thread, kThreads> threads_;
  std::array<Work, kThreads> tasks_;
  bool ended_ = false;
  std::barrier<> start_{kThreads + 1}, end_{kThreads + 1};
};

/// The same work for each thread, and the samples of it.
class Contest {
 public:
  Contest(std::string name, std::array<Work, kThreads> works, const Road* road = nullptr)
      : name_(std::move(name)), works_(std::move(works)), road_(road) {}

  bool isCalled(const std::string& start) const { return name_.starts_with(start); }

  /// How many calls take `nanoseconds`, more or less.
  void calibrate(double nanoseconds) {
    const auto way = roadOf();
    works_[0]();
    double time = 0;
    for (calls_ = 1; (time = Span::of(works_[0], calls_).processor()) < nanoseconds / 4; calls_ *= 2) {
    }
    calls_ = static_cast<std::size_t>(static_cast<double>(calls_) * nanoseconds / time) + 1;
  }

  void sample(Crew& crew) {
    const auto way = roadOf();
    one_.add(costOf(crew, 1));
    two_.add(costOf(crew, kThreads));
  }

  /// How many times as much gets done.
  Row throughput() const {
    return {name_, figureOf(two_.wall), figureOf(one_.wall), false, road_ == nullptr ? 0 : kReach};
  }
  /// What a message costs each.
  Row processor() const { return {name_, figureOf(two_.processor), figureOf(one_.processor), true}; }

 private:
  struct Samples {
    std::vector<double> wall, processor;
    void add(Cost cost) {
      wall.push_back(cost.wall);
      processor.push_back(cost.processor);
    }
  };

  std::unique_ptr<WithRoad> roadOf() const {
    return road_ == nullptr ? nullptr : std::make_unique<WithRoad>(*road_);
  }

  /// Of a message: by the wall, from the first thread's beginning to the last one's end, so that threads gain
  /// nothing by taking turns; and by each one's processor.
  Cost costOf(Crew& crew, std::size_t threads) {
    std::array<Span, kThreads> spans = {};
    std::array<Work, kThreads> tasks;
    std::atomic<std::size_t> awake = 0;
    for (std::size_t i = 0; i < threads; ++i) {
      tasks[i] = [this, i, threads, &spans, &awake] {
        // Waking up is no part of the work.
        for (++awake; awake < threads;) std::this_thread::yield();
        spans[i] = Span::of(works_[i], calls_);
      };
    }
    crew.run(std::move(tasks));
    double begin = spans[0].begin.wall, end = spans[0].end.wall, processor = 0;
    for (std::size_t i = 0; i < threads; ++i) {
      begin = std::min(begin, spans[i].begin.wall);
      end = std::max(end, spans[i].end.wall);
      processor += spans[i].processor();
    }
    const auto calls = static_cast<double>(calls_ * threads);
    return {(end - begin) / calls, processor / calls};
  }

  std::string name_;
  std::array<Work, kThreads> works_;
  const Road* road_;
  std::size_t calls_ = 1;
  Samples one_, two_;
};

/// Work that shares nothing: what the machine has to give.
void countUp() {
  volatile std::uint32_t number = 1;
  for (int i = 0; i < 1000; ++i) number = number * 1664525u + 1013904223u;
}

using Messages = std::array<std::unique_ptr<RoadMessage>, kThreads>;

int run(int argc, char** argv) {
  Report report(argc, argv);
  Table table{"Two threads beside one", {}, "ns", "two", "one"};
  table.note =
      "Time for a message by the wall. \"Nothing shared\" is arithmetic: what this machine has to give.";
  Table processor{"Processor time, two threads beside one", {}, "ns", "two", "one"};
  processor.note =
      "Time of the processor for a message of each thread: more than 1 where they disturb each other.";
  if (std::thread::hardware_concurrency() < kThreads) {
    report.fact(table.title, "not measured: there is one processor");
    return report.finish();
  }
  std::vector<std::pair<std::string, Messages>> subjects =
      ofEverySize([](const std::string& name, const auto& data) {
        Messages messages;
        for (auto& message : messages) message = std::make_unique<RoadMessage>(data);
        return std::pair(name, std::move(messages));
      });
  std::vector<Contest> contests;
  contests.emplace_back("nothing shared", std::array<Work, kThreads>{countUp, countUp});
  for (const Road& road : allRoads()) {
    for (auto& [name, messages] : subjects) {
      std::array<Work, kThreads> works;
      for (std::size_t i = 0; i < kThreads; ++i)
        works[i] = [&road, message = messages[i].get()] { road.run(*message); };
      contests.emplace_back(road.name + ", " + name, std::move(works), &road);
    }
  }
  if (report.arguments().size() > 1)
    std::erase_if(contests, [&](const Contest& contest) { return !contest.isCalled(report.arguments()[1]); });
  // Short samples: on a machine that does other things too, some of them are left alone.
  for (Contest& contest : contests) contest.calibrate(report.isQuick() ? 1e6 : 4e6);
  Crew crew;
  for (int round = report.isQuick() ? 4 : 80; round > 0; --round)
    for (Contest& contest : contests) contest.sample(crew);
  for (const Contest& contest : contests) {
    table.rows.push_back(contest.throughput());
    processor.rows.push_back(contest.processor());
  }
  report.add(std::move(table));
  report.add(std::move(processor));
  return report.finish();
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
