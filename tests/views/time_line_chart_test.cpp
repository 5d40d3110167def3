// TimeLineChart on the offscreen platform: each layer's pixels in its colour on small hand-made
// series, the ChartDetails and tooltip texts, hover and selection marks on the overlay,
// interval hit testing, alignment with the term time line's columns, and the PNG picture.
//
// Unless a test says otherwise the chart is 500 x 200 pixels with four intervals: the default
// layout gives five columns of 100 pixels (interval i at x = 100 i .. 100 i + 100) and y = v
// lies at pixel row (1 - v) x 200.

#include "views/time_line_chart.h"

#include <QDateTime>
#include <QImage>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include <memory>
#include <tuple>

#include "support/qt_test_main.h"
#include "view_test_support.h"
#include "views/session_views.h"
#include "views/table_lens.h"

namespace sylvora {
namespace {

using testing::CountColour;
using testing::PixelAt;

const QColor kVolume(150, 150, 150);
const QColor kLinks(100, 100, 100);
const QColor kNovelty(255, 0, 0);
const QColor kBlack(0, 0, 0);
const QColor kPositive(0, 255, 0);
const QColor kNegative(0, 0, 255);
const QColor kHomogeneity(200, 200, 0);
const QColor kEvent(0, 0, 128);
const QColor kHover(50, 50, 50);
const QColor kWhite(255, 255, 255);
const QSize kSize(500, 200);

// `count` intervals with nothing to draw but lines along the bottom edge (no documents, no
// novelty window that fits, sentiment and homogeneity 0, no events).
TimeLineChartData Quiet(std::int32_t count = 4) {
  TimeLineChartData data;
  data.maxIntervalDocCount = 10;
  data.noveltyWindow = 255;
  data.intervals.resize(static_cast<std::size_t>(count));
  for (std::int32_t i = 0; i < count; ++i) {
    data.intervals[static_cast<std::size_t>(i)].start =
        QStringLiteral("2013-09-0%1 00:00:00").arg(i + 2);
  }
  return data;
}

TimeLineChartInterval& At(TimeLineChartData& data, std::int32_t interval) {
  return data.intervals[static_cast<std::size_t>(interval - 1)];
}

std::unique_ptr<TimeLineChart> OffscreenChart(const TimeLineChartData& data) {
  auto chart = std::make_unique<TimeLineChart>();
  chart->SetPictureSize(kSize);
  chart->SetData(data);
  return chart;
}

// A window with a chart surface of kSize.
struct ChartWindow {
  ChartWindow() {
    form = std::make_unique<QWidget>();
    form->resize(kSize);
    chart = std::make_unique<TimeLineChart>();
    chart->InitializeChart(form.get());
    form->show();
  }
  QWidget* Surface() const { return chart->ChartSurface(); }

  std::unique_ptr<QWidget> form;
  std::unique_ptr<TimeLineChart> chart;
};

}  // namespace

class TimeLineChartTest : public QObject {
  Q_OBJECT

 private slots:
  // Each layer draws in its own colour where it has figures, on a chart that otherwise only has
  // lines along the bottom edge.
  void eachLayerDrawsInItsOwnColour() {
    using Set = void (*)(TimeLineChartData&);
    const std::tuple<const char*, Set, QColor> layers[] = {
        {"volume", [](TimeLineChartData& d) { At(d, 2).documents = 5; }, kVolume},
        {"links", [](TimeLineChartData& d) { At(d, 2).documents = 5, At(d, 2).linkRatio = 1; },
         kLinks},
        {"novelty", [](TimeLineChartData& d) { d.noveltyWindow = 1, At(d, 3).novelty = 1; },
         kNovelty},
        {"positive", [](TimeLineChartData& d) { At(d, 3).positiveMean = 2.5f; }, kPositive},
        {"negative", [](TimeLineChartData& d) { At(d, 3).negativeMean = 2.5f; }, kNegative},
        {"homogeneity", [](TimeLineChartData& d) { At(d, 3).homogeneity = 0.5f; }, kHomogeneity},
        {"events", [](TimeLineChartData& d) { At(d, 2).events = QStringLiteral("|x"); }, kEvent}};
    const QRectF above(0, 0, 500, 190);
    for (const auto& [name, set, colour] : layers) {
      TimeLineChartData data = Quiet();
      QVERIFY2(CountColour(OffscreenChart(data)->Picture(), above, colour) == 0, name);
      set(data);
      QVERIFY2(CountColour(OffscreenChart(data)->Picture(), above, colour) > 0, name);
    }
  }

