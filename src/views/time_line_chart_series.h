#pragma once
// The main time line's figures from the session's interval series. Inline, so that a program
// that links the views and the session (the application) needs no other library for it.

#include <utility>

#include "session/interval_series.h"
#include "views/time_line_chart.h"

namespace sylvora {

// One chart interval per series row (interval k + 1 from row k), with the series' novelty
// window and volume scale.
inline TimeLineChartData TimeLineChartDataFromSeries(const IntervalSeries& series) {
  TimeLineChartData data;
  data.maxIntervalDocCount = series.maxIntervalDocCount;
  data.noveltyWindow = series.noveltyWindow;
  data.intervals.reserve(series.rows.size());
  for (const IntervalSeriesRow& row : series.rows) {
    TimeLineChartInterval figures;
    figures.documents = row.documents;
    figures.linkRatio = row.linkRatio;
    figures.novelty = row.novelty;
    figures.homogeneity = row.homogeneity;
    figures.detailsHomogeneity = row.detailsHomogeneity;
    figures.positiveMean = row.positiveMean;
    figures.positiveMode = row.positiveMode;
    figures.positiveMedian = row.positiveMedian;
    figures.negativeMean = row.negativeMean;
    figures.negativeMode = row.negativeMode;
    figures.negativeMedian = row.negativeMedian;
    figures.start = QString::fromStdString(row.start);
    figures.events = QString::fromStdString(row.events);
    data.intervals.push_back(std::move(figures));
  }
  return data;
}

}  // namespace sylvora
