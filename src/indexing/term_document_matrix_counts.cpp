// Counting terms per document, pruning by document frequency, and weighting the matrix.
//
// BuildTDM works from the term numbers BuildVocab gave each range's distinct tokens: one pass
// sorts each document's numbers and tallies document and global frequencies, the pruning
// bounds then decide which terms stay, and a second pass writes each document's column with
// the kept terms already renumbered, so no column is written twice. Both passes run over the
// ranges of documents on their own threads; the tallies are summed afterwards.

#include <algorithm>
#include <cmath>

#include "common/parallel.h"
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
  if (!vocabularyReady_) {
    lastError_ = "BuildTDM needs a vocabulary built from the current text (run BuildVocab first)";
    return false;
  }
  const std::size_t termCount = terms_.size();
  const auto& ranges = tokens_.Ranges();
  const std::size_t documents = std::min(tokens_.DocumentCount(), TextCount());
  const DocIndex columns = docCount_;
  SharedProgress shared(progress, "Counting term-document occurrences",
                        2 * static_cast<std::int64_t>(documents));

  // Each range's documents as sorted term numbers (dropped tokens left out), with its own
  // tallies of document and global frequency; entry t is term t (entry 0 unused).
  struct RangeCounts {
    std::vector<std::int32_t> terms;
    std::vector<std::size_t> starts;
    std::vector<std::int32_t> docFreq, globalFreq;
  };
  std::vector<RangeCounts> counts(ranges.size());
  std::vector<std::size_t> bounds{0};
  for (const TokenRange& range : ranges) {
    bounds.push_back(std::min(documents, bounds.back() + range.DocumentCount()));
  }
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    SharedProgress::Counter counter(shared, part);
    const TokenRange& range = ranges[part];
    const std::vector<std::int32_t>& termOf = termOf_[part];
    RangeCounts& mine = counts[part];
    mine.docFreq.assign(termCount + 1, 0);
    mine.globalFreq.assign(termCount + 1, 0);
    mine.starts.reserve(end - begin + 1);
    mine.starts.push_back(0);
    for (std::size_t d = 0; d < end - begin; ++d) {
      for (const std::int32_t token : range.Tokens(d)) {
        const std::int32_t term = termOf[static_cast<std::size_t>(token)];
        if (term > 0) mine.terms.push_back(term);
      }
      std::int32_t* first = mine.terms.data() + mine.starts.back();
      std::int32_t* last = mine.terms.data() + mine.terms.size();
      std::sort(first, last);
      ForEachRun(first, last, [&](std::int32_t term, std::int32_t count) {
        ++mine.docFreq[static_cast<std::size_t>(term)];
        mine.globalFreq[static_cast<std::size_t>(term)] += count;
      });
      mine.starts.push_back(mine.terms.size());
      if (!counter.Step()) return;
    }
  });
  if (shared.Cancelled()) return false;
  std::vector<std::int32_t> docFreq(termCount + 1, 0), globalFreq(termCount + 1, 0);
  for (const RangeCounts& range : counts) {
    for (std::size_t t = 1; t <= termCount; ++t) {
      docFreq[t] += range.docFreq[t];
      globalFreq[t] += range.globalFreq[t];
    }
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
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    SharedProgress::Counter counter(shared, part);
    RangeCounts& mine = counts[part];
    SparseVectorSingle column;
    for (std::size_t d = 0; d < end - begin; ++d) {
      ClearKeepingStorage(column);
      ForEachRun(mine.terms.data() + mine.starts[d], mine.terms.data() + mine.starts[d + 1],
                 [&](std::int32_t term, std::int32_t count) {
                   const std::int32_t number = newNumber[static_cast<std::size_t>(term)];
                   if (number > 0) column.SetValue(number, static_cast<float>(count));
                 });
      // A copy allocates exactly what the column holds.
      if (column.NZElementCount() > 0) {
        *matrix.Vector(static_cast<std::int32_t>(begin + d) + 1) = column;
      }
      if (!counter.Step()) return;
    }
    std::vector<std::int32_t>().swap(mine.terms);
  });
  if (shared.Cancelled() || !shared.Report()) return false;
  matrix.SetRowCount(kept);

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
