#include "tools/zqmsg/program.h"

int main(int argc, char** argv) {
  return zqxml::tool::runProgram(argc, argv);
}
