// Routes all lines of the library through a log of the program's own, and logs whole messages there.

#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/platform/ev_debug.h>

#include <chrono>
#include <iostream>
#include <mutex>
#include <string>

int main() {
  // The program's own log: here standard output. Lines come from any thread.
  std::mutex mutex;
  int lines = 0;
  zqxml::EvDebug::setSink([&](const zqxml::LogLine& line) {
    const std::lock_guard<std::mutex> lock(mutex);
    std::cout << "level " << line.level << ", " << line.function << ": " << line.text << '\n';
    ++lines;
  });
  zqxml::EvDebug::setDebugLevel(1);

  zqxml::ZQGui::SaveAlert alert;
  alert.setLoginName("operator");
  alert.setPassword("not for a log");

  // The message is copied and the line is written elsewhere: the caller goes on at once.
  zqxml::XmlBinaryLogger logger;
  logger.Debug("saveAlert", "received from %s: %bxml_zq", &alert, "console 5");
  logger.DebugLvl("saveAlert", 5, "too fine to be written: %bxml_zq", &alert);

  // What the library has to say arrives at the same place.
  if (alert.unserialize("<ZQGui_SaveAlert") == zqxml::XN_MSG_OK) return 1;

  // Lines that are under way when the program ends are lost, so it waits for them.
  zqxml::XmlLoggerHelper::getXmlLoggerInstance()->waitUntilIdle(std::chrono::seconds(10));
  zqxml::EvDebug::setSink({});
  return lines == 2 ? 0 : 1;
}
