#pragma once

#include <bench/report.h>

namespace zqxml::bench {

/// Tells the report with what the program was compiled, and what it is linked with.
void tellVersions(Report& report);

}  // namespace zqxml::bench