  // Boxes scale with the largest interval and fill their column; a box's lower part is links.
  void volumeAndLinkBoxes() {
    TimeLineChartData data = Quiet();
    At(data, 2).documents = 5;
    At(data, 4).documents = 10;
    At(data, 4).linkRatio = 0.25f;
    const QImage image = OffscreenChart(data)->Picture();
    const std::pair<QPoint, QColor> probes[] = {{{250, 50}, kWhite},
                                                {{250, 150}, kVolume},
                                                {{450, 180}, kLinks},
                                                {{401, 50}, kVolume},
                                                {{398, 50}, kWhite}};
    for (const auto& [at, colour] : probes) QCOMPARE(PixelAt(image, at), colour);
  }

  // Novelty starts after its window; homogeneity from the first column edge, and not at all with
  // one interval; the sentiment average chosen moves the lines.
  void linesStartWhereTheirFiguresDo() {
    TimeLineChartData data = Quiet();
    data.noveltyWindow = 1;
    for (TimeLineChartInterval& figures : data.intervals) {
      figures.novelty = figures.homogeneity = 0.5f;
      figures.positiveMean = 2.5f;
      figures.positiveMode = 1;
      figures.positiveMedian = 4;
    }
    const auto chart = OffscreenChart(data);
    QCOMPARE(CountColour(chart->Picture(), QRectF(0, 0, 198, 200), kNovelty), 0);
    QCOMPARE(CountColour(chart->Picture(), QRectF(0, 0, 98, 200), kHomogeneity), 0);
    QCOMPARE(PixelAt(chart->Picture(), {105, 100}), kHomogeneity);
    chart->SetNovelty({0.0f, 0.0f, 0.25f, 0.25f}, 2);
    QCOMPARE(chart->Data().noveltyWindow, std::uint8_t{2});
    QCOMPARE(CountColour(chart->Picture(), QRectF(0, 0, 298, 200), kNovelty), 0);
    QImage previous = chart->Picture();
    for (const std::int16_t average : {TimeLineChart::kMode, TimeLineChart::kMedian}) {
      chart->SetSentimentAverage(average);
      QVERIFY(chart->Picture() != previous);
      previous = chart->Picture();
    }
    chart->SetSentimentAverage(7);  // ignored
    QCOMPARE(chart->SentimentAverageChoice(), std::int16_t{TimeLineChart::kMedian});
    TimeLineChartData one = Quiet(1);
    one.intervals[0].homogeneity = 0.5f;
    QCOMPARE(CountColour(OffscreenChart(one)->Picture(), QRectF(0, 0, 500, 200), kHomogeneity), 0);
  }

  void eventTooltips() {
    TimeLineChartData data = Quiet();
    At(data, 2).events = QStringLiteral("|Landfall|Curfew");
    const auto chart = OffscreenChart(data);
    QCOMPARE(chart->ToolTipText(2) + chart->ToolTipText(1) + chart->ToolTipText(9),
             QStringLiteral("Landfall\nCurfew"));
  }

