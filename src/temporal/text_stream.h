#pragma once
// TextStream: the interval model of one term index. It cuts a time-ordered corpus into equal,
// consecutive time intervals and records how strongly each term is present in each interval
// (TIFM), how alike the intervals' term profiles are (NM), how many documents of each
// interval carry each sentiment strength (SIFM), which external events fall in each interval,
// and the burst, novelty, homogeneity, link and sentiment scores the time line draws and ranks.
// The session keeps five, one per term index, all over the same corpus and interval length,
// so interval i covers the same documents in all five.
//
// Numbering. Intervals are 1-based (1..IntervalCount()) and so are terms (1..TermCount() of the
// index). Documents are corpus rows 0..DocumentCount()-1; the index numbers the same documents
// 1..DocCount(): row d is column d + 1 of its matrix. An empty interval has IntervalDocCount 0
// and FirstDocumentIndex == LastDocumentIndex + 1. Per-interval arrays run over 0..
// IntervalCount(); entry 0 is never used.
//
// Interval arithmetic. The temporal field holds whole numbers of a time unit (the elapsed-time
// column); each cell is read as its leading number rounded half to even (and held within the
// signed 32-bit range). With b the value of
// row 0 and L the interval length, interval i covers the inclusive range (i-1)L+b .. iL+b-1,
// and IntervalCount() = (last row's value - b) / L (truncating) + 1, so the last document
// always falls in the last interval. The corpus must be sorted by that field, ascending; the
// model does not check. A row whose value lies below its interval's lower bound is counted in
// the current interval, and one past the last interval's upper bound in the last interval.
//
// Ownership. The stream borrows the corpus and the index (SetDocumentSet,
// SetTermDocumentMatrix); both must outlive it and stay unchanged while it is used. It owns
// its matrices and caches. Every operation but the two setters needs both set, and every
// interval operation a built model (BuildTermIntervalFrequencyModel returned true). A stream
// that is not bound answers 0, nullopt or empty results and builds nothing (the build throws).
//
// Caches. The homogeneity of each interval and the z-score mean and deviation of each term are
// computed on first request and kept until the next BuildTermIntervalFrequencyModel; a cached
// value of 0 counts as "not yet computed". The homogeneity cache is keyed by interval only: a
// later call with another sample step returns the first result.
//
// Failures. BuildTermIntervalFrequencyModel reports a corpus that fits in one interval through
// the notifier and returns false; it throws RangeError for an interval length below 1 or an
// interval count too large to hold. Accessors taking an interval throw RangeError for an
// interval past IntervalCount() (and below 0 where 0 is not accepted). Scores follow IEEE
// arithmetic: a term whose frequency is the same in every interval has an infinite or
// not-a-number z-score.
//
// Cost. The build is one pass over the documents touching each document's stored terms once,
// plus O(terms touched) per interval. NM is one sparse product of the (truncated) TIFM.
// Homogeneity with a sample step of 1 (every pair) is one sparse product over the interval's
// documents: it grows with the pairs that share a term, not with all pairs. With a larger step
// it is a merge per sampled pair, the interval's size squared over the step. Burst scores are
// O(log) per cell; the z-score statistics of all terms take one pass over TIFM the first time.
//
// Threads: const operations other than the cached scores may run concurrently; the cached
// scores (homogeneity, z-score) and everything else need the object to itself.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/notifier.h"
#include "common/numbering.h"
#include "common/progress.h"
#include "corpus/document_set.h"
#include "indexing/term_document_matrix.h"
#include "sparse/sparse_matrix_single.h"

namespace sylvora {

class TextStream {
 public:
  // The message and title shown when the corpus fits in one interval.
  static constexpr std::string_view kOneIntervalMessage =
      "Only one interval - reduce intervals or increase data period";
  static constexpr std::string_view kOneIntervalTitle = "Exiting Build TIFM";
  // More intervals than this is refused (a TIFM column costs memory even when empty).
  static constexpr std::int64_t kMaxIntervalCount = 10'000'000;
  // Burst measures of IntervalBurstScores.
  static constexpr std::int32_t kRatioBurst = 0;
  static constexpr std::int32_t kTemporalRatioBurst = 1;
  static constexpr std::int32_t kZScoreBurst = 2;
  // SIFM has one row per sentiment strength: rows 1..5 are -5..-1, rows 6..10 are +1..+5.
  static constexpr std::int32_t kSentimentRows = 10;

