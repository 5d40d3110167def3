#pragma once
// The corpus load workflow: from a tweet export on disk to a ready document set. It chooses
// the format (the Radian 6 switch, else the column count of the first line), sets the roles,
// loads, moves links into their own column, rewrites the dates, derives the elapsed time and
// sorts by it, and moves hashtags and mentions into their own columns. Afterwards only the
// content field is expressed (the word index covers it).
//
// Messages go through the notifier: "Load Error" when the file cannot be loaded, and the sort
// notice of DocumentSet::SortByInt. Long steps report through the progress callback; a
// cancel empties the set.

#include <optional>
#include <string>
#include <vector>

#include "common/notifier.h"
#include "common/progress.h"
#include "common/stopwatch.h"
#include "session/session.h"

namespace sylvora {

struct LoadOptions {
  std::string path;
  bool radian = false;     // "Radian 6 data?"
  int minDocLen = 64;      // records of up to half this many characters are dropped
  int maxDocCount = 0;     // 0: no limit
  std::string unitCode = "h";  // unit of the elapsed-time column: "s", "n", "h", "d", "ww"
};

struct LoadReport {
  bool loaded = false;
  // One line a user can act on, when not loaded.
  std::string error;
  // Problems that did not stop the load (an elapsed time that could not be derived).
  std::vector<std::string> warnings;
  // The progress label's text: the stage lines, CR LF separated, ending in "All done :)".
  std::string progressText;
  std::vector<StageTiming> stages;
  // Defaults for the word index that follow from the corpus size.
  int minDocFrequency = 2;
  double maxDocFrequency = 0.0;
};

// The format the workflow would choose for a file: 9 with the Radian switch, else 7 when the
// first line (within the first 1024 characters) has fewer than 8 tab-separated columns, else 8.
// nullopt when the file cannot be read.
std::optional<CorpusFormat> ChooseCorpusFormat(const std::string& path, bool radian,
                                               std::string& error);

LoadReport LoadCorpus(Session& session, const LoadOptions& options, Notifier& notifier,
                      const ProgressCallback& progress = {});

}  // namespace sylvora
