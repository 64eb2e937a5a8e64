#include "command_line.h"

#include <iostream>

namespace zqxml::zqcatc {

int print(std::string_view text) {
  std::cout << text << std::flush;
  if (std::cout) return kDone;
  std::cerr << "zqcatc: cannot write to standard output\n";
  return kFileError;
}

int usage(std::string_view why) {
  std::cerr << "zqcatc: " << why << "; 'zqcatc --help' shows the usage\n";
  return kUsage;
}

int fileError(std::string_view why, ErrorFormat format) {
  printFailure(std::cerr, "file", why, format);
  return kFileError;
}

bool readErrorFormat(std::string_view name, ErrorFormat& format) {
  format = name == "json" ? ErrorFormat::kJson : ErrorFormat::kText;
  return name == "json" || name == "text";
}

}  // namespace zqxml::zqcatc
