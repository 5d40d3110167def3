#include "session/interval_series.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>
#include <utility>

#include "common/file_io.h"

namespace sylvora {
namespace {

bool IsUndefined(float value) { return std::isnan(value); }

float BurstScore(TextStream& words, std::int32_t measure, std::int32_t term,
                 std::int32_t interval) {
  switch (measure) {
    case TextStream::kRatioBurst:
      return words.RatioBurstScore(term, interval);
    case TextStream::kTemporalRatioBurst:
      return words.TemporalRatioBurstScore(term, interval);
    case TextStream::kZScoreBurst:
      return words.TermIntervalZScore(term, interval);
    default:
      return 0.0f;
  }
}

// The best burst words of interval i among the terms present in it (TIFM > 0). `scored` is
// scratch space kept between intervals.
void RankBursts(TextStream& words, const TermDocumentMatrix& index, std::int32_t measure,
                std::int32_t i, std::vector<std::pair<std::int32_t, float>>& scored,
                std::vector<BurstTerm>& bursts) {
  scored.clear();
  const SparseVectorSingle& column = *words.TIFM().Vector(i);
  const auto terms = column.ElementIndexes();
  const auto values = column.ElementValues();
  for (std::size_t k = 0; k < terms.size(); ++k) {
    if (values[k] <= 0.0f) continue;
    scored.emplace_back(terms[k], BurstScore(words, measure, terms[k], i));
  }
  const auto better = [](const std::pair<std::int32_t, float>& a,
                         const std::pair<std::int32_t, float>& b) {
    if (IsUndefined(a.second) != IsUndefined(b.second)) return IsUndefined(b.second);
    if (!IsUndefined(a.second) && a.second != b.second) return a.second > b.second;
    return a.first < b.first;
  };
  const std::size_t keep = std::min(kSeriesBurstTerms, scored.size());
  std::partial_sort(scored.begin(), scored.begin() + static_cast<std::ptrdiff_t>(keep),
                    scored.end(), better);
  for (std::size_t k = 0; k < keep; ++k) {
    bursts.push_back({index.Term(scored[k].first), scored[k].second});
  }
}

}  // namespace

const char* const kIntervalSeriesCsvHeader =
    "interval,start,documents,documents_with_links,novelty,homogeneity,link_ratio,"
    "positive_mean,positive_mode,positive_median,negative_mean,negative_mode,"
    "negative_median,burst_term_1,burst_score_1,burst_term_2,burst_score_2,burst_term_3,"
    "burst_score_3,events";

bool ComputeIntervalSeries(Session& session, std::uint8_t noveltyWindow, std::int32_t burstMeasure,
                           IntervalSeries& series, const ProgressCallback& progress) {
  TextStream& words = session.WordModel();
  const TermDocumentMatrix& index = session.WordIndex();
  const std::string& unit = session.IntervalUnit();
  series = IntervalSeries{};
  series.noveltyWindow = noveltyWindow;
  series.burstMeasure = burstMeasure;
  series.maxIntervalDocCount = words.MaxIntervalDocCount();
  const std::int32_t count = words.IntervalCount();
  series.rows.reserve(static_cast<std::size_t>(std::max(0, count)));
  ProgressReporter reporter(progress, "series", count, 1);
  std::vector<std::pair<std::int32_t, float>> scored;
  for (std::int32_t i = 1; i <= count; ++i) {
    IntervalSeriesRow row;
    row.interval = i;
    row.start = words.IntervalDateTimeBounds(i, unit)[0];
    row.documents = words.IntervalDocCount(i);
    row.documentsWithLinks = words.URLCount(i);
    row.novelty = words.IntervalNoveltyScore(i, noveltyWindow);
    row.homogeneity =
        words.IntervalHomogScore(i, TextStream::ChartHomogSampleStep(i, row.documents));
    // A chart value of 0 is no cache entry: the hover text's call computes every pair.
    row.detailsHomogeneity = row.homogeneity;
    if (row.homogeneity == 0.0f && row.documents <= kDetailsHomogeneityMaxDocuments) {
      row.detailsHomogeneity = words.IntervalHomogScore(i, 1);
    }
    row.linkRatio = words.URLRatio(i);
    std::int16_t positive = 1, negative = -1;
    row.positiveMean = words.IntervalSentimentMean(i, positive);
    row.positiveMode = words.IntervalSentimentMode(i, positive);
    row.positiveMedian = words.IntervalSentimentMedian(i, positive);
    row.negativeMean = words.IntervalSentimentMean(i, negative);
    row.negativeMode = words.IntervalSentimentMode(i, negative);
    row.negativeMedian = words.IntervalSentimentMedian(i, negative);
    RankBursts(words, index, burstMeasure, i, scored, row.bursts);
    row.events = words.Events(i);
    series.rows.push_back(std::move(row));
    if (!reporter.Step()) {
      series.rows.clear();
      return false;
    }
  }
  return true;
}

std::vector<float> IntervalNoveltySeries(const TextStream& wordModel, std::uint8_t noveltyWindow) {
  std::vector<float> novelty(static_cast<std::size_t>(std::max(0, wordModel.IntervalCount())));
  for (std::size_t k = 0; k < novelty.size(); ++k) {
    novelty[k] = wordModel.IntervalNoveltyScore(static_cast<std::int32_t>(k) + 1, noveltyWindow);
  }
  return novelty;
}

std::string ScoreText(float value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

void WriteIntervalSeriesCsv(std::ostream& out, const std::vector<IntervalSeriesRow>& rows) {
  out << kIntervalSeriesCsvHeader << '\n';
  for (const IntervalSeriesRow& row : rows) {
    out << row.interval << ',' << CsvField(row.start) << ',' << row.documents << ','
        << row.documentsWithLinks << ',' << ScoreText(row.novelty) << ','
        << ScoreText(row.homogeneity) << ',' << ScoreText(row.linkRatio) << ','
        << ScoreText(row.positiveMean) << ',' << row.positiveMode << ',' << row.positiveMedian
        << ',' << ScoreText(row.negativeMean) << ',' << row.negativeMode << ','
        << row.negativeMedian;
    for (std::size_t k = 0; k < kSeriesBurstTerms; ++k) {
      if (k < row.bursts.size()) {
        out << ',' << CsvField(row.bursts[k].term) << ',' << ScoreText(row.bursts[k].score);
      } else {
        out << ",,";
      }
    }
    out << ',' << CsvField(row.events) << '\n';
  }
}

bool WriteIntervalSeriesCsvFile(const std::string& path, const std::vector<IntervalSeriesRow>& rows,
                                std::string& error) {
  std::ostringstream text;
  WriteIntervalSeriesCsv(text, rows);
  FileWriter writer;
  if (!writer.Open(path, error)) return false;
  writer.Write(text.view());
  return writer.Close(error);
}

}  // namespace sylvora