  TextStream() = default;

  // ---- Inputs ----
  void SetDocumentSet(const DocumentSet& corpus) { corpus_ = &corpus; }
  void SetTermDocumentMatrix(const TermDocumentMatrix& tdm) { tdm_ = &tdm; }
  // The borrowed objects; nullptr until set.
  const DocumentSet* Corpus() const { return corpus_; }
  const TermDocumentMatrix* TDM() const { return tdm_; }

  // ---- The models (readable and assignable; see the file comment for their shapes) ----
  // Terms x intervals: cell (t, i) is the share of interval i's documents that contain t.
  SparseMatrixSingle& TIFM() { return tifm_; }
  const SparseMatrixSingle& TIFM() const { return tifm_; }
  // Intervals x intervals: cosine of the (truncated) term profiles, symmetric, 1 on the
  // diagonal once BuildIntervalSimilarityModel ran.
  SparseMatrixSingle& NM() { return nm_; }
  const SparseMatrixSingle& NM() const { return nm_; }
  // 10 x intervals: documents of each interval by sentiment strength.
  SparseMatrixSingle& SIFM() { return sifm_; }
  const SparseMatrixSingle& SIFM() const { return sifm_; }

  // ---- Interval model (text_stream.cpp) ----

  // Builds the intervals and TIFM from the whole numbers in `temporalFieldIndex`. A term
  // counts once per document whatever its frequency (cells that are stored but 0 do not
  // count). Clears the events and every score cache. When the corpus fits in one interval
  // (or the last row's value lies before the first's), shows kOneIntervalMessage with a
  // critical icon and returns false, leaving TIFM sized TermCount x IntervalCount but empty
  // and the interval arrays sized and zero. `progress` is called once per closed interval;
  // when it answers false the model is emptied (IntervalCount 0) and false returned. Throws
  // RangeError when `intervalLength` < 1 or the interval count exceeds kMaxIntervalCount.
  bool BuildTermIntervalFrequencyModel(FieldIndex temporalFieldIndex, std::int32_t intervalLength,
                                       Notifier& notifier = DefaultNotifier(),
                                       const ProgressCallback& progress = {});

  // 0 until a model is built (also after a one-interval build: then the count it found).
  std::int32_t IntervalCount() const { return intervalCount_; }
  std::int32_t IntervalLength() const { return intervalLength_; }
  // Documents of interval i; 0 for i <= 0. Throws RangeError past IntervalCount().
  std::int32_t IntervalDocCount(std::int32_t intervalIndex) const;
  // The largest IntervalDocCount.
  std::int32_t MaxIntervalDocCount() const { return maxIntervalDocCount_; }
  // Zero-based corpus rows of the interval's first and last documents (index 0 accepted).
  // Throws RangeError outside 0..IntervalCount().
  DocIndex FirstDocumentIndex(std::int32_t intervalIndex) const;
  DocIndex LastDocumentIndex(std::int32_t intervalIndex) const;
  // Inclusive temporal bounds of interval i (pure arithmetic, any i).
  std::int64_t IntervalLBound(std::int32_t intervalIndex) const;
  std::int64_t IntervalUBound(std::int32_t intervalIndex) const;
  // The temporal value of row 0 (where interval 1 starts) and of the last row.
  std::int64_t BaseValue() const { return baseValue_; }
  std::int64_t LastValue() const { return lastValue_; }

  // The interval whose span holds a date-time: with u the number of `intervalUnit` boundaries
  // ("s", "n", "h", "d", "ww") from row 0's date-time cell to `dateTimeVal`, the interval
  // floor(u / IntervalLength()) + 1, so 0 or below before the time line starts. nullopt when either
  // text is no date-time or the unit is unknown. The result is not limited to 1..IntervalCount().
  std::optional<std::int32_t> IntervalFromDateTime(std::string_view dateTimeVal,
                                                   std::string_view intervalUnit) const;
  // Element 0: row 0's date-time (quotes removed) plus (i - 1) x IntervalLength() units;
  // element 1: plus i x IntervalLength() units (the start of the next interval). Both in the
  // general date format "YYYY-MM-DD HH:MM:SS"; both "" when row 0's cell is no date-time or the
  // unit is unknown.
  std::array<std::string, 2> IntervalDateTimeBounds(std::int32_t intervalIndex,
                                                    std::string_view intervalUnit) const;

