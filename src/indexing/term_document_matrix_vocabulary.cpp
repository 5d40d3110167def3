// Building the vocabulary: terms numbered by first-letter bucket, then by first appearance,
// with at most a given number of terms per bucket, or none.
//
// Preprocess left, per range of documents, each distinct token once in order of first
// appearance. Merging the ranges in document order meets every token first where one pass over
// all documents would, so a hash map from token to arrival number gives the same numbering and
// drops the same tokens: a bucket's slots fill in order of first appearance and a new token is
// refused exactly when its bucket is full (and stays refused, since buckets never empty).

#include <algorithm>
#include <unordered_map>

#include "common/parallel.h"
#include "indexing/character_classes.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

constexpr int kPlaceholderBucket = 6;  // "f"
constexpr std::int32_t kDropped = -1;
constexpr std::size_t kDocumentsPerRange = 4096;

// Calls visit(token) for every non-empty piece of `text` between single spaces.
template <typename Visit>
void ForEachToken(std::string_view text, Visit&& visit) {
  std::size_t start = 0;
  while (start <= text.size()) {
    std::size_t end = text.find(' ', start);
    if (end == std::string_view::npos) end = text.size();
    if (end > start) visit(text.substr(start, end - start));
    start = end + 1;
  }
}

}  // namespace

DocumentTokens TermDocumentMatrix::SplitAssignedText() const {
  const auto bounds = SplitRange(TextCount(), WorkerCount(), kDocumentsPerRange);
  std::vector<TokenRange> ranges(bounds.size() - 1);
  RunRanges(bounds, [&](std::size_t part, std::size_t begin, std::size_t end) {
    TokenRange& range = ranges[part];
    for (std::size_t d = begin; d < end; ++d) {
      ForEachToken(text_.At(d), [&](std::string_view token) { range.Add(range.Intern(token)); });
      range.EndDocument();
    }
  });
  DocumentTokens tokens;
  for (auto& range : ranges) tokens.Join(std::move(range));
  return tokens;
}

bool TermDocumentMatrix::BuildVocab(std::uint8_t gramLen, std::int32_t maxCharSlotSz,
                                    const ProgressCallback& progress) {
  const std::size_t slots = maxCharSlotSz < 0 ? 0 : static_cast<std::size_t>(maxCharSlotSz) + 1;
  ProgressReporter reporter(progress, "Building vocabulary",
                            static_cast<std::int64_t>(TextCount()));

  // Assigned text that was never preprocessed is split at single spaces; the text itself stays.
  DocumentTokens split;
  const bool splitText = text_.Count() > 0;
  if (splitText) split = SplitAssignedText();
  const DocumentTokens& tokens = splitText ? split : tokens_;
  const auto& ranges = tokens.Ranges();

  // Each new term gets the next arrival number; its place in term order is fixed once every
  // bucket is known. A refused token is remembered as kDropped.
  std::unordered_map<std::string_view, std::int32_t> places;
  std::array<std::vector<std::int32_t>, kLetterBucketCount> buckets;
  std::vector<std::string_view> arrivals;
  std::int64_t dropped = 0;
  std::vector<std::vector<std::int32_t>> arrivalOf(ranges.size());
  for (std::size_t r = 0; r < ranges.size(); ++r) {
    const TokenRange& range = ranges[r];
    arrivalOf[r].assign(range.DistinctCount(), kDropped);
    if (gramLen == 0) {
      for (std::size_t local = 0; local < range.DistinctCount(); ++local) {
        const std::string_view token = range.Distinct(static_cast<std::int32_t>(local));
        const auto [entry, isNew] = places.try_emplace(token, kDropped);
        if (isNew) {
          auto& slotList = buckets[static_cast<std::size_t>(FirstLetterBucket(token))];
          if (slotList.size() >= slots) {  // the bucket is full: the token is dropped
            ++dropped;
          } else {
            entry->second = static_cast<std::int32_t>(arrivals.size());
            slotList.push_back(entry->second);
            arrivals.push_back(token);
          }
        }
        arrivalOf[r][local] = entry->second;
      }
    }
    for (std::size_t d = 0; d < range.DocumentCount(); ++d) {
      if (!reporter.Step()) return false;
    }
  }
  reporter.Report();

  // A vocabulary is never empty. Where the placeholder stands in, its occurrences in the
  // text (if any) are counted like those of any term.
  if (arrivals.empty()) {
    arrivals.push_back(kPlaceholderTerm);
    buckets[kPlaceholderBucket].push_back(0);
    for (std::size_t r = 0; r < ranges.size(); ++r) {
      std::fill(arrivalOf[r].begin(), arrivalOf[r].end(), kDropped);
      const std::int32_t local = ranges[r].Find(kPlaceholderTerm);
      if (local >= 0) arrivalOf[r][static_cast<std::size_t>(local)] = 0;
    }
  }

  // Number the terms bucket by bucket.
  std::vector<std::string> terms;
  terms.reserve(arrivals.size());
  std::vector<std::int32_t> numberOf(arrivals.size());
  std::array<std::int32_t, 28> letterStart{};
  for (int b = 0; b < kLetterBucketCount; ++b) {
    letterStart[static_cast<std::size_t>(b)] = static_cast<std::int32_t>(terms.size()) + 1;
    for (const std::int32_t arrival : buckets[static_cast<std::size_t>(b)]) {
      terms.emplace_back(arrivals[static_cast<std::size_t>(arrival)]);
      numberOf[static_cast<std::size_t>(arrival)] = static_cast<std::int32_t>(terms.size());
    }
  }
  letterStart[kLetterBucketCount] = static_cast<std::int32_t>(terms.size()) + 1;
  for (auto& numbers : arrivalOf) {
    for (std::int32_t& number : numbers) {
      number = number == kDropped ? 0 : numberOf[static_cast<std::size_t>(number)];
    }
  }

  if (splitText) tokens_ = std::move(split);
  terms_ = std::move(terms);
  droppedTermCount_ = dropped;
  letterStart_ = letterStart;
  termOf_ = std::move(arrivalOf);
  vocabularyReady_ = true;
  docFreq_.clear();
  globalFreq_.clear();
  matrix_.Reset(0, 0);
  weightsApplied_ = false;
  return true;
}

}  // namespace sylvora
