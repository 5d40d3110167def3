// The interval model: interval arithmetic, TIFM, NM, events and date-time bounds.

#include "temporal/text_stream.h"

#include <algorithm>
#include <cmath>

#include "common/date_time.h"
#include "common/errors.h"
#include "common/leading_number.h"

namespace sylvora {
namespace {

// The whole number of a temporal cell, kept within the 32-bit range the elapsed-time column
// uses, so that differences and bounds never overflow.
std::int64_t TemporalNumber(std::string_view text) {
  return std::clamp<std::int64_t>(LeadingWholeNumber(text), INT32_MIN, INT32_MAX);
}

}  // namespace

std::size_t TextStream::CheckedInterval(std::int32_t intervalIndex, const char* operation) const {
  if (intervalIndex < 0 || intervalIndex > intervalCount_ ||
      static_cast<std::size_t>(intervalIndex) >= intervalDocCount_.size()) {
    throw RangeError(std::string(operation) + ": interval " + std::to_string(intervalIndex) +
                     " is outside 0.." + std::to_string(intervalCount_));
  }
  return static_cast<std::size_t>(intervalIndex);
}

std::int64_t TextStream::TemporalValue(DocIndex row, FieldIndex field) const {
  // Text() rather than Cell(): a row or field that does not exist reads as its error text or
  // the whole document, as for any other cell reader.
  return TemporalNumber(corpus_->Text(row, field));
}

void TextStream::ResetIntervals(std::int32_t count) {
  const auto size = static_cast<std::size_t>(std::max<std::int32_t>(count, 0)) + 1;
  intervalDocCount_.assign(size, 0);
  firstDocumentIndex_.assign(size, 0);
  lastDocumentIndex_.assign(size, 0);
  events_.assign(size, std::string());
  homogCache_.assign(size, 0.0f);
  const auto terms = static_cast<std::size_t>(tdm_ != nullptr ? tdm_->TermCount() : 0) + 1;
  zMeanCache_.assign(terms, 0.0f);
  zDeviationCache_.assign(terms, 0.0f);
  zStatisticsComputed_ = false;
  maxIntervalDocCount_ = 0;
}

bool TextStream::BuildTermIntervalFrequencyModel(FieldIndex temporalFieldIndex,
                                                 std::int32_t intervalLength, Notifier& notifier,
                                                 const ProgressCallback& progress) {
  if (corpus_ == nullptr || tdm_ == nullptr) {
    throw RangeError("BuildTermIntervalFrequencyModel: the corpus and the index must be set first");
  }
  if (intervalLength < 1) {
    throw RangeError(
        "BuildTermIntervalFrequencyModel: the interval length must be at least 1 (got " +
        std::to_string(intervalLength) + ")");
  }
  const DocIndex documents = corpus_->DocumentCount();
  const std::int32_t termCount = tdm_->TermCount();
  lastValue_ = TemporalValue(documents - 1, temporalFieldIndex);
  baseValue_ = TemporalValue(0, temporalFieldIndex);
  intervalLength_ = intervalLength;

  const std::int64_t count = (lastValue_ - baseValue_) / intervalLength + 1;
  if (count > kMaxIntervalCount) {
    throw RangeError("BuildTermIntervalFrequencyModel: " + std::to_string(count) +
                     " intervals of length " + std::to_string(intervalLength) +
                     " are too many (at most " + std::to_string(kMaxIntervalCount) + ")");
  }
  intervalCount_ = static_cast<std::int32_t>(std::max<std::int64_t>(count, 0));
  ResetIntervals(intervalCount_);
  tifm_.Reset(termCount, intervalCount_);
  if (intervalCount_ < 2) {
    notifier.ShowMessage(kOneIntervalMessage, kOneIntervalTitle, MessageIcon::kCritical);
    return false;
  }

  // Presence counters over the terms, and the terms touched in the current interval so that
  // closing an interval costs the terms it holds, not the whole vocabulary.
  std::vector<float> counters(static_cast<std::size_t>(termCount) + 1, 0.0f);
  std::vector<std::int32_t> touched;
  const SparseMatrixSingle& matrix = tdm_->Matrix();

  std::int32_t j = 1;
  std::int64_t upperBound = IntervalUBound(1);
  firstDocumentIndex_[1] = 0;

  const auto closeInterval = [&](DocIndex nextRow) {
    const std::int32_t n = intervalDocCount_[static_cast<std::size_t>(j)];
    maxIntervalDocCount_ = std::max(maxIntervalDocCount_, n);
    lastDocumentIndex_[static_cast<std::size_t>(j)] = nextRow - 1;
    if (j < intervalCount_) firstDocumentIndex_[static_cast<std::size_t>(j) + 1] = nextRow;
    std::sort(touched.begin(), touched.end());
    SparseVectorSingle& column = *tifm_.Vector(j);
    for (const std::int32_t t : touched) {
      float& counter = counters[static_cast<std::size_t>(t)];
      // A touched term was counted at least once, so n > 0 here.
      column.SetValue(t, static_cast<float>(static_cast<double>(counter) / n));
      counter = 0.0f;
    }
    touched.clear();
  };

  const bool fieldExists = temporalFieldIndex < corpus_->FieldCount();
  for (DocIndex d = 0; d < documents; ++d) {
    const std::int64_t value = fieldExists ? TemporalNumber(corpus_->Cell(d, temporalFieldIndex))
                                           : TemporalValue(d, temporalFieldIndex);
    // A gap in time closes as many (empty) intervals as it spans. A row past the last
    // interval (only in an unsorted corpus) stays in the last one.
    while (value > upperBound && j < intervalCount_) {
      closeInterval(d);
      if (progress && !progress("Building interval model", j, intervalCount_)) {
        intervalCount_ = 0;
        ResetIntervals(0);
        tifm_.Reset(0, 0);
        return false;
      }
      ++j;
      upperBound = IntervalUBound(j);
    }
    ++intervalDocCount_[static_cast<std::size_t>(j)];
    const SparseVectorSingle* column = matrix.Vector(d + 1);
    if (column == nullptr) continue;
    const auto terms = column->ElementIndexes();
    const auto values = column->ElementValues();
    for (std::size_t k = 0; k < terms.size(); ++k) {
      const std::int32_t t = terms[k];
      if (values[k] == 0.0f || t > termCount) continue;
      float& counter = counters[static_cast<std::size_t>(t)];
      if (counter == 0.0f) touched.push_back(t);
      counter += 1.0f;
    }
  }
  closeInterval(documents);
  if (progress) progress("Building interval model", intervalCount_, intervalCount_);
  return true;
}

std::int32_t TextStream::IntervalDocCount(std::int32_t intervalIndex) const {
  if (intervalIndex <= 0) return 0;
  return intervalDocCount_[CheckedInterval(intervalIndex, "IntervalDocCount")];
}

DocIndex TextStream::FirstDocumentIndex(std::int32_t intervalIndex) const {
  return firstDocumentIndex_[CheckedInterval(intervalIndex, "FirstDocumentIndex")];
}

DocIndex TextStream::LastDocumentIndex(std::int32_t intervalIndex) const {
  return lastDocumentIndex_[CheckedInterval(intervalIndex, "LastDocumentIndex")];
}

std::int64_t TextStream::IntervalLBound(std::int32_t intervalIndex) const {
  return (static_cast<std::int64_t>(intervalIndex) - 1) * intervalLength_ + baseValue_;
}

std::int64_t TextStream::IntervalUBound(std::int32_t intervalIndex) const {
  return static_cast<std::int64_t>(intervalIndex) * intervalLength_ + baseValue_ - 1;
}

std::optional<std::int32_t> TextStream::IntervalFromDateTime(std::string_view dateTimeVal,
                                                             std::string_view intervalUnit) const {
  if (corpus_ == nullptr) return std::nullopt;
  const auto unit = ParseTimeUnit(intervalUnit);
  const auto origin = corpus_->DocumentDateTime(0);
  const auto when = DateTime::Parse(dateTimeVal);
  if (!unit || !origin || !when || intervalLength_ < 1) return std::nullopt;
  // Interval k spans units (k - 1) x length up to k x length - 1 from row 0's time.
  const std::int64_t units = DateDiff(*unit, *origin, *when);
  const std::int64_t below =
      units >= 0 ? units / intervalLength_ : -((-units + intervalLength_ - 1) / intervalLength_);
  const std::int64_t interval = below + 1;
  if (interval < INT32_MIN || interval > INT32_MAX) return std::nullopt;
  return static_cast<std::int32_t>(interval);
}

std::array<std::string, 2> TextStream::IntervalDateTimeBounds(std::int32_t intervalIndex,
                                                              std::string_view intervalUnit) const {
  if (corpus_ == nullptr) return {};
  const auto unit = ParseTimeUnit(intervalUnit);
  const auto origin = corpus_->DocumentDateTime(0);
  if (!unit || !origin) return {};
  const std::int64_t start = (static_cast<std::int64_t>(intervalIndex) - 1) * intervalLength_;
  return {DateAdd(*unit, start, *origin).Format(),
          DateAdd(*unit, start + intervalLength_, *origin).Format()};
}

std::int32_t TextStream::FirstTermInterval(std::int32_t termIndex) const {
  if (intervalCount_ < 1) return 1;
  for (std::int32_t i = 1; i <= intervalCount_; ++i) {
    if (tifm_.Value(termIndex, i) != 0.0f) return i;
  }
  return intervalCount_ + 1;
}

std::int32_t TextStream::LastTermInterval(std::int32_t termIndex) const {
  if (intervalCount_ < 1) return intervalCount_;
  for (std::int32_t i = intervalCount_; i >= 1; --i) {
    if (tifm_.Value(termIndex, i) != 0.0f) return i;
  }
  return 0;
}

TextStream::TermSpans TextStream::TermIntervalSpans() const {
  const auto size = static_cast<std::size_t>(tifm_.RowCount()) + 1;
  TermSpans spans;
  if (intervalCount_ < 1) {
    spans.first.assign(size, 1);
    spans.last.assign(size, intervalCount_);
    return spans;
  }
  spans.first.assign(size, intervalCount_ + 1);
  spans.last.assign(size, 0);
  for (std::int32_t i = 1; i <= intervalCount_ && i <= tifm_.ColCount(); ++i) {
    const SparseVectorSingle& column = *tifm_.Vector(i);
    const auto terms = column.ElementIndexes();
    const auto values = column.ElementValues();
    for (std::size_t k = 0; k < terms.size(); ++k) {
      const auto t = static_cast<std::size_t>(terms[k]);
      if (values[k] == 0.0f || t >= size) continue;
      if (spans.last[t] == 0) spans.first[t] = i;
      spans.last[t] = i;
    }
  }
  return spans;
}

void TextStream::BuildIntervalSimilarityModel(std::int32_t trunK,
                                              const ProgressCallback& progress) {
  SparseMatrixSingle profiles;
  profiles.SetMatrix(tifm_);
  if (trunK > 0) profiles.TruncateLocal(trunK);
  nm_.SetMatrix(profiles.GetSimilarityMatrix(2, progress));
  nm_.MakeSymmetric(true);
}

std::int64_t TextStream::IntervalSimilarityPairEstimate(std::int32_t trunK,
                                                        std::int64_t limit) const {
  if (trunK <= 0) return tifm_.SharedRowPairEstimate(limit);
  SparseMatrixSingle profiles;
  profiles.SetMatrix(tifm_);
  profiles.TruncateLocal(trunK);
  return profiles.SharedRowPairEstimate(limit);
}

const std::string& TextStream::Events(std::int32_t intervalIndex) const {
  return events_[CheckedInterval(intervalIndex, "Events")];
}

void TextStream::SetEvents(std::int32_t intervalIndex, std::string_view eventDescription) {
  std::string& text = events_[CheckedInterval(intervalIndex, "SetEvents")];
  text += '|';
  text += eventDescription;
}

}  // namespace sylvora
