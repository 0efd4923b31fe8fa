#include <iostream>
#include <string>
#include <vector>

#include "app/consolerun.h"
#include "app/program.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string projectFile;
  if (hollowmere::IsBatchMode(arguments, projectFile)) return hollowmere::runBatch(projectFile);
  std::cerr << "hollowmere " HOLLOWMERE_VERSION
               " has no windows yet. It runs a project unattended:\n"
               "  hollowmere batchmode PROJECT\n"
               "hollowmere-cli makes, checks and previews projects; see hollowmere-cli --help.\n";
  return 2;
}
