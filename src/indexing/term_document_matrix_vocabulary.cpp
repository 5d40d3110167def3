// Building the vocabulary: terms numbered by first-letter bucket, then by first appearance,
// with at most a fixed number of terms per bucket.
//
// A hash map from token to (bucket, slot) replaces the bucket-by-bucket scan of slots; it
// gives the same numbering and drops the same tokens, because a bucket's slots fill in order
// of first appearance and a new token is refused exactly when its bucket is full.

#include <algorithm>
#include <unordered_map>

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

// A token's place before the terms are numbered: bucket in the high bits, slot in the low 16
// (a bucket has at most 32768 slots).
constexpr int kSlotBits = 16;
constexpr std::int32_t Place(int bucket, std::size_t slot) {
  return static_cast<std::int32_t>((bucket << kSlotBits) | static_cast<int>(slot));
}

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

bool TermDocumentMatrix::BuildVocab(std::uint8_t gramLen, std::int16_t maxCharSlotSz,
                                    const ProgressCallback& progress) {
  const std::size_t slots = static_cast<std::size_t>(std::max(0, maxCharSlotSz + 1));
  const std::size_t documents = TextCount();

  std::unordered_map<std::string, std::int32_t, StringHash, std::equal_to<>> places;
  std::array<std::vector<const std::string*>, kLetterBucketCount> buckets;
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
        if (slotList.size() >= slots) return;  // the bucket is full: the token is dropped
        const std::int32_t place = Place(bucket, slotList.size());
        const auto added = places.emplace(std::string(token), place).first;
        slotList.push_back(&added->first);
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
    const auto added =
        places.emplace(std::string(kPlaceholderTerm), Place(kPlaceholderBucket, 0)).first;
    buckets[kPlaceholderBucket].push_back(&added->first);
    tokenPlaces.clear();
    for (std::size_t d = 0; d < documents; ++d) {
      ForEachToken(text_.At(d), [&](std::string_view token) {
        if (token == kPlaceholderTerm) tokenPlaces.push_back(Place(kPlaceholderBucket, 0));
      });
      tokenStart[d + 1] = tokenPlaces.size();
    }
  }

  // Number the terms bucket by bucket.
  std::vector<std::string> terms;
  terms.reserve(places.size());
  std::array<std::int32_t, 28> letterStart{};
  for (int b = 0; b < kLetterBucketCount; ++b) {
    letterStart[static_cast<std::size_t>(b)] = static_cast<std::int32_t>(terms.size()) + 1;
    for (const std::string* term : buckets[static_cast<std::size_t>(b)]) terms.push_back(*term);
  }
  letterStart[kLetterBucketCount] = static_cast<std::int32_t>(terms.size()) + 1;
  for (std::int32_t& place : tokenPlaces) {
    place = letterStart[static_cast<std::size_t>(place >> kSlotBits)] +
            (place & ((1 << kSlotBits) - 1));
  }

  terms_ = std::move(terms);
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
