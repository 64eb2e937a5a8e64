#include <zqxml/platform/striped_counter.h>

namespace zqxml {
namespace {

constinit std::atomic<std::uint32_t> turns{0};
// 0 is of a thread that has had none. (Of the default TLS model, as all of the library's.)
constinit thread_local std::uint32_t turnOfThread = 0;

}  // namespace

StripedCounter& StripedCounter::operator++() noexcept {
  if (turnOfThread == 0) turnOfThread = turns.fetch_add(1, std::memory_order_relaxed) + 1;
  cells_[turnOfThread % kCells].raises.fetch_add(1, std::memory_order_relaxed);
  return *this;
}

StripedCounter& StripedCounter::operator=(int value) noexcept {
  // Whoever reads the new base also sees the raises that it was made of.
  base_.store(static_cast<std::uint32_t>(value) - raises(), std::memory_order_release);
  return *this;
}

StripedCounter::operator int() const noexcept {
  const std::uint32_t base = base_.load(std::memory_order_acquire);
  return static_cast<int>(base + raises());
}

std::uint32_t StripedCounter::raises() const noexcept {
  std::uint32_t sum = 0;
  for (const Cell& cell : cells_) sum += cell.raises.load(std::memory_order_relaxed);
  return sum;
}

}  // namespace zqxml
