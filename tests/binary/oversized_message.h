// A message whose binary form is larger than the form can tell.
#pragma once

#include <tests/binary/hand_made_class.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <string>
#include <utility>
#include <vector>

namespace zqxml {

/// One value of 32 MiB in 128 objects: 4 GiB to write, and no more memory than the one value.
class OversizedMessage {
 public:
  OversizedMessage() {
    for (int i = 0; i < 128; ++i) elements().push_back(Demo::EveryType());
    for (XNMessageBase& element : elements()) {
      own_.push_back(std::exchange(slotOf(element), &shared_));
      setBit(element, "bstringField");
    }
  }
  ~OversizedMessage() {
    for (std::size_t i = 0; i < own_.size(); ++i) slotOf(elements()[i]) = own_[i];
  }
  OversizedMessage(const OversizedMessage&) = delete;
  OversizedMessage& operator=(const OversizedMessage&) = delete;

  OpenMessage& message() { return outer_; }
  /// Bytes of all values.
  std::uint64_t size() { return elements().size() * shared_.size(); }

 private:
  static bstring*& slotOf(XNMessageBase& element) {
    return MessageAccess::owned<bstring>(element, fieldOf(element, "bstringField"));
  }
  std::vector<XNMessageBase>& elements() {
    return collectionOf<std::vector<XNMessageBase>>(outer_, "objects");
  }

  HandMadeClass handMade_;
  OpenMessage outer_ = handMade_.field(FDT_LIST_OBJECT, "objects", std::string("\xca\0\0\x05", 4)).message();
  bstring shared_{std::string(std::size_t{32} << 20, 'x')};
  std::vector<bstring*> own_;
};

}  // namespace zqxml
