// sylvora-cli: the Sylvora pipeline without a window.

#include <iostream>
#include <string>
#include <vector>

#include "cli/cli_main.h"
#include "common/large_allocation.h"

int main(int argc, char** argv) {
  sylvora::UseReturnableLargeBlocks();
  return sylvora::cli::RunCli(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                              std::cerr);
}
