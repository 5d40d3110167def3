#pragma once
// "sylvora-cli index FILE": loads a corpus as "sylvora-cli load" does (same flags), builds the
// five term indexes (words, hashtags, links, mentions, users) and prints, for each, its term
// count and its twenty terms of highest document frequency, then the time of every stage.

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "common/stopwatch.h"
#include "session/corpus_index.h"
#include "session/corpus_load.h"

namespace sylvora::cli {

// Returns the process exit code: 0 indexed, 1 the corpus could not be loaded or indexed, 2 bad
// usage.
int RunIndexCommand(const std::vector<std::string>& arguments, std::ostream& out,
                    std::ostream& err);

// The stop list used when --stop-list is not given: the first of "common_words.txt" in the
// program's folder (an installed program), "data/common_words.txt" under the current folder (a
// run from the source tree), and data/common_words.txt of the source tree the program was built
// from (a run from a build folder). "" when none exists.
std::string DefaultStopListPath();

// The load and index flags of "sylvora-cli index", for the commands that load and index a
// corpus the same way before doing more (their own flags are added to these sets).
struct CorpusOptions {
  LoadOptions load;
  IndexOptions index;
};
std::set<std::string> CorpusValueOptions();
std::set<std::string> CorpusSwitches();
// Reads those flags (the corpus file is the first positional argument). False, with a message
// on `err`, when a flag is out of range.
bool ReadCorpusOptions(CommandLine& line, CorpusOptions& options, std::ostream& err);

// "Stage times:" and one line per stage with its seconds, the notes ("note: ..."), then the total.
void PrintStages(std::ostream& out, const std::vector<StageTiming>& stages,
                 const std::vector<std::string>& notes = {});

}  // namespace sylvora::cli
