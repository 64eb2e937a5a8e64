// How many messages have ended in this thread: who holds pointers to parts of a message knows by it, without
// a look, that they are still good.
#pragma once

#include <cstdint>

namespace zqxml {

/// Grows whenever a message of the thread is destroyed or loses its contents to another one. While it stands
/// still, every message that was there is still at its place. Not installed. (Of the default TLS model: with
/// a faster one the loader would have to find room for all thread-local objects of the library in what is
/// left of a running program's threads, and refuse it.)
extern constinit thread_local std::uint64_t endedMessages;

}  // namespace zqxml
