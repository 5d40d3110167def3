#pragma once
// The rules that link the cluster explorer's maps to each other and to the models, kept apart
// from the widgets so that they can be checked on hand-made numbers.
//
//  * Interval hover: each term's term-interval z-score is weighted by ln(f + 1) (f = the
//    term's TIFM cell in that interval, natural logarithm in double precision, the product
//    stored as a float; a term absent from the interval weighs 0 whatever its z-score). Terms
//    are visited 1..n; a score greater than or equal to the best so far (which starts at 0,
//    with no term) becomes the best and the previous best moves to second place. Only a new
//    best moves places: scores 0.5, 2, 1 give best 2, second 1.
//  * Recolouring: with c words visible in the word map, an interval (or tweet) in which k of
//    them occur gets palette entry k / c x 9 rounded half to even (9 = every visible word).
//  * The label slider: its value is a document frequency in documents per thousand and its
//    tooltip shows it as a percentage.
//
// Numbering: terms and intervals 1-based; entry 0 of the per-term arrays is unused.

#include <cstdint>
#include <vector>

#include <QString>

namespace sylvora {
class PointMap2D;
class TermDocumentMatrix;
class TextStream;
}  // namespace sylvora

namespace sylvora::app {

// The two best terms of weighted scores (entry t for term t); 0 where there is none.
struct BestTwoTerms {
  std::int32_t best = 0;
  std::int32_t second = 0;
};
BestTwoTerms PickBestTwoTerms(const std::vector<float>& weighted);

// z(t) x ln(f(t) + 1) for terms 1..n; `zScores` and `frequencies` have entry t for term t.
std::vector<float> WeightedBurstScores(const std::vector<float>& zScores,
                                       const std::vector<float>& frequencies);

// The interval map's tooltip of interval k: k, ": ", the best term, ", ", the second term ("" when
// none). Reads the words model's z-scores (which fills its cache: the model must not be in use
// elsewhere). "" when the model has no interval k.
QString IntervalTooltip(TextStream& wordModel, const TermDocumentMatrix& wordIndex,
                        std::int32_t interval);

// "Doc Freq >= " + value / 10 + "%" ("Doc Freq >= 25%" at 250, "Doc Freq >= 0.5%" at 5).
QString LabelThresholdTip(int value);

// The palette entry of an item holding `count` of `visible` words: count / visible x 9, rounded
// half to even. `visible` must be at least 1.
std::int16_t GradientEntry(std::int32_t count, std::int32_t visible);

// The gradient of the recolouring: entries 0..9 from black to green.
void SetVisibleWordGradient(PointMap2D& map);

// For each term 1..n (entry t), whether its word-map node t - 1 is visible; the count of visible
// terms in `visibleCount`.
std::vector<bool> VisibleTerms(const PointMap2D& wordMap, std::int32_t& visibleCount);

// How many visible terms occur in each interval 1..IntervalCount (entry k; entry 0 unused).
std::vector<std::int32_t> VisibleWordsPerInterval(const TextStream& wordModel,
                                                  const std::vector<bool>& visible);

// How many visible terms occur in each of the documents `first`..`first + count - 1` (corpus rows;
// entry i for row first + i).
std::vector<std::int32_t> VisibleWordsPerDocument(const TermDocumentMatrix& wordIndex,
                                                  std::int32_t first, std::int32_t count,
                                                  const std::vector<bool>& visible);

}  // namespace sylvora::app
