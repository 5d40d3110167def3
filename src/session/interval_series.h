#pragma once
// The per-interval series of a built session: one row per interval of the words model with
// the figures the main time line draws and "sylvora-cli timeline" prints (documents, links,
// novelty, homogeneity, sentiment, burst words, events), and the CSV form of those rows.
//
// Numbering. Row k of the result is interval k + 1 (intervals are 1-based; `interval` holds
// the number).
//
// Homogeneity. It is computed here, in interval order, with TextStream::ChartHomogSampleStep
// (every pair for interval 1, each document with its successor for the others), exactly as
// the main time line draws it, so that no view computes it while painting. The hover text of
// the time line asks the model for IntervalHomogScore(h, 1), which answers the cached chart
// value, or, when that value is 0 (the cache's "not yet computed"), a fresh mean over every
// pair: `detailsHomogeneity` holds that answer. Both calls fill the words model's
// homogeneity cache as the time line would. The every-pair mean can grow with the square of
// the interval's size: above kDetailsHomogeneityMaxDocuments documents the hover text keeps
// the chart's 0 instead.
//
// Threads and cost. The words model's caches (homogeneity, z-score) are written: the session
// must be used by this call alone (run it in the build job, off the UI thread). The cost is
// one homogeneity pass per interval (linear in its documents, quadratic only for an interval
// 1 or an interval of several documents whose chart homogeneity is 0), the URL cells of every
// document, and one burst score per (term present, interval) cell of TIFM. `progress` is
// called once per interval (stage "series"); when it answers false the rows computed so far
// are dropped and the call returns false.

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "common/progress.h"
#include "session/session.h"

namespace sylvora {

// One burst word of an interval.
struct BurstTerm {
  std::string term;
  float score = 0.0f;
};

// The figures of one interval.
struct IntervalSeriesRow {
  std::int32_t interval = 0;
  // The interval's start date-time, "YYYY-MM-DD HH:MM:SS" (IntervalDateTimeBounds element 0).
  std::string start;
  std::int32_t documents = 0;
  std::int32_t documentsWithLinks = 0;
  // IntervalNoveltyScore(interval, window).
  float novelty = 0.0f;
  // The chart's homogeneity (see the file comment) and the hover text's.
  float homogeneity = 0.0f;
  float detailsHomogeneity = 0.0f;
  float linkRatio = 0.0f;
  // Sentiment of each side: mean (a positive number on both sides), mode and median strength.
  float positiveMean = 0.0f;
  std::int32_t positiveMode = 0;
  std::int32_t positiveMedian = 0;
  float negativeMean = 0.0f;
  std::int32_t negativeMode = 0;
  std::int32_t negativeMedian = 0;
  // At most kSeriesBurstTerms, highest score first.
  std::vector<BurstTerm> bursts;
  // The interval's events: "" or "|A|B".
  std::string events;
};

// The largest interval whose zero chart homogeneity is recomputed over every pair. That mean
// costs one sparse product over the interval, cheap when neighbouring tweets share no word,
// unless tweets far apart share many (tweets alternating between two texts): 5,000 tweets
// bound it to a fraction of a second even then.
inline constexpr std::int32_t kDetailsHomogeneityMaxDocuments = 5000;

// Burst words kept per interval.
inline constexpr std::size_t kSeriesBurstTerms = 3;

struct IntervalSeries {
  // The novelty window and burst measure the rows were computed with.
  std::uint8_t noveltyWindow = 1;
  std::int32_t burstMeasure = TextStream::kRatioBurst;
  // The words model's MaxIntervalDocCount (the chart's volume scale).
  std::int32_t maxIntervalDocCount = 0;
  std::vector<IntervalSeriesRow> rows;
};

// The rows of every interval of the session's built words model, in order, with the interval
// unit of the last build for the start date-times. `burstMeasure` is a TextStream burst
// measure (kRatioBurst, kTemporalRatioBurst, kZScoreBurst; any other scores 0); the burst
// words are the terms present in the interval (TIFM > 0) ordered by falling score, an
// undefined score last and equal scores in term order. An unbuilt session gives no rows.
// False (and `series` emptied) when `progress` cancels.
bool ComputeIntervalSeries(Session& session, std::uint8_t noveltyWindow, std::int32_t burstMeasure,
                           IntervalSeries& series, const ProgressCallback& progress = {});

// The novelty of every interval for another window (cheap: W NM lookups per interval), entry
// k for interval k + 1; for refreshing a series when only the window changed.
std::vector<float> IntervalNoveltySeries(const TextStream& wordModel, std::uint8_t noveltyWindow);

// A score as the series files write it: the shortest text that reads back as the same float,
// or "inf", "-inf", "nan".
std::string ScoreText(float value);

// One CSV field (RFC 4180): quoted, with doubled quotes, when it holds a comma, a quote or a
// line break; as it is otherwise.
std::string CsvField(const std::string& text);

// The header line of the series CSV (without its line break).
extern const char* const kIntervalSeriesCsvHeader;

// The CSV text of the rows: UTF-8, the header line, one line per row, each line ending in
// "\n"; scores as ScoreText; three burst term and score pairs (empty fields when fewer).
void WriteIntervalSeriesCsv(std::ostream& out, const std::vector<IntervalSeriesRow>& rows);

// The same into a file. False, with `error` naming the file, when it cannot be written.
bool WriteIntervalSeriesCsvFile(const std::string& path, const std::vector<IntervalSeriesRow>& rows,
                                std::string& error);

}  // namespace sylvora
