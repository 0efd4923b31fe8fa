#include <unistd.h>

#include <iostream>
#include <string>
#include <vector>

#include "cli/commands.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  return hollowmere::runCli(
      arguments, {std::cin, std::cout, std::cerr, isatty(STDERR_FILENO) != 0, isatty(STDOUT_FILENO) != 0});
}
