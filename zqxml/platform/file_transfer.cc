// Reading and writing of CUlFile, with what is on its way in between.

#include <unistd.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/system_calls.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>

namespace zqxml {
namespace {

using internal::calls;
using internal::lastError;
using internal::uninterrupted;

constexpr unsigned kMostAhead = 65536;

/// What the system says about a transfer that has something to do. One that takes nothing and reports nothing
/// would be asked for ever.
CUlError outcome(ssize_t count) {
  if (count > 0) return {};
  return count < 0 ? lastError() : CUlError(EIO);
}

iovec pieceOf(std::string_view bytes) {
  return {const_cast<char*>(bytes.data()), bytes.size()};  // only ever read
}

void removeFront(std::string_view& bytes, std::uint64_t& count) {
  const std::size_t part = std::min<std::uint64_t>(bytes.size(), count);
  bytes.remove_prefix(part);
  count -= part;
}

}  // namespace

// --- Reading

bool CUlFile::mayReadAhead() {
  if (!readsAhead_) return false;
  if (ahead_.bytes != nullptr) return true;
  struct stat state = {};
  if (calls().fstat(descriptor_, &state) == 0 && S_ISREG(state.st_mode))
    ahead_.bytes.reset(new (std::nothrow) char[kMostAhead]);
  readsAhead_ = ahead_.bytes != nullptr;  // what is none now is never asked again
  return readsAhead_;
}

unsigned CUlFile::takeAhead(char* to, unsigned size) {
  const unsigned count = std::min(size, ahead_.size());
  if (count != 0) std::memcpy(to, ahead_.bytes.get() + ahead_.from, count);
  ahead_.from += count;
  return count;
}

// Reads ahead no more than has been read since the position was set: whoever jumps about pays nothing, and
// whoever reads on is soon at 64 KiB.
CUlError CUlFile::readOnce(char* to, unsigned size, unsigned& count) {
  count = takeAhead(to, size);
  if (count != 0) return {};
  const auto window = static_cast<unsigned>(std::min<std::uint64_t>(kMostAhead, inSequence_));
  const bool ahead = size < window && mayReadAhead();
  const ssize_t arrived = uninterrupted([&] {
    return ahead ? calls().read(descriptor_, ahead_.bytes.get(), window)
                 : calls().read(descriptor_, to, size);
  });
  if (arrived < 0) return lastError();
  inSequence_ += static_cast<std::uint64_t>(arrived);
  count = static_cast<unsigned>(arrived);
  if (!ahead) return {};
  ahead_.from = 0;
  ahead_.to = count;
  count = takeAhead(to, size);
  return {};
}

CUlError CUlFile::Read(void* data, unsigned size, unsigned* bytesRead) {
  auto* to = static_cast<char*>(data);
  unsigned done = 0;
  CUlError error = IsValid() ? handOver() : CUlError(EBADF);
  metEnd_ = false;
  while (done < size && !error.IsError() && !metEnd_) {
    unsigned count = 0;
    error = readOnce(to + done, size - done, count);
    metEnd_ = count == 0 && !error.IsError();
    done += count;
  }
  if (bytesRead != nullptr) *bytesRead = done;
  return error;
}

// --- Writing

// Hands over what is held back, and puts the system where the caller believes to be.
CUlError CUlFile::settle() {
  if (const CUlError error = handOver(); error.IsError()) return error;
  if (ahead_.size() != 0 && calls().lseek(descriptor_, -std::int64_t{ahead_.size()}, SEEK_CUR) < 0)
    return lastError();
  ahead_.clear();
  inSequence_ = 0;
  return {};
}

CUlError CUlFile::Write(const void* data, unsigned size, unsigned* bytesWritten) {
  const auto* from = static_cast<const char*>(data);
  unsigned done = 0;
  CUlError error = IsValid() ? settle() : CUlError(EBADF);
  while (done < size && !error.IsError()) {
    const ssize_t count = uninterrupted([&] { return calls().write(descriptor_, from + done, size - done); });
    error = outcome(count);
    if (!error.IsError()) done += static_cast<unsigned>(count);
  }
  if (bytesWritten != nullptr) *bytesWritten = done;
  return error;
}

CUlError CUlFile::appendAll(std::string_view head, std::string_view body, std::uint64_t& done) {
  CUlError error;
  while (!error.IsError() && head.size() + body.size() != 0) {
    const std::array<iovec, 2> pieces{pieceOf(head), pieceOf(body)};
    ssize_t count = uninterrupted([&] { return calls().append(descriptor_, pieces.data(), pieces.size()); });
    if (count < 0 && (errno == EOPNOTSUPP || errno == ENOSYS)) {
      // The same in two steps, which another process may come between.
      const std::string_view first = head.empty() ? body : head;
      if (calls().lseek(descriptor_, 0, SEEK_END) < 0 && errno != ESPIPE) return lastError();
      count = uninterrupted([&] { return calls().write(descriptor_, first.data(), first.size()); });
    }
    error = outcome(count);
    if (error.IsError()) break;
    auto written = static_cast<std::uint64_t>(count);
    done += written;
    removeFront(head, written);
    removeFront(body, written);
  }
  if (error.IsError()) (void)calls().lseek(descriptor_, 0, SEEK_END);
  return error;
}

CUlError CUlFile::handOver() {
  if (held_.size() == 0) return {};
  std::uint64_t done = 0;
  const CUlError error = appendAll({held_.bytes.get() + held_.from, held_.size()}, {}, done);
  held_.from += static_cast<unsigned>(done);
  if (held_.size() == 0) held_.clear();
  return error;
}

CUlError CUlFile::Append(std::string_view head, std::string_view body, std::uint64_t* bytesWritten) {
  std::uint64_t done = 0;
  CUlError error = IsValid() ? CUlError() : CUlError(EBADF);
  const std::uint64_t size = std::uint64_t{head.size()} + body.size();
  ahead_.clear();  // the position is the end from now on
  inSequence_ = 0;
  if (!error.IsError() && size > held_.room - held_.to) error = handOver();
  if (!error.IsError() && held_.room != 0 && size <= held_.room - held_.to) {
    for (const std::string_view part : {head, body}) {
      std::copy(part.begin(), part.end(), held_.bytes.get() + held_.to);
      held_.to += static_cast<unsigned>(part.size());
    }
    done = size;
  } else if (!error.IsError()) {
    error = appendAll(head, body, done);
  }
  if (bytesWritten != nullptr) *bytesWritten = done;
  return error;
}

CUlError CUlFile::SetAppendBuffer(unsigned bytes) {
  if (!IsValid()) return CUlError(EBADF);
  if (const CUlError error = handOver(); error.IsError()) return error;
  Area area;
  area.bytes.reset(bytes == 0 ? nullptr : new (std::nothrow) char[bytes]);
  if (bytes != 0 && area.bytes == nullptr) return CUlError(ENOMEM);
  area.room = bytes;
  held_ = std::move(area);
  return {};
}

}  // namespace zqxml
