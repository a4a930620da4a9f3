// export_script SCOPE ID: writes the script of the bundle on standard input to standard output.
#include "step/replay/StepPythonReplayExporter.h"

#include <cstdlib>
#include <iostream>
#include <iterator>

int main(int count, char** arguments)
{
  if (count != 3) {
    return EXIT_FAILURE;
  }
  const std::string bundle(std::istreambuf_iterator<char>(std::cin), {});
  std::cout << Orvex::StepPythonReplayExporter().ExportReplayBundleScript(
    bundle, arguments[1], std::strtoull(arguments[2], nullptr, 10));
  return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
