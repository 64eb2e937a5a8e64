#include <bench/versions.h>
#include <gnu/libc-version.h>
#include <google/protobuf/stubs/common.h>

#include <pugixml.hpp>
#include <xercesc/util/XercesVersion.hpp>

namespace zqxml::bench {

void tellVersions(Report& report) {
  report.fact("Compiler", "g++ " __VERSION__);
  report.fact("C library", std::string("glibc ") + gnu_get_libc_version());
  report.fact("Xerces-C", XERCES_FULLVERSIONDOT);
  report.fact("protobuf", google::protobuf::internal::VersionString(GOOGLE_PROTOBUF_VERSION));
  report.fact("pugixml",
              std::to_string(PUGIXML_VERSION / 1000) + "." + std::to_string(PUGIXML_VERSION % 1000 / 10));
}

}  // namespace zqxml::bench
