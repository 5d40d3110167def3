// sylvora-cli: the Sylvora pipeline without a window.

#include <iostream>
#include <string>
#include <vector>

#include "cli/index_command.h"
#include "cli/load_command.h"
#include "cli/map_command.h"
#include "cli/timeline_command.h"

namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli COMMAND [ARGS]\n"
    "commands:\n"
    "  load FILE    load a tweet export and print a summary of the corpus\n"
    "  index FILE   load a tweet export, build its five term indexes and print their top terms\n"
    "  timeline FILE --length L\n"
    "               load and index a tweet export, build its interval models and write one row\n"
    "               per interval (documents, novelty, homogeneity, links, sentiment, bursts)\n"
    "  map FILE     build a word, interval or tweet map, lay it out with sfdp and write it as\n"
    "               CSV tables and GraphML\n"
    "run 'sylvora-cli COMMAND --help' for a command's options\n";

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h") {
    (arguments.empty() ? std::cerr : std::cout) << kUsage;
    return arguments.empty() ? 2 : 0;
  }
  const std::string command = arguments[0];
  arguments.erase(arguments.begin());
  if (command == "load") return sylvora::cli::RunLoadCommand(arguments, std::cout, std::cerr);
  if (command == "index") return sylvora::cli::RunIndexCommand(arguments, std::cout, std::cerr);
  if (command == "timeline") {
    return sylvora::cli::RunTimelineCommand(arguments, std::cout, std::cerr);
  }
  if (command == "map") return sylvora::cli::RunMapCommand(arguments, std::cout, std::cerr);
  std::cerr << "Unknown command \"" << command << "\"\n" << kUsage;
  return 2;
}
