#pragma once
// "sylvora-cli load FILE": runs the corpus load workflow and prints a summary.

#include <ostream>
#include <string>
#include <vector>

namespace sylvora::cli {

// Returns the process exit code: 0 loaded, 1 the corpus could not be loaded, 2 bad usage.
int RunLoadCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace sylvora::cli
