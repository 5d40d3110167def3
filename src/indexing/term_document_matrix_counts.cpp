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

constexpr std::size_t kColumnsPerRange = 4096;

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

  // Each range tallies document and global frequencies of its own; entry t is term t (entry 0
  // unused). A document's term numbers (dropped tokens left out) are sorted in a scratch
  // buffer, once per pass, rather than kept: sorting a tweet's few numbers again costs less
  // than holding every token twice.
  struct RangeCounts {
    std::vector<std::int32_t> docFreq, globalFreq;
  };
  std::vector<RangeCounts> counts(ranges.size());
  std::vector<std::size_t> bounds{0};
  for (const TokenRange& range : ranges) {
    bounds.push_back(std::min(documents, bounds.back() + range.DocumentCount()));
  }
  const auto sortedTerms = [&](std::size_t part, std::size_t doc,
                               std::vector<std::int32_t>& terms) {
    const std::vector<std::int32_t>& termOf = termOf_[part];
    terms.clear();
    ranges[part].ForEachToken(doc, [&](std::int32_t token) {
      const std::int32_t term = termOf[static_cast<std::size_t>(token)];
      if (term > 0) terms.push_back(term);
    });
    std::sort(terms.begin(), terms.end());
  };
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    SharedProgress::Counter counter(shared, part);
    RangeCounts& mine = counts[part];
    mine.docFreq.assign(termCount + 1, 0);
    mine.globalFreq.assign(termCount + 1, 0);
    std::vector<std::int32_t> terms;
    for (std::size_t d = 0; d < end - begin; ++d) {
      sortedTerms(part, d, terms);
      ForEachRun(terms.data(), terms.data() + terms.size(),
                 [&](std::int32_t term, std::int32_t count) {
                   ++mine.docFreq[static_cast<std::size_t>(term)];
                   mine.globalFreq[static_cast<std::size_t>(term)] += count;
                 });
      if (!counter.Step()) return;
    }
  });
  if (shared.Cancelled()) return false;
  std::vector<std::int32_t> docFreq(termCount + 1, 0), globalFreq(termCount + 1, 0);
  for (RangeCounts& range : counts) {
    for (std::size_t t = 1; t <= termCount; ++t) {
      docFreq[t] += range.docFreq[t];
      globalFreq[t] += range.globalFreq[t];
    }
    range = RangeCounts();
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
    std::vector<std::int32_t> terms;
    SparseVectorSingle column;
    for (std::size_t d = 0; d < end - begin; ++d) {
      sortedTerms(part, d, terms);
      ClearKeepingStorage(column);
      ForEachRun(terms.data(), terms.data() + terms.size(),
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
    // The pass is short (a multiplication per cell), so a cancel is taken before it starts
    // only: once it starts it ends, and a cancel leaves every cell as it was.
    const std::int32_t columns = matrix_.ColCount();
    ProgressReporter reporter(progress, "Weighting", columns);
    if (!reporter.Report()) return false;
    const auto bounds =
        SplitRange(static_cast<std::size_t>(columns), WorkerCount(), kColumnsPerRange);
    RunRanges(bounds, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t d = begin + 1; d <= end; ++d) {
        SparseVectorSingle& column = *matrix_.Vector(static_cast<std::int32_t>(d));
        const auto elements = column.ElementIndexes();
        const auto values = column.ElementValues();
        for (std::size_t k = 0; k < elements.size(); ++k) {
          const auto term = static_cast<std::size_t>(elements[k]);
          const double f = term < factor.size() ? factor[term] : 0.0;
          column.SetValueByListIndex(static_cast<std::int32_t>(k) + 1,
                                     static_cast<float>(static_cast<double>(values[k]) * f));
        }
      }
    });
    if (progress) progress("Weighting", columns, columns);
  }
  weightsApplied_ = true;
  return true;
}

}  // namespace sylvora
