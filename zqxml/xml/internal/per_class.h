// PerClass: what is worked out once for a class of the catalogue. Not installed.
#pragma once

#include <zqxml/catalogue/records.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

namespace zqxml {

/// One T per class, made at first use and kept for the process: the catalogue is, and threads may work to the
/// very end. Any thread may call it.
template <class T>
class PerClass {
 public:
  /// `make()` gives a std::unique_ptr<const T>; of two threads that come first, one gets what the other has
  /// made. REQUIRES: the catalogue has such a record. Throws what make throws, and std::bad_alloc.
  template <class Make>
  const T* of(int subsystem, int classIndex, Make make) {
    const Slot* slots = rows_[static_cast<std::size_t>(subsystem)].load(std::memory_order_acquire);
    const T* const found = slots == nullptr ? nullptr : slots[classIndex].load(std::memory_order_acquire);
    return found != nullptr ? found : ofNew(subsystem, classIndex, make);
  }

 private:
  using Slot = std::atomic<const T*>;

  /// Stays out of the way of what is there.
  template <class Make>
  [[gnu::noinline]] const T* ofNew(int subsystem, int classIndex, Make make) {
    std::atomic<Slot*>& row = rows_[static_cast<std::size_t>(subsystem)];
    Slot* slots = row.load(std::memory_order_acquire);
    if (slots == nullptr) {
      const auto count = static_cast<std::size_t>(gSubsystemTable[subsystem].recordCount);
      slots = publish(row, std::make_unique<Slot[]>(count));
    }
    return publish(slots[classIndex], make());
  }

  template <class Owner>
  static auto publish(std::atomic<typename Owner::pointer>& slot, Owner made) {
    typename Owner::pointer found = nullptr;
    const bool first =
        slot.compare_exchange_strong(found, made.get(), std::memory_order_acq_rel, std::memory_order_acquire);
    return first ? made.release() : found;
  }

  std::array<std::atomic<Slot*>, kSubsystemCount> rows_{};
};

}  // namespace zqxml
