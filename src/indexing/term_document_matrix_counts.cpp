// Counting terms per document, pruning by document frequency, and weighting the matrix.
//
// BuildTDM works from the term numbers BuildVocab recorded for each document's tokens: one
// pass sorts each document's numbers and tallies document and global frequencies, the
// pruning bounds then decide which terms stay, and a second pass writes each document's
// column with the kept terms already renumbered, so no column is written twice.

#include <algorithm>
#include <cmath>

#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

// Empties a vector but keeps its storage, so that it can be refilled without allocating.
void ClearKeepingStorage(SparseVectorSingle& vector) {
  while (vector.NZElementCount() > 0) vector.DeleteElement(vector.ElementIndexes().back());
}

// Calls visit(term, count) for each run of equal numbers in a sorted range.
template <typename Visit>
void ForEachRun(const std::int32_t* first, const std::int32_t* last, Visit&& visit) {
  while (first != last) {
    const std::int32_t term = *first;
    const std::int32_t* end = first;
    while (end != last && *end == term) ++end;
    visit(term, static_cast<std::int32_t>(end - first));
    first = end;
  }
}

}  // namespace

bool TermDocumentMatrix::BuildTDM(std::int32_t minDF, std::int32_t maxDF,
                                  const ProgressCallback& progress) {
  if (tokenStart_.empty()) {
    lastError_ = "BuildTDM needs a vocabulary built from the current text (run BuildVocab first)";
    return false;
  }
  const std::size_t termCount = terms_.size();
  const std::size_t documents = tokenStart_.size() - 1;
  const DocIndex columns = docCount_;
  ProgressReporter reporter(progress, "Counting term-document occurrences",
                            2 * static_cast<std::int64_t>(documents));

  // Frequencies; entry t is term t (entry 0 unused).
  std::vector<std::int32_t> docFreq(termCount + 1, 0), globalFreq(termCount + 1, 0);
  for (std::size_t d = 0; d < documents; ++d) {
    std::int32_t* first = tokenTerms_.data() + tokenStart_[d];
    std::int32_t* last = tokenTerms_.data() + tokenStart_[d + 1];
    std::sort(first, last);
    ForEachRun(first, last, [&](std::int32_t term, std::int32_t count) {
      ++docFreq[static_cast<std::size_t>(term)];
      globalFreq[static_cast<std::size_t>(term)] += count;
    });
    if (!reporter.Step()) return false;
  }

  // The new number of each term (0: pruned). When nothing qualifies, every term stays.
  std::vector<std::int32_t> newNumber(termCount + 1, 0);
  std::int32_t kept = 0;
  for (std::size_t t = 1; t <= termCount; ++t) {
    if (docFreq[t] >= minDF && docFreq[t] <= maxDF) newNumber[t] = ++kept;
  }
  const bool pruned = kept > 0;
  if (!pruned) {
    for (std::size_t t = 1; t <= termCount; ++t) newNumber[t] = static_cast<std::int32_t>(t);
    kept = static_cast<std::int32_t>(termCount);
  }

  SparseMatrixSingle matrix;
  matrix.Reset(kept, columns);
  SparseVectorSingle column;
  for (std::size_t d = 0; d < documents; ++d) {
    ClearKeepingStorage(column);
    ForEachRun(tokenTerms_.data() + tokenStart_[d], tokenTerms_.data() + tokenStart_[d + 1],
               [&](std::int32_t term, std::int32_t count) {
                 const std::int32_t number = newNumber[static_cast<std::size_t>(term)];
                 if (number > 0) column.SetValue(number, static_cast<float>(count));
               });
    // A copy allocates exactly what the column holds.
    if (column.NZElementCount() > 0) *matrix.Vector(static_cast<std::int32_t>(d) + 1) = column;
    if (!reporter.Step()) return false;
  }
  matrix.SetRowCount(kept);
  reporter.Report();

  std::vector<std::string> terms;
  terms.reserve(static_cast<std::size_t>(kept));
  docFreq_.assign(static_cast<std::size_t>(kept), 0);
  globalFreq_.assign(static_cast<std::size_t>(kept), 0);
  for (std::size_t t = 1; t <= termCount; ++t) {
    const std::int32_t number = newNumber[t];
    if (number == 0) continue;
    terms.push_back(std::move(terms_[t - 1]));
    docFreq_[static_cast<std::size_t>(number) - 1] = docFreq[t];
    globalFreq_[static_cast<std::size_t>(number) - 1] = globalFreq[t];
  }
  terms_ = std::move(terms);
  matrix_ = std::move(matrix);
  weightsApplied_ = false;
  if (!pruned) return true;

  if (isURLIndex_) {
    for (std::string& term : terms_) {
      term.insert(0, secureLinks_.contains(term) ? kSecureLinkPrefix : kLinkPrefix);
    }
  }
  ReleaseText();
  return true;
}

bool TermDocumentMatrix::WeightMatrixValues(std::int32_t scheme, const ProgressCallback& progress) {
  if (scheme == kInverseDocumentFrequency) {
    std::vector<double> factor(terms_.size() + 1, 0.0);
    for (std::size_t t = 1; t <= terms_.size(); ++t) {
      factor[t] = GlobalFactor(static_cast<std::int32_t>(t), scheme);
    }
    // The new values are worked out first, so that a cancel leaves every cell as it was.
    const std::int32_t columns = matrix_.ColCount();
    std::size_t cells = 0;
    for (std::int32_t d = 1; d <= columns; ++d) {
      cells += static_cast<std::size_t>(matrix_.Vector(d)->NZElementCount());
    }
    std::vector<float> weights;
    weights.reserve(cells);
    ProgressReporter reporter(progress, "Weighting", columns);
    for (std::int32_t d = 1; d <= columns; ++d) {
      const SparseVectorSingle& column = *matrix_.Vector(d);
      const auto elements = column.ElementIndexes();
      const auto values = column.ElementValues();
      for (std::size_t k = 0; k < elements.size(); ++k) {
        const auto term = static_cast<std::size_t>(elements[k]);
        const double f = term < factor.size() ? factor[term] : 0.0;
        weights.push_back(static_cast<float>(static_cast<double>(values[k]) * f));
      }
      if (!reporter.Step()) return false;
    }
    std::size_t next = 0;
    for (std::int32_t d = 1; d <= columns; ++d) {
      SparseVectorSingle& column = *matrix_.Vector(d);
      for (std::int32_t k = 1; k <= column.NZElementCount(); ++k) {
        column.SetValueByListIndex(k, weights[next++]);
      }
    }
    reporter.Report();
  }
  weightsApplied_ = true;
  return true;
}

}  // namespace sylvora
