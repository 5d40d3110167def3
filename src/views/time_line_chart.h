#pragma once
// TimeLineChart: the main time line of the time line explorer. One column per interval, drawn
// in these layers (x in intervals, y from 0 at the bottom to 1 at the top):
//   volume          box (i, 0)-(i + 1, n(i) / MaxIntervalDocCount)          RGB 150, 150, 150
//   link share      box (i, 0)-(i + 1, LinkRatio(i) x n(i) / Max..)          RGB 100, 100, 100
//   novelty         line from (W + 1, nov(W + 1)) through (i + 0.5, nov(i)),
//                   i = W + 1..IntervalCount, W the novelty window           RGB 255, 0, 0
//                   and a black circle of radius 0.1 column at each point
//   sentiment +     line from (-1, 0) through (i + 0.5, s+(i) / 5)           RGB 0, 255, 0
//   sentiment -     line from (-1, 0) through (i + 0.5, s-(i) / 5)           RGB 0, 0, 255
//                   s = mean, mode or median strength by SentimentAverage()
//   homogeneity     line from (1, hom(1)) through (i + 0.5, hom(i)), i >= 2    RGB 200, 200, 0
//   events          box (i + 0.3, 1)-(i + 0.6, 0.9) where the interval has events, RGB 0, 0, 128
// When the intervals are narrower than a pixel, each pixel column instead shows the range of
// the intervals under it: the volume and link-share bars as tall as the tallest, and each line
// as a vertical stroke from its smallest to its largest value there (event marks where any of
// them has events; novelty points are too small to show).
// Hover and selection marks live on an overlay over the persistent picture: the hovered
// interval outlined (h, 0)-(h + 0.9, 1) in RGB 50, 50, 50 and the selected one in RGB 160, 0,
// 160; right after a click the selected interval alone, outlined in black.
//
// Numbering. Intervals are 1-based; TimeLineChartData::intervals[k] is interval k + 1. An
// interval of 0 means none.
//
// Columns. Interval i covers x = i..i + 1 in chart units. By default the chart is laid out as
// the term time line lays out its columns without a row header: IntervalCount() + 1 equal
// columns over the width, interval i in column i. SetColumnGeometry aligns it with any other
// column layout (the TableLens that sits below it: ColumnGeometryOfLens); intervals before
// the layout's first interval are then left out of the drawing.
//
// Data. The chart draws a plain copy of the per-interval figures (TimeLineChartData, filled
// from the session's interval series by TimeLineChartDataFromSeries in
// time_line_chart_series.h); it never reads the session and computes no score while painting.
//
// Public API for the page that hosts it:
//   InitializeChart(host, box)     bind to a widget (box, or a new child "Chart" filling host)
//   SetData(data)                  new figures: clears hover and selection, redraws
//   SetNovelty(values, window)     new novelty column and window (IntervalNoveltySeries), redraws
//   SetSentimentAverage(0|1|2)     mean, mode or median sentiment lines, redraws
//   Redraw()                       the "Redraw" menu item; ClipboardPicture() for the copy
//   SetColumnGeometry(left, width, firstInterval) / ColumnGeometryOfLens(lens, shift) / reset
//   DateTicks / PaintDateAxis      the dates under the chart
//   ChartDetails(i)                the ChartDetails label's text for interval i
//   ToolTipText(i)                 the interval's events ("" or "|A|B")
//   IntervalAt(pixel)              the interval under a surface pixel, 0 when none
//   HoverInterval / SetHoverInterval(i)       as a pointer move over interval i (the term
//                                             time line's CellMouseOver uses it)
//   SelectedInterval / SelectInterval(i)      as a click on interval i, without the signal
//   signals HoverChanged(interval, details), IntervalClicked(interval), ChartDoubleClicked()
//   Snapshot() (with the overlay), Picture(), SavePng(path, error)
// The page sets its ChartDetails label from HoverChanged, does the click's work (lens cursor,
// lists, messages) on IntervalClicked and asks the clipboard question on ChartDoubleClicked.
//
// Cost. A redraw draws a fixed number of shapes per interval, or per pixel column when the
// intervals are narrower than a pixel, into the picture; a hover paints the overlay only.

#include <QColor>
#include <QImage>
#include <QObject>
#include <QPointF>
#include <QSize>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "views/view_surface.h"

