// A pipe to read from.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <string_view>

namespace zqxml {

/// Lets the file read these bytes, few enough for a pipe to hold, from one that nobody writes to any more.
inline void attachPipeOf(CUlFile& file, std::string_view bytes) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  EXPECT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  close(ends[1]);
  file.Attach(ends[0], "pipe");
}

}  // namespace zqxml
