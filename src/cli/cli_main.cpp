#include "cli/cli_main.h"

#include "cli/index_command.h"
#include "cli/load_command.h"
#include "cli/map_command.h"
#include "cli/timeline_command.h"

namespace sylvora::cli {
namespace {

constexpr const char* kUsage =
    "usage: sylvora-cli COMMAND [ARGS]\n"
    "       sylvora-cli --help | --version\n"
    "commands:\n"
    "  load FILE    load a tweet export and print a summary of the corpus\n"
    "  index FILE   load a tweet export, build its five term indexes and print their top terms\n"
    "  timeline FILE --length L\n"
    "               load and index a tweet export, build its interval models and write one row\n"
    "               per interval (documents, novelty, homogeneity, links, sentiment, bursts)\n"
    "  map FILE     build a word, interval or tweet map, lay it out with sfdp and write it as\n"
    "               CSV tables and GraphML\n"
    "run 'sylvora-cli COMMAND --help' for one command's options\n";

using Command = int (*)(const std::vector<std::string>&, std::ostream&, std::ostream&);

struct NamedCommand {
  const char* name;
  Command run;
};

constexpr NamedCommand kCommands[] = {{"load", RunLoadCommand},
                                      {"index", RunIndexCommand},
                                      {"timeline", RunTimelineCommand},
                                      {"map", RunMapCommand}};

}  // namespace

int RunCli(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  if (arguments.empty()) {
    err << kUsage;
    return 2;
  }
  const std::string& first = arguments[0];
  if (first == "--version" || first == "-V") {
    out << "sylvora-cli " << SYLVORA_VERSION << '\n';
    return 0;
  }
  if (first == "--help" || first == "-h") {
    // The overview, then each command's own usage, so one page lists every flag.
    out << kUsage;
    for (const NamedCommand& command : kCommands) {
      out << '\n';
      command.run({"--help"}, out, err);
    }
    return 0;
  }
  const std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
  for (const NamedCommand& command : kCommands) {
    if (first == command.name) return command.run(rest, out, err);
  }
  err << "Unknown command \"" << first << "\"\n" << kUsage;
  return 2;
}

}  // namespace sylvora::cli
