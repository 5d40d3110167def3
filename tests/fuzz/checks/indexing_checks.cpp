// Checks of the indexing readers: the stop list and the ".tdm" file.

#include <cmath>
#include <string>
#include <vector>

#include "checks/target_list.h"
#include "corpus/document_set.h"
#include "indexing/indexing_errors.h"
#include "indexing/stop_list.h"
#include "indexing/term_document_matrix.h"

namespace sylvora::fuzz {
namespace {

std::string CheckStopList(std::string_view input) {
  const std::string path = WriteScratchFile("stop_words.txt", input);
  StopList list;
  try {
    list.Load(path, 3);
  } catch (const StopListError& error) {
    if (std::string(error.what()).empty()) return "a stop-list error without a message";
    if (list.Loaded()) return "a refused stop list counts as loaded";
    return {};
  }
  if (list.Count() > StopList::kMaxWords) return "more stop words than a list keeps";
  for (const std::string& word : list.Words()) {
    if (!list.Contains(word)) return "a listed stop word is not found";
  }
  return {};
}

// The first byte gives the document count (2..9) and the document-frequency flag; the rest is
// the ".tdm" file.
std::string CheckTdmFile(std::string_view input) {
  const unsigned first = input.empty() ? 0u : static_cast<unsigned char>(input[0]);
  if (!input.empty()) input.remove_prefix(1);
  const DocIndex documents = static_cast<DocIndex>(first % 8 + 2);
  const bool dfField = (first & 8u) != 0;

  // The index files sit beside the corpus: "<folder>/tweets_0.tdm" for "<folder>/tweets.txt".
  std::string corpusFile;
  for (DocIndex d = 0; d < documents; ++d) corpusFile += "2011-01-05 10:00:00\tuser\tsome text\n";
  std::string corpusPath = WriteScratchFile("tweets.txt", corpusFile);
  DocumentSet corpus;
  if (!corpus.LoadDocuments(corpusPath, 7, "\n", 0, 0, false)) {
    return "the scratch corpus did not load: " + corpus.LastError();
  }
  TermDocumentMatrix index;
  DocIndex count = documents;
  index.AssignText(corpus, count, false);
  WriteScratchFile(index.FilePath().substr(index.FilePath().rfind('/') + 1), input);
  try {
    index.LoadTDM(dfField);
  } catch (const TdmVersionError&) {
    return "the file written for the index was not found";
  } catch (const TdmFileError& error) {
    if (index.TermCount() != 0) return "a refused file left terms behind";
    if (std::string(error.what()).empty()) return "a TDM error without a message";
    return {};
  }
  if (index.Matrix().RowCount() != index.TermCount()) return "matrix rows differ from terms";
  if (index.DocCount() > documents) return "more documents than were assigned";
  for (std::int32_t d = 1; d <= index.Matrix().ColCount(); ++d) {
    for (float value : index.Matrix().Vector(d)->ElementValues()) {
      if (!(value > 0.0f)) return "a stored weight is not positive";
    }
  }
  return {};
}

}  // namespace

std::vector<FuzzTarget> IndexingTargets() {
  return {{"stop_list", CheckStopList}, {"tdm_file", CheckTdmFile}};
}

}  // namespace sylvora::fuzz
