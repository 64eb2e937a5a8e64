#include <zqxml/platform/ev_message_container.h>

namespace zqxml {

void ArgumentInfo::Clear() noexcept {
  // One by one: a long list would not be destroyed recursively on any stack.
  while (first_ != nullptr) first_ = std::exchange(first_->next, nullptr);
  last_ = nullptr;
  count_ = 0;
}

ArgumentInfo& ArgumentInfo::append(Kind kind, std::uint64_t number, std::string_view text) {
  auto node = std::make_unique<Node>();
  node->kind = kind;
  node->number = number;
  node->text = text;
  std::unique_ptr<Node>& place = last_ == nullptr ? first_ : last_->next;
  place = std::move(node);
  last_ = place.get();
  ++count_;
  return *this;
}

}  // namespace zqxml
