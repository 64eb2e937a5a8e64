#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {

/// Runs zqmsg in a scratch folder, without a configuration or a key file unless the setup names one.
class ZqmsgTest : public testing::Test {
 protected:
  ProgramRun zqmsg(std::vector<std::string> arguments, const std::string& input = "") const {
    ProgramSetup setup;
    setup.input = input;
    return zqmsg(std::move(arguments), std::move(setup));
  }
  ProgramRun zqmsg(std::vector<std::string> arguments, ProgramSetup setup) const {
    arguments.insert(arguments.begin(), ZQMSG_PROGRAM);
    return run(std::move(arguments), std::move(setup));
  }
  /// Runs commands in bash, where `zqmsg` is the program.
  ProgramRun shell(const std::string& commands) const {
    return run({"/bin/bash", "-uo", "pipefail", "-c",
                "export PATH=\"$(dirname '" ZQMSG_PROGRAM "'):$PATH\"\n" + commands},
               {});
  }

  /// What the message becomes; the conversion must succeed and have nothing to say.
  std::string to(const std::string& form, const std::string& input,
                 std::vector<std::string> options = {}) const {
    options.insert(options.begin(), {"convert", "--to", form});
    const ProgramRun done = zqmsg(options, input);
    EXPECT_EQ(done.status, 0) << done;
    EXPECT_EQ(done.err, "");
    return done.out;
  }

  ScratchFolder folder_;

 private:
  ProgramRun run(std::vector<std::string> arguments, ProgramSetup setup) const {
    setup.folder = folder_.path();
    setup.environment.insert(
        setup.environment.begin(),
        {"ZQXML_CONFIG=/dev/null", "ZQXML_KEY_FILE", "ZQXML_LOG_DIR", "NO_COLOR", "TZ=UTC", "TERM=xterm"});
    return runProgram(arguments, setup);
  }
};

/// Matches a run with this exit status; the run prints itself.
MATCHER_P(Exits, status, "") {
  return arg.status == status;
}

inline const std::string kSaveAlertXml =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?><ZQGui_SaveAlert alertLocation="/srv/alerts" impersonateUser="7" loginName="operator" password="hush" useNetworkShare="1" zqpassword=""/>)";

/// The message of the wire form's worked example, and its 64 bytes.
inline const std::string kExampleXml =
    R"(<App_TestMessage2 intField="-3" strField="hi"><ListInt val="1"/><ListInt val="-1"/>)"
    R"(<M1 intFieldM1="5"/><mapStr_LL><__mapKey__ val="a"/><__mapValue__ val="7"/></mapStr_LL></App_TestMessage2>)";
inline const std::string kExampleBytes(
    "\x02\x00\x00\x00\xDD\x4B\xD4\x1E"
    "\x5E\xB2\x35\x02\x05"
    "\x4A\x4A\x71\x00\x02\x68\x69"
    "\x78\x7F\x7F\x7F\x02\x8A\xD2\x86\x00\x02\x02\x01"
    "\x22\x4C\x00\x00\x05\x7E\xC8\x92\x03\x0A"
    "\x78\x7F\x7F\x7F\x01\x52\x96\x4A\x03\x0C\x02\x01\x01\x61\x07\x00\x00\x00\x00\x00\x00\x00",
    64);

}  // namespace zqxml