class QPainter;
class QWidget;

namespace sylvora {

class TableLens;

// The figures of one interval that the chart draws and prints.
struct TimeLineChartInterval {
  std::int32_t documents = 0;
  float linkRatio = 0.0f;
  // IntervalNoveltyScore(i, window).
  float novelty = 0.0f;
  // The chart's homogeneity, and the one the hover text prints (IntervalHomogScore(i, 1)).
  float homogeneity = 0.0f;
  float detailsHomogeneity = 0.0f;
  float positiveMean = 0.0f;
  std::int32_t positiveMode = 0;
  std::int32_t positiveMedian = 0;
  float negativeMean = 0.0f;
  std::int32_t negativeMode = 0;
  std::int32_t negativeMedian = 0;
  // Start date-time, "YYYY-MM-DD HH:MM:SS".
  QString start;
  // "" or "|A|B".
  QString events;
};

struct TimeLineChartData {
  // The volume scale: the largest interval's documents.
  std::int32_t maxIntervalDocCount = 0;
  // The novelty window W the novelty values were computed with.
  std::uint8_t noveltyWindow = 1;
  std::vector<TimeLineChartInterval> intervals;
};

// The ChartDetails text of one interval:
// "142 docs @ INT #3 (2013-09-04 00:00:00), NOV=24%, HOM=3%, LR=0.12, SENT+ 2.31(1) ,
// SENT- 1.87(1)" Novelty and homogeneity are x 100 with the "###" pattern (0 prints no digit:
// "NOV=%"), the link ratio and means with "0.00".
QString ChartDetailsText(const TimeLineChartInterval& figures, std::int32_t interval);

class TimeLineChart : public QObject {
  Q_OBJECT

 public:
  enum SentimentAverage : std::int16_t { kMean = 0, kMode = 1, kMedian = 2 };

  // Where the intervals sit, in surface pixels: interval `firstInterval` starts at `left` and
  // every interval is `width` wide (a width of 0 or below restores the default layout).
  struct ColumnGeometry {
    double left = 0.0;
    double width = 0.0;
    std::int32_t firstInterval = 1;
  };

  explicit TimeLineChart(QObject* parent = nullptr);
  ~TimeLineChart() override;

  // Binds the chart to `host`: `chartBox` becomes the drawing surface, or, when it is null, a
  // new surface named "Chart" fills the host. False when `host` is null or the chart is
  // already bound. (Defined in the widget binding.)
  bool InitializeChart(QWidget* host, QWidget* chartBox = nullptr);
  // The drawing surface (null when unbound).
  QWidget* ChartSurface() const;
  // Size of the offscreen picture when no surface is bound.
  void SetPictureSize(QSize size);

  // Replaces the figures, clears hover and selection and redraws.
  void SetData(TimeLineChartData data);
  const TimeLineChartData& Data() const { return data_; }
  std::int32_t IntervalCount() const { return static_cast<std::int32_t>(data_.intervals.size()); }
  // Replaces the novelty of every interval (entry k for interval k + 1; a shorter list leaves
  // the rest) and the window, then redraws.
  void SetNovelty(const std::vector<float>& novelty, std::uint8_t window);

  std::int16_t SentimentAverageChoice() const { return sentimentAverage_; }
  // 0 mean, 1 mode, 2 median; other values are ignored. Redraws.
  void SetSentimentAverage(std::int16_t average);

  // Column layout (see the file comment); redraws.
  void SetColumnGeometry(const ColumnGeometry& geometry);
  void ResetColumnGeometry();
  // The geometry in use (the default one computed from the width when none was set).
  ColumnGeometry Columns() const;
  // The geometry that puts interval i above data column i of `lens` as the lens shows it now,
  // for a chart whose left edge lies `shift` pixels to the right of the lens surface's left
  // edge (negative when the chart starts further left).
  static ColumnGeometry ColumnGeometryOfLens(const TableLens& lens, double shift = 0.0);

