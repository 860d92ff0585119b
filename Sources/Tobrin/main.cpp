#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "Application/Application.h"
#include "Base/Log.h"
#include "Base/PrintableText.h"
#include "CommandLine/CLI.h"
#include "Confinement/Confinement.h"
#include "SystemLog/SystemLog.h"

int main(int argc, char** argv) {
  // A reader at the other end of a pipe gets each line as it is written.
  static_cast<void>(std::setvbuf(stdout, nullptr, _IOLBF, 0));
  tobrin::setLogSink(tobrin::systemLog());
  tobrin::keepNoCore();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  try {
    if (const auto status = tobrin::runDiagnostic(arguments)) return *status;
    return tobrin::runApplication(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tobrin: %s\n", tobrin::printable(error.what()).c_str());
    return 1;
  }
}
