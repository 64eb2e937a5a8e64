// Uses the installed library as a program outside this tree does: public headers, exported symbols, nothing
// else.

#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/text.h>

#include <cstdio>
#include <string>

namespace {

int failures = 0;

void expect(bool good, const char* what) {
  if (good) return;
  std::fprintf(stderr, "consumer: %s\n", what);
  ++failures;
}

}  // namespace

int main() {
  std::string logged;
  zqxml::EvDebug::setSink([&](const zqxml::LogLine& line) { logged = line.text; });
  zqxml::logError("consumer", "text %d", 5);
  expect(logged == "text 5", "the host owns the log");
  expect(zqxml::UlBase64::Encode(zqxml::toUtf8(u"foo")) == "Zm9v", "platform classes are exported");
  if (failures == 0) std::puts("consumer: good");
  return failures == 0 ? 0 : 1;
}
