// Checks of the corpus readers: LoadDocuments for each format family, the field-definition
// file, and the whole load workflow (format choice, links, dates, elapsed time, sort, tags).

#include <algorithm>
#include <string>

#include "checks/target_list.h"
#include "common/leading_number.h"
#include "common/notifier.h"
#include "common/text_decoding.h"
#include "corpus/document_set.h"
#include "session/corpus_load.h"
#include "session/session.h"

namespace sylvora::fuzz {
namespace {

// Every cell is valid UTF-8, column formats hold no tab inside a cell, and there are no more
// documents than the input has lines (or records) to give.
std::string CheckCells(const DocumentSet& set, std::string_view input, bool columns) {
  if (set.FieldCount() > 256) return "more than 256 fields";
  const auto lines = static_cast<DocIndex>(std::count(input.begin(), input.end(), '\n') +
                                           std::count(input.begin(), input.end(), '\r') + 1);
  if (columns && set.DocumentCount() > lines) return "more documents than lines";
  for (DocIndex d = 0; d < set.DocumentCount(); ++d) {
    for (int f = 0; f < set.FieldCount(); ++f) {
      const std::string cell = set.Text(d, static_cast<FieldIndex>(f));
      if (!IsValidUtf8(cell)) return "cell is not valid UTF-8";
      if (columns && cell.find('\t') != std::string::npos) return "a cell holds a tab";
    }
  }
  if (set.Text(set.DocumentCount(), 0) != DocumentSet::kIndexErrorText) {
    return "a row past the end did not give the index error text";
  }
  return {};
}

Check LoadFormat(int code, bool columns) {
  return [code, columns](std::string_view input) -> std::string {
    std::string path = WriteScratchFile("corpus.txt", input);
    DocumentSet set;
    if (!set.LoadDocuments(path, code, "\n", 0, 0, false)) {
      if (set.LastError().empty()) return "a failed load gave no reason";
      if (set.DocumentCount() != 0) return "a failed load kept documents";
      return {};
    }
    return CheckCells(set, input, columns);
  };
}

std::string CheckDefinitionFile(std::string_view input) {
  const std::string path = WriteScratchFile("fields.def", input);
  DocumentSet set;
  const bool ok = set.InitFieldDefs(1, "\n", path);
  if (ok && !set.LastError().empty()) return "a successful read left an error";
  if (!ok && set.LastError().empty()) return "a failed read gave no reason";
  for (int f = 0; f < set.FieldCount(); ++f) {
    if (!set.FieldExpressed(static_cast<FieldIndex>(f))) return "a defined field not expressed";
  }
  if (set.FieldCount() > 255) return "more fields than a definition file may declare";
  return {};
}

// The first byte picks the Radian switch; the rest is the file.
std::string CheckLoadWorkflow(std::string_view input) {
  const bool radian = !input.empty() && (static_cast<unsigned char>(input[0]) & 1u) != 0;
  if (!input.empty()) input.remove_prefix(1);
  Session session;
  SilentNotifier notifier;
  LoadOptions options;
  options.path = WriteScratchFile("tweets.txt", input);
  options.radian = radian;
  options.minDocLen = 0;
  const LoadReport report = LoadCorpus(session, options, notifier);
  const DocumentSet& set = session.Documents();
  if (!report.loaded) {
    if (report.error.empty()) return "a failed load gave no reason";
    return {};
  }
  if (std::string failure = CheckCells(set, input, true); !failure.empty()) return failure;
  if (session.Corpus().elapsedTimeDerived) {
    const FieldIndex elapsed = set.ElapsedTimeField();
    for (DocIndex d = 1; d < set.DocumentCount(); ++d) {
      if (LeadingNumber(set.Text(d - 1, elapsed)) > LeadingNumber(set.Text(d, elapsed))) {
        return "documents are not in elapsed-time order after the sort";
      }
    }
  }
  return {};
}

}  // namespace

std::vector<FuzzTarget> CorpusTargets() {
  return {
      {"corpus_twitter", LoadFormat(7, true)},  {"corpus_twitter11", LoadFormat(8, true)},
      {"corpus_radian6", LoadFormat(9, true)},  {"corpus_definition_format", LoadFormat(1, false)},
      {"definition_file", CheckDefinitionFile}, {"load_workflow", CheckLoadWorkflow}};
}

}  // namespace sylvora::fuzz
