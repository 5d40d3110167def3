#pragma once
// "sylvora-cli index FILE": loads a corpus as "sylvora-cli load" does (same flags), builds the
// five term indexes (words, hashtags, links, mentions, users) and prints, for each, its term
// count and its twenty terms of highest document frequency, then the time of every stage.

#include <ostream>
#include <string>
#include <vector>

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

}  // namespace sylvora::cli
