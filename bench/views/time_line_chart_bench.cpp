// Main time line benchmarks, offscreen into a QImage of 1200 x 300 pixels.
//
//  * Redraw: every layer (volume, link share, novelty with its points, both sentiment lines,
//    homogeneity, event marks on one interval in ten) over 500, 2,000 and 10,000 intervals,
//    as a build or the "Redraw" menu item draws it. At 2,000 and 10,000 intervals they are
//    narrower than a pixel and each pixel column draws their range. The aim is under 16 ms.
//  * Hover: the pointer moves between two intervals, so each step finds the interval under the
//    pointer, changes the hovered interval, makes the ChartDetails text and paints the overlay
//    over the picture as the surface's paint event does. The aim is under 5 ms.
//
// Figures are random but fixed (seeded). Sizes and the peak resident memory go into
// state.counters.

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdint>
#include <cstdlib>
#include <random>

#include "support/peak_memory.h"
#include "views/picture_device.h"
#include "views/time_line_chart.h"

namespace sylvora {
namespace {

const QSize kChartSize(1200, 300);

double PeakMegabytes() {
  return static_cast<double>(bench::PeakResidentBytes()) / (1024.0 * 1024.0);
}

TimeLineChartData RandomSeries(std::int32_t intervals) {
  std::mt19937 random(2013);
  std::uniform_int_distribution<std::int32_t> documents(0, 4000);
  std::uniform_real_distribution<float> unit(0.0f, 1.0f);
  std::uniform_int_distribution<std::int32_t> strength(1, 5);
  TimeLineChartData data;
  data.noveltyWindow = 1;
  data.intervals.resize(static_cast<std::size_t>(intervals));
  for (std::int32_t i = 0; i < intervals; ++i) {
    TimeLineChartInterval& figures = data.intervals[static_cast<std::size_t>(i)];
    figures.documents = documents(random);
    data.maxIntervalDocCount = std::max(data.maxIntervalDocCount, figures.documents);
    figures.linkRatio = unit(random);
    figures.novelty = unit(random);
    figures.homogeneity = unit(random) * 0.2f;
    figures.detailsHomogeneity = figures.homogeneity;
    figures.positiveMean = 1.0f + 4.0f * unit(random);
    figures.positiveMode = strength(random);
    figures.positiveMedian = strength(random);
    figures.negativeMean = 1.0f + 4.0f * unit(random);
    figures.negativeMode = strength(random);
    figures.negativeMedian = strength(random);
    figures.start = QStringLiteral("2013-09-02 00:00:00");
    if (i % 10 == 0) figures.events = QStringLiteral("|Landfall");
  }
  return data;
}

void BM_ChartRedraw(benchmark::State& state) {
  const auto intervals = static_cast<std::int32_t>(state.range(0));
  TimeLineChart chart;
  chart.SetPictureSize(kChartSize);
  chart.SetData(RandomSeries(intervals));
  for (auto _ : state) {
    chart.Redraw();
    benchmark::DoNotOptimize(chart.Picture().constBits());
  }
  state.counters["intervals"] = intervals;
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_ChartRedraw)->Arg(500)->Arg(2000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_ChartHover(benchmark::State& state) {
  const auto intervals = static_cast<std::int32_t>(state.range(0));
  TimeLineChart chart;
  chart.SetPictureSize(kChartSize);
  chart.SetData(RandomSeries(intervals));
  chart.SelectInterval(intervals / 3);
  const QPointF a = chart.ToPixels(intervals / 2 + 0.5, 0.5);
  const QPointF b = chart.ToPixels(intervals / 2 + 5.5, 0.5);
  QImage screen = NewPicture(kChartSize);
  bool flip = false;
  for (auto _ : state) {
    chart.MouseMove(flip ? a : b);
    flip = !flip;
    const QString details = chart.CurrentDetails();
    benchmark::DoNotOptimize(details.size());
    QPainter painter(&screen);
    chart.Paint(painter);
  }
  state.counters["intervals"] = intervals;
  state.counters["peak_MB"] = PeakMegabytes();
}
BENCHMARK(BM_ChartHover)->Arg(2000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace sylvora

int main(int argc, char** argv) {
  if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
