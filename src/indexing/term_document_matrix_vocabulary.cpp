// Building the vocabulary: terms numbered by first-letter bucket, then by first appearance,
// with at most a given number of terms per bucket, or none.
//
// A hash map from token to its arrival number replaces the bucket-by-bucket scan of slots; it
// gives the same numbering and drops the same tokens, because a bucket's slots fill in order
// of first appearance and a new token is refused exactly when its bucket is full.

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "indexing/character_classes.h"
#include "indexing/term_document_matrix.h"

namespace sylvora {
namespace {

struct StringHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>{}(text);
  }
};

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

constexpr int kPlaceholderBucket = 6;  // "f"

}  // namespace

bool TermDocumentMatrix::BuildVocab(std::uint8_t gramLen, std::int32_t maxCharSlotSz,
                                    const ProgressCallback& progress) {
  const std::size_t slots = maxCharSlotSz < 0 ? 0 : static_cast<std::size_t>(maxCharSlotSz) + 1;
  const std::size_t documents = TextCount();

  // Each new term gets the next arrival number; its place in term order is fixed once every
  // bucket is known.
  std::unordered_map<std::string, std::int32_t, StringHash, std::equal_to<>> places;
  std::array<std::vector<std::int32_t>, kLetterBucketCount> buckets;
  std::vector<const std::string*> arrivals;
  std::unordered_set<std::string, StringHash, std::equal_to<>> dropped;
  std::vector<std::int32_t> tokenPlaces;
  std::vector<std::size_t> tokenStart;
  tokenStart.reserve(documents + 1);
  tokenStart.push_back(0);

  ProgressReporter reporter(progress, "Building vocabulary", static_cast<std::int64_t>(documents));
  for (std::size_t d = 0; d < documents; ++d) {
    if (gramLen == 0) {
      ForEachToken(text_.At(d), [&](std::string_view token) {
        const auto known = places.find(token);
        if (known != places.end()) {
          tokenPlaces.push_back(known->second);
          return;
        }
        const int bucket = FirstLetterBucket(token);
        auto& slotList = buckets[static_cast<std::size_t>(bucket)];
        if (slotList.size() >= slots) {  // the bucket is full: the token is dropped
          if (!dropped.contains(token)) dropped.emplace(token);
          return;
        }
        const auto place = static_cast<std::int32_t>(arrivals.size());
        const auto added = places.emplace(std::string(token), place).first;
        arrivals.push_back(&added->first);
        slotList.push_back(place);
        tokenPlaces.push_back(place);
      });
    }
    tokenStart.push_back(tokenPlaces.size());
    if (!reporter.Step()) return false;
  }
  reporter.Report();

  // A vocabulary is never empty. Where the placeholder stands in, its occurrences in the
  // text (if any) are counted like those of any term.
  if (places.empty()) {
    const auto added = places.emplace(std::string(kPlaceholderTerm), 0).first;
    arrivals.push_back(&added->first);
    buckets[kPlaceholderBucket].push_back(0);
    tokenPlaces.clear();
    for (std::size_t d = 0; d < documents; ++d) {
      ForEachToken(text_.At(d), [&](std::string_view token) {
        if (token == kPlaceholderTerm) tokenPlaces.push_back(0);
      });
      tokenStart[d + 1] = tokenPlaces.size();
    }
  }

  // Number the terms bucket by bucket.
  std::vector<std::string> terms;
  terms.reserve(places.size());
  std::vector<std::int32_t> numberOf(arrivals.size());
  std::array<std::int32_t, 28> letterStart{};
  for (int b = 0; b < kLetterBucketCount; ++b) {
    letterStart[static_cast<std::size_t>(b)] = static_cast<std::int32_t>(terms.size()) + 1;
    for (const std::int32_t arrival : buckets[static_cast<std::size_t>(b)]) {
      terms.push_back(*arrivals[static_cast<std::size_t>(arrival)]);
      numberOf[static_cast<std::size_t>(arrival)] = static_cast<std::int32_t>(terms.size());
    }
  }
  letterStart[kLetterBucketCount] = static_cast<std::int32_t>(terms.size()) + 1;
  for (std::int32_t& place : tokenPlaces) place = numberOf[static_cast<std::size_t>(place)];

  terms_ = std::move(terms);
  droppedTermCount_ = static_cast<std::int64_t>(dropped.size());
  letterStart_ = letterStart;
  tokenTerms_ = std::move(tokenPlaces);
  tokenStart_ = std::move(tokenStart);
  docFreq_.clear();
  globalFreq_.clear();
  matrix_.Reset(0, 0);
  weightsApplied_ = false;
  return true;
}

}  // namespace sylvora
