#include "tools/zqmsg/standard_descriptors.h"

#include <fcntl.h>
#include <unistd.h>

namespace zqxml::tool {

void occupyStandardDescriptors() {
  // In ascending order: a new file gets the lowest number that is free. It is open in the wrong direction, so
  // that its use is the same failure as that of a closed one.
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor)
    if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

}  // namespace zqxml::tool
