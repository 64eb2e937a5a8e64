#pragma once

#include <cstddef>

namespace zqxml {

/// Lets the next `operator new` of this thread fail, once: of that many bytes, or for 0 of any number. For
/// programs that are linked with failing_allocation.cc.
void failNextAllocation(std::size_t size = 0);
/// The same for the `number`-th from now on, 1 for the next; 0 for none.
void failAllocation(std::size_t number, std::size_t size = 0);
/// True until it has failed.
bool allocationWillFail();
/// Blocks that this thread has allocated beyond those that it has given back.
std::ptrdiff_t allocatedBlocks();

}  // namespace zqxml