  // 10,000 intervals over 500 pixels, in five blocks of 2,000 (100 pixel columns each) whose
  // even and odd intervals alternate between two levels: every pixel column inside a block
  // shows each series as one stroke from the block's low level to its high level, and the
  // link-share bar as tall as the tallest of the intervals under it.
  void moreIntervalsThanPixelsDrawRanges() {
    TimeLineChartData data = Quiet(10000);
    const auto low = [](std::int32_t i, double base) { return base + ((i - 1) / 2000) / 64.0; };
    for (std::int32_t i = 1; i <= 10000; ++i) {
      const double step = (i % 2 == 1) ? 1.0 / 16.0 : 0.0;
      TimeLineChartInterval& figures = At(data, i);
      figures.documents = 10;
      figures.linkRatio = (i % 2 == 1) ? 1.0f : 0.0f;
      figures.novelty = static_cast<float>(low(i, 0.75) + step);
      figures.positiveMean = static_cast<float>(5.0 * (low(i, 0.5) + step));
      figures.negativeMean = static_cast<float>(5.0 * (low(i, 0.25) + step));
      figures.homogeneity = static_cast<float>(low(i, 0.0) + step);
    }
    data.noveltyWindow = 1;
    const auto chart = OffscreenChart(data);
    const QImage image = chart->Picture();
    const auto row = [](double value) {
      return std::min(199, static_cast<int>((1 - value) * 200));
    };
    const std::pair<double, QColor> series[] = {
        {0.75, kNovelty}, {0.5, kPositive}, {0.25, kNegative}, {0.0, kHomogeneity}};
    for (const int x : {50, 150, 250, 350, 450}) {
      const std::int32_t interval = chart->IntervalAt({x + 0.5, 100});
      for (const auto& [base, colour] : series) {
        const int bottom = row(low(interval, base));
        const int top = row(low(interval, base) + 1.0 / 16.0);
        const QString where = QStringLiteral("x %1 row %2..%3").arg(x).arg(top).arg(bottom);
        QVERIFY2(
            CountColour(image, QRectF(x, top, 1, bottom - top + 1), colour) == bottom - top + 1,
            qPrintable(where));
        QVERIFY2(PixelAt(image, {double(x), top - 1.0}) != colour, qPrintable(where));
        if (bottom < 199)
          QVERIFY2(PixelAt(image, {double(x), bottom + 1.0}) != colour, qPrintable(where));
      }
      // Between the lines, the link-share bar of the odd intervals, never the lighter volume.
      QCOMPARE(PixelAt(image, {double(x), double(row(0.45))}), kLinks);
      QCOMPARE(CountColour(image, QRectF(x, 0, 1, 200), kVolume), 0);
    }
    // A click still falls on one interval: the one whose column holds the pointer.
    QCOMPARE(chart->IntervalAt({100.5, 100}), 2010);
  }

  // Dates under the chart at the finest step whose labels (7 pixels a character here, plus a
  // gap) keep apart, over the intervals shown: years over two decades, months over three
  // years, days over three days of hours, hours over ten. (The 22 years start in 1999, the
  // others on 2012-12-31.)
  void dateTicksFitTheSpanShown() {
    struct Case {
      const char* name;
      std::int32_t count;
      std::int64_t secondsPerInterval;
      TimeLineChart::ColumnGeometry geometry;  // width 0: all intervals
      const char* pattern;
      const char* firstLabel;
      double firstInterval;  // where the first tick falls, in chart units
      QDate start = QDate(2012, 12, 31);
    };
    constexpr std::int64_t kHour = 3600;
    const Case cases[] = {
        {"weeks, 22 years", 1150, 7 * 24 * kHour, {}, "^(\\d{4})$", "2000", 0.0, {1999, 1, 4}},
        // Regression: starts before 1970 were taken for undated intervals.
        {"weeks from 1950", 1150, 7 * 24 * kHour, {}, "^(\\d{4})$", "1952", 0.0, {1950, 1, 2}},
        {"2 weeks, 3 years", 78, 14 * 24 * kHour, {}, "^\\d{4}-(01|07)$", "2013-01", 0.0},
        {"hours, 3 days",
         10000,
         kHour,
         {0.0, 500.0 / 72, 100},
         "^\\d{4}-\\d\\d-\\d\\d$",
         "2013-01-05",
         121.0},
        {"hours, 10 hours",
         10000,
         kHour,
         {0.0, 50.0, 100},
         "^\\d\\d-\\d\\d \\d\\d:00$",
         "01-04 04:00",
         101.0},
    };
    const auto width = [](const QString& text) { return 7.0 * text.size(); };
    for (const Case& c : cases) {
      TimeLineChartData data = Quiet(c.count);
      const QDateTime first(c.start, QTime(0, 0), Qt::UTC);
      for (std::int32_t i = 1; i <= c.count; ++i) {
        At(data, i).start = first.addSecs((i - 1) * c.secondsPerInterval)
                                .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
      }
      const auto chart = OffscreenChart(data);
      if (c.geometry.width > 0.0) chart->SetColumnGeometry(c.geometry);
      const auto ticks = chart->DateTicks(500.0, width);
      QVERIFY2(ticks.size() >= 2, c.name);
      const QRegularExpression pattern(QString::fromLatin1(c.pattern));
      for (std::size_t k = 0; k < ticks.size(); ++k) {
        QVERIFY2(pattern.match(ticks[k].label).hasMatch(), qPrintable(ticks[k].label));
        QVERIFY2(ticks[k].x >= 0.0 && ticks[k].x <= 500.0, c.name);
        if (k > 0) QVERIFY2(ticks[k].x - ticks[k - 1].x >= width(ticks[k - 1].label), c.name);
      }
      QCOMPARE(ticks[0].label, QString::fromLatin1(c.firstLabel));
      if (c.firstInterval > 0.0) QCOMPARE(ticks[0].x, chart->ToPixels(c.firstInterval, 0).x());
    }
    // Without readable dates: no ticks.
    QVERIFY(OffscreenChart([] {
              TimeLineChartData undated = Quiet(10);
              for (auto& figures : undated.intervals) figures.start = QStringLiteral("x");
              return undated;
            }())
                ->DateTicks(500.0, width)
                .empty());
  }

