#pragma once
// The corpus load workflow: from a tweet export on disk to a ready document set. It chooses
// the format (the Radian 6 switch, else the column count of the first line), sets the roles,
// loads, moves links into their own column, rewrites the dates, derives the elapsed time and
// sorts by it, and moves hashtags and mentions into their own columns. Afterwards only the
// content field is expressed (the word index covers it).
//
// Besides the tab-separated exports, the workflow reads JSON exports of the platforms' APIs and
// named-column CSV files (corpus/corpus_import.h), found by their content: they load in the
// "Twitter1.1" layout (format 8) and go on from there exactly as a format-8 file.
//
// Messages go through the notifier: "Load Error" when the file cannot be loaded, and the sort
// notice of DocumentSet::SortByInt. Long steps report through the progress callback; a
// cancel empties the set.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "common/notifier.h"
#include "common/progress.h"
#include "common/stopwatch.h"
#include "corpus/corpus_import.h"
#include "session/session.h"

namespace sylvora {

struct LoadOptions {
  std::string path;
  bool radian = false;         // "Radian 6 data?"
  int minDocLen = 64;          // records of up to half this many characters are dropped
  int maxDocCount = 0;         // 0: no limit
  std::string unitCode = "h";  // unit of the elapsed-time column: "s", "n", "h", "d", "ww"
  // For CSV files: role name ("date", "user", "text", "link", "positive", "negative", "id",
  // "name", "retweets") -> column name, before the built-in names.
  std::vector<std::pair<std::string, std::string>> columnMap;
  // For JSON and CSV files: skip bad records (counted in the report) instead of failing.
  bool skipBad = false;
};

struct LoadReport;

// Runs once the links sit in their own column and before the dates are rewritten: the window
// offers short-link expansion here. It may rewrite link cells and replace report.progressText;
// false cancels the load (the set is emptied).
using AfterLinksStep = std::function<bool(Session& session, LoadReport& report)>;

struct LoadReport {
  bool loaded = false;
  // One line a user can act on, when not loaded.
  std::string error;
  // Problems that did not stop the load (an elapsed time that could not be derived).
  std::vector<std::string> warnings;
  // The progress label's text: the stage lines, CR LF separated, ending in "All done :)".
  std::string progressText;
  std::vector<StageTiming> stages;
  // What was found in the file, as CorpusInfo::shape; and the records skipped with skipBad.
  std::string shape;
  std::int64_t skipped = 0;
  // Lines of a tab-separated file that held bytes that are not UTF-8 (read as Windows-1252).
  std::int64_t repairedLines = 0;
  // Defaults for the word index that follow from the corpus size.
  int minDocFrequency = 2;
  double maxDocFrequency = 0.0;
};

// "12 lines had bytes that are not UTF-8; those bytes were read as Windows-1252".
std::string RepairedLinesNote(std::int64_t lines);

// The format the workflow would choose for a file: 9 with the Radian switch, else 7 when the
// first line (within the first 1024 characters) has fewer than 8 tab-separated columns, else 8.
// nullopt when the file cannot be read.
std::optional<CorpusFormat> ChooseCorpusFormat(const std::string& path, bool radian,
                                               std::string& error);

// What the workflow will find in a file: the format it loads as and the shape's description
// ("named-column CSV", "tab-separated Twitter export", ...). nullopt with `error` when the file
// cannot be read or is an import that cannot be (unknown JSON shape, broken gzip...).
struct CorpusShape {
  CorpusFormat format = CorpusFormat::kTwitter11;
  bool imported = false;  // JSON or CSV
  std::string description;
};
std::optional<CorpusShape> DetectCorpusShape(const std::string& path, bool radian,
                                             std::string& error);

// The first `rows` documents of a file as the workflow would read them with `options` (its
// column map and skipBad), for a mapping dialog: for CSV also the header, the raw records and
// the column found for each role. Tab-separated files give outcome kTabSeparated and nothing
// else.
ImportPreview PreviewCorpus(const LoadOptions& options, int rows = 20);

LoadReport LoadCorpus(Session& session, const LoadOptions& options, Notifier& notifier,
                      const ProgressCallback& progress = {}, const AfterLinksStep& afterLinks = {});

}  // namespace sylvora
