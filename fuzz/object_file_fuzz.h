// What the fuzz targets of object files share: any bytes as a file.
#pragma once

#include <sys/mman.h>
#include <unistd.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/file.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace zqxml {

/// Ends the run where one answer contradicts another.
inline void require(bool holds) {
  if (!holds) std::abort();
}

/// A file in memory with these bytes, open at its start.
class FuzzFile {
 public:
  FuzzFile(const std::uint8_t* data, std::size_t size) {
    const int descriptor = memfd_create("fuzz", MFD_CLOEXEC);
    require(descriptor >= 0);
    // By a name, not by its descriptor: then it is read ahead.
    require(!file_.Open("/proc/self/fd/" + std::to_string(descriptor), CUlFile::Mode::kReadWrite).IsError());
    close(descriptor);
    require(!file_.Write(data, static_cast<unsigned>(size), nullptr).IsError());
    rewind();
  }
  CUlFile& file() { return file_; }
  void rewind() { require(!file_.Seek(0, 0, nullptr).IsError()); }
  std::uint64_t size() {
    std::uint64_t size = 0;
    require(!file_.Size(size).IsError());
    return size;
  }

 private:
  CUlFile file_;
};

}  // namespace zqxml
