#pragma once

namespace zqxml {

/// Lets the next `operator new` of this thread fail, once. For programs that are linked with
/// failing_allocation.cc.
void failNextAllocation();
/// True until it has failed.
bool allocationWillFail();

}  // namespace zqxml