  // A date under the chart: where it falls in surface pixels and its label.
  struct DateTick {
    double x = 0.0;
    QString label;
  };
  // Dates at whole years, months, days or hours over the intervals shown in `width` pixels,
  // with the finest step whose labels, `textWidth` pixels wide plus a gap, do not run into
  // each other: "2013", "2013-09", "2013-09-04", "09-04 18:00". Empty without dated intervals.
  std::vector<DateTick> DateTicks(double width,
                                  const std::function<double(const QString&)>& textWidth) const;
  // Draws the ticks and their labels into a strip of `size` (the date axis under the chart,
  // whose left edge is the chart's).
  void PaintDateAxis(QPainter& painter, QSize size) const;

  // Chart units <-> surface pixels.
  QPointF ToPixels(double x, double y) const;
  double UnitsX(double px) const;
  double UnitsY(double py) const;
  // The interval whose column holds the pixel (whole part of x), 0 outside 1..IntervalCount
  // or below the chart.
  std::int32_t IntervalAt(QPointF pixel) const;

  // Draws every layer into the picture again (the "Redraw" menu item). The host's pointer
  // shows busy meanwhile. The overlay keeps its marks.
  void Redraw();

  std::int32_t HoverInterval() const { return hoverInterval_; }
  std::int32_t SelectedInterval() const { return selectedInterval_; }
  // A pointer move over interval i: when i differs from the hovered interval, it becomes the
  // hovered one, the overlay shows the hover and selection marks, the tooltip the events, and
  // HoverChanged is raised. Intervals outside 1..IntervalCount are ignored.
  void SetHoverInterval(std::int32_t interval);
  // A click on interval i without raising IntervalClicked (for the term time line's clicks):
  // hovered and selected become i and the overlay shows i outlined in black. Intervals outside
  // 1..IntervalCount are ignored.
  void SelectInterval(std::int32_t interval);

  // The ChartDetails text of interval i ("" outside 1..IntervalCount), and its tooltip.
  QString ChartDetails(std::int32_t interval) const;
  QString ToolTipText(std::int32_t interval) const;
  // The text of the hovered interval ("" when none).
  QString CurrentDetails() const { return ChartDetails(hoverInterval_); }

  // The persistent picture alone, the picture with the overlay as the user sees it, and a
  // freshly drawn picture for the clipboard.
  const QImage& Picture() const { return picture_; }
  QImage Snapshot() const;
  QImage ClipboardPicture();
  // Writes Snapshot() as PNG. False, with `error` saying why, when there is nothing drawn or
  // the file cannot be written.
  bool SavePng(const QString& path, QString& error) const;

  // --- Input, in surface pixels (the widget binding calls these; tests may too) ---
  void MouseMove(QPointF position);
  void MousePress(Qt::MouseButton button, QPointF position);
  void MouseDoubleClick(Qt::MouseButton button, QPointF position);
  // Paints picture and overlay (the binding calls it from the surface's paint event).
  void Paint(QPainter& painter) const;
  // The surface changed size: the picture follows it.
  void SurfaceResized();

 signals:
  // The hovered interval changed; `details` is its ChartDetails text.
  void HoverChanged(int interval, const QString& details);
  // The user clicked the hovered interval, which is now selected.
  void IntervalClicked(int interval);
  // The user double-clicked the chart.
  void ChartDoubleClicked();

 private:
  enum class OverlayMode { kNone, kHover, kClicked };

  QSize PictureSize() const;
  bool ValidInterval(std::int32_t interval) const {
    return interval >= 1 && interval <= IntervalCount();
  }
  float SentimentValue(const TimeLineChartInterval& figures, bool positive) const;
  void DrawLayers(QPainter& painter) const;
  // The layers with more intervals than pixel columns: per pixel column, the range of the
  // intervals under it.
  void DrawRanges(QPainter& painter) const;
  void PaintOverlay(QPainter& painter) const;
  void Refresh();

  std::unique_ptr<ViewSurface> surface_;
  QSize offscreenSize_{800, 200};
  TimeLineChartData data_;
  // Each interval's start in seconds from 1970-01-01 (the lowest int64 when unreadable), for
  // the dates.
  std::vector<std::int64_t> startSeconds_;
  std::int16_t sentimentAverage_ = kMean;
  bool customColumns_ = false;
  ColumnGeometry columns_;
  std::int32_t hoverInterval_ = 0;
  std::int32_t selectedInterval_ = 0;
  OverlayMode overlay_ = OverlayMode::kNone;
  QImage picture_;
};

}  // namespace sylvora
