#pragma once
// "sylvora-cli map FILE --kind words|intervals|tweets": loads and indexes a corpus as
// "sylvora-cli index" does (same flags), builds the interval models when the map needs them
// (--length, the interval length in --unit units), builds the map (a minimum spanning tree of
// the similarities laid out by sfdp) and writes it for other tools:
//   PREFIX_nodes.csv   index, label, x, y, weight, degree
//   PREFIX_edges.csv   from, to, from_label, to_label, length
//   PREFIX.graphml
// It then prints the map's size, the tree neighbours of its heaviest nodes (the quickest way
// to see whether the map makes sense) and the time of every stage.

#include <ostream>
#include <string>
#include <vector>

namespace sylvora::cli {

// Returns the process exit code: 0 written, 1 the corpus, models or map could not be built or
// written, 2 bad usage.
int RunMapCommand(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace sylvora::cli
