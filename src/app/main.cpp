#include <iostream>
#include <string>
#include <vector>

#include "app/consolerun.h"
#include "app/mainwindows.h"
#include "app/program.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string projectFile;
  // Decided before anything of a window system exists: batch mode runs where there is none.
  if (hollowmere::IsBatchMode(arguments, projectFile)) return hollowmere::runBatch(projectFile);
  if (arguments.size() == 1 && arguments[0] == "--version") {
    std::cout << "hollowmere " HOLLOWMERE_VERSION "\n";
    return 0;
  }
  if (arguments.size() == 1 && !arguments[0].starts_with('-')) projectFile = arguments[0];
  return hollowmere::runWindows(argc, argv, projectFile);
}