  // TIFM cell (term, interval).
  float IntervalFrequency(std::int32_t termIndex, std::int32_t intervalIndex) const {
    return tifm_.Value(termIndex, intervalIndex);
  }
  // The first interval whose TIFM cell for the term is non-zero; IntervalCount() + 1 when
  // none is; 1 when there are no intervals. O(IntervalCount() log).
  std::int32_t FirstTermInterval(std::int32_t termIndex) const;
  // The last such interval; 0 when none is; IntervalCount() when there are no intervals.
  std::int32_t LastTermInterval(std::int32_t termIndex) const;
  // FirstTermInterval and LastTermInterval of every term 1..RowCount of TIFM in one pass over
  // TIFM, entry t for term t (entry 0 unused), for filling whole term lists.
  struct TermSpans {
    std::vector<std::int32_t> first;
    std::vector<std::int32_t> last;
  };
  TermSpans TermIntervalSpans() const;

  // NM = cosine similarities of the TIFM columns, each first truncated to its `trunK` largest
  // values when trunK > 0, mirrored so that NM(i, k) == NM(k, i). `progress` as in
  // SparseMatrixSingle::GetSimilarityMatrix (a cancel leaves NM empty, sized IC x IC).
  void BuildIntervalSimilarityModel(std::int32_t trunK, const ProgressCallback& progress = {});

  // An upper bound of the interval pairs BuildIntervalSimilarityModel(trunK) would store off
  // the diagonal (see SparseMatrixSingle::SharedRowPairEstimate), to check its memory first.
  std::int64_t IntervalSimilarityPairEstimate(std::int32_t trunK, std::int64_t limit) const;

  // The descriptions of the events in interval i: "" or "|A|B...". Throws RangeError outside
  // 0..IntervalCount().
  const std::string& Events(std::int32_t intervalIndex) const;
  // Appends: the text becomes old text + "|" + description. Throws like Events.
  void SetEvents(std::int32_t intervalIndex, std::string_view eventDescription);

  // ---- Scores (text_stream_scores.cpp) ----
  // f = TIFM cell, df and N = the index's DocFreq and DocCount, ln the natural logarithm.

  // f / (df / N) x ln(100 f + 1).
  float RatioBurstScore(std::int32_t termIndex, std::int32_t intervalIndex) const;
  // 0 for i < 1; for i = 1 or f(t, i-1) <= 0 the ratio burst score; otherwise
  // f(t, i) / f(t, i-1) x ln(100 f + 1).
  float TemporalRatioBurstScore(std::int32_t termIndex, std::int32_t intervalIndex) const;
  // (f - m) / s with m and s the mean and population deviation of the term's frequencies over
  // all intervals (cached); IEEE infinities and NaN when s = 0. 0 for a term outside
  // 1..TermCount.
  float TermIntervalZScore(std::int32_t termIndex, std::int32_t intervalIndex);
  // The chosen score (kRatioBurst, kTemporalRatioBurst, kZScoreBurst) of every term for
  // interval i, entry t for term t (entry 0 unused); any other measure gives all zeros.
  std::vector<float> IntervalBurstScores(std::int32_t intervalIndex, std::int32_t measure);

  // 1 - the mean of NM(i, k) over the `windowSz` intervals k = i-1 .. i-windowSz; 0 when
  // i - windowSz < 1 (no full window) and for a window of 0.
  float IntervalNoveltyScore(std::int32_t intervalIndex, std::uint8_t windowSz) const;

  // Mean cosine of the interval's document pairs (d1, d2), d2 = d1+1, d1+1+step, ... (cached
  // per interval); 0 for interval 0 and for an interval of fewer than two documents. A step
  // below 1 counts as 1. Throws RangeError outside 0..IntervalCount().
  float IntervalHomogScore(std::int32_t intervalIndex, std::int16_t sampleStep);
  // The sample step the main time line uses: 1 for interval 1 (every pair), the interval's
  // document count for the others (each document with its successor), capped to the 16-bit
  // range.
  static std::int16_t ChartHomogSampleStep(std::int32_t intervalIndex, std::int32_t docCount);