  void chartDetailsTexts() {
    TimeLineChartInterval figures;
    figures.documents = 142;
    figures.start = QStringLiteral("2013-09-04 00:13:19");
    figures.novelty = 0.2431f;
    figures.homogeneity = 0.0f;
    figures.detailsHomogeneity = 0.0309f;
    figures.linkRatio = 0.1397f;
    figures.positiveMean = 2.3456f;
    figures.positiveMode = 1;
    figures.negativeMean = 1.6985f;
    figures.negativeMode = 2;
    QCOMPARE(ChartDetailsText(figures, 3),
             QStringLiteral("142 docs @ INT #3 (2013-09-04 00:13:19), NOV=24%, HOM=3%, LR=0.14, "
                            "SENT+ 2.35(1) , SENT- 1.70(2)"));
    // A zero novelty prints no digit; so does a zero homogeneity.
    figures.novelty = 0.0f;
    figures.detailsHomogeneity = 0.0f;
    figures.linkRatio = 0.0f;
    QCOMPARE(ChartDetailsText(figures, 1),
             QStringLiteral("142 docs @ INT #1 (2013-09-04 00:13:19), NOV=%, HOM=%, LR=0.00, "
                            "SENT+ 2.35(1) , SENT- 1.70(2)"));

    const auto chart = OffscreenChart(Quiet());
    QVERIFY(chart->ChartDetails(2).startsWith(QStringLiteral("0 docs @ INT #2 (2013-09-03 ")));
    QCOMPARE(chart->ChartDetails(0) + chart->ChartDetails(5) + chart->CurrentDetails(), QString());
  }

  void intervalUnderAPixel() {
    const auto chart = OffscreenChart(Quiet());
    struct Case {
      QPointF pixel;
      std::int32_t interval;
    };
    const Case defaults[] = {{{50, 100}, 0},  {{100, 100}, 1}, {{199.5, 100}, 1},
                             {{200, 100}, 2}, {{499, 0}, 4},   {{150, 200}, 0}};
    for (const Case& c : defaults) {
      QCOMPARE(chart->IntervalAt(c.pixel), c.interval);
    }
    // A geometry that starts with interval 3 at pixel 0.
    chart->SetColumnGeometry({0.0, 50.0, 3});
    QCOMPARE(chart->IntervalAt({60, 50}), 4);
    QCOMPARE(chart->IntervalAt({110, 50}), 0);
    QCOMPARE(chart->IntervalAt({-10, 50}), 2);
    // Nothing to hit before any data.
    TimeLineChart empty;
    empty.SetPictureSize(kSize);
    QCOMPARE(empty.IntervalAt({150, 50}), 0);
  }

  void alignedWithTheTermTimeLine() {
    SparseMatrixSingle table;
    table.Reset(3, 6);
    for (std::int32_t c = 1; c <= 6; ++c) table.SetValue(1, c, 1.0f);
    TableLens lens;
    lens.SetPictureSize(QSize(500, 300));
    lens.SetNumDataTable(table);
    lens.SetVisibleColumns(6);
    lens.SetCellStyle(TableLens::kLine);
    const auto chart = OffscreenChart(Quiet(6));
    chart->SetColumnGeometry(TimeLineChart::ColumnGeometryOfLens(lens));
    for (std::int32_t i = 1; i <= 6; ++i) {
      const QRectF cell = lens.CellRect(1, i);
      QCOMPARE(chart->ToPixels(i, 0).x(), cell.left());
      QCOMPARE(chart->IntervalAt({cell.center().x(), 50}), i);
    }
    // The chart's surface 25 pixels right of the lens's: everything moves 25 pixels left.
    chart->SetColumnGeometry(TimeLineChart::ColumnGeometryOfLens(lens, 25.0));
    QCOMPARE(chart->ToPixels(2, 0).x(), lens.CellRect(1, 2).left() - 25.0);
    // A scrolled lens: its first visible column is data column 3.
    lens.SetVisibleColumns(3);
    lens.HorizontalScroll(2);
    QCOMPARE(lens.LeftColumn(), 3);
    chart->SetColumnGeometry(TimeLineChart::ColumnGeometryOfLens(lens));
    QCOMPARE(chart->ToPixels(5, 0).x(), lens.CellRect(1, 3).left());
    QCOMPARE(chart->IntervalAt({lens.CellRect(1, 2).center().x(), 50}), 4);
  }

