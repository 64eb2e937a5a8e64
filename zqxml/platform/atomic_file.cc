#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/internal/file_calls.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <memory>
#include <string_view>

namespace zqxml {
namespace {

using internal::FileCalls;

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The file that a path stands for when its links are followed, be it there or not.
std::string followLinks(std::string path) {
  const std::unique_ptr<char, decltype(&free)> real(realpath(path.c_str(), nullptr), &free);
  if (real) return real.get();
  struct stat state = {};
  if (stat(path.c_str(), &state) == 0) return path;  // its link is no path: /proc has such, to pipes
  constexpr int kMostLinks = 40;                     // as many as the system follows
  std::array<char, PATH_MAX> area;
  for (int i = 0; i < kMostLinks; ++i) {
    const ssize_t size = readlink(path.c_str(), area.data(), area.size());
    if (size <= 0) break;
    const std::string_view target(area.data(), static_cast<std::size_t>(size));
    path = (target.front() == '/' ? std::string() : folderOf(path)).append(target);
  }
  return path;
}

// Opens a new file in `folder`, the name of which no other has, or sets errno.
int openTemporary(const std::string& folder, mode_t mode, std::string& name) {
  static std::atomic<unsigned> counter{0};
  for (int attempt = 0; attempt < 1000; ++attempt) {
    name = folder + ".zqxml-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
    const int descriptor =
        FileCalls::current().open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (descriptor >= 0 || (errno != EEXIST && errno != EINTR)) return descriptor;
  }
  return -1;
}

// Gives the new file the owner and permissions of the old one. Only root can give files away; for others the
// new file is their own.
void takeOver(int descriptor, const struct stat& old) {
  if (fchown(descriptor, old.st_uid, old.st_gid) != 0 &&
      fchown(descriptor, static_cast<uid_t>(-1), old.st_gid) != 0) {
    errno = 0;
  }
  (void)fchmod(descriptor, old.st_mode & 0777);
}

}  // namespace

CUlError AtomicFile::Open(const std::string& target) {
  discard();
  if (target.find('\0') != std::string::npos) return CUlError(EINVAL);
  target_ = followLinks(target);
  struct stat old = {};
  const bool exists = stat(target_.c_str(), &old) == 0;
  if (!exists && errno != ENOENT) return CUlError(errno);  // links that lead in a circle, say
  if (exists && !S_ISREG(old.st_mode)) return file_.Open(target_, CUlFile::Mode::kWrite);
  // A rename asks only for the folder's permission, not for the file's.
  if (exists && faccessat(AT_FDCWD, target_.c_str(), W_OK, AT_EACCESS) != 0) return CUlError(errno);
  std::string name;
  // What takes the place of a private file is never open to others, not for a moment.
  const int descriptor = openTemporary(folderOf(target_), exists ? 0600 : 0666, name);
  if (descriptor < 0) return CUlError(errno);
  temporary_ = name;
  file_.Attach(descriptor, target_);
  if (exists) takeOver(descriptor, old);
  return {};
}

CUlError AtomicFile::Write(std::string_view bytes) {
  constexpr std::size_t kMost = std::size_t{1} << 30;
  CUlError error = file_.IsValid() ? CUlError() : CUlError(EBADF);
  while (!bytes.empty() && !error.IsError()) {
    const std::size_t size = std::min(bytes.size(), kMost);
    error = file_.Write(bytes.data(), static_cast<unsigned>(size), nullptr);
    bytes.remove_prefix(size);
  }
  return error;
}

CUlError AtomicFile::Commit() {
  if (!file_.IsValid()) return CUlError(EBADF);
  if (temporary_.empty()) return file_.Close();
  CUlError error = file_.Flush();
  if (const CUlError closing = file_.Close(); !error.IsError()) error = closing;
  if (!error.IsError() && FileCalls::current().rename(temporary_.c_str(), target_.c_str()) != 0) {
    error = CUlError(errno);
  }
  if (!error.IsError()) temporary_.clear();
  discard();
  return error;
}

void AtomicFile::discard() noexcept {
  (void)file_.Close();
  if (!temporary_.empty()) (void)unlink(temporary_.c_str());
  temporary_.clear();
}

}  // namespace zqxml
