#include <pthread.h>
#include <signal.h>
#include <zqxml/platform/thread_pool.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace zqxml {

// Shared by the pool and its threads. Those of a pool that was left behind by `fork` keep a state of their
// own, which is never looked at again.
struct ZqThreadPool::Impl {
  struct Job {
    unsigned (*function)(void*) = nullptr;
    void* argument = nullptr;
  };

  std::string name;
  std::chrono::seconds idle{0};
  unsigned maximum = 0;

  std::mutex mutex;
  std::condition_variable work;
  std::condition_variable change;  // a job or a thread has ended
  std::deque<Job> jobs;            // taken on, not yet begun; there is a thread for each
  unsigned busy = 0;               // jobs taken on and not ended
  unsigned threads = 0;
  bool stopping = false;

  void run() noexcept {
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
      work.wait_for(lock, idle, [this] { return stopping || !jobs.empty(); });
      if (jobs.empty()) break;
      const Job job = jobs.front();
      jobs.pop_front();
      lock.unlock();
      try {
        job.function(job.argument);
      } catch (...) {
        // There is nobody to tell; the thread goes on with the next job.
      }
      lock.lock();
      --busy;
      change.notify_all();
    }
    --threads;
    change.notify_all();
  }
};

// All pools of the process, so that each can be made anew in the child of a fork.
struct ZqThreadPoolRegistry {
  std::mutex mutex;
  std::set<ZqThreadPool*> pools;

  ZqThreadPoolRegistry() { pthread_atfork(&prepare, &parent, &child); }

  static ZqThreadPoolRegistry& get() {
    static ZqThreadPoolRegistry* const registry = new ZqThreadPoolRegistry;
    return *registry;
  }

  static void prepare() { get().mutex.lock(); }
  static void parent() { get().mutex.unlock(); }
  static void child() {
    for (ZqThreadPool* pool : get().pools) {
      const ZqThreadPool::Impl& old = *pool->impl_;
      auto fresh = std::make_shared<ZqThreadPool::Impl>();
      fresh->name = old.name;
      fresh->idle = old.idle;
      fresh->maximum = old.maximum;
      // The state that the parent's threads wait on cannot be destroyed here: they will never be done with
      // it.
      new std::shared_ptr<ZqThreadPool::Impl>(std::move(pool->impl_));
      pool->impl_ = std::move(fresh);
    }
    get().mutex.unlock();
  }
};

namespace {

// Starts a detached thread that no signal is delivered to.
template <typename Function>
bool startThread(Function function) noexcept {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  bool started = true;
  try {
    std::thread(std::move(function)).detach();
  } catch (...) {
    started = false;
  }
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return started;
}

}  // namespace

ZqThreadPool::ZqThreadPool() : impl_(std::make_shared<Impl>()) {
  ZqThreadPoolRegistry& registry = ZqThreadPoolRegistry::get();
  const std::lock_guard<std::mutex> lock(registry.mutex);
  registry.pools.insert(this);
}

ZqThreadPool::~ZqThreadPool() {
  ZqThreadPoolRegistry& registry = ZqThreadPoolRegistry::get();
  {
    const std::lock_guard<std::mutex> lock(registry.mutex);
    registry.pools.erase(this);
  }
  std::unique_lock<std::mutex> lock(impl_->mutex);
  impl_->stopping = true;
  impl_->work.notify_all();
  impl_->change.wait(lock, [this] { return impl_->threads == 0; });
}

bool ZqThreadPool::initThreadPool(const char* name, unsigned long idleSeconds, unsigned long, unsigned,
                                  unsigned maximumThreads) noexcept try {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  if (maximumThreads == 0 || impl_->maximum != 0) return false;
  impl_->name = name == nullptr ? "" : name;
  constexpr unsigned long kDay = 86400;
  impl_->idle = std::chrono::seconds(std::min(idleSeconds, kDay));
  impl_->maximum = maximumThreads;
  return true;
} catch (...) {
  return false;
}

std::uint32_t ZqThreadPool::getCurrentAvailableThreadCount() const noexcept {
  const std::lock_guard<std::mutex> lock(impl_->mutex);
  return impl_->maximum - impl_->busy;
}

unsigned ZqThreadPool::doWork(unsigned (*job)(void*), void* argument) noexcept try {
  if (job == nullptr) return kRefused;
  const std::shared_ptr<Impl> impl = impl_;
  const std::lock_guard<std::mutex> lock(impl->mutex);
  if (impl->busy == impl->maximum) return kRefused;
  impl->jobs.push_back({job, argument});
  if (impl->busy == impl->threads) {
    if (!startThread([impl] { impl->run(); })) {
      impl->jobs.pop_back();
      return kRefused;
    }
    ++impl->threads;
  }
  ++impl->busy;
  impl->work.notify_one();
  return 0;
} catch (...) {
  return kRefused;
}

bool ZqThreadPool::waitUntilIdle(std::chrono::milliseconds longest) noexcept {
  std::unique_lock<std::mutex> lock(impl_->mutex);
  return impl_->change.wait_for(lock, longest, [this] { return impl_->busy == 0; });
}

}  // namespace zqxml