  // Share of the interval's documents whose link cell (the corpus's URLField) is not empty;
  // 0 for an empty interval.
  float URLRatio(std::int32_t intervalIndex) const;
  // The number of those documents.
  std::int32_t URLCount(std::int32_t intervalIndex) const;

  // Builds SIFM from the strengths in `posField` (1..5) and `negField` (-5..-1); a strength out
  // of range counts as the weakest of its side. When row 1's value parses as 0 on either side
  // (a corpus without sentiment columns, or with fewer than two rows) SIFM stays all zero.
  void BuildSentimentIntervalFrequencyModel(FieldIndex posField, FieldIndex negField);
  // Interval sentiment of one side. `valence` is replaced by its sign (-1, 0, +1); 0 gives 0,
  // as does an empty interval.
  //  Mean: sum of strength x count / IntervalDocCount, a positive number for both sides.
  //  Mode: the strength of the largest count, ties to the weaker strength; 0 with no counts.
  //  Median: the first strength whose accumulated count / IntervalDocCount exceeds 0.5; 0 if
  //  none.
  float IntervalSentimentMean(std::int32_t intervalIndex, std::int16_t& valence) const;
  std::int32_t IntervalSentimentMode(std::int32_t intervalIndex, std::int16_t& valence) const;
  std::int32_t IntervalSentimentMedian(std::int32_t intervalIndex, std::int16_t& valence) const;
  // Per term 1..TermCount, over the interval's documents that contain the term: entry t holds
  // {mean of the posSentIdx values, mean of the negSentIdx values}, or {0, 0} when the term has
  // no document there. Entry 0 unused.
  std::vector<std::array<float, 2>> TermSentimentScores(std::int32_t intervalIndex,
                                                        FieldIndex posSentIdx,
                                                        FieldIndex negSentIdx) const;
  // Always 0.
  float TermIntervalSentimentMean(std::int32_t termIndex, std::int32_t intervalIndex,
                                  std::int16_t valence) const;

 private:
  // Throws RangeError unless 0 <= i <= IntervalCount().
  std::size_t CheckedInterval(std::int32_t intervalIndex, const char* operation) const;
  // The whole number in row d of the temporal field.
  std::int64_t TemporalValue(DocIndex row, FieldIndex field) const;
  // Sizes the interval arrays to 0..count and empties the caches and events.
  void ResetIntervals(std::int32_t count);
  // Fills the z-score mean and deviation of every term in one pass over TIFM.
  void ComputeZScoreStatistics();
  // SIFM count of strength 1..5 on the side of `sign` in interval i.
  float SentimentCount(std::int32_t intervalIndex, std::int32_t sign, std::int32_t strength) const;

  const DocumentSet* corpus_ = nullptr;
  const TermDocumentMatrix* tdm_ = nullptr;
  SparseMatrixSingle tifm_;
  SparseMatrixSingle nm_;
  SparseMatrixSingle sifm_;

  std::int32_t intervalCount_ = 0;
  std::int32_t intervalLength_ = 0;
  std::int64_t baseValue_ = 0;
  std::int64_t lastValue_ = 0;
  std::int32_t maxIntervalDocCount_ = 0;
  // Entry i for interval i; entry 0 unused.
  std::vector<std::int32_t> intervalDocCount_ = std::vector<std::int32_t>(1, 0);
  std::vector<DocIndex> firstDocumentIndex_ = std::vector<DocIndex>(1, 0);
  std::vector<DocIndex> lastDocumentIndex_ = std::vector<DocIndex>(1, 0);
  std::vector<std::string> events_ = std::vector<std::string>(1);

  // Score caches: entry i for interval i, entry t for term t; 0 = not yet computed.
  std::vector<float> homogCache_ = std::vector<float>(1, 0.0f);
  std::vector<float> zMeanCache_;
  std::vector<float> zDeviationCache_;
  bool zStatisticsComputed_ = false;
};

}  // namespace sylvora
