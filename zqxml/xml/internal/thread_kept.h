// What a thread keeps from one text to the next. Not installed.
#pragma once

#include <memory>
#include <utility>

namespace zqxml {

/// One T, or array of them, that the calling thread keeps; whoever uses it takes it away for that time. It
/// ends with the thread, which keeps none from then on. In plain variables: while a thread ends, and after
/// main, texts may still be read.
template <class T>
class ThreadKept {
 public:
  using Owner = std::unique_ptr<T>;

  /// What is kept, null for nothing.
  static typename Owner::pointer get() { return kept_; }

  /// What is kept, which the thread then keeps no more.
  static Owner take() { return Owner(std::exchange(kept_, nullptr)); }

  /// Keeps it in the place of what was kept.
  static void keep(Owner owner) {
    if (threadEnds_) return;
    static const thread_local Closer closer;
    take();
    kept_ = owner.release();
  }

 private:
  struct Closer {
    ~Closer() {
      threadEnds_ = true;
      take();
    }
  };

  static inline constinit thread_local typename Owner::pointer kept_ = nullptr;
  static inline constinit thread_local bool threadEnds_ = false;
};

}  // namespace zqxml
