#include "app/short_url_resolution.h"

#include <vector>

#include "app/misc_functions.h"
#include "indexing/term_document_matrix.h"

namespace sylvora::app {
namespace {

// A host shorter than this is taken for a link shortener.
constexpr std::size_t kLongHostLength = 8;
// Every distinct link must become a term, so the per-letter slot limit is the largest there is.
constexpr std::int16_t kAllLinks = 32767;
// The label is refreshed after every attempt and at least this often otherwise.
constexpr std::int32_t kTextInterval = 256;

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty()) return;
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
    text.replace(at, from.size(), to);
    at += to.size();
  }
}

// Puts the expressed flags back as they were when the object was made.
class ExpressionPattern {
 public:
  explicit ExpressionPattern(DocumentSet& documents)
      : documents_(documents), pattern_(documents.FieldExpressionPattern()) {}
  ~ExpressionPattern() { documents_.SetFieldExpressionPattern(pattern_); }
  ExpressionPattern(const ExpressionPattern&) = delete;
  ExpressionPattern& operator=(const ExpressionPattern&) = delete;

 private:
  DocumentSet& documents_;
  std::string pattern_;
};

}  // namespace

bool HasShortURLs(const DocumentSet& documents, FieldIndex urlField) {
  if (urlField >= documents.FieldCount()) return false;
  for (DocIndex doc = 0; doc < documents.DocumentCount(); ++doc) {
    std::string_view cell = documents.Cell(doc, urlField);
    while (!cell.empty()) {
      const std::size_t start = cell.find_first_not_of(" \t");
      if (start == std::string_view::npos) break;
      cell.remove_prefix(start);
      const std::size_t end = std::min(cell.find_first_of(" \t"), cell.size());
      const std::string_view link = cell.substr(0, end);
      if (link.find('.') != std::string_view::npos &&
          GetURLDomain(link, true).size() < kLongHostLength) {
        return true;
      }
      cell.remove_prefix(end);
    }
  }
  return false;
}

std::string ShortURLProgressText(std::int32_t processed, std::int32_t links, std::int32_t attempts,
                                 std::int32_t successes) {
  return "Attempting to resolve Short URLs:\r\nProcessed " + std::to_string(processed) +
         " out of " + std::to_string(links) +
         " URLs\r\nAttempted resolutions: " + std::to_string(attempts) +
         "\r\nSuccessful resolutions: " + std::to_string(successes);
}

ShortURLReport ResolveShortURLs(Session& session, const std::string& corpusPath,
                                const ExpandFunction& expand, const ProgressTextFunction& showText,
                                const ProgressCallback& progress) {
  ShortURLReport report;
  DocumentSet& documents = session.Documents();
  const FieldIndex urlField = documents.URLField();
  const DocIndex documentCount = documents.DocumentCount();

  TermDocumentMatrix index;
  {
    ExpressionPattern restore(documents);
    documents.SetFieldExpressionPattern("");
    documents.SetFieldExpressed(urlField, true);
    DocIndex count = documentCount;
    if (!index.AssignText(documents, count, true, progress) ||
        !index.Preprocess(true, false, 3, std::string(), false, progress) ||
        !index.BuildVocab(0, kAllLinks, progress) || !index.BuildTDM(1, count, progress)) {
      report.cancelled = true;
      return report;
    }
  }

  // The documents of each term, from the document columns of the matrix.
  const std::int32_t links = index.TermCount();
  std::vector<std::vector<DocIndex>> documentsOf(static_cast<std::size_t>(links) + 1);
  const SparseMatrixSingle& matrix = index.Matrix();
  for (std::int32_t column = 1; column <= matrix.ColCount(); ++column) {
    const SparseVectorSingle* vector = matrix.Vector(column);
    if (vector == nullptr) continue;
    for (const std::int32_t term : vector->ElementIndexes()) {
      if (term >= 1 && term <= links)
        documentsOf[static_cast<std::size_t>(term)].push_back(column - 1);
    }
  }

  report.links = links;
  ProgressReporter reporter(progress, "Resolving short links", links, 1);
  for (std::int32_t term = 1; term <= links; ++term) {
    if (!reporter.Step()) {
      report.cancelled = true;
      break;
    }
    // A term without documents is the placeholder of a column without links.
    if (index.DocFreq(term) == 0) {
      report.processed = term;
      continue;
    }
    const std::string& shortURL = index.Term(term);
    bool attempted = false;
    if (GetURLDomain(shortURL, true).size() < kLongHostLength) {
      attempted = true;
      ++report.attempts;
      const ExpandedURL expanded = expand(shortURL);
      if (expanded.longURL.size() != shortURL.size()) {
        ++report.successes;
        for (const DocIndex doc : documentsOf[static_cast<std::size_t>(term)]) {
          std::string cell(documents.Cell(doc, urlField));
          ReplaceAll(cell, shortURL, expanded.longURL);
          documents.SetText(doc, urlField, cell);
        }
      }
    }
    report.processed = term;
    if (showText && (attempted || term % kTextInterval == 0 || term == links)) {
      showText(ShortURLProgressText(term, links, report.attempts, report.successes));
    }
  }
  report.progressText =
      ShortURLProgressText(report.processed, links, report.attempts, report.successes);
  if (report.cancelled) return report;

  report.savedPath = corpusPath + "_";
  report.progressText += "Saving updated corpus to " + report.savedPath + "\r\n";
  if (showText) showText(report.progressText);
  if (documents.ExportTSV(report.savedPath, false)) {
    report.saved = true;
  } else {
    report.error = documents.LastError().empty() ? "Cannot write '" + report.savedPath + "'"
                                                 : documents.LastError();
  }
  return report;
}

}  // namespace sylvora::app