  void hoverAndSelectionOnTheOverlay() {
    ChartWindow window;
    TimeLineChartData data = Quiet();
    At(data, 2).documents = 4;
    At(data, 2).events = QStringLiteral("|Landfall");
    window.chart->SetData(data);
    // (The hover and click signals reach the time line page: time_line_workflow_test.)
    QSignalSpy clicked(window.chart.get(), &TimeLineChart::IntervalClicked);
    QTest::mouseMove(window.Surface(), QPoint(250, 100));
    QCOMPARE(window.Surface()->toolTip(), QStringLiteral("Landfall"));
    QImage snapshot = window.chart->Snapshot();
    // Outline (2, 0)-(2.9, 1): pixel columns 200 and 290.
    QCOMPARE(PixelAt(snapshot, {200, 100}), kHover);
    // The persistent picture is untouched.
    QCOMPARE(CountColour(window.chart->Picture(), QRectF(0, 0, 500, 200), kHover), 0);

    // A click selects it: a black outline alone.
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, QPoint(270, 120));
    snapshot = window.chart->Snapshot();
    QCOMPARE(PixelAt(snapshot, {200, 100}), kBlack);
    QCOMPARE(CountColour(snapshot, QRectF(0, 0, 500, 200), kHover), 0);

    // Outside the intervals: hover stays, a click does nothing.
    QTest::mouseMove(window.Surface(), QPoint(50, 100));
    QCOMPARE(window.chart->HoverInterval(), 2);
    QTest::mouseClick(window.Surface(), Qt::LeftButton, {}, QPoint(50, 100));
    // The right button does not select.
    QTest::mouseClick(window.Surface(), Qt::RightButton, {}, QPoint(450, 100));
    QCOMPARE(clicked.count(), 1);

    // New data clears the marks.
    window.chart->SetData(data);
    QCOMPARE(window.chart->HoverInterval() + window.chart->SelectedInterval(), 0);
    QCOMPARE(window.chart->Snapshot(), window.chart->Picture());
  }

  // The clipboard picture has no marks (the double click that asks for it: the page's test).
  void clipboardPictureHasNoMarks() {
    const auto chart = OffscreenChart(Quiet());
    chart->SelectInterval(2);
    QCOMPARE(PixelAt(chart->ClipboardPicture(), {200, 100}), kWhite);
    QCOMPARE(PixelAt(chart->Snapshot(), {200, 100}), kBlack);
  }

  void surfaceResizeRedraws() {
    ChartWindow window;
    TimeLineChartData data = Quiet();
    At(data, 4).documents = 10;
    window.chart->SetData(data);
    window.form->resize(QSize(1000, 100));
    window.Surface()->resize(QSize(1000, 100));
    QCOMPARE(window.chart->Picture().size(), QSize(1000, 100));
    QCOMPARE(PixelAt(window.chart->Picture(), {900, 50}), kVolume);
  }

  void emptyChartIsBlank() {
    TimeLineChart chart;
    chart.SetPictureSize(kSize);
    QCOMPARE(chart.IntervalCount(), 0);
    QCOMPARE(CountColour(chart.Picture(), QRectF(0, 0, 500, 200), kWhite), 500 * 200);
    // Intervals without documents and a scale of 0 draw no boxes.
    TimeLineChartData data = Quiet();
    data.maxIntervalDocCount = 0;
    chart.SetData(data);
    QCOMPARE(CountColour(chart.Picture(), QRectF(0, 0, 500, 199), kWhite), 500 * 199);
  }
};

}  // namespace sylvora

SYLVORA_QT_TEST_MAIN(sylvora::TimeLineChartTest)
#include "time_line_chart_test.moc"
