#include "tools/zqmsg/failure.h"

#include <utility>

namespace zqxml::tool {

Failure::Failure(ExitStatus status, std::string where, std::string what)
    : status_(status), where_(std::move(where)), what_(std::move(what)) {}

Failure& Failure::advise(std::string advice) {
  advice_ = std::move(advice);
  return *this;
}

Failure& Failure::explain(std::vector<std::string> lines) {
  explanation_ = std::move(lines);
  return *this;
}

}  // namespace zqxml::tool
