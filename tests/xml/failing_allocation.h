#pragma once

#include <cstddef>

namespace zqxml {

/// Lets the next `operator new` of this thread fail, once: of that many bytes, or for 0 of any number. For
/// programs that are linked with failing_allocation.cc.
void failNextAllocation(std::size_t size = 0);
/// True until it has failed.
bool allocationWillFail();

}  // namespace zqxml
