#pragma once
// The whole sylvora-cli command line: the command word, then that command's arguments.

#include <ostream>
#include <string>
#include <vector>

namespace sylvora::cli {

// `arguments` without the program name. --help prints the usage of every command with its
// flags, --version the program's version; an unknown or missing command gives exit code 2.
int RunCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace sylvora::cli
