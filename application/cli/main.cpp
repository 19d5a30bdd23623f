#include "application/cli/command_line.h"
#include "application/process/process_privacy.h"

int main(int argc, char** argv) {
  orvan::keepMemoryOutOfCrashDumps();
  return orvan::runCommandLine(argc, argv);
}
